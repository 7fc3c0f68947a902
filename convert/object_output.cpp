#include "convert/object_output.h"

#include <cstdio>
#include <utility>

namespace meshcast {

void writeObject(ObjectOwner object) {
    GEOMwrite_obj(object.get(), fileno(stdout), 0);
}

void writePolyhedron(std::span<const float> vertices, std::span<const std::int32_t> polygons,
                     Normals normals, std::span<const float> uvs) {
    ObjectOwner object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
    GEOMadd_vertices(object.get(), vertices.data(), static_cast<std::int64_t>(vertices.size() / 3),
                     GEOM_COPY);
    GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
    if (normals != Normals::kNone) {
        GEOMgen_normals(object.get(), normals == Normals::kFacet ? 1 : 0);
    }
    if (!uvs.empty()) {
        GEOMadd_uvs(object.get(), uvs.data(), static_cast<std::int64_t>(uvs.size() / 2), GEOM_COPY);
    }
    writeObject(std::move(object));
}

} // namespace meshcast
