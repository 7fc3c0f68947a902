#include "tests/compat/geom/harness.h"

#include <gmock/gmock.h>

namespace {

constexpr float kRamp[] = {1, 2, 3, 4, 5, 6};
const Floats kThree = {1, 2, 3};
constexpr GEOMpacked_color kColors[] = {{0, 255, 128, 0}, {9, 0, 1, 254}};

std::string bytesOf(const GEOMobj& obj) {
    return {reinterpret_cast<const char*>(&obj), sizeof obj};
}

} // namespace

TEST(Lists, GrowByHeadroomOrToWhatIsNeeded) {
    const Object obj = make(GEOM_MESH);
    const Floats source(750);
    std::vector<std::int64_t> capacities;
    for (const int n : {0, 2, 1, 99, 1, 250, -4}) {
        GEOMadd_vertices(obj.get(), source.data(), n, GEOM_COPY);
        capacities.push_back(obj->mesh.vertices.capacity);
    }
    EXPECT_THAT(capacities, testing::ElementsAre(0, 2, 102, 102, 202, 353, 353));
    GEOMadd_uvs(obj.get(), kRamp, 1, GEOM_COPY);
    EXPECT_EQ(valuesOf(obj->mesh.uvs), (Floats{1, 2}));
    EXPECT_EQ(obj->mesh.uvs.capacity, 100); // floats, not pairs
}

TEST(Lists, AdoptTheFirstArrayAndFreeTheNext) { // the leak checker finds arrays not freed
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMvector_list& list = obj->polyhedron.vertices;
    float* first = block(kThree);
    GEOMadd_vertices(obj.get(), first, 1, GEOM_TAKE + 1);
    EXPECT_EQ(list.data, first);
    GEOMadd_vertices(obj.get(), block(kThree), 1, GEOM_TAKE);
    EXPECT_EQ(list.capacity, 101);
    EXPECT_EQ(valuesOf(list), (Floats{1, 2, 3, 1, 2, 3}));
    // an array without elements is replaced by the next one, or freed with its object
    GEOMadd_radii(make(GEOM_SPHERE).get(), block(Floats()), 0, GEOM_TAKE);
    GEOMadd_normals(obj.get(), kRamp, 0, GEOM_COPY);
    EXPECT_EQ(obj->flags, GEOM_HAS_NORMALS);
    GEOMadd_normals(obj.get(), block(kThree), 1, GEOM_TAKE);
    EXPECT_EQ(valuesOf(obj->polyhedron.normals), kThree);
}

