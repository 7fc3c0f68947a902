#include "tests/compat/geom/harness.h"

#include <limits>

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kFloats[12] = {};
constexpr GEOMpacked_color kColors[] = {{0, 255, 255, 255}, {0, 0, 0, 0}};
constexpr std::int32_t kInts[] = {2, 1, 2, 0};

std::string findings;

void note(const char* text) {
    findings += std::string(text) + "\n";
}

// Two vertices with every sort of data; a polygon on a polyhedron, two columns on a mesh.
void fill(GEOMobj* obj) {
    if (obj->type == GEOM_LABEL) {
        for (int i = 0; i < 2; ++i)
            GEOMadd_label(obj, "a", kFloats, kFloats, 1, kFloats, 1);
        return;
    }
    if (obj->type == GEOM_POLYTRIANGLE) {
        GEOMadd_vertices(obj, kFloats, 2, 0);
        GEOMadd_polyline(obj, kFloats, nullptr, 2, 0);
        return;
    }
    GEOMadd_vertices_with_data(obj, kFloats, kFloats, kColors, 2, 0);
    GEOMadd_vertex_data(obj, kInts, 2, 0);
    GEOMadd_vertex_trans(obj, kFloats, 2, 0);
    if (obj->type == GEOM_SPHERE) {
        GEOMadd_radii(obj, kFloats, 2, 0);
        return;
    }
    GEOMadd_uvs(obj, kFloats, 2, 0);
    if (obj->type == GEOM_POLYHEDRON) {
        GEOMadd_polygons(obj, kInts, 0, 0);
        return;
    }
    obj->mesh.u = 2;
    obj->mesh.v = 1;
}

void set_extent(GEOMobj* obj, int index, float value) {
    obj->has_extent = 1;
    obj->extent[index] = value;
}

} // namespace

TEST(Check, NamesTheFirstFailure) {
    using Obj = GEOMobj*;
    struct Case {
        std::uint32_t type;
        void (*spoil)(Obj);
        const char* finding;
    };
    const Case cases[] = {
        {1, [](Obj o) { o->type ^= 7; }, "invalid object type 6!"},
        {2, [](Obj o) { set_extent(o, 4, kNan); }, "nan encountered in extent array entry: 4"},
        {2, [](Obj o) { set_extent(o, 1, 2.5F); },
         "extent min: 2.500000 is greater than max: 0.000000"},
        {1, [](Obj o) { o->mesh.v = -1; }, "mesh object has negative dims"},
        {1, [](Obj o) { o->mesh.v = 2; },
         "number of vertices: 2 does not match the expected number: 4"},
        {2, [](Obj o) { o->polyhedron.polygons.polygons = -5'000'000'000; },
         "polyhedron object has negative polys: (-5000000000) or verts: (2)"},
        {3, [](Obj o) { o->polytriangle.strips *= -1; }, "negative number of polytris: -1"},
        {3, [](Obj o) { o->polytriangle.lines *= -1; }, "negative number of polylines: -1"},
        {3, [](Obj o) { o->flags |= GEOM_HAS_NORMALS; },
         "number of normals: 0, does not match the number of verts: 2"},
        {3, [](Obj o) { o->polytriangle.line_vertices[0].data[5] = kNan; },
         "nan encountered in verts array entry: 5"},
        {3, [](Obj o) { o->polytriangle.segment_colors.used = 1; },
         "object has color information but flag is not set"},
        {4, [](Obj o) { o->sphere.centers.used = -2; }, "negative number of spheres/dots: -2"},
        {4, [](Obj o) { GEOMadd_radii(o, kFloats, 1, 0); },
         "no. of radii: 3 different from no. of verts: 2"},
        {4, [](Obj o) { o->sphere.radii.data[1] = kNan; },
         "nan encountered in radii array entry: 1"},
        {5, [](Obj o) { o->label.offsets.data[3] = kNan; },
         "nan encountered in label offset array entry: 3"},
        {5, [](Obj o) { o->label.heights.data[1] = kNan; },
         "nan encountered in label height array entry: 1"},
        {5, [](Obj o) { o->label.colors.used = 1; },
         "number of colors: 1, does not match the number of verts: 2"},
        {5, [](Obj o) { o->flags = 0; }, "object has color information but flag is not set"},
        {5, [](Obj o) { o->label.positions.data[0] = kNan; },
         "nan encountered in verts array entry: 0"},
        {2, [](Obj o) { GEOMadd_normals(o, kFloats, 1, 0); },
         "number of normals: 3, does not match the number of verts: 2"},
        {2, [](Obj o) { o->flags &= ~1u; }, "object has normal information but flag is not set"},
        {2, [](Obj o) { GEOMadd_colors(o, kColors, 1, 0); },
         "number of colors: 3, does not match the number of verts: 2"},
        {2, [](Obj o) { o->flags &= ~2u; }, "object has color information but flag is not set"},
        {2, [](Obj o) { GEOMadd_uvs(o, kFloats, 1, 0); },
         "number of uvs: 6, does not match the number of 2*verts: 4"},
        {2, [](Obj o) { o->flags ^= 0xC; },
         "number of uvws: 4, does not match the number of 3*verts: 6"},
        {2, [](Obj o) { o->flags &= ~4u; }, "object has uv information but flag is not set"},
        {2, [](Obj o) { GEOMadd_vertex_data(o, kInts, 1, 0); },
         "number of vertex data: 3, does not match the no. of verts: 2"},
        {2, [](Obj o) { o->flags &= ~0x80u; }, "object has vert data info but flag is not set"},
        {2, [](Obj o) { o->flags |= 0x40; },
         "number of prim data: 0, does not match the number of prims: 1"},
        {2, [](Obj o) { o->polyhedron.primitive_data.used = 1; },
         "object has prim data info but flag is not set"},
        {2, [](Obj o) { o->polyhedron.normals.data[2] = kNan; },
         "nan encountered in normals array entry: 2"},
        {2, [](Obj o) { o->polyhedron.uvs.data[3] = kNan; },
         "nan encountered in uvs array entry: 3"},
        {2, [](Obj o) { o->polyhedron.vertex_trans.data[0] = kNan; },
         "nan encountered in vertex trans array entry: 0"},
    };
    for (const Case& c : cases) {
        const Object obj = make(c.type);
        fill(obj.get());
        findings.clear();
        EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), 1) << findings;
        c.spoil(obj.get());
        EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), 0);
        EXPECT_EQ(findings, std::string(c.finding) + "\n");
        c.spoil(obj.get()); // turns back what would keep the lists from being freed
    }
    EXPECT_EQ(captured_stderr([] { EXPECT_EQ(GEOMcheck_obj(nullptr, 0, nullptr), 0); }),
              "GEOMcheck_obj error: NULL object received\n");
}

