#include "tests/compat/geom/harness.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

constexpr float kRamp[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
const Floats kThree = {1, 2, 3};
const Floats kSix = {1, 2, 3, 4, 5, 6};
constexpr GEOMpacked_color kColors[] = {{0, 255, 128, 0}, {9, 0, 1, 254}};

std::string bytes_of(const GEOMobj& obj) {
    return {reinterpret_cast<const char*>(&obj), sizeof obj};
}

} // namespace

TEST(Lists, GrowByHeadroomOrToWhatIsNeeded) {
    struct Case {
        std::vector<std::int64_t> batches;
        std::int64_t used, capacity;
    };
    const Case cases[] = {{std::vector<std::int64_t>(100, 1), 100, 100},
                          {std::vector<std::int64_t>(101, 1), 101, 200},
                          {{1, 9, 250}, 260, 260},
                          {{7, 1}, 8, 107},
                          {{0, 2}, 2, 2},
                          {{-4}, 0, 0}};
    const Floats source(750);
    for (const Case& c : cases) {
        const Object obj = make(GEOM_POLYHEDRON);
        for (const std::int64_t n : c.batches)
            GEOMadd_vertices(obj.get(), source.data(), n, GEOM_COPY);
        EXPECT_EQ(obj->polyhedron.vertices.used, c.used);
        EXPECT_EQ(obj->polyhedron.vertices.capacity, c.capacity);
    }
    const Object obj = make(GEOM_MESH);
    GEOMadd_uvs(obj.get(), kRamp, 1, GEOM_COPY);
    EXPECT_EQ(obj->mesh.uvs.used, 2);
    EXPECT_EQ(obj->mesh.uvs.capacity, 100); // floats, not pairs
}

TEST(Lists, AdoptTheFirstArrayAndFreeTheNext) { // the leak check watches
    const Object obj = make(GEOM_POLYHEDRON);
    float* first = block(kSix);
    GEOMadd_vertices(obj.get(), first, 2, GEOM_TAKE);
    EXPECT_EQ(obj->polyhedron.vertices.data, first);
    EXPECT_EQ(obj->polyhedron.vertices.capacity, 2);
    GEOMadd_vertices(obj.get(), block(kThree), 1, GEOM_TAKE + 1);
    EXPECT_EQ(obj->polyhedron.vertices.capacity, 102);
    EXPECT_EQ(values_of(obj->polyhedron.vertices), (Floats{1, 2, 3, 4, 5, 6, 1, 2, 3}));
    // an array without elements gives way to the next, or is freed with its object
    GEOMadd_radii(make(GEOM_SPHERE).get(), block(Floats()), 0, GEOM_TAKE);
    GEOMadd_normals(obj.get(), kRamp, 0, GEOM_COPY);
    EXPECT_EQ(obj->flags, GEOM_HAS_NORMALS);
    GEOMadd_normals(obj.get(), block(kThree), 1, GEOM_TAKE);
    EXPECT_EQ(values_of(obj->polyhedron.normals), kThree);
}

