#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr float kFloats[6] = {};
constexpr GEOMpacked_color kColors[2] = {};

// The findings on an object, which must pass the check or fail it.
std::string findingsOf(const Object& obj, bool passes) {
    static std::string findings;
    findings.clear();
    const GEOMreporter note = [](const char* text) { findings += std::string(text) + "\n"; };
    EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), passes ? 1 : 0) << findings;
    return findings;
}

// An object of a kind with two vertices and all that the kind needs; a label has one text.
Object bare(std::uint32_t type) {
    Object obj = make(type);
    if (type == GEOM_LABEL)
        GEOMadd_label(obj.get(), "a", kFloats, kFloats, 1, kFloats, 1);
    else
        GEOMadd_vertices(obj.get(), kFloats, 2, 0);
    if (type == GEOM_MESH)
        obj->mesh.u = 2, obj->mesh.v = 1;
    GEOMadd_polyline(obj.get(), kFloats, nullptr, 2, 0);
    GEOMadd_polygons(obj.get(), Ints{2, 1, 2, 0}.data(), 0, 0);
    return obj;
}

Object fullPolyhedron() {
    Object obj = bare(GEOM_POLYHEDRON);
    GEOMadd_normals(obj.get(), kFloats, 2, 0);
    GEOMadd_colors(obj.get(), kColors, 2, 0);
    GEOMadd_uvs(obj.get(), kFloats, 2, 0);
    GEOMadd_vertex_data(obj.get(), Ints(2).data(), 2, 0);
    GEOMadd_vertex_trans(obj.get(), kFloats, 2, 0);
    obj->polyhedron.primitive_data = {1, 1, block(Ints{1})};
    obj->flags |= GEOM_HAS_PRIMITIVE_DATA;
    return obj;
}

} // namespace

TEST(Check, ComparesListsWithFlags) {
    std::string unequal;
    std::string unflagged;
    for (const std::uint32_t flag : {0x1u, 0x2u, 0x4u, 0x8u, 0x80u, 0x40u}) {
        Object obj = bare(GEOM_POLYHEDRON);
        obj->flags = flag;
        unequal += findingsOf(obj, false);
        obj = fullPolyhedron();
        obj->flags &= ~flag;
        unflagged += findingsOf(obj, flag == 0x8);
    }
    EXPECT_EQ(unequal, "number of normals: 0, does not match the number of verts: 2\n"
                       "number of colors: 0, does not match the number of verts: 2\n"
                       "number of uvs: 0, does not match the number of 2*verts: 4\n"
                       "number of uvws: 0, does not match the number of 3*verts: 6\n"
                       "number of vertex data: 0, does not match the no. of verts: 2\n"
                       "number of prim data: 0, does not match the number of prims: 1\n");
    EXPECT_EQ(unflagged, "object has normal information but flag is not set\n"
                         "object has color information but flag is not set\n"
                         "object has uv information but flag is not set\n"
                         "object has vert data info but flag is not set\n"
                         "object has prim data info but flag is not set\n");
}

TEST(Check, EndsAtTheFirstFailure) {
    std::string all;
    const auto spoil = [&](std::uint32_t type, void (*change)(GEOMobj & obj)) {
        const Object obj = type == GEOM_POLYHEDRON ? fullPolyhedron() : bare(type);
        obj->has_extent = 1;
        EXPECT_EQ(findingsOf(obj, true), "");
        const GEOMobj before = *obj;
        change(*obj);
        all += findingsOf(obj, false);
        *obj = before; // so that it can be destroyed
    };
    spoil(1, [](GEOMobj& o) { o.type = 6; });
    spoil(2, [](GEOMobj& o) { o.extent[4] = NAN; });
    spoil(2, [](GEOMobj& o) { o.extent[1] = 2.5F; });
    spoil(1, [](GEOMobj& o) { o.mesh.v = -1; });
    spoil(1, [](GEOMobj& o) { o.mesh.v = 2; });
    spoil(2, [](GEOMobj& o) { o.polyhedron.polygons.polygons = -5'000'000'000; });
    spoil(2, [](GEOMobj& o) { o.polyhedron.normals.data[2] = NAN; });
    spoil(2, [](GEOMobj& o) { o.polyhedron.uvs.data[3] = NAN; });
    spoil(3, [](GEOMobj& o) { o.polytriangle.strips = -1; });
    spoil(3, [](GEOMobj& o) { o.polytriangle.lines = -1; });
    spoil(3, [](GEOMobj& o) { o.polytriangle.strip_vertices->used = 1, o.flags = 0x40; });
    spoil(3, [](GEOMobj& o) { o.polytriangle.line_vertices->data[5] = NAN; });
    spoil(3, [](GEOMobj& o) { o.polytriangle.segment_colors.used = 1; });
    spoil(4, [](GEOMobj& o) { o.sphere.centers.used = -2; });
    spoil(4, [](GEOMobj& o) { o.sphere.radii.used = 3; });
    spoil(5, [](GEOMobj& o) { o.label.offsets.data[2] = NAN; });
    spoil(5, [](GEOMobj& o) { o.label.heights.data[0] = NAN; });
    spoil(5, [](GEOMobj& o) { o.label.colors.used = 2; });
    EXPECT_EQ(all,
              "invalid object type 6!\nnan encountered in extent array entry: 4\n"
              "extent min: 2.500000 is greater than max: 0.000000\n"
              "mesh object has negative dims\n"
              "number of vertices: 2 does not match the expected number: 4\n"
              "polyhedron object has negative polys: (-5000000000) or verts: (2)\n"
              "nan encountered in normals array entry: 2\nnan encountered in uvs array entry: 3\n"
              "negative number of polytris: -1\nnegative number of polylines: -1\n"
              "number of prim data: 0, does not match the number of prims: -1\n"
              "nan encountered in verts array entry: 5\n"
              "object has color information but flag is not set\n"
              "negative number of spheres/dots: -2\n"
              "no. of radii: 3 different from no. of verts: 2\n"
              "nan encountered in label offset array entry: 2\n"
              "nan encountered in label height array entry: 0\n"
              "number of colors: 2, does not match the number of verts: 1\n");
    EXPECT_EQ(messagesOf([] { EXPECT_EQ(GEOMcheck_obj(nullptr, 0, nullptr), 0); }),
              "finding: NULL object received\n");
}

TEST(Check, AcceptsOutOfRangeValuesAndEmptyObjects) {
    Object obj = fullPolyhedron();
    obj->polyhedron.vertices.data[0] = INFINITY;
    obj->polyhedron.colors.data[1] = 1.5F;
    obj->polyhedron.vertex_trans.data[1] = -0.25F;
    EXPECT_EQ(findingsOf(obj, true),
              "colors array entry: 1.500000 is out of the range: 0.000000 - 1.000000\n"
              "vertex trans array entry: -0.250000 is out of the range: 0.000000 - 1.000000\n");
    obj = make(GEOM_POLYTRIANGLE); // colours, but no segments to colour
    GEOMadd_polyline(obj.get(), kFloats, kFloats, 2, 0);
    EXPECT_EQ(findingsOf(obj, true), "");
    obj.reset(GEOMcreate_mesh(nullptr, kFloats, 0, 3, 0)); // no vertices, no cells
    GEOMadd_normals(obj.get(), kFloats, 0, 0);
    GEOMadd_uvs(obj.get(), kFloats, 0, 0);
    obj->flags |= GEOM_HAS_PRIMITIVE_DATA;
    EXPECT_EQ(findingsOf(obj, true), "");
}
