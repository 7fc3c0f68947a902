#include "convert/context.h"
#include "tests/support/conversion.h"
#include "tests/support/walk.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace meshcast {
namespace {

/// A point after the transforms of a scene.
std::array<float, 3> moved(const std::string& transforms, const std::array<float, 3>& p) {
    const ReadScene scene("Group { " + transforms + " }");
    EXPECT_TRUE(scene.ok) << scene.messages;
    const Walk walk(scene);
    ShapeContext context(walk.state);
    const Matrix4& m = context.top()->matrix;
    std::array<float, 3> result{};
    for (std::size_t j = 0; j < 3; ++j) {
        result[j] = p[0] * m[0][j] + p[1] * m[1][j] + p[2] * m[2][j] + m[3][j];
    }
    return result;
}

void expectMoved(const std::string& transforms, const std::array<float, 3>& p,
                 const std::array<float, 3>& expected) {
    const std::array<float, 3> found = moved(transforms, p);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(found[i], expected[i], 1e-5F) << transforms << " axis " << i;
    }
}

TEST(Context, TransformsMovePoints) {
    const std::string quarter = "1.5707963";
    expectMoved("", {1, 2, 3}, {1, 2, 3});
    expectMoved("Transform { }", {1, 2, 3}, {1, 2, 3});
    expectMoved("Translation { translation 5 6 7 }", {1, 2, 3}, {6, 8, 10});
    expectMoved("Scale { scaleFactor 2 3 4 }", {1, 1, 1}, {2, 3, 4});
    expectMoved("Rotation { rotation 0 0 1 " + quarter + " }", {1, 0, 0}, {0, 1, 0});
    expectMoved("Rotation { rotation 0 5 0 " + quarter + " }", {0, 0, 1}, {1, 0, 0});
    expectMoved("Rotation { rotation 1 0 0 " + quarter + " }", {0, 1, 0}, {0, 0, 1});
    // An axis of length 0 counts as 1 1 1: a third of a turn about it takes x to y.
    expectMoved("Rotation { rotation 0 0 0 2.0943951 }", {1, 0, 0}, {0, 1, 0});
    expectMoved("MatrixTransform { matrix 1 0 0 0  0 1 0 0  0 0 1 0  7 8 9 1 }", {0, 0, 0},
                {7, 8, 9});
    // The transform nearest to the shape is applied first.
    expectMoved("Translation { translation 5 0 0 } Rotation { rotation 0 0 1 " + quarter + " }",
                {1, 0, 0}, {5, 1, 0});
    expectMoved("Rotation { rotation 0 0 1 " + quarter + " } Translation { translation 5 0 0 }",
                {1, 0, 0}, {0, 6, 0});
    // Scaled along an axis that is rotated by a quarter turn, about a centre, then rotated and
    // moved.
    expectMoved("Transform { center 1 0 0 scaleOrientation 0 0 1 " + quarter +
                    " scaleFactor 2 1 1 rotation 0 0 1 " + quarter + " translation 0 0 4 }",
                {2, 3, 0}, {-5, 1, 4});
    // The transforms inside a TransformSeparator, and its marker, have no effect after it.
    expectMoved("TransformSeparator { Scale { scaleFactor 9 9 9 } }", {1, 2, 3}, {1, 2, 3});
}

TEST(Context, MovesNoShape) {
    const Conversion scene =
        convert("Group { Translation { translation 5 0 0 } Coordinate3 { point [ 1 2 3 ] }"
                "IndexedFaceSet { } PointSet { numPoints 1 } }");
    ASSERT_EQ(scene.objects.size(), 2U);
    EXPECT_EQ(scene.objects[0].polyhedron().vertices.at(0), (geom_stream::Vec3{1, 2, 3}));
    EXPECT_EQ(scene.objects[1].sphere().vertices.at(0), (geom_stream::Vec3{1, 2, 3}));
}

} // namespace
} // namespace meshcast