TEST(Objects, RefuseWhatTheirKindCannotTake) {
    using Obj = GEOMobj*;
    struct Case {
        std::uint32_t type, flags;
        void (*add)(Obj);
        const char* message;
    };
    constexpr auto verts = [](Obj o) { GEOMadd_vertices(o, kRamp, 1, 0); };
    constexpr auto normals = [](Obj o) { GEOMadd_normals(o, kRamp, 1, 0); };
    constexpr auto colors = [](Obj o) { GEOMadd_colors(o, kColors, 1, 0); };
    constexpr auto uvs = [](Obj o) { GEOMadd_uvs(o, kRamp, 1, 0); };
    constexpr auto radii = [](Obj o) { GEOMadd_radii(o, block(kThree), 3, 1); };
    constexpr auto data = [](Obj o) { GEOMadd_vertex_data(o, block(Ints{7}), 1, 1); };
    constexpr auto trans = [](Obj o) { GEOMadd_vertex_trans(o, kRamp, 1, 0); };
    constexpr auto line = [](Obj o) { GEOMadd_polyline(o, block(kThree), nullptr, 1, 1); };
    constexpr auto mesh = [](Obj) { GEOMdestroy_obj(GEOMcreate_mesh(nullptr, nullptr, 2, 2, 0)); };
    constexpr auto sphere = [](Obj) {
        GEOMdestroy_obj(GEOMcreate_sphere(nullptr, nullptr, kRamp, nullptr, nullptr, 1, 0));
    };
    constexpr auto write = [](Obj o) {
        EXPECT_EQ(written([o](int fd) { GEOMwrite_obj(o, fd, 0); }), "");
    };
    const Case cases[] = {
        {9, 0, verts, "GEOMadd_vertices: can't add vertices to object type"},
        {3, 0, normals, "GEOMadd_normals: can't add normals to object type specified"},
        {3, 0, colors, "GEOMadd_colors: can't add colors to object type specified"},
        {4, 0, uvs, "GEOMadd_uvs: can't add u-v to object type"},
        {2, 0, radii, "GEOMadd_radii: can't add radii to obj type"},
        {3, 0, data, "GEOMadd_vertex_data: use GEOMadd_polytriangle_vertex_data\n"},
        {5, 0, data, "Don't support primitive data for labels"},
        {3, 0, trans, "GEOMadd_vertex_trans:use GEOMadd_polytriangle_vertex_trans\n"},
        {3, 1, verts, "Normals required for polytriangle: ignoring"},
        {3, 2, verts, "Colors required for polytriangle: ignoring"},
        {3, 2, line, "Colors required for polyline: ignoring"},
        {1, 0, mesh, "GEOMcreate_mesh: invalid null vertex list"},
        {4, 0, sphere, "GEOMcreate_sphere: invalid null vertex list"},
        {6, 0, write, "GEOMserialize_obj: unable to write out object type"},
    };
    for (const Case& c : cases) {
        const Object obj = make(c.type);
        obj->flags = c.flags;
        const std::string before = bytes_of(*obj);
        EXPECT_EQ(capture([&] { c.add(obj.get()); }).err,
                  std::string("GEOM error: ") + c.message + "\n");
        EXPECT_EQ(bytes_of(*obj), before) << c.message;
    }
}

TEST(Objects, SetTheFlagsOfWhatTheyGet) {
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_vertices_with_data(obj.get(), kRamp, nullptr, nullptr, 2, 0);
    GEOMadd_uvs(obj.get(), kRamp, 0, 0);
    EXPECT_EQ(obj->flags, 0u);
    GEOMadd_uvs(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_data(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_trans(obj.get(), nullptr, 2, 0);
    EXPECT_EQ(obj->polyhedron.uvs.used, 0);
    GEOMadd_vertices_with_data(obj.get(), kRamp, kRamp, kColors, 2, 0);
    EXPECT_EQ(obj->flags, 0x187u);
    EXPECT_EQ(values_of(obj->polyhedron.colors),
              (Floats{1, 128 / 255.0F, 0, 0, 1 / 255.0F, 254 / 255.0F}));
    obj = make(GEOM_LABEL); // takes the colours, not the normals
    GEOMadd_vertices_with_data(obj.get(), kRamp, kRamp, kColors, 1, 0);
    EXPECT_EQ(obj->flags, 0x2u);
    obj = make(77);
    GEOMadd_vertex_data(obj.get(), block(Ints{1}), 1, GEOM_TAKE);
    EXPECT_EQ(obj->flags, 0x80u);
    obj->refs = 2;
    EXPECT_EQ(GEOMdestroy_obj(obj.get()), 1);
    EXPECT_EQ(GEOMdestroy_obj(obj.release()), 0);
    EXPECT_EQ(GEOMdestroy_obj(nullptr), 1);
}

TEST(Polygons, AreWidenedAndAppended) {
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMpolygon_list& list = obj->polyhedron.polygons;
    GEOMadd_polygons(obj.get(), Ints{0}.data(), 0, GEOM_COPY);
    GEOMadd_polygons(obj.get(), Ints{3, 1, 2, 3, 0}.data(), 0xFF, GEOM_COPY);
    GEOMadd_polygons(obj.get(), block(Ints{1, INT32_MIN, 1, INT32_MAX, -1}), 2, GEOM_TAKE);
    EXPECT_THAT(std::vector(list.data, list.data + list.capacity),
                testing::ElementsAre(3, 1, 2, 3, 1, INT32_MIN, 1, INT32_MAX, 0));
    EXPECT_EQ(list.polygons, 3);
    EXPECT_EQ(list.indices, 5);
    std::uint32_t value = 0;
    EXPECT_EQ(obj->nvals, 1u); // attached with the first polygons only
    EXPECT_EQ(GEOMget_property(obj.get(), 6, &value), 1);
    EXPECT_EQ(value, 6u);
    GEOMadd_polygons(make(GEOM_MESH).get(), block(Ints{0}), 0, GEOM_TAKE);
}

TEST(Polytriangles, HoldAListPerStripAndPolyline) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    const GEOMpolytriangle& all = obj->polytriangle;
    GEOMadd_vertices(obj.get(), block(kSix), 0, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), block(kSix), block(kSix), 0, GEOM_TAKE);
    EXPECT_EQ(all.strips + all.lines + obj->flags, 0u);
    float* adopted = block(kSix);
    GEOMadd_vertices(obj.get(), adopted, 2, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), kRamp, nullptr, 1, GEOM_COPY);
    GEOMadd_polyline(obj.get(), block(kSix), block(kSix), 2, GEOM_TAKE);
    EXPECT_EQ(all.strip_vertices[0].data, adopted);
    EXPECT_EQ(all.line_vertices[0].capacity, 1); // no headroom behind a finished line
    EXPECT_EQ(all.line_colors[0].used, 0);       // the line came before the colours
    EXPECT_EQ(values_of(all.line_colors[1]), kSix);
}

