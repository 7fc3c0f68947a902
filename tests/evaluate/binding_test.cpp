#include "tests/evaluate/evaluation.h"

#include <vector>

// Colours are letters: Red, Green, Blue, Yellow, Cyan, Magenta, White, blacK.
namespace meshcast::evaluate {
namespace {

const std::string kPoints = "Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0, 1 1 0 ] } ";

std::string bound(const std::string& colors, const std::string& binding, const std::string& shape) {
    return "Separator { " + kPoints + "Material {" + diffuse(colors) +
           "} MaterialBinding { value " + binding + " } " + shape + " }";
}

struct Row {
    std::string binding, colors, index, expected;
};

void expectRows(const std::string& shape, const std::string& coordIndex,
                const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        std::string text = shape + " { coordIndex [ " + coordIndex + " ]";
        text += row.index.empty() ? " }" : " materialIndex [ " + row.index + " ] }";
        EXPECT_EQ(colorsOf(evaluated(bound(row.colors, row.binding, text))), row.expected)
            << row.binding << ' ' << row.colors << ' ' << text;
    }
}

TEST(Binding, SpreadsMaterialsOverFaces) {
    expectRows("IndexedFaceSet", "0 1 2 -1 2 1 3 -1",
               {
                   {"DEFAULT", "RGBWYC", "", "RRRRRR"},
                   {"OVERALL", "RGBWYC", "1 1", "RRRRRR"},
                   {"NONE", "RGBWYC", "", "RRRRRR"},
                   {"PER_PART", "RGBWYC", "2 0", "RRRGGG"},
                   {"PER_PART_INDEXED", "RGBWYC", "2 0", "BBBRRR"},
                   {"PER_PART_INDEXED", "RGBWYC", "", "RRRGGG"},
                   {"PER_FACE", "RGBWYC", "2 0", "RRRGGG"},
                   {"PER_FACE_INDEXED", "RGBWYC", "2 0", "BBBRRR"},
                   {"PER_FACE_INDEXED", "RGBWYC", "", "RRRGGG"},
                   {"PER_FACE_INDEXED", "RGBWYC", "-1", "RRRGGG"},
                   {"PER_FACE_INDEXED", "RGBWYC", "77 -5", "CCCRRR"},
                   {"PER_FACE_INDEXED", "RGBWYC", "0", "RRRCCC"},
                   // As many values as corners; more than corners; as many as points; fewer than
                   // points.
                   {"PER_VERTEX", "RGBWYC", "3 3 3", "RGBWYC"},
                   {"PER_VERTEX", "RGBWYCM", "", "RGBWYC"},
                   {"PER_VERTEX", "RGBW", "", "RGBBGW"},
                   {"PER_VERTEX", "RGB", "", "RGBBGB"},
                   {"PER_VERTEX_INDEXED", "RGBWYC", "5 4 3 -1 0 1 2 -1", "CYWRGB"},
                   {"PER_VERTEX_INDEXED", "RGBWYC", "", "RGBBGW"},
               });
}

TEST(Binding, DroppedFacesKeepTheirNumber) {
    // Face 0 has an invalid index and face 1 no corners. Both are dropped, and corners 0 to 2 with
    // them.
    expectRows("IndexedFaceSet", "0 1 9 -1 -1 0 1 2",
               {
                   {"PER_FACE", "RGBWYC", "", "BBB"},
                   {"PER_FACE_INDEXED", "RGBWYC", "0 1 3", "WWW"},
                   {"PER_VERTEX", "RGBWYC", "", "WYC"},
                   {"PER_VERTEX_INDEXED", "RGBWYC", "0 0 0 -1 -1 5 4 3", "CYW"},
               });
    expectRows("IndexedLineSet", "0 9 1 2 -1 2 3",
               {
                   {"PER_PART", "RGBW", "", "BBWW"},
                   {"PER_FACE", "RGBW", "", "RRGG"},
                   {"PER_VERTEX", "RGBWYC", "", "BWYC"},
               });
}

TEST(Binding, SpreadsMaterialsOverLines) {
    expectRows("IndexedLineSet", "0 1 2 -1 2 3",
               {
                   {"DEFAULT", "RGBWY", "", "RRRRRR"},
                   {"OVERALL", "RGBWY", "", "RRRRRR"},
                   {"NONE", "RGBWY", "", "RRRRRR"},
                   {"PER_PART", "RGBWY", "", "RRGGBB"},
                   {"PER_PART_INDEXED", "RGBWY", "2 1 0", "BBGGRR"},
                   {"PER_PART_INDEXED", "RGBWY", "", "RRGGBB"},
                   {"PER_FACE", "RGBWY", "", "RRRRGG"},
                   {"PER_FACE_INDEXED", "RGBWY", "2 1", "BBBBGG"},
                   {"PER_FACE_INDEXED", "RGBWY", "", "RRRRGG"},
                   {"PER_VERTEX", "RGBWY", "", "RGGBWY"},
                   {"PER_VERTEX", "RGBW", "", "RGGBBW"},
                   {"PER_VERTEX_INDEXED", "RGBWY", "4 3 2 -1 1 0", "YWWBGR"},
                   {"PER_VERTEX_INDEXED", "RGBWY", "", "RGGBBW"},
               });
}

TEST(Binding, SpreadsMaterialsOverPoints) {
    const std::string points = "PointSet { startIndex 1 numPoints 2 }";
    for (const char* const binding : {"DEFAULT", "OVERALL", "NONE", "PER_PART", "PER_PART_INDEXED",
                                      "PER_FACE", "PER_FACE_INDEXED"}) {
        EXPECT_EQ(colorsOf(evaluated(bound("RGB", binding, points))), "RR") << binding;
    }
    EXPECT_EQ(colorsOf(evaluated(bound("RGB", "PER_VERTEX", points))), "RG");
    EXPECT_EQ(colorsOf(evaluated(bound("RGB", "PER_VERTEX_INDEXED", points))), "GB");
    // Ranges are limited to the existing points.
    EXPECT_EQ(colorsOf(evaluated(bound("R", "OVERALL", "PointSet { startIndex 2 numPoints 99 }"))),
              "RR");
    EXPECT_EQ(colorsOf(evaluated(bound("R", "OVERALL", "PointSet { startIndex 9 }"))), "");
}

/// The colours of the faces of a solid with the given normals.
std::string colorsAlong(const Model& model, const std::vector<Vec3>& normals) {
    const std::string letters = colorsOf(model);
    std::string found;
    for (const Vec3& normal : normals) {
        const Geometry& geometry = model.geometries.at(0);
        std::size_t i = 0;
        while (i < geometry.indices.size() && geometry.normals[geometry.indices[i]] != normal) {
            ++i;
        }
        found += i < letters.size() ? letters[i] : '?';
    }
    return found;
}

TEST(Binding, SpreadsMaterialsOverSolids) {
    const std::vector<Vec3> ofCube = {{0, 0, 1}, {0, 0, -1}, {-1, 0, 0},
                                      {1, 0, 0}, {0, 1, 0},  {0, -1, 0}};
    const std::vector<Vec3> ofCylinder = {{0, 0, -1}, {0, 1, 0}, {0, -1, 0}};
    const auto colors = [](const std::string& binding, const std::string& shape,
                           const std::vector<Vec3>& normals) {
        return colorsAlong(evaluated(bound("RGBWYC", binding, shape)), normals);
    };
    for (const char* const binding :
         {"DEFAULT", "OVERALL", "NONE", "PER_VERTEX", "PER_VERTEX_INDEXED"}) {
        EXPECT_EQ(colors(binding, "Cube { }", ofCube), "RRRRRR") << binding;
        EXPECT_EQ(colors(binding, "Cylinder { }", ofCylinder), "RRR") << binding;
    }
    for (const char* const binding : {"PER_PART", "PER_PART_INDEXED"}) {
        EXPECT_EQ(colors(binding, "Cube { }", ofCube), "RGBWYC") << binding;
        EXPECT_EQ(colors(binding, "Cylinder { }", ofCylinder), "RGB") << binding;
        EXPECT_EQ(colors(binding, "Cylinder { parts BOTTOM }", {{0, -1, 0}}), "B") << binding;
        EXPECT_EQ(colors(binding, "Cone { }", {{0, -1, 0}}), "G") << binding;
        EXPECT_EQ(colors(binding, "Sphere { }", {{0, 1, 0}}), "R") << binding;
    }
    for (const char* const binding : {"PER_FACE", "PER_FACE_INDEXED"}) {
        EXPECT_EQ(colors(binding, "Cube { }", ofCube), "RGBWYC") << binding;
        EXPECT_EQ(colors(binding, "Cylinder { }", ofCylinder), "RRR") << binding;
        EXPECT_EQ(colors(binding, "Cone { }", {{0, -1, 0}}), "R") << binding;
    }
}

// Normals are listed as the letters of the colours with the same components.
TEST(Binding, SpreadsNormals) {
    const auto normals = [](const std::string& binding, const std::string& vectors,
                            const std::string& more = "") {
        const Model model =
            evaluated("Separator { " + kPoints + "Normal { vector [" + vectors +
                      "] } NormalBinding { value " + binding +
                      " } IndexedFaceSet { coordIndex [ 0 1 2 -1 2 1 3 ] " + more + "} }");
        std::string letters;
        for (const std::uint32_t i : model.geometries.at(0).indices) {
            const Vec3& n = model.geometries[0].normals[i];
            letters += letterOf(n[0], n[1], n[2]);
        }
        return letters;
    };
    const std::string four = "2 0 0, 0 3 0, 0 0 4, 1 0 0";
    EXPECT_EQ(normals("OVERALL", four), "RRRRRR");
    EXPECT_EQ(normals("PER_FACE", four), "RRRGGG");
    EXPECT_EQ(normals("PER_FACE_INDEXED", four, "normalIndex [ 1 0 ]"), "GGGRRR");
    EXPECT_EQ(normals("PER_VERTEX", four), "RGBBGR");
    EXPECT_EQ(normals("PER_VERTEX", four + ", 0 1 0, 0 0 1"), "RGBRGB");
    EXPECT_EQ(normals("PER_VERTEX_INDEXED", four), "RGBBGR");
    EXPECT_EQ(normals("DEFAULT", four), "RGBBGR");
    EXPECT_EQ(normals("DEFAULT", four, "normalIndex [ 0 0 0 -1 1 1 1 -1 ]"), "RRRGGG");
    // With too few normals, an invalid index or a normal of length 0, normals are computed,
    // which here point along Z.
    EXPECT_EQ(normals("DEFAULT", "1 0 0, 0 1 0"), "BBBBBB");
    EXPECT_EQ(normals("PER_FACE_INDEXED", four, "normalIndex [ 1 9 ]"), "BBBBBB");
    EXPECT_EQ(normals("PER_FACE", "0 0 0, 1 0 0"), "BBBRRR");
}

} // namespace
} // namespace meshcast::evaluate
