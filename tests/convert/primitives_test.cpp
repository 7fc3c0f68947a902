#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace meshcast {
namespace {

using geom_stream::Polyhedron;
using geom_stream::Vec3;
using List = std::vector<std::int64_t>;

List list(const std::vector<List>& polygons) {
    List flat;
    for (const List& polygon : polygons) {
        flat.push_back(static_cast<std::int64_t>(polygon.size()));
        flat.insert(flat.end(), polygon.begin(), polygon.end());
    }
    flat.push_back(0);
    return flat;
}

Vec3 ringPoint(int i, float radius, float y) {
    const double angle = i * 6.283185305179586 / 12.0;
    return {static_cast<float>(std::cos(angle)) * radius, y,
            static_cast<float>(std::sin(angle)) * radius};
}

/// Facet-shaded objects hold a vertex for each corner: these are the corners' numbers before.
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
    ASSERT_EQ(scene.objects.size(), 2U); // Whatever the parts.
    std::vector<Vec3> vertices = {{0, -2.5F, 0}};
    std::vector<List> base;
    std::vector<List> side;
    for (int i = 0; i < 12; ++i) {
        vertices.push_back(ringPoint(i, 3, -2.5F));
    }
    vertices.push_back({0, 2.5F, 0});
    for (int k = 2; k <= 12; ++k) {
        base.push_back({1, k, k + 1});
        side.push_back({14, k + 1, k});
    }
    base.push_back({1, 13, 2});
    side.push_back({14, 2, 13});
    expectCorners(scene.objects[0].polyhedron(), vertices, base);
    EXPECT_EQ(scene.objects[1].polyhedron().vertices, vertices); // Smooth: shared vertices.
    EXPECT_EQ(scene.objects[1].polyhedron().polygon_list, list(side));
    EXPECT_EQ(scene.objects[1].polyhedron().normals[0], (Vec3{0, 0, 0})); // In no polygon.
}

TEST(Primitives, Cylinder) {
    const Conversion scene = convert("Cylinder { parts (TOP) radius 2 height 3 }");
    ASSERT_EQ(scene.objects.size(), 3U);
    std::vector<Vec3> vertices = {{0, -1.5F, 0}};
    for (const float y : {-1.5F, 1.5F}) {
        for (int i = 0; i < 12; ++i) {
            vertices.push_back(ringPoint(i, 2, y));
        }
    }
    vertices.push_back({0, 1.5F, 0});
    std::vector<List> bottom;
    std::vector<List> side;
    std::vector<List> top;
    for (int k = 2; k <= 12; ++k) {
        bottom.push_back({1, k, k + 1});
    }
    bottom.push_back({1, 13, 2});
    for (int k = 14; k <= 24; ++k) {
        side.push_back({k - 12, k, k + 1, k - 11});
        top.push_back({26, k + 1, k});
    }
    side.push_back({13, 25, 14, 2});
    top.push_back({26, 14, 25});
    expectCorners(scene.objects[0].polyhedron(), vertices, bottom);
    EXPECT_EQ(scene.objects[1].polyhedron().vertices, vertices);
    EXPECT_EQ(scene.objects[1].polyhedron().polygon_list, list(side));
    expectCorners(scene.objects[2].polyhedron(), vertices, top);
}

TEST(Primitives, SphereAndDegenerateSizes) {
    const Conversion scene = convert("Group { Sphere { radius 7 } Cone { bottomRadius 0 height 0 }"
                                     "Cube { width 0 } Cylinder { radius 1e999 } }");
    ASSERT_EQ(scene.objects.size(), 7U);
    const geom_stream::Object& object = scene.objects[0];
    EXPECT_EQ(object.sphere().vertices, (std::vector<Vec3>{{0, 0, 0}}));
    EXPECT_EQ(object.sphere().radii, std::vector<float>{7});
    EXPECT_TRUE(object.has_extent); // Given, though it says nothing.
    EXPECT_EQ(object.extent, (std::array<float, 6>{}));
    EXPECT_EQ(scene.messages, "");
}

} // namespace
} // namespace meshcast
