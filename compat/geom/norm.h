#pragma once

#include "compat/geom/geom.h"

namespace geom {

// What GEOMgen_normals() does, for a tolerance of the caller's: a facet normal whose components all
// lie inside (-tolerance, tolerance) is zero.
void generate_normals(GEOMobj& obj, int mode, double tolerance);

// Normalises every normal of a mesh, a polyhedron, or the strips of a polytriangle. Zero vectors
// stay zero.
void normalize_object(GEOMobj& obj);

// Normalises 3 floats in place; a vector without length becomes (0, 0, 1). The squares are summed
// in float, the root and the quotients are taken in double.
void normalize_vector(float* vector);

} // namespace geom
