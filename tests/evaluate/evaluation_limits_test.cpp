#include "tests/evaluate/evaluation.h"

namespace meshcast::evaluate {
namespace {

std::string notesOf(const std::string& body, const EvaluateOptions& options) {
    return linesOf(evaluated(body, options), {"note"});
}

TEST(Limits, DoublingFortyTimesEnds) {
    EvaluateOptions options;
    options.limits.nodes = 100'000;
    const std::string rest = "note limit \"\": the rest of the scene left out: nodes are used "
                             "too often\n";
    EXPECT_EQ(notesOf(doubled("Separator { Material { } }", 40), options), rest);
    const Model cubes = evaluated(doubled("Group { Cube { } }", 40), options);
    EXPECT_EQ(cubes.meshes.size(), 1U);
    EXPECT_GT(cubes.instances.size(), 30'000U);
    EXPECT_EQ(cubes.notes.back().text, "the rest of the scene left out: nodes are used too often");
}

TEST(Limits, RepeatedShapesAreCounted) {
    EvaluateOptions options;
    options.limits.repeatedInstances = 7;
    // The first of eight is not a repetition.
    EXPECT_EQ(evaluated(doubled("Cube { }", 3), options).instances.size(), 8U);
    EXPECT_EQ(notesOf(doubled("Cube { }", 3), options), "");
    options.limits.repeatedInstances = 6;
    EXPECT_EQ(notesOf(doubled("Cube { }", 3), options),
              "note limit \"\": 1 shape left out: too many shapes are repeated\n");
}

TEST(Limits, RepeatedElementsAreCounted) {
    const std::string tooMany = "note limit \"\": 1 shape left out: repeated shapes have too many "
                                "triangles, lines and points\n";
    EvaluateOptions options;
    options.limits.repeatedElements = 12 + 10;
    EXPECT_EQ(notesOf("Cube { }", options), "");
    options.limits.repeatedElements = 11 + 10;
    EXPECT_EQ(notesOf("Cube { }", options), tooMany);
    // The first use of a face set is limited by the size of the scene; later uses count by their
    // indices.
    const std::string faces = "Separator { Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] } DEF f "
                              "IndexedFaceSet { coordIndex [ 0 1 2 -1 ] } ShapeHints { "
                              "creaseAngle 0 } USE f }";
    options.limits.repeatedElements = 1 + 10;
    EXPECT_EQ(notesOf(faces, options), "");
    options.limits.repeatedElements = 10;
    EXPECT_EQ(notesOf(faces, options), tooMany);
    EXPECT_EQ(notesOf("AsciiText { string \"HHHH\" }", options), tooMany);
    EXPECT_EQ(notesOf("Separator { Coordinate3 { point [ 0 0 0, 1 0 0 ] } PointSet { } }", options),
              tooMany);
}

TEST(Limits, OthersAndNotesAreCounted) {
    EvaluateOptions options;
    options.limits.others = 2;
    const std::string leftOut = "note limit \"\": 1 light, camera or text left out: there are too "
                                "many\n";
    const std::string lights = "PointLight { } PointLight { } ";
    EXPECT_EQ(notesOf("Group { " + lights + "}", options), "");
    EXPECT_EQ(notesOf("Group { " + lights + "PointLight { } }", options), leftOut);
    options.limits.textBytes = 3;
    EXPECT_EQ(notesOf("Group { Info { string \"abc\" } }", options), "");
    EXPECT_EQ(notesOf("Group { Info { string \"abcd\" } }", options), leftOut);
    EXPECT_EQ(evaluated("WWWAnchor { name \"abcd\" Cube { } }", options).instances.at(0).url,
              std::nullopt);
    options.limits.notes = 2;
    EXPECT_EQ(notesOf("Group { WWWInline { name \"a\" } WWWInline { name \"b\" } WWWInline { name "
                      "\"c\" } }",
                      options),
              "note missing \"\": inlined scene \"a\" not shown\n"
              "note limit \"\": further notes are not listed\n");
}

TEST(Limits, PathsAreShort) {
    const std::string name(200, 'n');
    const Model model = evaluated("DEF " + name + " Group { DEF x Group { DEF " + name +
                                  " Group { DEF y Cube { } } } }");
    EXPECT_EQ(model.instances.at(0).name, name + "/x/y");
}

TEST(Limits, FacesWhoseEdgesCrossTooOftenAreFanned) {
    // Each edge of a star of 101 corners crosses 98 others.
    std::string points;
    std::string indices;
    for (int i = 0; i < 101; ++i) {
        const double angle = i * 2 * 3.14159265358979 * 50 / 101;
        points += std::to_string(std::cos(angle)) + ' ' + std::to_string(std::sin(angle)) + " 0,";
        indices += std::to_string(i) + ' ';
    }
    const Model model = evaluated("Separator { Coordinate3 { point [ " + points +
                                  " ] } IndexedFaceSet { coordIndex [ " + indices + " ] } }");
    EXPECT_EQ(model.geometries.at(0).indices.size(), 99U * 3);
    EXPECT_EQ(linesOf(model, {"note"}), "note approximated \"\": 1 face with too many crossing "
                                        "edges, perhaps filled wrongly\n");
}

} // namespace
} // namespace meshcast::evaluate
