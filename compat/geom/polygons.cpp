// The polygon list of a polyhedron.

#include "compat/geom/create_sites.h"
#include "compat/geom/geom.h"
#include "compat/geom/list.h"
#include "compat/geom/memory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

namespace sites = geom::createSites;

// Entries of a list: the counts, the indices and the final 0.
std::int64_t entries(const GEOMpolygon_list& list) { return list.polygons + list.indices + 1; }

// Counts the polygons of a caller's list and copies them into a new block of 64-bit entries.
GEOMpolygon_list widen(const std::int32_t* list) {
    GEOMpolygon_list wide{};
    const std::int32_t* end = list;
    while (*end > 0) {
        ++wide.polygons;
        wide.indices += *end;
        end += std::int64_t{*end} + 1;
    }
    wide.capacity = entries(wide);
    wide.data = static_cast<std::int64_t*>(
        geom::allocate(wide.capacity, sizeof(std::int64_t), sites::kPolygons.first));
    const std::int64_t last = wide.capacity - 1;
    for (std::int64_t i = 0; i < last; ++i)
        wide.data[i] = list[i];
    wide.data[last] = 0; // the caller's list may end with a negative count
    return wide;
}

// Attaches polygon flags as a property, unless the object has one.
void keepFlags(GEOMobj& obj, std::uint32_t polygon_flags) {
    std::uint32_t present = 0;
    if (polygon_flags != 0 && GEOMget_property(&obj, GEOM_PROPERTY_POLYGON_FLAGS, &present) == 0)
        GEOMadd_property(&obj, GEOM_PROPERTY_POLYGON_FLAGS, polygon_flags);
}

} // namespace

void GEOMadd_polygons(GEOMobj* obj, const std::int32_t* list, std::uint32_t polygon_flags,
                      int flag) {
    if (obj->type != GEOM_POLYHEDRON || list == nullptr) {
        geom::drop(list, flag);
        return;
    }
    const GEOMpolygon_list added = widen(list);
    geom::drop(list, flag);

    GEOMpolygon_list& polygons = obj->polyhedron.polygons;
    if (polygons.polygons == 0)
        keepFlags(*obj, polygon_flags & GEOM_POLYGON_FLAGS_KEPT);
    if (polygons.capacity == 0) {
        polygons = added;
        return;
    }
    // The added list overwrites the final 0 and ends with its own.
    const std::int64_t end = entries(polygons) - 1;
    polygons.capacity = end + added.capacity;
    polygons.data = static_cast<std::int64_t*>(geom::reallocate(
        polygons.data, polygons.capacity, sizeof(std::int64_t), sites::kPolygons.grow));
    std::memcpy(polygons.data + end, added.data,
                static_cast<std::size_t>(added.capacity) * sizeof(std::int64_t));
    geom::release(added.data);
    polygons.polygons += added.polygons;
    polygons.indices += added.indices;
}

void GEOMadd_faces(GEOMobj* obj, const std::int32_t* indices, std::int64_t n) {
    if (obj->type != GEOM_POLYHEDRON || obj->polyhedron.polygons.capacity != 0 || n <= 0)
        return;
    constexpr std::int32_t endOfFace = -1;
    GEOMpolygon_list faces{};
    const bool isLastOpen = indices[n - 1] != endOfFace;
    const std::int64_t ends = std::count(indices, indices + n, endOfFace);
    faces.polygons = ends + (isLastOpen ? 1 : 0);
    faces.indices = n - ends;
    faces.capacity = entries(faces);
    faces.data = static_cast<std::int64_t*>(
        geom::allocate(faces.capacity, sizeof(std::int64_t), sites::kPolygons.first));
    // An index goes to the place after its own, and the count of a face to that of its first index.
    std::int64_t start = 0;
    for (std::int64_t i = 0; i < n; ++i) {
        if (indices[i] == endOfFace) {
            faces.data[start] = i - start;
            start = i + 1;
        } else {
            faces.data[i + 1] = indices[i] + std::int64_t(1);
        }
    }
    if (isLastOpen)
        faces.data[start] = n - start;
    faces.data[faces.capacity - 1] = 0;
    obj->polyhedron.polygons = faces;
}
