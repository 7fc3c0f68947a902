#include "compat/geom/norm.h"
#include "tests/compat/geom/harness.h"

#include <gmock/gmock.h>

namespace {

// Four vertices that form a corner of a cube, and one more.
const Floats kCorner = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 2, 0, 0};

Object polyhedron(const Floats& vertices, const Ints& polygons) {
    Object obj = make(GEOM_POLYHEDRON);
    GEOMadd_vertices(obj.get(), vertices.data(), std::ssize(vertices) / 3, 0);
    GEOMadd_polygons(obj.get(), polygons.data(), 0, 0);
    return obj;
}

void expectNear(const GEOMvector_list& normals, const Floats& expected) {
    EXPECT_THAT(valuesOf(normals), testing::Pointwise(testing::FloatEq(), expected));
}

} // namespace

TEST(Normals, AreSharedOrPerFacet) {
    struct Case {
        Ints polygons;
        Floats smooth, facet, corners;
    };
    const float half = 0.70710678F;  // the root of a half
    const float sixth = 0.40824829F; // the root of a sixth
    const Floats none(15);
    const float third = 2 * sixth;
    const Case cases[] = {
        {{3, 1, 2, 3, 3, 1, 4, 2, 0}, // two sides of a cube
         {0, half, half, 0, half, half, 0, 0, 1, 0, 1, 0, 0, 0, 0},
         {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1, 0, 0, 1, 0, 0, 1, 0},
         {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0}},
        {{4, 1, 2, 3, 4, 0}, // a fan from the first corner would give another direction
         {sixth, sixth, third, sixth, sixth, third, sixth, sixth, third, sixth, sixth, third, 0, 0,
          0},
         {sixth, sixth, third, sixth, sixth, third, sixth, sixth, third, sixth, sixth, third},
         Floats(kCorner.begin(), kCorner.end() - 3)},
        {{3, 1, 2, 5, 0}, none, Floats(9), {0, 0, 0, 1, 0, 0, 2, 0, 0}},    // collinear
        {{2, 1, 2, 1, 4, 0}, none, Floats(9), {0, 0, 0, 1, 0, 0, 0, 0, 1}}, // too few corners
        {{3, 1, 2, 0x7FFFFFFF, 3, 1, 2, 3, 0},                              // a corner out of range
         {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0},
         {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1},
         {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0}},
        {{0}, none, {}, {}},
    };
    for (const Case& c : cases) {
        const Object smooth = polyhedron(kCorner, c.polygons);
        GEOMgen_normals(smooth.get(), 0);
        expectNear(smooth->polyhedron.normals, c.smooth);
        GEOMgen_normals(smooth.get(), 1); // existing normals are kept
        expectNear(smooth->polyhedron.normals, c.smooth);
        const Object facet = polyhedron(kCorner, c.polygons);
        GEOMgen_normals(facet.get(), 1);
        expectNear(facet->polyhedron.normals, c.facet);
        EXPECT_EQ(valuesOf(facet->polyhedron.vertices), c.corners);
    }
}

TEST(Normals, PerFacetSpreadTheDataOfTheVertices) {
    const Object obj = polyhedron(kCorner, {3, 3, 6, 1, 2, 5, 0, 0}); // 6 and 0 are not vertices
    const GEOMpacked_color colors[6] = {{}, {}, {0, 255, 0, 0}, {}, {0, 0, 255, 0}, {0, 0, 0, 255}};
    GEOMadd_colors(obj.get(), colors, 6, 0);
    GEOMadd_vertex_data(obj.get(), Ints{1, 2, 3, 4}.data(), 4, 0); // none for the last vertex
    GEOMadd_vertex_trans(obj.get(), kCorner.data() + 3, 6, 0);
    GEOMgen_normals(obj.get(), 1);
    const GEOMpolyhedron& solid = obj->polyhedron;
    EXPECT_EQ(obj->flags, 0x183u);
    EXPECT_THAT(std::vector(solid.polygons.data, solid.polygons.data + 8),
                testing::ElementsAre(3, 1, 2, 3, 2, 4, 5, 0));
    EXPECT_EQ(valuesOf(solid.colors), (Floats{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(valuesOf(solid.vertex_data), (Ints{3, 0, 1, 0, 0}));
    EXPECT_EQ(valuesOf(solid.vertex_trans), (Floats{0, 0, 1, 1, 0}));
}

TEST(Normals, OfAMeshComeFromTheNeighbours) {
    // 3 x 2 grid over x and y, height 1 at the middle of the first row
    const Floats grid = {0, 0, 0, 1, 0, 1, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0};
    const Object obj(GEOMcreate_mesh(nullptr, grid.data(), 3, 2, 0));
    EXPECT_EQ(messagesOf([&] { GEOMgen_normals(obj.get(), 1); }),
              "error: Warning: Can't compute facet normals of mesh objects.\n\n");
    const float half = 0.70710678F;
    expectNear(obj->mesh.normals,
               {-half, 0, half, 0, half, half, half, 0, half, 0, 0, 1, 0, half, half, 0, 0, 1});
    const Object line(GEOMcreate_mesh(nullptr, grid.data(), 1, 6, 0)); // one column: no direction
    GEOMgen_normals(line.get(), 0);
    EXPECT_EQ(valuesOf(line->mesh.normals), Floats(18));
    const Object cut(GEOMcreate_mesh(nullptr, grid.data(), 3, 2, 0));
    cut->mesh.v = 3; // more rows than the vertices fill
    GEOMgen_normals(cut.get(), 0);
    EXPECT_EQ(cut->flags, 0u);
}

TEST(Normals, OfStripsAreOnlyNormalised) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    GEOMadd_vertices(obj.get(), kCorner.data(), 3, 0);
    GEOMgen_normals(obj.get(), 0);
    EXPECT_EQ(obj->flags, 0u);
    Floats normals = {0, 0, 0, 3, 0, 4};
    obj->polytriangle.strip_normals = block<GEOMvector_list>({{2, 2, block(normals)}});
    geom::normalizeObject(*obj);
    EXPECT_EQ(valuesOf(*obj->polytriangle.strip_normals), (Floats{0, 0, 0, 0.6F, 0, 0.8F}));
    geom::normalizeVector(normals.data());
    EXPECT_EQ(normals, (Floats{0, 0, 1, 3, 0, 4}));
}
