#pragma once

#include "compat/geom/geom.h"

#include <cstdint>

namespace geom {

/// Adds n vertices as one triangle strip; nothing when n is 0. Reports and refuses the strip if the
/// object's flags name normals or colours, since the strip has none.
void addStrip(GEOMobj& obj, const float* vertices, std::int64_t n, int flag);

/// Frees every strip, polyline and segment list, and the arrays of lists.
void clearPolytriangle(GEOMpolytriangle& triangles);

} // namespace geom
