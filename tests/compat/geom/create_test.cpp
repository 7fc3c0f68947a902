#include "tests/compat/geom/harness.h"

#include <cstring>
#include <numeric>

namespace {

std::vector<float> ramp(std::int64_t n) {
    std::vector<float> values(static_cast<std::size_t>(n));
    std::iota(values.begin(), values.end(), 1.0F);
    return values;
}

template <class T, int N>
std::vector<T> values_of(const GEOMlist<T, N>& list) {
    return {list.data, list.data + list.used * N};
}

std::vector<std::int64_t> entries_of(const GEOMpolygon_list& list) {
    return {list.data, list.data + list.capacity};
}

} // namespace

TEST(Lists, GrowByHeadroomOrToWhatIsNeeded) {
    struct Case {
        std::vector<std::int64_t> batches;
        std::int64_t used, capacity;
    };
    const std::vector<std::int64_t> ones(100, 1);
    auto hundred_and_one = ones;
    hundred_and_one.push_back(1);
    const Case cases[] = {{{1}, 1, 100},
                          {ones, 100, 100},
                          {hundred_and_one, 101, 200},
                          {{1, 9, 250}, 260, 260},
                          {{7}, 7, 7},
                          {{7, 1}, 8, 107},
                          {{0}, 0, 0},
                          {{0, 2}, 2, 2},
                          {{-4, 2, -4}, 2, 2}};
    for (const Case& c : cases) {
        const Object obj = make(GEOM_POLYHEDRON);
        std::vector<float> expected;
        for (const std::int64_t n : c.batches) {
            const std::vector<float> batch = ramp(n < 0 ? 0 : n * 3);
            GEOMadd_vertices(obj.get(), batch.data(), n, GEOM_COPY);
            expected.insert(expected.end(), batch.begin(), batch.end());
        }
        const GEOMvector_list& list = obj->polyhedron.vertices;
        EXPECT_EQ(list.used, c.used);
        EXPECT_EQ(list.capacity, c.capacity);
        EXPECT_EQ(values_of(list), expected);
    }
    const Object obj = make(GEOM_MESH);
    GEOMadd_uvs(obj.get(), ramp(2).data(), 1, GEOM_COPY);
    EXPECT_EQ(obj->mesh.uvs.used, 2);
    EXPECT_EQ(obj->mesh.uvs.capacity, 100);
}

TEST(Lists, AdoptTheFirstArrayAndFreeTheNext) {
    const Object obj = make(GEOM_POLYHEDRON);
    float* first = block(ramp(6));
    GEOMadd_vertices(obj.get(), first, 2, GEOM_TAKE);
    EXPECT_EQ(obj->polyhedron.vertices.data, first);
    EXPECT_EQ(obj->polyhedron.vertices.capacity, 2);
    GEOMadd_vertices(obj.get(), block(ramp(3)), 1, GEOM_TAKE); // the leak check watches this one
    EXPECT_EQ(obj->polyhedron.vertices.capacity, 102);
    EXPECT_EQ(values_of(obj->polyhedron.vertices), (std::vector<float>{1, 2, 3, 4, 5, 6, 1, 2, 3}));
    // an adopted array without elements gives way to the next
    GEOMadd_radii(make(GEOM_SPHERE).get(), block(ramp(0)), 0, GEOM_TAKE);
    GEOMadd_normals(obj.get(), block(ramp(0)), 0, GEOM_TAKE);
    GEOMadd_normals(obj.get(), block(ramp(3)), 1, GEOM_TAKE);
    EXPECT_EQ(values_of(obj->polyhedron.normals), ramp(3));
}

TEST(Objects, KeepExtentAndReferences) {
    const float extent[] = {1, 2, 3, 4, 5, 6};
    GEOMobj* obj = GEOMcreate_mesh(extent, ramp(18).data(), 3, 2, GEOM_COPY);
    EXPECT_EQ(std::memcmp(obj->extent, extent, sizeof extent), 0);
    EXPECT_EQ(obj->has_extent, 1);
    EXPECT_EQ(obj->refs, 1);
    EXPECT_EQ(obj->mesh.vertices.used, 6);
    obj->refs = 2;
    EXPECT_EQ(GEOMdestroy_obj(obj), 1);
    EXPECT_EQ(GEOMdestroy_obj(obj), 0);
    EXPECT_EQ(GEOMdestroy_obj(nullptr), 1);
}

