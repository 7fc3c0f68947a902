#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kFloats[6] = {};
constexpr GEOMpacked_color kColors[2] = {};
constexpr std::int32_t kInts[] = {2, 1, 2, 0};

// The findings on the object, each on a line, after which it must pass or not.
std::string findings_of(const Object& obj, bool passes) {
    static std::string findings;
    findings.clear();
    const GEOMreporter note = [](const char* text) { findings += std::string(text) + "\n"; };
    EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), passes ? 1 : 0) << findings;
    return findings;
}

// Two vertices in a row, as one polygon, strip and line, or two spheres or labels.
Object bare(std::uint32_t type) {
    Object obj(type == GEOM_MESH ? GEOMcreate_mesh(nullptr, kFloats, 2, 1, 0)
                                 : make(type).release());
    if (type == GEOM_LABEL)
        for (int i = 0; i < 2; ++i)
            GEOMadd_label(obj.get(), "a", kFloats, kFloats, 1, kFloats, 1);
    else if (type != GEOM_MESH)
        GEOMadd_vertices(obj.get(), kFloats, 2, 0);
    GEOMadd_polyline(obj.get(), kFloats, nullptr, 2, 0);
    GEOMadd_polygons(obj.get(), kInts, 0, 0);
    return obj;
}

Object full_polyhedron() {
    Object obj = bare(GEOM_POLYHEDRON);
    GEOMadd_normals(obj.get(), kFloats, 2, 0);
    GEOMadd_colors(obj.get(), kColors, 2, 0);
    GEOMadd_uvs(obj.get(), kFloats, 2, 0);
    GEOMadd_vertex_data(obj.get(), kInts, 2, 0);
    GEOMadd_vertex_trans(obj.get(), kFloats, 2, 0);
    return obj;
}

} // namespace

TEST(Check, ComparesListsWithFlags) {
    struct Case {
        bool full;
        std::uint32_t flipped;
        std::string finding;
    };
    const Case cases[] = {
        {false, 0x1, "number of normals: 0, does not match the number of verts: 2\n"},
        {false, 0x2, "number of colors: 0, does not match the number of verts: 2\n"},
        {false, 0x4, "number of uvs: 0, does not match the number of 2*verts: 4\n"},
        {true, 0xC, "number of uvws: 4, does not match the number of 3*verts: 6\n"},
        {false, 0x80, "number of vertex data: 0, does not match the no. of verts: 2\n"},
        {false, 0x40, "number of prim data: 0, does not match the number of prims: 1\n"},
        {true, 0x1, "object has normal information but flag is not set\n"},
        {true, 0x2, "object has color information but flag is not set\n"},
        {true, 0x4, "object has uv information but flag is not set\n"},
        {true, 0x80, "object has vert data info but flag is not set\n"},
    };
    for (const Case& c : cases) {
        const Object obj = c.full ? full_polyhedron() : bare(GEOM_POLYHEDRON);
        EXPECT_EQ(findings_of(obj, true), "");
        obj->flags ^= c.flipped;
        EXPECT_EQ(findings_of(obj, false), c.finding);
    }
}

TEST(Check, NamesTheFirstFailure) {
    using Obj = GEOMobj*;
    struct Case {
        std::uint32_t type;
        void (*spoil)(Obj);
        const char* finding;
    };
    const Case cases[] = {
        {1, [](Obj o) { o->type = 6; }, "invalid object type 6!"},
        {2, [](Obj o) { o->extent[4] = kNan; }, "nan encountered in extent array entry: 4"},
        {2, [](Obj o) { o->extent[1] = 2.5F; },
         "extent min: 2.500000 is greater than max: 0.000000"},
        {1, [](Obj o) { o->mesh.v = -1; }, "mesh object has negative dims"},
        {1, [](Obj o) { o->mesh.v = 2; },
         "number of vertices: 2 does not match the expected number: 4"},
        {2, [](Obj o) { o->polyhedron.polygons.polygons = -5'000'000'000; },
         "polyhedron object has negative polys: (-5000000000) or verts: (2)"},
        {2, [](Obj o) { o->polyhedron.primitive_data.used = 1; },
         "object has prim data info but flag is not set"},
        {3, [](Obj o) { o->polytriangle.strips = -1; }, "negative number of polytris: -1"},
        {3, [](Obj o) { o->polytriangle.lines = -1; }, "negative number of polylines: -1"},
        {3, [](Obj o) { o->polytriangle.strip_vertices->used = 1, o->flags = 0x40; },
         "number of prim data: 0, does not match the number of prims: -1"},
        {3, [](Obj o) { o->polytriangle.line_vertices->data[5] = kNan; },
         "nan encountered in verts array entry: 5"},
        {3, [](Obj o) { o->polytriangle.segment_colors.used = 1; },
         "object has color information but flag is not set"},
        {4, [](Obj o) { o->sphere.centers.used = -2; }, "negative number of spheres/dots: -2"},
        {4, [](Obj o) { o->sphere.radii.used = 3; },
         "no. of radii: 3 different from no. of verts: 2"},
        {5, [](Obj o) { o->label.offsets.data[3] = kNan; },
         "nan encountered in label offset array entry: 3"},
        {5, [](Obj o) { o->label.heights.data[1] = kNan; },
         "nan encountered in label height array entry: 1"},
        {5, [](Obj o) { o->flags = 0; }, "object has color information but flag is not set"},
    };
    for (const Case& c : cases) {
        const Object obj = bare(c.type);
        obj->has_extent = 1;
        EXPECT_EQ(findings_of(obj, true), "");
        const GEOMobj before = *obj;
        c.spoil(obj.get());
        EXPECT_EQ(findings_of(obj, false), std::string(c.finding) + "\n");
        *obj = before; // for its destruction
    }
    EXPECT_EQ(capture([] { EXPECT_EQ(GEOMcheck_obj(nullptr, 0, nullptr), 0); }).err,
              "GEOMcheck_obj error: NULL object received\n");
}

TEST(Check, ReportsRangesWithoutFailing) {
    const Object obj = full_polyhedron();
    obj->polyhedron.vertices.data[0] = std::numeric_limits<float>::infinity();
    obj->polyhedron.colors.data[1] = 1.5F;
    obj->polyhedron.vertex_trans.data[1] = -0.25F;
    EXPECT_EQ(findings_of(obj, true),
              "colors array entry: 1.500000 is out of the range: 0.000000 - 1.000000\n"
              "vertex trans array entry: -0.250000 is out of the range: 0.000000 - 1.000000\n");
    const float radius = -1;
    const Object sphere(GEOMcreate_sphere(nullptr, kFloats, &radius, nullptr, nullptr, 1, 0));
    EXPECT_EQ(findings_of(sphere, true), "radii array entry: -1.000000 is out of the range: "
                                         "0.000000 - 999999999999999983222784.000000\n");
}

TEST(Check, PassesWhatConvertersBuild) {
    const Object lines = make(GEOM_POLYTRIANGLE); // colours, but no segments to colour
    GEOMadd_polyline(lines.get(), kFloats, kFloats, 2, 0);
    EXPECT_EQ(findings_of(lines, true), "");
    const Object empty(GEOMcreate_mesh(nullptr, kFloats, 0, 3, 0)); // no cells either
    GEOMadd_normals(empty.get(), kFloats, 0, 0);
    GEOMadd_uvs(empty.get(), kFloats, 0, 0);
    empty->flags |= GEOM_HAS_PRIMITIVE_DATA;
    EXPECT_EQ(findings_of(empty, true), "");
}