TEST(Labels, AppendToEachListTheyHaveDataFor) {
    EXPECT_EQ(GEOMlabel_flags(129, 0, 0, 0, GEOM_LABEL_LEFT, 0), 0x4081u);
    const Object obj(GEOMcreate_label(nullptr, GEOMlabel_flags(142, 1, 1, 1, 0x1000, 1)));
    EXPECT_EQ(obj->label.label_flags, 0x9D8Eu);
    GEOMadd_label(obj.get(), "a", kRamp, nullptr, 0.5F, nullptr, -1);
    EXPECT_EQ(obj->flags, 0u);
    for (int i = 0; i < 100; ++i)
        GEOMadd_label(obj.get(), "bc", kRamp, kRamp, 2, kRamp, i);
    EXPECT_EQ(obj->flags, 0x12u);
    EXPECT_EQ(obj->label.texts.capacity, 200);
    EXPECT_EQ(obj->label.heights.capacity, 200);
    EXPECT_EQ(obj->label.offsets.capacity, 100);
    EXPECT_STREQ(obj->label.texts.data[100], "bc");
}

TEST(Fonts, NumberFamilyWeightAndSlant) {
    EXPECT_EQ(GEOMfont_number("Times", 1, 1), 142);
    EXPECT_EQ(GEOMfont_number("Mathematics", 2, 0), 128 + 32 + 2 + 1);
    EXPECT_EQ(capture([] { EXPECT_EQ(GEOMfont_number("times", 0, 0), 129); }).err,
              "GEOM error: unrecognized font name: times (using: Courier)\n");
}

TEST(Messages, AreNeverCut) {
    const std::string longest(100'000, 'x');
    EXPECT_EQ(capture([&] { GEOMerror("<%s>", longest.c_str()); }).err,
              "GEOM error: <" + longest + ">\n");
    EXPECT_EXIT(GEOMfatal_error("%d %s", 7, longest.c_str()), testing::ExitedWithCode(1),
                testing::Eq("GEOM fatal error: 7 " + longest + "\n"));
}

TEST(Properties, FirstOfAKindIsFoundBehindRecordsOfAnyLength) {
    const Object obj = make(GEOM_POLYHEDRON);
    std::uint32_t value = 5;
    EXPECT_EQ(GEOMget_property(obj.get(), 1, &value), 0);
    EXPECT_EQ(value, 5u);
    // one record with 3 bytes, as another writer of the array may leave it
    obj->vals = block<unsigned char>({1, 0, 0, 0, 3, 0, 0, 0, 10, 0, 0, 0, 0xEE, 0xEE, 0xEE});
    obj->nvals = 1;
    GEOMadd_property(obj.get(), 2, 20);
    EXPECT_EQ(GEOMadd_property(obj.get(), 2, 30), obj->vals);
    EXPECT_EQ(GEOMget_property(obj.get(), 2, &value), 1);
    EXPECT_EQ(value, 20u);
}