TEST(Objects, RefuseWhatTheirKindCannotTake) {
    const GEOMpacked_color color{0, 1, 2, 3};
    struct Case {
        std::uint32_t type;
        std::function<void(GEOMobj*, const float*)> add;
        const char* message;
    };
    const auto vertices = [](auto* o, auto* f) { GEOMadd_vertices(o, f, 1, 0); };
    const auto normals = [](auto* o, auto* f) { GEOMadd_normals(o, f, 1, 0); };
    const auto colors = [&](auto* o, auto*) { GEOMadd_colors(o, &color, 1, 0); };
    const auto uvs = [](auto* o, auto* f) { GEOMadd_uvs(o, f, 1, 0); };
    const auto radii = [](auto* o, auto* f) { GEOMadd_radii(o, block<float>({*f}), 1, 1); };
    const auto data = [](auto* o, auto*) { GEOMadd_vertex_data(o, block<int>({7}), 1, 1); };
    const auto trans = [](auto* o, auto* f) { GEOMadd_vertex_trans(o, f, 1, 0); };
    const auto flagged_strip = [](std::uint32_t flags) {
        return [flags](GEOMobj* o, const float* f) {
            o->flags = flags;
            GEOMadd_vertices(o, f, 1, 0);
            o->flags = 0;
        };
    };
    const auto bare_line = [](GEOMobj* o, const float* f) {
        o->flags = GEOM_HAS_COLORS;
        GEOMadd_polyline(o, f, nullptr, 1, 0);
        o->flags = 0;
    };
    const Case cases[] = {
        {9, vertices, "GEOMadd_vertices: can't add vertices to object type"},
        {3, normals, "GEOMadd_normals: can't add normals to object type specified"},
        {5, normals, "GEOMadd_normals: can't add normals to object type specified"},
        {3, colors, "GEOMadd_colors: can't add colors to object type specified"},
        {4, uvs, "GEOMadd_uvs: can't add u-v to object type"},
        {2, radii, "GEOMadd_radii: can't add radii to obj type"},
        {3, data, "GEOMadd_vertex_data: use GEOMadd_polytriangle_vertex_data\n"},
        {5, data, "Don't support primitive data for labels"},
        {3, trans, "GEOMadd_vertex_trans:use GEOMadd_polytriangle_vertex_trans\n"},
        {5, trans, "Don't support primitive data for labels"},
        {3, flagged_strip(1), "Normals required for polytriangle: ignoring"},
        {3, flagged_strip(2), "Colors required for polytriangle: ignoring"},
        {3, bare_line, "Colors required for polyline: ignoring"},
    };
    const std::vector<float> floats = ramp(3);
    for (const Case& c : cases) {
        const Object obj = make(c.type);
        const GEOMobj before = *obj;
        EXPECT_EQ(captured_stderr([&] { c.add(obj.get(), floats.data()); }),
                  std::string("GEOM error: ") + c.message + "\n");
        EXPECT_EQ(std::memcmp(obj.get(), &before, sizeof before), 0) << c.message;
    }
    Object obj;
    EXPECT_EQ(captured_stderr([&] { obj.reset(GEOMcreate_mesh(nullptr, nullptr, 2, 2, 0)); }),
              "GEOM error: GEOMcreate_mesh: invalid null vertex list\n");
    EXPECT_EQ(captured_stderr([&] {
                  obj.reset(
                      GEOMcreate_sphere(nullptr, nullptr, floats.data(), nullptr, nullptr, 1, 0));
              }),
              "GEOM error: GEOMcreate_sphere: invalid null vertex list\n");
    EXPECT_EQ(obj->sphere.radii.used, 1);
}

