#include "tests/evaluate/evaluation.h"

namespace meshcast::evaluate {
namespace {

const std::string kTriangle = "Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] } "
                              "DEF t IndexedFaceSet { coordIndex [ 0 1 2 ] } ";

/// A triangle in the XY plane after transforms: its vertices and its instance.
std::string placed(const std::string& transforms) {
    return linesOf("Separator { " + transforms + kTriangle + "}", {"  ", "instance", "note"});
}

const std::string kInPlace = "  0: 0 0 0 normal 0 0 1\n"
                             "  1: 1 0 0 normal 0 0 1\n"
                             "  2: 0 1 0 normal 0 0 1\n"
                             "  0 1 2\n";

TEST(Placement, TransformsNearestTheShapeActFirst) {
    const auto matrix = [](const std::string& transforms) {
        return placed(transforms).substr(kInPlace.size());
    };
    EXPECT_EQ(placed(""), kInPlace + "instance \"t\" mesh 0\n");
    // A quarter turn about Z takes x to y, and y to -x.
    const std::string turn = "Rotation { rotation 0 0 2 1.5707963 } ";
    EXPECT_EQ(matrix(turn), "instance \"t\" mesh 0 matrix 0 -1 0 0, 1 0 0 0, 0 0 1 0\n");
    EXPECT_EQ(matrix("Rotation { rotation 0 0 0 1.5 }"), "instance \"t\" mesh 0\n");
    // The point first moves by 1 2 3, then turns.
    EXPECT_EQ(matrix(turn + "Translation { translation 1 2 3 }"),
              "instance \"t\" mesh 0 matrix 0 -1 0 -2, 1 0 0 1, 0 0 1 3\n");
    EXPECT_EQ(matrix("Translation { translation 1 2 3 }" + turn),
              "instance \"t\" mesh 0 matrix 0 -1 0 1, 1 0 0 2, 0 0 1 3\n");
    EXPECT_EQ(matrix("Scale { scaleFactor 2 3 4 } Translation { translation 1 1 1 }"),
              "instance \"t\" mesh 0 matrix 2 0 0 2, 0 3 0 3, 0 0 4 4\n");
    EXPECT_EQ(matrix("MatrixTransform { matrix 0 1 0 0  -1 0 0 0  0 0 1 0  5 6 7 1 }"),
              "instance \"t\" mesh 0 matrix 0 -1 0 5, 1 0 0 6, 0 0 1 7\n");
    EXPECT_EQ(matrix("MatrixTransform { matrix 2 0 0 0  0 2 0 0  0 0 2 0  2 4 6 2 }"),
              "instance \"t\" mesh 0 matrix 1 0 0 1, 0 1 0 2, 0 0 1 3\n");
    // x 1: -center 0, scale 0, turn 0, center 1, translation 11. x 2: 1, 2, turned to y 2.
    EXPECT_EQ(matrix("Transform { translation 10 0 0 rotation 0 0 1 1.5707963 scaleFactor 2 1 1 "
                     "center 1 0 0 }"),
              "instance \"t\" mesh 0 matrix 0 -1 0 11, 2 0 0 -2, 0 0 1 0\n");
    // The scaled axes are rotated by a quarter turn, so y is doubled.
    EXPECT_EQ(matrix("Transform { scaleFactor 2 1 1 scaleOrientation 0 0 1 1.5707963 }"),
              "instance \"t\" mesh 0 matrix 1 0 0 0, 0 2 0 0, 0 0 1 0\n");
}

TEST(Placement, ScopesEndTransforms) {
    const auto names = [](const std::string& group) {
        return linesOf("Separator { DEF g " + group +
                           " Translation { translation 1 0 0 } DEF s Cube { } } Cube { } }",
                       {"instance"});
    };
    const std::string inside = "instance \"g/s\" mesh 0 matrix 1 0 0 1, 0 1 0 0, 0 0 1 0\n";
    for (const char* const group : {"Separator {", "TransformSeparator {", "WWWAnchor {"}) {
        EXPECT_EQ(names(group), inside + "instance \"\" mesh 0\n") << group;
    }
    for (const char* const group : {"Group {", "Switch { whichChild -3"}) {
        EXPECT_EQ(names(group), inside + "instance \"\" mesh 0 matrix 1 0 0 1, 0 1 0 0, 0 0 1 0\n")
            << group;
    }
    EXPECT_EQ(linesOf("Separator { WWWAnchor { name \"a.html\" Cube { } Separator { Cube { } } } "
                      "Cube { } }",
                      {"instance"}),
              "instance \"\" mesh 0 url \"a.html\"\ninstance \"\" mesh 0 url \"a.html\"\n"
              "instance \"\" mesh 0\n");
}

TEST(Placement, ShearIsAppliedToVertices) {
    // An eighth of a turn, then x doubled: 1 0 goes to 1.41421 0.70711. The translation stays.
    EXPECT_EQ(placed("Translation { translation 5 0 0 } Scale { scaleFactor 2 1 1 } "
                     "Rotation { rotation 0 0 1 0.7853982 }"),
              "  0: 0 0 0 normal 0 0 1\n"
              "  1: 1.41421 0.70711 0 normal 0 0 1\n"
              "  2: -1.41421 0.70711 0 normal 0 0 1\n"
              "  0 1 2\n"
              "instance \"t\" mesh 0 matrix 1 0 0 5, 0 1 0 0, 0 0 1 0\n");
    // With a mirror, the winding of the triangle is reversed to keep its front.
    EXPECT_EQ(placed("Scale { scaleFactor -2 1 1 } Rotation { rotation 0 0 1 0.7853982 }"),
              "  0: 0 0 0 normal 0 0 1\n"
              "  1: -1.41421 0.70711 0 normal 0 0 1\n"
              "  2: 1.41421 0.70711 0 normal 0 0 1\n"
              "  0 2 1\n"
              "instance \"t\" mesh 0\n");
    // z depends on x. The inverse transpose takes the normal 0 0 1 to -1 0 1 over the root of 2.
    const std::string sheared =
        placed("MatrixTransform { matrix 1 0 1 0  0 1 0 0  0 0 1 0  0 0 0 1 }");
    EXPECT_EQ(sheared.substr(0, sheared.find("  2:")), "  0: 0 0 0 normal -0.70711 0 0.70711\n"
                                                       "  1: 1 0 1 normal -0.70711 0 0.70711\n");
}

TEST(Placement, InstancesMayMirror) {
    EXPECT_EQ(placed("Scale { scaleFactor -1 1 1 }"),
              kInPlace + "instance \"t\" mesh 0 matrix -1 0 0 0, 0 1 0 0, 0 0 1 0\n");
}

TEST(Placement, FlatShapesKeepTrianglesWithArea) {
    EXPECT_EQ(placed("Translation { translation 0 0 3 } Scale { scaleFactor 2 1 0 }"),
              "  0: 0 0 0 normal 0 0 1\n"
              "  1: 2 0 0 normal 0 0 1\n"
              "  2: 0 1 0 normal 0 0 1\n"
              "  0 1 2\n"
              "instance \"t\" mesh 0 matrix 1 0 0 0, 0 1 0 0, 0 0 1 3\n");
    EXPECT_EQ(placed("Scale { scaleFactor 0 1 1 }"), "");
    // A flat cube keeps its front and its back, two triangles each, with flat normals.
    const Model cube = evaluated("Separator { Scale { scaleFactor 1 1 0 } Cube { } }");
    EXPECT_EQ(cube.geometries.at(0).indices.size(), 12U);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(cube.geometries[0].normals[i][2], i < 6 ? 1 : -1);
    }
    EXPECT_EQ(evaluated("Cube { depth 0 }").geometries.at(0).indices.size(), 12U);
    // A perspective: the point 1 0 0 gets the weight 2.
    EXPECT_NE(placed("MatrixTransform { matrix 1 0 0 1  0 1 0 0  0 0 1 0  0 0 0 1 }")
                  .find("  1: 0.5 0 0 normal 0 0 1\n"),
              std::string::npos);
}

TEST(Placement, ShapesWithInvalidPositionsAreDropped) {
    const std::string note = "note dropped \"\": 1 shape dropped: its position is not finite\n";
    EXPECT_EQ(placed("Scale { scaleFactor 1e30 1 1 } Scale { scaleFactor 1e30 1 1 }"), note);
    EXPECT_EQ(placed("MatrixTransform { matrix 1 0 0 0  0 1 0 0  0 0 1 0  0 0 0 0 }"), note);
}

TEST(Placement, RepeatedShapesShareData) {
    const std::string moved = "Translation { translation 1 0 0 } ";
    const auto counts = [](const std::string& body) {
        const Model model = evaluated("Separator { " + body + "}");
        return std::array{model.geometries.size(), model.materials.size(), model.meshes.size(),
                          model.instances.size()};
    };
    using Counts = std::array<std::size_t, 4>;
    EXPECT_EQ(counts(kTriangle + moved + "USE t " + moved + "USE t "), (Counts{1, 1, 1, 3}));
    // Another material gives another mesh with the same geometry.
    EXPECT_EQ(counts(kTriangle + "Material { diffuseColor 1 0 0 } USE t "), (Counts{1, 2, 2, 2}));
    EXPECT_EQ(counts(kTriangle + "ShapeHints { creaseAngle 0 } USE t "), (Counts{2, 1, 2, 2}));
    // Shapes with the same shear share the sheared vertices.
    const std::string shear = "MatrixTransform { matrix 1 0 1 0  0 1 0 0  0 0 1 0  0 0 0 1 } ";
    EXPECT_EQ(counts(kTriangle + "Separator { " + shear + "USE t } " + moved + shear + "USE t "),
              (Counts{2, 1, 2, 3}));
    // Solids of different sizes share a mesh, and equal materials are shared.
    EXPECT_EQ(counts("Sphere { } Material { diffuseColor 0.8 0.8 0.8 } Sphere { radius 2 }"),
              (Counts{1, 1, 2, 2}));
}

} // namespace
} // namespace meshcast::evaluate
