#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast {
namespace {

using geom_stream::Polyhedron;
using geom_stream::Vec3;
using List = std::vector<std::int64_t>;

const std::string kSquare = "Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] } ";
const std::string kTwoTriangles = "IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 3, -1 ] } ";

std::string group(const std::string& nodes) { return "Separator { " + nodes + " }"; }

TEST(FaceSet, PolygonsAndMessages) {
    struct Case {
        const char* coordIndex;
        List list;
        std::vector<int> bad;
    };
    for (const Case& c : {
             Case{"[ 0, 1, 2, -1, 0, 2, 3, -1 ]", {3, 1, 2, 3, 3, 1, 3, 4, 0}, {}},
             Case{"[ 0, 1, 2, 3 ]", {4, 1, 2, 3, 4, 0}, {}}, // The last face needs no -1.
             Case{"[ ]", {0}, {}},
             Case{"3", {1, 4, 0}, {}},
             // A face without entries ends the list.
             Case{"[ 0, 1, 2, -1, -1, 1, 2, 3 ]", {3, 1, 2, 3, 0}, {}},
             // A bad entry is not counted: the face's first entries stay, and the gap after them
             // ends the list.
             Case{"[ 0, 4, 1, 2, -1, 0, 1, 2, -1 ]", {3, 1, 5, 2, 0}, {4}},
             Case{"[ 0, 1, 2, -2, -1 ]", {3, 1, 2, 3, 0}, {-2}},
             Case{"[ 2147483647, -2147483648, 1, 2 ]",
                  {2, -2147483648, -2147483647, 0},
                  {2147483647, -2147483647 - 1}},
             Case{"[ 9, 8, -1, 0, 1, 2, -1 ]", {0}, {9, 8}},
         }) {
        const Conversion scene =
            convert(group(kSquare + "IndexedFaceSet { coordIndex " + c.coordIndex + " }"));
        ASSERT_EQ(scene.objects.size(), 1U) << c.coordIndex;
        EXPECT_EQ(scene.objects[0].polyhedron().polygonList, c.list) << c.coordIndex;
        EXPECT_EQ(scene.objects[0].polyhedron().vertices.size(), 4U);
        std::string messages;
        for (const int bad : c.bad) {
            messages += "Error: IndexedFaceSet: Out of Index: " + std::to_string(bad) + "\n";
        }
        EXPECT_EQ(scene.messages, messages) << c.coordIndex;
    }
    EXPECT_TRUE(convert(group("IndexedFaceSet { }")).bytes.empty()); // No coordinates.
    // The last Coordinate3 is used. Even if it has no points, an object with normals is made.
    const Conversion empty = convert(
        group(kSquare + "Coordinate3 { point [ ] } Material { diffuseColor [ 1 0 0, 0 1 0 ] }"
                        "MaterialBinding { value PER_VERTEX } IndexedFaceSet { coordIndex [ ] }"));
    EXPECT_EQ(empty.objects.at(0).flags, 0x3U);
    EXPECT_TRUE(empty.objects.at(0).polyhedron().vertices.empty());
}

TEST(FaceSet, NormalsByBinding) {
    const Vec3 up = {0, 0, 1};
    const Vec3 x = {1, 0, 0};
    const Vec3 y = {0, 1, 0};
    const Vec3 zero = {0, 0, 0};
    const std::vector<Vec3> generated(4, up);
    const std::string four = "Normal { vector [ 1 0 0, 0 1 0, 1 0 0, 0 1 0 ] } ";
    struct Case {
        std::string properties;
        std::string index;
        std::vector<Vec3> normals; // Empty: the object has none.
    };
    for (const Case& c : {
             Case{"", "", generated},
             Case{four, "", generated}, // Without a binding the normals are ignored.
             Case{four + "NormalBinding { value PER_VERTEX }", "", {x, y, x, y}},
             Case{"Normal { vector [ 1 0 0 ] } NormalBinding { value PER_VERTEX }", "", generated},
             Case{"NormalBinding { value PER_VERTEX }", "", generated},
             Case{four + "NormalBinding { value PER_VERTEX_INDEXED }", "", generated},
             Case{four + "NormalBinding { value PER_VERTEX_INDEXED }",
                  "normalIndex [ 0, 1, 1, -1, 3 ]",
                  {y, y, y, zero}}, // The later pair wins.
             // Pairs with an invalid index, or of which one index is missing, are skipped.
             Case{four + "NormalBinding { value PER_VERTEX_INDEXED }",
                  "normalIndex [ 7, -2, 0, -1, -1, -1, 1, -1, 0, 0 ]",
                  {zero, zero, x, y}},
             Case{four + "NormalBinding { value PER_FACE }", "", generated},
             Case{four + "NormalBinding { value NONE }", "", generated},
             Case{four + "NormalBinding { value DEFAULT }", "", {}},
         }) {
        const std::string shape =
            "IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 3, -1 ] " + c.index + " }";
        const Conversion scene = convert(group(kSquare + c.properties + shape));
        const geom_stream::Object& object = scene.objects.at(0);
        EXPECT_EQ(object.polyhedron().normals, c.normals) << c.properties << c.index;
        EXPECT_EQ(object.has(geom_stream::flag::kNormals), !c.normals.empty());
        EXPECT_EQ(scene.messages, "");
    }
}

TEST(FaceSet, ColoursByBinding) {
    const Vec3 r = {1, 0, 0};
    const Vec3 g = {0, 1, 0};
    const Vec3 b = {0, 0, 1};
    const Vec3 none = {0, 0, 0};
    const std::string rgb = "Material { diffuseColor [ 1 0 0, 0 1 0, 0 0 1 ] } ";
    struct Case {
        std::string material;
        std::string binding;
        std::string index;
        std::vector<Vec3> colours; // Empty: the object has none.
    };
    for (const Case& c : {
             Case{rgb, "PER_VERTEX", "", {r, g, b, r}}, // The list is repeated.
             Case{rgb, "PER_VERTEX_INDEXED", "[ 2, 1, 0, -1, -1, 3, 1 ]", {b, g, r, g}},
             Case{rgb, "PER_VERTEX_INDEXED", "[ -4, 1, 0, -1, 5, 6, 7, 1, 1 ]", {b, g, r, g}},
             Case{rgb, "PER_FACE", "", {g, r, g, g}}, // The later face wins.
             Case{rgb, "PER_FACE_INDEXED", "[ 2, 4 ]", {g, b, g, g}},
             Case{rgb, "PER_FACE_INDEXED", "[ 1, -1 ]", {g, g, g, none}},
             // With an index list that is too short, all colours are zero.
             Case{rgb, "PER_VERTEX_INDEXED", "[ 1 ]", {none, none, none, none}},
             Case{rgb, "PER_FACE_INDEXED", "[ ]", {none, none, none, none}},
             Case{rgb, "OVERALL", "", {}},
             Case{rgb, "PER_PART_INDEXED", "[ 0, 1 ]", {}},
             Case{rgb, "DEFAULT", "", {}},
             Case{"Material { diffuseColor 1 0 0 } ", "PER_VERTEX", "", {}},
             Case{"", "PER_VERTEX", "", {}},
             // Converted to bytes: clamped to 255, truncated towards zero, wrapped below 0.
             Case{"Material { diffuseColor [ 2 0.5 0.999, -0.01 -1e30 1e999 ] } ",
                  "PER_VERTEX",
                  "",
                  {Vec3{1, 127 / 255.0F, 254 / 255.0F}, Vec3{254 / 255.0F, 0, 1},
                   Vec3{1, 127 / 255.0F, 254 / 255.0F}, Vec3{254 / 255.0F, 0, 1}}},
         }) {
        std::string shape = "IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 3, -1 ] ";
        shape += c.index.empty() ? "}" : "materialIndex " + c.index + " }";
        const Conversion scene = convert(
            group(kSquare + c.material + "MaterialBinding { value " + c.binding + " } " + shape));
        const geom_stream::Object& object = scene.objects.at(0);
        EXPECT_EQ(object.polyhedron().colours, c.colours) << c.binding << c.index;
        EXPECT_EQ(object.has(geom_stream::flag::kColours), !c.colours.empty());
        EXPECT_EQ(scene.messages, "");
    }
    EXPECT_FALSE(convert(group(kSquare + rgb + kTwoTriangles))
                     .objects.at(0)
                     .has(geom_stream::flag::kColours)); // No binding.
}

} // namespace
} // namespace meshcast