TEST(Objects, SetTheFlagsOfWhatTheyGet) {
    const std::vector<float> floats = ramp(6);
    const GEOMpacked_color colors[] = {{0, 255, 128, 0}, {9, 0, 1, 254}};
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_normals(obj.get(), nullptr, 2, 0);
    GEOMadd_colors(obj.get(), nullptr, 2, 0);
    GEOMadd_uvs(obj.get(), floats.data(), 0, 0);
    EXPECT_EQ(obj->flags, 0u);
    GEOMadd_uvs(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_data(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_trans(obj.get(), nullptr, 2, 0);
    EXPECT_EQ(obj->flags, 0x184u);
    EXPECT_EQ(obj->polyhedron.uvs.used, 0);
    GEOMadd_vertices_with_data(obj.get(), floats.data(), floats.data(), colors, 2, 0);
    EXPECT_EQ(obj->flags, 0x187u);
    EXPECT_EQ(values_of(obj->polyhedron.colors),
              (std::vector<float>{1, 128 / 255.0F, 0, 0, 1 / 255.0F, 254 / 255.0F}));

    obj = make(GEOM_LABEL); // takes the colours, not the normals
    GEOMadd_vertices_with_data(obj.get(), floats.data(), floats.data(), colors, 0, 0);
    EXPECT_EQ(obj->flags, 0x2u);
    obj = make(77);
    GEOMadd_vertex_data(obj.get(), block<int>({1}), 1, GEOM_TAKE);
    EXPECT_EQ(obj->flags, 0x80u);
}

TEST(Polygons, AreWidenedAndAppended) {
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMpolygon_list& list = obj->polyhedron.polygons;
    const std::int32_t polygons[] = {3, 1, 2, 3, 4, 1, 2, 3, 4, 0};
    GEOMadd_polygons(obj.get(), polygons, 0xFF, GEOM_COPY);
    EXPECT_EQ(list.polygons, 2);
    EXPECT_EQ(list.indices, 7);
    EXPECT_EQ(entries_of(list), (std::vector<std::int64_t>{3, 1, 2, 3, 4, 1, 2, 3, 4, 0}));
    GEOMadd_polygons(obj.get(), block<std::int32_t>({1, INT32_MIN, 2, -7, INT32_MAX, -1}), 2,
                     GEOM_TAKE);
    EXPECT_EQ(list.polygons, 4);
    EXPECT_EQ(list.indices, 10);
    EXPECT_EQ(entries_of(list), (std::vector<std::int64_t>{3, 1, 2, 3, 4, 1, 2, 3, 4, 1, INT32_MIN,
                                                           2, -7, INT32_MAX, 0}));
    std::uint32_t value = 0;
    EXPECT_EQ(obj->nvals, 1u); // attached by the first call only
    EXPECT_EQ(GEOMget_property(obj.get(), 6, &value), 1);
    EXPECT_EQ(value, 6u);
    GEOMadd_polygons(make(GEOM_MESH).get(), block<std::int32_t>({0}), 0, GEOM_TAKE);
}

TEST(Polytriangles, HoldAListPerStripAndPolyline) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    const GEOMpolytriangle& all = obj->polytriangle;
    GEOMadd_vertices(obj.get(), block(ramp(9)), 0, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), block(ramp(9)), block(ramp(9)), 0, GEOM_TAKE);
    EXPECT_EQ(all.strips + all.lines + obj->flags, 0u);

    float* adopted = block(ramp(9));
    GEOMadd_vertices(obj.get(), adopted, 3, GEOM_TAKE);
    obj->flags = GEOM_HAS_UVWS | GEOM_HAS_PRIMITIVE_DATA;
    GEOMadd_vertices(obj.get(), ramp(12).data(), 4, GEOM_COPY);
    EXPECT_EQ(all.strips, 2);
    EXPECT_EQ(all.strip_vertices[0].data, adopted);
    EXPECT_EQ(all.strip_vertices[1].capacity, 4);
    EXPECT_EQ(all.strip_uvs[0].capacity + all.strip_uvs[1].capacity, 0);

    GEOMadd_polyline(obj.get(), ramp(3).data(), nullptr, 1, GEOM_COPY);
    GEOMadd_polyline(obj.get(), block(ramp(6)), block(ramp(6)), 2, GEOM_TAKE + 1);
    EXPECT_EQ(all.lines, 2);
    EXPECT_EQ(all.line_vertices[0].capacity, 1); // no headroom behind a finished line
    EXPECT_EQ(values_of(all.line_colors[1]), ramp(6));
    EXPECT_EQ(obj->flags, 0x4Au);
}

TEST(Labels, AppendToEachListTheyHaveDataFor) {
    const Object obj(
        GEOMcreate_label(nullptr, GEOMlabel_flags(142, 1, 1, 1, GEOM_LABEL_CENTER, 1)));
    const GEOMlabels& labels = obj->label;
    EXPECT_EQ(labels.label_flags, 0x9D8Eu);
    EXPECT_EQ(GEOMlabel_flags(129, 0, 0, 0, GEOM_LABEL_LEFT, 0), 0x4081u);
    const std::vector<float> v = ramp(3);
    GEOMadd_label(obj.get(), "a", v.data(), nullptr, 0.5F, nullptr, -1);
    EXPECT_EQ(obj->flags, 0u);
    for (int i = 0; i < 100; ++i)
        GEOMadd_label(obj.get(), "bc", v.data(), v.data(), 2, v.data(), i);
    EXPECT_EQ(obj->flags, 0x12u);
    EXPECT_EQ(labels.texts.capacity, 200);
    EXPECT_EQ(labels.positions.capacity, 200);
    EXPECT_EQ(labels.heights.capacity, 200);
    EXPECT_EQ(labels.offsets.capacity, 100);
    EXPECT_EQ(labels.colors.used, 100);
    EXPECT_EQ(labels.label_data.data[99], 99);
    EXPECT_STREQ(labels.texts.data[0], "a");
    EXPECT_STREQ(labels.texts.data[100], "bc");
}
