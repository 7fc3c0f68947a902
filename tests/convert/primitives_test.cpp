#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast {
namespace {

using geom_stream::Polyhedron;
using geom_stream::Vec3;
using List = std::vector<std::int64_t>;

/// For points of a circle, which are rounded: the sine of a whole turn is not exactly 0.
void expectNear(const Vec3& found, const Vec3& expected) {
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(found[i], expected[i], 1e-5F) << i;
    }
}

/// A facet-shaded object has a vertex for each corner. Compares them with polygons that share
/// vertices.
void expectCorners(const Polyhedron& object, const std::vector<Vec3>& vertices,
                   const std::vector<List>& polygons) {
    std::size_t corner = 0;
    for (const List& polygon : polygons) {
        for (const std::int64_t number : polygon) {
            ASSERT_LT(corner, object.vertices.size());
            EXPECT_EQ(object.vertices[corner++], vertices[static_cast<std::size_t>(number) - 1]);
        }
    }
    EXPECT_EQ(object.vertices.size(), corner);
    EXPECT_EQ(object.normals.size(), corner);
}

TEST(Primitives, Cube) {
    const Conversion scene = convert("Cube { width 2 height 4 depth 6 }");
    ASSERT_EQ(scene.objects.size(), 1U);
    expectCorners(
        scene.objects[0].polyhedron(),
        {{-1, -2, 3},
         {1, -2, 3},
         {1, -2, -3},
         {-1, -2, -3},
         {-1, 2, 3},
         {1, 2, 3},
         {1, 2, -3},
         {-1, 2, -3}},
        {{1, 2, 6, 5}, {3, 4, 8, 7}, {1, 5, 8, 4}, {2, 3, 7, 6}, {2, 1, 4, 3}, {5, 6, 7, 8}});
    const std::vector<Vec3>& normals = scene.objects[0].polyhedron().normals;
    EXPECT_EQ(normals[0], (Vec3{0, 0, 1}));
    EXPECT_EQ(normals[4], (Vec3{0, 0, -1}));
    EXPECT_EQ(normals[8], (Vec3{-1, 0, 0}));
    EXPECT_EQ(normals[12], (Vec3{1, 0, 0}));
    EXPECT_EQ(normals[16], (Vec3{0, -1, 0}));
    EXPECT_EQ(normals[20], (Vec3{0, 1, 0}));
}

TEST(Primitives, Cone) {
    const Conversion scene = convert("Cone { parts BOTTOM bottomRadius 3 height 5 }");
    ASSERT_EQ(scene.objects.size(), 2U); // The parts are ignored.
    const Polyhedron& base = scene.objects[0].polyhedron();
    EXPECT_EQ(base.polygons().size(), 12U);
    EXPECT_EQ(base.vertices.size(), 36U);
    EXPECT_EQ(base.normals[0], (Vec3{0, -1, 0}));
    const Polyhedron& side = scene.objects[1].polyhedron(); // Smooth: shared vertices.
    ASSERT_EQ(side.vertices.size(), 14U);
    EXPECT_EQ(side.vertices[0], (Vec3{0, -2.5F, 0}));
    EXPECT_EQ(side.vertices[13], (Vec3{0, 2.5F, 0}));
    expectNear(side.vertices[1], {3, -2.5F, 0}); // From +x towards +z.
    expectNear(side.vertices[4], {0, -2.5F, 3});
    expectNear(side.vertices[10], {0, -2.5F, -3});
    EXPECT_EQ(side.polygons().front(), (List{14, 3, 2}));
    EXPECT_EQ(side.polygons().back(), (List{14, 2, 13}));
    EXPECT_EQ(side.normals[0], (Vec3{0, 0, 0})); // In no polygon.
}

TEST(Primitives, Cylinder) {
    const Conversion scene = convert("Cylinder { parts (TOP) radius 2 height 3 }");
    ASSERT_EQ(scene.objects.size(), 3U);
    EXPECT_EQ(scene.objects[0].polyhedron().normals[0], (Vec3{0, -1, 0}));
    EXPECT_EQ(scene.objects[2].polyhedron().normals[0], (Vec3{0, 1, 0}));
    const Polyhedron& side = scene.objects[1].polyhedron();
    ASSERT_EQ(side.vertices.size(), 26U);
    expectNear(side.vertices[7], {-2, -1.5F, 0});
    expectNear(side.vertices[19], {-2, 1.5F, 0});
    EXPECT_EQ(side.vertices[25], (Vec3{0, 1.5F, 0}));
    EXPECT_EQ(side.polygons().front(), (List{2, 14, 15, 3}));
    EXPECT_EQ(side.polygons().back(), (List{13, 25, 14, 2}));
}

TEST(Primitives, SphereAndDegenerateSizes) {
    const Conversion scene = convert("Group { Sphere { radius 7 } Cone { bottomRadius 0 height 0 }"
                                     "Cube { width 0 } Cylinder { radius 1e999 } }");
    ASSERT_EQ(scene.objects.size(), 7U);
    const geom_stream::Object& object = scene.objects[0];
    EXPECT_EQ(object.sphere().vertices, (std::vector<Vec3>{{0, 0, 0}}));
    EXPECT_EQ(object.sphere().radii, std::vector<float>{7});
    EXPECT_TRUE(object.hasExtent); // It is present, but zero.
    EXPECT_EQ(object.extent, (std::array<float, 6>{}));
    EXPECT_EQ(scene.messages, "");
}

} // namespace
} // namespace meshcast
