#include "tests/compat/geom/harness.h"

#include <algorithm>

namespace {

using Floats = std::vector<float>;

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

TEST(Objects, KeepExtentAndReferences) {
    GEOMobj* obj = GEOMcreate_mesh(kRamp, kRamp, 2, 2, GEOM_COPY);
    EXPECT_TRUE(std::equal(obj->extent, obj->extent + 6, kRamp));
    EXPECT_EQ(obj->has_extent, 1);
    EXPECT_EQ(obj->mesh.vertices.used, 4);
    obj->refs = 2;
    EXPECT_EQ(GEOMdestroy_obj(obj), 1);
    EXPECT_EQ(GEOMdestroy_obj(obj), 0);
    EXPECT_EQ(GEOMdestroy_obj(nullptr), 1);
}

TEST(Objects, RefuseWhatTheirKindCannotTake) {
    struct Case {
        std::uint32_t type, flags;
        void (*add)(GEOMobj*);
        const char* message;
    };
    constexpr auto verts = [](GEOMobj* o) { GEOMadd_vertices(o, kRamp, 1, 0); };
    constexpr auto normals = [](GEOMobj* o) { GEOMadd_normals(o, kRamp, 1, 0); };
    constexpr auto colors = [](GEOMobj* o) { GEOMadd_colors(o, kColors, 1, 0); };
    constexpr auto uvs = [](GEOMobj* o) { GEOMadd_uvs(o, kRamp, 1, 0); };
    constexpr auto radii = [](GEOMobj* o) { GEOMadd_radii(o, block(kThree), 3, 1); };
    constexpr auto data = [](GEOMobj* o) { GEOMadd_vertex_data(o, block<int>({7}), 1, 1); };
    constexpr auto trans = [](GEOMobj* o) { GEOMadd_vertex_trans(o, kRamp, 1, 0); };
    constexpr auto line = [](GEOMobj* o) { GEOMadd_polyline(o, kRamp, nullptr, 1, 0); };
    const Case cases[] = {
        {9, 0, verts, "GEOMadd_vertices: can't add vertices to object type"},
        {3, 0, normals, "GEOMadd_normals: can't add normals to object type specified"},
        {5, 0, normals, "GEOMadd_normals: can't add normals to object type specified"},
        {3, 0, colors, "GEOMadd_colors: can't add colors to object type specified"},
        {4, 0, uvs, "GEOMadd_uvs: can't add u-v to object type"},
        {2, 0, radii, "GEOMadd_radii: can't add radii to obj type"},
        {3, 0, data, "GEOMadd_vertex_data: use GEOMadd_polytriangle_vertex_data\n"},
        {5, 0, data, "Don't support primitive data for labels"},
        {3, 0, trans, "GEOMadd_vertex_trans:use GEOMadd_polytriangle_vertex_trans\n"},
        {5, 0, trans, "Don't support primitive data for labels"},
        {3, 1, verts, "Normals required for polytriangle: ignoring"},
        {3, 2, verts, "Colors required for polytriangle: ignoring"},
        {3, 2, line, "Colors required for polyline: ignoring"},
        {1, 0, [](GEOMobj*) { GEOMdestroy_obj(GEOMcreate_mesh(nullptr, nullptr, 2, 2, 0)); },
         "GEOMcreate_mesh: invalid null vertex list"},
        {4, 0,
         [](GEOMobj*) {
             GEOMdestroy_obj(GEOMcreate_sphere(nullptr, nullptr, kRamp, {}, {}, 1, 0));
         },
         "GEOMcreate_sphere: invalid null vertex list"},
    };
    for (const Case& c : cases) {
        const Object obj = make(c.type);
        obj->flags = c.flags;
        const std::string before = bytes_of(*obj);
        EXPECT_EQ(captured_stderr([&] { c.add(obj.get()); }),
                  std::string("GEOM error: ") + c.message + "\n");
        EXPECT_EQ(bytes_of(*obj), before) << c.message;
    }
}

TEST(Objects, SetTheFlagsOfWhatTheyGet) {
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_normals(obj.get(), nullptr, 2, 0);
    GEOMadd_colors(obj.get(), nullptr, 2, 0);
    GEOMadd_uvs(obj.get(), kRamp, 0, 0);
    EXPECT_EQ(obj->flags, 0u);
    GEOMadd_uvs(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_data(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_trans(obj.get(), nullptr, 2, 0);
    EXPECT_EQ(obj->flags, 0x184u);
    EXPECT_EQ(obj->polyhedron.uvs.used, 0);
    GEOMadd_vertices_with_data(obj.get(), kRamp, kRamp, kColors, 2, 0);
    EXPECT_EQ(obj->flags, 0x187u);
    EXPECT_EQ(values_of(obj->polyhedron.colors),
              (Floats{1, 128 / 255.0F, 0, 0, 1 / 255.0F, 254 / 255.0F}));
    obj = make(GEOM_LABEL); // takes the colours, not the normals
    GEOMadd_vertices_with_data(obj.get(), kRamp, kRamp, kColors, 1, 0);
    EXPECT_EQ(obj->flags, 0x2u);
    obj = make(77);
    GEOMadd_vertex_data(obj.get(), block<int>({1}), 1, GEOM_TAKE);
    EXPECT_EQ(obj->flags, 0x80u);
}

TEST(Polygons, AreWidenedAndAppended) {
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMpolygon_list& list = obj->polyhedron.polygons;
    const std::int32_t polygons[] = {3, 1, 2, 3, 4, 1, 2, 3, 4, 0};
    std::vector<std::int64_t> expected(std::begin(polygons), std::end(polygons));
    const auto expect_list = [&](std::int64_t count, std::int64_t indices) {
        EXPECT_EQ(list.polygons, count);
        EXPECT_EQ(list.indices, indices);
        EXPECT_EQ(std::vector<std::int64_t>(list.data, list.data + list.capacity), expected);
    };
    GEOMadd_polygons(obj.get(), polygons, 0xFF, GEOM_COPY);
    expect_list(2, 7);
    GEOMadd_polygons(obj.get(), block<std::int32_t>({1, INT32_MIN, 1, INT32_MAX, -1}), 2,
                     GEOM_TAKE);
    expected.insert(expected.end() - 1, {1, INT32_MIN, 1, INT32_MAX});
    expect_list(4, 9);
    std::uint32_t value = 0;
    EXPECT_EQ(obj->nvals, 1u); // attached by the first call only
    EXPECT_EQ(GEOMget_property(obj.get(), 6, &value), 1);
    EXPECT_EQ(value, 6u);
    GEOMadd_polygons(make(GEOM_MESH).get(), block<std::int32_t>({0}), 0, GEOM_TAKE);
}

TEST(Polytriangles, HoldAListPerStripAndPolyline) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    const GEOMpolytriangle& all = obj->polytriangle;
    GEOMadd_vertices(obj.get(), block(kSix), 0, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), block(kSix), block(kSix), 0, GEOM_TAKE);
    EXPECT_EQ(all.strips + all.lines + obj->flags, 0u);

    float* adopted = block(kSix);
    GEOMadd_vertices(obj.get(), adopted, 2, GEOM_TAKE);
    obj->flags = GEOM_HAS_UVWS; // the older strip has no such list: it gets one, too
    GEOMadd_vertices(obj.get(), kRamp, 4, GEOM_COPY);
    EXPECT_EQ(all.strips, 2);
    EXPECT_EQ(all.strip_vertices[0].data, adopted);
    EXPECT_EQ(all.strip_vertices[1].capacity, 4);
    EXPECT_EQ(all.strip_uvs[0].capacity + all.strip_uvs[1].capacity, 0);

    GEOMadd_polyline(obj.get(), kRamp, nullptr, 1, GEOM_COPY);
    GEOMadd_polyline(obj.get(), block(kSix), block(kSix), 2, GEOM_TAKE);
    EXPECT_EQ(all.lines, 2);
    EXPECT_EQ(all.line_vertices[0].capacity, 1); // no headroom behind a finished line
    EXPECT_EQ(all.line_colors[0].used, 0);
    EXPECT_EQ(values_of(all.line_colors[1]), kSix);
    EXPECT_EQ(obj->flags, 0xAu);
}

TEST(Labels, AppendToEachListTheyHaveDataFor) {
    const Object obj(GEOMcreate_label(nullptr, GEOMlabel_flags(142, 1, 1, 1, 0x1000, 1)));
    const GEOMlabels& labels = obj->label;
    EXPECT_EQ(labels.label_flags, 0x9D8Eu);
    EXPECT_EQ(GEOMlabel_flags(129, 0, 0, 0, GEOM_LABEL_LEFT, 0), 0x4081u);
    GEOMadd_label(obj.get(), "a", kRamp, nullptr, 0.5F, nullptr, -1);
    EXPECT_EQ(obj->flags, 0u);
    for (int i = 0; i < 100; ++i)
        GEOMadd_label(obj.get(), "bc", kRamp, kRamp, 2, kRamp, i);
    EXPECT_EQ(obj->flags, 0x12u);
    EXPECT_EQ(labels.texts.capacity, 200);
    EXPECT_EQ(labels.positions.capacity, 200);
    EXPECT_EQ(labels.heights.capacity, 200);
    EXPECT_EQ(labels.offsets.capacity, 100);
    EXPECT_EQ(labels.label_data.data[99], 99);
    EXPECT_STREQ(labels.texts.data[0], "a");
    EXPECT_STREQ(labels.texts.data[100], "bc");
}
