#include "compat/geom/bytecount.h"

#include "compat/geom/parts.h"

#include <cstring>

namespace {

using Count = std::uint64_t; // unsigned: the counts of a malformed object may overflow

// 1 when the bit is set, else 0.
Count has(std::uint32_t flags, std::uint32_t bit) { return (flags & bit) != 0 ? 1 : 0; }

Count valuesPerVertex(std::uint32_t flags) {
    return 3 + 3 * has(flags, GEOM_HAS_NORMALS) + 3 * has(flags, GEOM_HAS_COLORS) +
           2 * has(flags, GEOM_HAS_UVS) + 3 * has(flags, GEOM_HAS_UVWS) +
           has(flags, GEOM_HAS_VERTEX_DATA) + has(flags, GEOM_HAS_VERTEX_TRANS);
}

} // namespace

std::int64_t geom::bytecount(const GEOMmesh& mesh, std::uint32_t flags) {
    const auto u = static_cast<Count>(mesh.u);
    const auto v = static_cast<Count>(mesh.v);
    // Kept: also counted for an empty grid, which has no cells. Readers compare this count.
    const Count cells = (u - 1) * (v - 1);
    return static_cast<std::int64_t>(
        4 * (u * v * valuesPerVertex(flags) + cells * has(flags, GEOM_HAS_PRIMITIVE_DATA)));
}

std::int64_t geom::bytecount(const GEOMpolyhedron& solid, std::uint32_t flags) {
    const auto polygons = static_cast<Count>(solid.polygons.polygons);
    const auto indices = static_cast<Count>(solid.polygons.indices);
    const auto vertices = static_cast<Count>(solid.vertices.used);
    return static_cast<std::int64_t>(4 * (indices + polygons + vertices * valuesPerVertex(flags)) +
                                     4 + 4 * polygons * has(flags, GEOM_HAS_PRIMITIVE_DATA));
}

std::int64_t geom::bytecount(const GEOMpolytriangle& all, std::uint32_t flags) {
    const Count primitives = has(flags, GEOM_HAS_PRIMITIVE_DATA);
    const Count lineValues = valuesPerVertex(flags & kLineFlags);
    Count bytes = 4 * (static_cast<Count>(all.strips) + static_cast<Count>(all.lines));
    for (std::int64_t i = 0; i < all.strips; ++i) {
        const auto k = static_cast<Count>(all.strip_vertices[i].used);
        bytes += 4 * k * valuesPerVertex(flags) + primitives * (4 * k - 8);
    }
    for (std::int64_t i = 0; i < all.lines; ++i) {
        const auto m = static_cast<Count>(all.line_vertices[i].used);
        bytes += 4 * m * lineValues + primitives * (4 * m - 1);
    }
    const auto d = static_cast<Count>(all.segment_vertices.used);
    bytes += 4 * d * lineValues + primitives * 4 * (d / 2);
    return static_cast<std::int64_t>(bytes);
}

std::int64_t geom::bytecount(const GEOMspheres& spheres, std::uint32_t flags) {
    const auto n = static_cast<Count>(spheres.centers.used);
    return static_cast<std::int64_t>(
        n * (4 + 3 * has(flags, GEOM_HAS_NORMALS) + 3 * has(flags, GEOM_HAS_COLORS)));
}

std::int64_t geom::bytecount(const GEOMlabels& labels, std::uint32_t flags) {
    const auto n = static_cast<Count>(labels.texts.used);
    Count count = n * (4 + has(flags, GEOM_HAS_LABEL_DATA) + 7 + 3 * has(flags, GEOM_HAS_COLORS));
    for (std::int64_t i = 0; i < labels.texts.used; ++i)
        count += std::strlen(labels.texts.data[i]) + 1;
    return static_cast<std::int64_t>(count);
}
