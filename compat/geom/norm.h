#pragma once

#include "compat/geom/geom.h"

namespace geom {

/// GEOMgen_normals() with a given tolerance: a facet normal is set to zero if all its components
/// are between -tolerance and tolerance.
void generateNormals(GEOMobj& obj, int mode, double tolerance);

/// Normalises every normal of a mesh, a polyhedron, or the strips of a polytriangle. Zero vectors
/// stay zero.
void normalizeObject(GEOMobj& obj);

/// Normalises 3 floats in place; a vector of length zero becomes (0, 0, 1). Squares are summed in
/// float; the root and the quotients are computed in double.
void normalizeVector(float* vector);

} // namespace geom
