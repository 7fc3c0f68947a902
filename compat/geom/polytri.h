#pragma once

#include "compat/geom/geom.h"

#include <cstdint>

namespace geom {

// Adds n vertices as one triangle strip; nothing when n is 0. Refused, with its message, when the
// object's flags promise normals or colours, which this strip does not bring.
void add_strip(GEOMobj& obj, const float* vertices, std::int64_t n, int flag);

// Frees every strip, polyline and segment list, and the arrays of lists.
void clear_polytriangle(GEOMpolytriangle& triangles);

} // namespace geom
