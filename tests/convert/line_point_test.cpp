#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <string>

// Point i is at (i, 0, 0), so x is the index of a vertex. The tests list only the first component
// of vertices and colours.
namespace meshcast {
namespace {

using Line = std::vector<float>;

const std::string kPoints = "Coordinate3 { point [ 0 0 0, 1 0 0, 2 0 0, 3 0 0 ] } ";
const std::string kColours = "Material { diffuseColor [ 0.1 0 0, 0.2 0 0, 0.3 0 0, 0.4 0 0 ] } ";

Line xs(const std::vector<geom_stream::Vec3>& values) {
    Line result;
    for (const geom_stream::Vec3& value : values) {
        result.push_back(value[0]);
    }
    return result;
}

TEST(LineSet, RunsColoursAndMessages) {
    struct Case {
        std::string properties;
        std::string fields;
        std::vector<Line> lines;
        std::vector<Line> colours;
        std::vector<int> bad;
    };
    const std::string perVertex = kColours + "MaterialBinding { value PER_VERTEX } ";
    const std::string indexed = kColours + "MaterialBinding { value PER_VERTEX_INDEXED } ";
    for (const Case& c : {
             Case{"", "coordIndex [ 0, 1, 2 ]", {{0, 1, 2}}, {}, {}},
             Case{"", "coordIndex [ 0, 1, -1, 2, 3, -1 ]", {{0, 1}, {2, 3}}, {}, {}},
             Case{"", "coordIndex [ 0, 1, -1, -1, 2 ]", {{0, 1}, {2}}, {}, {}},
             Case{"", "", {{0}}, {}, {}},
             Case{"", "coordIndex [ ]", {}, {}, {}},
             Case{"", "coordIndex -2", {}, {}, {}}, // Not counted either.
             // A bad entry is not counted, so the polyline is shortened at its end and has a vertex
             // at zero.
             Case{"", "coordIndex [ 1, 7, 2, 3, -1, 3, -5, 1 ]", {{1, 0, 2}, {3, 0}}, {}, {7, -5}},
             // The last entry is counted even if it is bad.
             Case{"", "coordIndex [ 1, 9 ]", {{1, 0}}, {}, {}},
             Case{perVertex,
                  "coordIndex [ 0, 3, -1, 2, 9 ]",
                  {{0, 3}, {2, 0}},
                  {{0.1F, 0.4F}, {0.3F, 0}},
                  {}},
             Case{indexed,
                  "coordIndex [ 0, 1, -1, 2, 3 ] materialIndex [ 3, 2, 0, 9 ]",
                  {{0, 1}, {2, 3}},
                  {{0.4F, 0.3F}, {0, 0}},
                  {}},
             Case{indexed, "coordIndex [ 0, 1 ] materialIndex 3", {{0, 1}}, {}, {}},
             Case{"Material { diffuseColor 1 0 0 } MaterialBinding { value PER_VERTEX } ",
                  "coordIndex [ 0, 1 ]",
                  {{0, 1}},
                  {},
                  {}}, // PER_VERTEX needs one colour per point.
             Case{kColours + "MaterialBinding { value PER_FACE } ",
                  "coordIndex [ 0, 1 ]",
                  {{0, 1}},
                  {},
                  {}},
         }) {
        const Conversion scene = convert("Separator { " + kPoints + c.properties +
                                         "IndexedLineSet { " + c.fields + " } }");
        ASSERT_EQ(scene.objects.size(), 1U);
        const geom_stream::Object& object = scene.objects[0];
        std::vector<Line> lines;
        std::vector<Line> colours;
        for (const geom_stream::VertexArrays& line : object.polytriangle().polylines) {
            lines.push_back(xs(line.vertices));
            if (object.has(geom_stream::flag::kColours)) {
                colours.push_back(xs(line.colours));
            }
        }
        EXPECT_EQ(lines, c.lines) << c.fields;
        EXPECT_EQ(colours, c.colours) << c.properties << c.fields;
        std::string messages;
        for (const int bad : c.bad) {
            messages += "Error: IndexedLineSet: Out of Index: " + std::to_string(bad) + "\n";
        }
        EXPECT_EQ(scene.messages, messages) << c.fields;
    }
    EXPECT_TRUE(convert("IndexedLineSet { }").bytes.empty());
}

TEST(PointSet, TakesThePointsThatExist) {
    struct Case {
        int start;
        int count;
        Line points;
        int missing; // The index that is reported, or -9.
    };
    for (const Case& c :
         {Case{0, 4, {0, 1, 2, 3}, -9}, Case{1, 2, {1, 2}, -9}, Case{2, 5, {2, 3}, 4},
          Case{-2, 3, {0}, -2}, Case{-3, 2, {}, -3}, Case{4, 1, {}, 4},
          Case{100, 2147483647, {}, 100}, Case{2147483647, 2147483647, {}, 2147483647},
          Case{-2147483647, 2147483647, {}, -2147483647}, Case{0, 0, {}, -9},
          Case{77, 0, {}, -9}}) {
        const Conversion scene =
            convert("Separator { " + kPoints + "PointSet { startIndex " + std::to_string(c.start) +
                    " numPoints " + std::to_string(c.count) + " } }");
        ASSERT_EQ(scene.objects.size(), 1U);
        EXPECT_EQ(xs(scene.objects[0].sphere().vertices), c.points) << c.start;
        EXPECT_EQ(scene.objects[0].sphere().radii, Line(c.points.size(), 0.01F));
        EXPECT_FALSE(scene.objects[0].hasExtent);
        EXPECT_EQ(scene.messages,
                  c.missing == -9
                      ? ""
                      : "Error: PointSet: Out of Index: " + std::to_string(c.missing) + "\n");
    }
    EXPECT_TRUE(convert("Separator { " + kPoints + "PointSet { } }").bytes.empty());
    EXPECT_TRUE(convert("PointSet { numPoints 1 }").bytes.empty());
}

} // namespace
} // namespace meshcast