TEST(Lists, UseALentArrayUntilMoreIsAdded) {
    const Floats lent = kThree;
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMvector_list& list = obj->polyhedron.vertices;
    GEOMlend_vertices(obj.get(), lent.data(), 1);
    EXPECT_EQ(list.data, lent.data());
    const Object unshared = make(GEOM_POLYHEDRON);
    GEOMlend_vertices(unshared.get(), lent.data(), 1);
    GEOMadd_polygons(unshared.get(), Ints{1, 1, 0}.data(), 0, GEOM_COPY);
    GEOMgen_normals(unshared.get(), 1); // gives each corner a vertex of its own
    EXPECT_EQ(valuesOf(unshared->polyhedron.vertices), kThree);
    GEOMlend_vertices(obj.get(), lent.data(), 1);
    GEOMadd_vertices(obj.get(), block(kThree), 1, GEOM_TAKE);
    EXPECT_EQ(valuesOf(list), (Floats{1, 2, 3, 1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(lent, kThree);
}

TEST(Objects, RefuseWhatTheirKindCannotTake) {
    std::string all;
    const auto refuse = [&](std::uint32_t type, std::uint32_t flags, void (*add)(GEOMobj*)) {
        const Object obj = make(type);
        obj->flags = flags;
        const std::string before = bytesOf(*obj);
        all += messagesOf([&] { add(obj.get()); });
        EXPECT_EQ(bytesOf(*obj), before) << all;
    };
    refuse(9, 0, [](GEOMobj* o) { GEOMadd_vertices(o, kRamp, 1, 0); });
    refuse(3, 1, [](GEOMobj* o) { GEOMadd_vertices(o, kRamp, 1, 0); });
    refuse(3, 2, [](GEOMobj* o) { GEOMadd_vertices(o, block(kThree), 1, 1); });
    refuse(3, 2, [](GEOMobj* o) { GEOMadd_polyline(o, block(kThree), nullptr, 1, 1); });
    refuse(3, 0, [](GEOMobj* o) { GEOMadd_normals(o, kRamp, 1, 0); });
    refuse(3, 0, [](GEOMobj* o) { GEOMadd_colors(o, kColors, 1, 0); });
    refuse(4, 0, [](GEOMobj* o) { GEOMadd_uvs(o, kRamp, 1, 0); });
    refuse(2, 0, [](GEOMobj* o) { GEOMadd_radii(o, block(kThree), 3, 1); });
    refuse(3, 0, [](GEOMobj* o) { GEOMadd_vertex_data(o, block(Ints{7}), 1, 1); });
    refuse(3, 0, [](GEOMobj* o) { GEOMadd_vertex_trans(o, kRamp, 1, 0); });
    refuse(5, 0, [](GEOMobj* o) { GEOMadd_vertex_trans(o, kRamp, 1, 0); });
    refuse(1, 0, [](GEOMobj*) { Object(GEOMcreate_mesh(nullptr, nullptr, 2, 2, 0)); });
    refuse(4, 0,
           [](GEOMobj*) { Object(GEOMcreate_sphere(nullptr, nullptr, kRamp, {}, {}, 1, 0)); });
    refuse(6, 0, [](GEOMobj* o) { written([o](int fd) { GEOMwrite_obj(o, fd, 0); }); });
    EXPECT_EQ(all, "error: GEOMadd_vertices: can't add vertices to object type\n"
                   "error: Normals required for polytriangle: ignoring\n"
                   "error: Colors required for polytriangle: ignoring\n"
                   "error: Colors required for polyline: ignoring\n"
                   "error: GEOMadd_normals: can't add normals to object type specified\n"
                   "error: GEOMadd_colors: can't add colors to object type specified\n"
                   "error: GEOMadd_uvs: can't add u-v to object type\n"
                   "error: GEOMadd_radii: can't add radii to obj type\n"
                   "error: GEOMadd_vertex_data: use GEOMadd_polytriangle_vertex_data\n\n"
                   "error: GEOMadd_vertex_trans:use GEOMadd_polytriangle_vertex_trans\n\n"
                   "error: Don't support primitive data for labels\n"
                   "error: GEOMcreate_mesh: invalid null vertex list\n"
                   "error: GEOMcreate_sphere: invalid null vertex list\n"
                   "error: GEOMserialize_obj: unable to write out object type\n");
}

TEST(Objects, SetTheFlagsOfWhatTheyGet) {
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_vertices_with_data(obj.get(), kRamp, nullptr, nullptr, 2, 0);
    GEOMadd_uvs(obj.get(), kRamp, 0, 0);
    EXPECT_EQ(obj->flags, 0u);
    GEOMadd_uvs(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_data(obj.get(), nullptr, 2, 0);
    GEOMadd_vertex_trans(obj.get(), nullptr, 2, 0);
    GEOMadd_vertices_with_data(obj.get(), kRamp, kRamp, kColors, 2, 0);
    EXPECT_EQ(obj->flags, 0x187u);
    EXPECT_EQ(valuesOf(obj->polyhedron.colors),
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

TEST(Polygons, AreBuiltFromFacesThatEndWithMinusOne) {
    for (const Ints& faces : {Ints{0, 2, 1, -1, 3, -1}, Ints{0, 2, 1, -1, 3}}) {
        const Object obj = make(GEOM_POLYHEDRON);
        GEOMadd_faces(obj.get(), faces.data(), std::ssize(faces));
        const GEOMpolygon_list& list = obj->polyhedron.polygons;
        EXPECT_THAT(std::vector(list.data, list.data + list.capacity),
                    testing::ElementsAre(3, 1, 3, 2, 1, 4, 0));
        EXPECT_EQ(list.polygons, 2);
        EXPECT_EQ(list.indices, 4);
    }
}

TEST(Polygons, AreWidenedAndAppendedAndKeepTheirFlags) {
    const Object obj = make(GEOM_POLYHEDRON);
    const GEOMpolygon_list& list = obj->polyhedron.polygons;
    // a property of 3 bytes, not padded to whole words
    obj->vals = property(1, 10, {0xEE, 0xEE, 0xEE});
    obj->nvals = 1;
    GEOMadd_polygons(obj.get(), Ints{0}.data(), 0, GEOM_COPY);
    GEOMadd_polygons(obj.get(), Ints{3, 1, 2, 3, 0}.data(), 0xFF, GEOM_COPY);
    GEOMadd_polygons(obj.get(), block(Ints{1, INT32_MIN, 1, INT32_MAX, -1}), 2, GEOM_TAKE);
    GEOMadd_polygons(make(GEOM_MESH).get(), block(Ints{0}), 0, GEOM_TAKE);
    EXPECT_THAT(std::vector(list.data, list.data + list.capacity),
                testing::ElementsAre(3, 1, 2, 3, 1, INT32_MIN, 1, INT32_MAX, 0));
    EXPECT_EQ(list.polygons, 3);
    EXPECT_EQ(list.indices, 5);
    EXPECT_EQ(GEOMadd_property(obj.get(), 6, 30), obj->vals);
    EXPECT_EQ(obj->nvals, 3u); // polygon flags come with the first polygons only
    std::uint32_t value = 0;
    EXPECT_EQ(GEOMget_property(obj.get(), 7, &value), 0);
    EXPECT_EQ(GEOMget_property(obj.get(), 6, &value), 1);
    EXPECT_EQ(value, 6u);
}

TEST(Polytriangles, HoldAListPerStripAndPolyline) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    const GEOMpolytriangle& all = obj->polytriangle;
    float* adopted = block(kThree);
    GEOMadd_vertices(obj.get(), adopted, 1, GEOM_TAKE);
    GEOMadd_vertices(obj.get(), block(kThree), 0, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), block(kThree), block(kThree), 0, GEOM_TAKE);
    GEOMadd_polyline(obj.get(), kRamp, nullptr, 1, GEOM_COPY);
    GEOMadd_polyline(obj.get(), block(kThree), block(kThree), 1, GEOM_TAKE);
    EXPECT_EQ(all.strips, 1);
    EXPECT_EQ(all.strip_vertices[0].data, adopted);
    EXPECT_EQ(all.lines, 2);
    EXPECT_EQ(all.line_vertices[0].capacity, 1); // a finished line has no spare capacity
    EXPECT_EQ(all.line_colors[0].used, 0);       // the line came before the colours
    EXPECT_EQ(valuesOf(all.line_colors[1]), kThree);
}

TEST(Labels, PackFlagsAndFontNumbers) {
    EXPECT_EQ(GEOMlabel_flags(142, 1, 1, 1, 0x1000, 1), 0x9D8Eu);
    EXPECT_EQ(GEOMlabel_flags(129, 0, 0, 0, GEOM_LABEL_LEFT, 0), 0x4081u);
    EXPECT_EQ(GEOMfont_number("Times", 1, 1), 142);
    EXPECT_EQ(GEOMfont_number("Mathematics", 2, 0), 128 + 32 + 2 + 1);
    const std::string name(100'000, 'x'); // the message is not truncated
    EXPECT_EQ(messagesOf([&] { EXPECT_EQ(GEOMfont_number(name.c_str(), 0, 0), 129); }),
              "error: unrecognized font name: " + name + " (using: Courier)\n");
}