TEST(Check, ReportsRangesWithoutFailing) {
    findings.clear();
    Object obj = make(GEOM_POLYHEDRON);
    fill(obj.get());
    obj->polyhedron.vertices.data[0] = kInfinity;
    obj->polyhedron.colors.data[1] = 1.5F;
    obj->polyhedron.vertex_trans.data[1] = -0.25F;
    EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), 1);
    obj = make(GEOM_SPHERE);
    fill(obj.get());
    obj->sphere.radii.data[0] = -1;
    EXPECT_EQ(GEOMcheck_obj(obj.get(), 0, note), 1);
    EXPECT_EQ(findings,
              "colors array entry: 1.500000 is out of the range: 0.000000 - 1.000000\n"
              "vertex trans array entry: -0.250000 is out of the range: 0.000000 - 1.000000\n"
              "radii array entry: -1.000000 is out of the range: 0.000000 - "
              "999999999999999983222784.000000\n");
}

TEST(Check, PassesWhatConvertersBuild) {
    findings.clear();
    const Object lines = make(GEOM_POLYTRIANGLE); // colours, but no segments to colour
    GEOMadd_polyline(lines.get(), kFloats, kFloats, 2, 0);
    EXPECT_EQ(GEOMcheck_obj(lines.get(), 0, note), 1);
    const Object dots(GEOMcreate_sphere(kFloats, kFloats, nullptr, nullptr, nullptr, 2, 0));
    EXPECT_EQ(GEOMcheck_obj(dots.get(), 0, note), 1);
    const Object empty = make(GEOM_MESH);
    GEOMadd_normals(empty.get(), kFloats, 0, 0);
    GEOMadd_uvs(empty.get(), kFloats, 0, 0);
    EXPECT_EQ(GEOMcheck_obj(empty.get(), 0, note), 1);
    EXPECT_EQ(findings, "");
}

TEST(Check, RunsOnWritingAndDestroyingWhenAskedFor) {
    const auto write_and_destroy = [] {
        const Object obj = make(GEOM_MESH);
        obj->mesh.u = -1;
        written([&](int fd) { GEOMwrite_obj(obj.get(), fd, 0); });
    };
    EXPECT_EQ(captured_stderr(write_and_destroy), "");
    setenv("KRA_GEOM_VERIFY", "", 1); // too late: the answer is known
    EXPECT_EQ(captured_stderr(write_and_destroy), "");
    const std::string finding = "GEOMcheck_obj error: mesh object has negative dims\n";
    const Environment verify("KRA_GEOM_VERIFY");
    EXPECT_EQ(captured_stderr(write_and_destroy), finding + finding);
}
