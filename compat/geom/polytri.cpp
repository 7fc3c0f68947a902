// Polytriangles: triangle strips and polylines. Each strip and each polyline has lists of its own;
// the object holds arrays of such lists, one array per sort of data that its flags name.

#include "compat/geom/polytri.h"

#include "compat/geom/create_sites.h"
#include "compat/geom/list.h"
#include "compat/geom/memory.h"
#include "compat/geom/parts.h"

namespace {

namespace sites = geom::createSites;

// Grows an array of `count` lists by one empty list. A new array gets empty lists for the earlier
// strips too, which were added before the object had that sort of data.
template <class List>
void growLists(List*& lists, std::int64_t count, const geom::GrowthSites& growth) {
    const bool first = lists == nullptr;
    void* block = first ? geom::allocate(count + 1, sizeof(List), growth.first)
                        : geom::reallocate(lists, count + 1, sizeof(List), growth.grow);
    lists = static_cast<List*>(block);
    for (std::int64_t i = first ? 0 : count; i <= count; ++i)
        lists[i] = List{};
}

void storeFresh(GEOMvector_list& list, const float* source, std::int64_t n, int flag) {
    constexpr geom::GrowthSites fresh{sites::kFreshVertices, sites::kFreshVertices};
    geom::append(list, source, n, n, flag, fresh);
}

// The same for an array that exists only if the object's flags name that sort of data.
template <class List>
void growPromised(std::uint32_t promise, List*& lists, std::int64_t count,
                  const geom::GrowthSites& growth) {
    if (promise != 0)
        growLists(lists, count, growth);
}

void growStripArrays(GEOMpolytriangle& all, std::uint32_t flags) {
    const std::int64_t n = all.strips;
    growLists(all.strip_vertices, n, sites::kStripVertices);
    growPromised(flags & GEOM_HAS_NORMALS, all.strip_normals, n, sites::kStripNormals);
    growPromised(flags & GEOM_HAS_COLORS, all.strip_colors, n, sites::kStripColors);
    growPromised(flags & (GEOM_HAS_UVS | GEOM_HAS_UVWS), all.strip_uvs, n, sites::kStripUvs);
    growPromised(flags & GEOM_HAS_VERTEX_DATA, all.strip_vertex_data, n, sites::kStripVertexData);
    growPromised(flags & GEOM_HAS_PRIMITIVE_DATA, all.strip_primitive_data, n,
                 sites::kStripPrimitiveData);
    growPromised(flags & GEOM_HAS_VERTEX_TRANS, all.strip_vertex_trans, n,
                 sites::kStripVertexTrans);
}

void growPolylineArrays(GEOMpolytriangle& all, std::uint32_t flags) {
    const std::int64_t n = all.lines;
    growLists(all.line_vertices, n, sites::kLineVertices);
    growPromised(flags & GEOM_HAS_COLORS, all.line_colors, n, sites::kLineColors);
    growPromised(flags & GEOM_HAS_VERTEX_DATA, all.line_vertex_data, n, sites::kLineVertexData);
    growPromised(flags & GEOM_HAS_PRIMITIVE_DATA, all.line_primitive_data, n,
                 sites::kLinePrimitiveData);
}

} // namespace

void geom::addStrip(GEOMobj& obj, const float* vertices, std::int64_t n, int flag) {
    if (n <= 0) {
        drop(vertices, flag);
        return;
    }
    if ((obj.flags & GEOM_HAS_NORMALS) != 0) {
        refuse("Normals required for polytriangle: ignoring", vertices, flag);
        return;
    }
    if ((obj.flags & GEOM_HAS_COLORS) != 0) {
        refuse("Colors required for polytriangle: ignoring", vertices, flag);
        return;
    }
    GEOMpolytriangle& all = obj.polytriangle;
    growStripArrays(all, obj.flags);
    storeFresh(all.strip_vertices[all.strips], vertices, n, flag);
    ++all.strips;
}

void GEOMadd_polyline(GEOMobj* obj, const float* vertices, const float* colors, std::int64_t n,
                      int flag) {
    if (obj->type != GEOM_POLYTRIANGLE || n <= 0) {
        geom::drop(vertices, flag);
        geom::drop(colors, flag);
        return;
    }
    if (colors != nullptr)
        obj->flags |= GEOM_HAS_COLORS;
    const bool colored = (obj->flags & GEOM_HAS_COLORS) != 0;
    if (colored && colors == nullptr) {
        geom::refuse("Colors required for polyline: ignoring", vertices, flag);
        return;
    }
    GEOMpolytriangle& all = obj->polytriangle;
    growPolylineArrays(all, obj->flags);
    storeFresh(all.line_vertices[all.lines], vertices, n, flag);
    if (colored)
        storeFresh(all.line_colors[all.lines], colors, n, flag);
    ++all.lines;
}

void geom::clearPolytriangle(GEOMpolytriangle& triangles) {
    for (std::int64_t i = 0; i < triangles.strips; ++i)
        clearPart(stripOf(triangles, i));
    for (std::int64_t i = 0; i < triangles.lines; ++i)
        clearPart(polylineOf(triangles, i));
    clearPart(segmentsOf(triangles));

    release(triangles.strip_vertices);
    release(triangles.strip_colors);
    release(triangles.strip_normals);
    release(triangles.strip_uvs);
    release(triangles.strip_vertex_data);
    release(triangles.strip_primitive_data);
    release(triangles.strip_vertex_trans);
    release(triangles.line_vertices);
    release(triangles.line_colors);
    release(triangles.line_vertex_data);
    release(triangles.line_primitive_data);
}
