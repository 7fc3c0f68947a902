#pragma once

#include "compat/geom/geom.h"

#include <cstdint>

// The header's `bytecount` for each kind, given the object's flags. Kept, since readers compare the
// number: the formulas use different units, and none gives the size of the body.

namespace geom {

/// All bytes.
std::int64_t bytecount(const GEOMmesh& mesh, std::uint32_t flags);

/// Bytes, but 4 for each entry of the polygon list, which is written as 8.
std::int64_t bytecount(const GEOMpolyhedron& solid, std::uint32_t flags);

/// Bytes, but 4 for the count of each strip and polyline, and nothing for the counts of the object.
/// The primitive data counts as 4m - 1 for a polyline of m vertices and 4k - 8 for a strip of k.
std::int64_t bytecount(const GEOMpolytriangle& all, std::uint32_t flags);

/// Values, not bytes, without vertex data and vertex trans.
std::int64_t bytecount(const GEOMspheres& spheres, std::uint32_t flags);

/// Values plus the bytes of the texts.
std::int64_t bytecount(const GEOMlabels& labels, std::uint32_t flags);

} // namespace geom
