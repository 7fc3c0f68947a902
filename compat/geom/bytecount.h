#pragma once

#include "compat/geom/geom.h"

#include <cstdint>

// The header's `bytecount` for each kind, with the object's flags. The formulas differ in their
// units and are not the sizes of the bodies. They are kept as they are: readers compare the number.

namespace geom {

// Bytes, all of them.
std::int64_t bytecount(const GEOMmesh& mesh, std::uint32_t flags);

// Bytes, with the entries of the polygon list counted at 4 though they are written as 8.
std::int64_t bytecount(const GEOMpolyhedron& solid, std::uint32_t flags);

// Bytes, with the counts of strips and polylines taken at 4 and those of the object left out. The
// primitive data of a polyline of m vertices counts as 4m - 1, that of a strip of k as 4k - 8.
std::int64_t bytecount(const GEOMpolytriangle& all, std::uint32_t flags);

// Values, not bytes, without vertex data and vertex trans.
std::int64_t bytecount(const GEOMspheres& spheres, std::uint32_t flags);

// Values plus the bytes of the texts.
std::int64_t bytecount(const GEOMlabels& labels, std::uint32_t flags);

} // namespace geom
