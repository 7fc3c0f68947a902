#include "tests/evaluate/evaluation.h"

#include <cmath>

namespace meshcast::evaluate {
namespace {

std::string faces(const std::string& points, const std::string& indices,
                  const std::string& before = "") {
    return "Separator { " + before + " Coordinate3 { point [ " + points +
           " ] } IndexedFaceSet { coordIndex [ " + indices + " ] } }";
}

const std::string kSquare = "0 0 0, 1 0 0, 1 1 0, 0 1 0";

TEST(FaceMesh, SharesVerticesAndFansConvexFaces) {
    EXPECT_EQ(linesOf(faces(kSquare, "0 1 2 3 -1"), {"  ", "instance"}), "  0: 0 0 0 normal 0 0 1\n"
                                                                         "  1: 1 0 0 normal 0 0 1\n"
                                                                         "  2: 1 1 0 normal 0 0 1\n"
                                                                         "  3: 0 1 0 normal 0 0 1\n"
                                                                         "  0 1 2\n"
                                                                         "  0 2 3\n"
                                                                         "instance \"\" mesh 0\n");
    // Two triangles share an edge.
    const Model two = evaluated(faces(kSquare, "0 1 2 -1 0 2 3"));
    EXPECT_EQ(two.geometries.at(0).positions.size(), 4U);
}

TEST(FaceMesh, ManyShapesMayShareALongListOfPoints) {
    std::string points;
    for (int i = 0; i < 100; ++i) {
        points += std::to_string(i) + ' ' + std::to_string(i * i) + " 0,";
    }
    const Model model =
        evaluated("Separator { Coordinate3 { point [ " + points +
                  " ] } IndexedFaceSet { coordIndex [ 90 91 92 -1 90 92 93 ] } "
                  "IndexedFaceSet { coordIndex [ 93 3 92 ] } IndexedLineSet { "
                  "coordIndex [ 3 92 3 ] } PointSet { startIndex 92 numPoints 2 } }");
    const auto listed = [&model](std::size_t geometry) {
        std::string text;
        for (const std::uint32_t i : model.geometries.at(geometry).indices) {
            text += std::to_string(std::lround(model.geometries[geometry].positions[i][0])) + ' ';
        }
        return text + std::to_string(model.geometries[geometry].positions.size());
    };
    EXPECT_EQ(listed(0), "90 91 92 90 92 93 4");
    EXPECT_EQ(listed(1), "93 3 92 3");
    EXPECT_EQ(listed(2), "3 92 92 3 2");
    EXPECT_EQ(listed(3), "92 93 2");
}

TEST(FaceMesh, HintsSetWindingAndBackFaces) {
    const auto hinted = [](const std::string& hints) {
        const Model model = evaluated(faces(kSquare, "0 1 2 3", "ShapeHints { " + hints + " }"));
        const Geometry& geometry = model.geometries.at(0);
        return std::to_string(std::lround(doubledArea(geometry))) + ' ' +
               std::to_string(std::lround(geometry.normals.at(0)[2])) +
               (model.materials.at(0).isDoubleSided ? " both" : " one");
    };
    EXPECT_EQ(hinted(""), "2 1 both");
    EXPECT_EQ(hinted("vertexOrdering CLOCKWISE"), "-2 -1 both");
    EXPECT_EQ(hinted("shapeType SOLID"), "2 1 both");
    EXPECT_EQ(hinted("vertexOrdering COUNTERCLOCKWISE shapeType SOLID"), "2 1 one");
    EXPECT_EQ(hinted("vertexOrdering CLOCKWISE shapeType SOLID"), "-2 -1 one");
}

TEST(FaceMesh, TriangulatesEveryKindOfFace) {
    struct Case {
        const char *what, *points, *indices;
        double area;
    };
    for (const Case& c : {
             Case{"an L, from a corner that the whole L is visible from",
                  "0 0 0,2 0 0,2 1 0,1 1 0,1 2 0,0 2 0", "0 1 2 3 4 5", 3},
             Case{"an L, from another corner", "0 0 0,2 0 0,2 1 0,1 1 0,1 2 0,0 2 0", "2 3 4 5 0 1",
                  3},
             Case{"the same, clockwise", "0 0 0,2 0 0,2 1 0,1 1 0,1 2 0,0 2 0", "5 4 3 2 1 0", -3},
             Case{"a quadrilateral with a notch", "0 0 0,2 0 0,0.5 0.5 0,0 2 0", "0 1 2 3", 1},
             Case{"a corner on an edge", "0 0 0,1 0 0,2 0 0,2 2 0,0 2 0", "0 1 2 3 4", 4},
             Case{"a repeated corner", "0 0 0,2 0 0,2 2 0,0 2 0", "0 1 1 2 3 3", 4},
             Case{"a square with a square hole, joined by a cut",
                  "0 0 0,3 0 0,3 3 0,0 3 0,1 1 0,1 2 0,2 2 0,2 1 0", "0 1 2 3 0 4 5 6 7 4", 8},
             Case{"a five-pointed star with its middle filled",
                  "0 1 0,-0.5878 -0.809 0,0.9511 0.309 0,-0.9511 0.309 0,0.5878 -0.809 0",
                  "0 1 2 3 4", 1.1226},
         }) {
        const Model model = evaluated(faces(c.points, c.indices));
        ASSERT_EQ(model.geometries.size(), 1U) << c.what;
        EXPECT_NEAR(doubledArea(model.geometries[0]), 2 * c.area, 1e-3) << c.what;
        EXPECT_TRUE(model.notes.empty()) << modelText(model);
    }
    // The crossing of two edges becomes a corner with interpolated attributes.
    const Model bow = evaluated("Separator { Material {" + diffuse("RB") +
                                "} MaterialBinding { value PER_VERTEX_INDEXED } Coordinate3 { "
                                "point [ 0 0 0, 4 3 0, 4 0 0, 0 1 0 ] } IndexedFaceSet { "
                                "coordIndex [ 0 1 2 3 ] materialIndex [ 0 0 1 1 ] } }");
    const Geometry& geometry = bow.geometries.at(0);
    ASSERT_EQ(geometry.positions.size(), 5U);
    EXPECT_NEAR(geometry.positions[4][0], 1, 1e-6);
    EXPECT_NEAR(geometry.positions[4][1], 0.75, 1e-6);
    EXPECT_NEAR(geometry.colors[4][0], 0.5, 1e-6);
    EXPECT_NEAR(geometry.colors[4][2], 0.5, 1e-6);
}

TEST(FaceMesh, DropsInvalidAndEmptyFaces) {
    const char* const words[] = {"note", "  "};
    const auto listed = [&](const std::string& points, const std::string& indices) {
        return linesOf(faces(points, indices), {words[0], words[1]});
    };
    const std::string badIndex = "note dropped \"\": 3 faces dropped: an index is invalid\n";
    EXPECT_EQ(listed(kSquare, "0 1 4 -1 -2 1 2 -1 0 1 2147483647 -1"), badIndex);
    // Two corners; a point repeated; collinear points, also far from the origin.
    const std::string noArea = "note dropped \"\": 4 faces dropped: no area\n";
    EXPECT_EQ(listed("0 0 0, 1 1 1, 1e6 1e6 1e6", "0 1 -1 0 0 0 -1 0 1 2 -1 0 1 0 1"), noArea);
    EXPECT_EQ(listed("1e39 0 0, 1 0 0, 1 1 0", "0 1 2"),
              "note dropped \"\": 1 face dropped: an index is invalid\n");
    EXPECT_EQ(modelText(evaluated("IndexedFaceSet { }")), "");
    EXPECT_EQ(modelText(evaluated("Separator { Coordinate3 { } IndexedFaceSet { } }")), "");
}

/// Two triangles with a common edge from the origin along X and an angle between them.
Model folded(double angle, const std::string& hints) {
    const std::string tip =
        "0 " + std::to_string(std::cos(angle)) + ' ' + std::to_string(std::sin(angle));
    return evaluated(faces("0 0 0, 1 0 0, 0 -1 0, " + tip, "0 2 1 -1 0 1 3", hints));
}

TEST(FaceMesh, EdgesAtTheCreaseAngleAreSharp) {
    const auto vertices = [](double angle, const std::string& hints) {
        return folded(angle, hints).geometries.at(0).positions.size();
    };
    // A shared edge has two vertices, a crease four.
    EXPECT_EQ(vertices(0.49, ""), 4U);
    EXPECT_EQ(vertices(0.51, ""), 6U);
    EXPECT_EQ(vertices(0.99, "ShapeHints { creaseAngle 1 }"), 4U);
    EXPECT_EQ(vertices(1.01, "ShapeHints { creaseAngle 1 }"), 6U);
    EXPECT_EQ(vertices(0.49, "ShapeHints { }"), 4U);
    EXPECT_EQ(vertices(0.01, "ShapeHints { creaseAngle 0 }"), 6U);
    EXPECT_EQ(vertices(3, "ShapeHints { creaseAngle 3.1416 }"), 4U);
    // The shared normal is half way between those of the faces, 0.2 from each.
    const Vec3 normal = folded(0.4, "").geometries.at(0).normals.at(0);
    EXPECT_NEAR(normal[0], 0, 1e-6);
    EXPECT_NEAR(normal[1], -std::sin(0.2), 1e-5);
    EXPECT_NEAR(normal[2], std::cos(0.2), 1e-5);
}

TEST(FaceMesh, ManyFacesAroundAPointAreSmoothOrFacets) {
    // A cone of 200 triangles, too many at its tip to be compared one by one.
    const auto cone = [](const std::string& height) {
        std::string points = "0 0 " + height;
        std::string indices;
        for (int i = 0; i < 200; ++i) {
            const double angle = i * 3.14159265358979 / 100;
            points += ", " + std::to_string(std::cos(angle)) + ' ' +
                      std::to_string(std::sin(angle)) + " 0";
            indices += "0 " + std::to_string(i + 1) + ' ' + std::to_string((i + 1) % 200 + 1);
            indices += " -1 ";
        }
        return evaluated(faces(points, indices)).geometries.at(0);
    };
    const Geometry flat = cone("0.4"); // The normals of its faces are 0.38 from the axis.
    EXPECT_EQ(flat.positions.size(), 201U);
    EXPECT_NEAR(flat.normals[0][2], 1, 1e-6);
    const Geometry steep = cone("0.6"); // They are 0.54 from the axis.
    EXPECT_EQ(steep.positions.size(), 400U);
    EXPECT_NEAR(steep.normals[0][2], std::cos(0.5404), 1e-3);
}

} // namespace
} // namespace meshcast::evaluate
