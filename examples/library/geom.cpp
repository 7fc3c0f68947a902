// Writes a triangle with its normals to standard output, as a stream of one record.

#include "compat/geom/geom.h"

#include <array>

int main() {
    const std::array<float, 9> corners = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const std::array<std::int32_t, 5> polygons = {3, 1, 2, 3, 0};
    GEOMobj* triangle = GEOMcreate_obj(GEOM_POLYHEDRON, nullptr);
    GEOMadd_vertices(triangle, corners.data(), 3, GEOM_COPY);
    GEOMadd_polygons(triangle, polygons.data(), 0, GEOM_COPY);
    GEOMgen_normals(triangle, 0);
    GEOMwrite_obj(triangle, 1, 0);
    GEOMdestroy_obj(triangle);
}
