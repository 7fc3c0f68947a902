#include "tests/evaluate/evaluation.h"

namespace meshcast::evaluate {
namespace {

TEST(Viewpoints, CamerasHaveTheirPlacement) {
    EXPECT_EQ(linesOf("Separator { Translation { translation 1 2 3 } DEF front PerspectiveCamera { "
                      "position 0 0 5 heightAngle 0.5 aspectRatio 2 nearDistance 0.1 farDistance "
                      "50 } }",
                      {"camera"}),
              "camera \"front\" perspective 0.5 aspect 2 from 0.1 to 50 matrix 1 0 0 1, 0 1 0 2, 0 "
              "0 1 8\n");
    // A scale applies to the distances of the camera, and its matrix stays free of it. The second
    // camera looks straight down.
    EXPECT_EQ(
        linesOf("Separator { Scale { scaleFactor 2 2 2 } OrthographicCamera { height 3 "
                "nearDistance 1 farDistance 4 orientation 1 0 0 -1.5707963 } }",
                {"camera"}),
        "camera \"\" orthographic 6 aspect 0 from 2 to 8 matrix 1 0 0 0, 0 0 1 0, 0 -1 0 2\n");
    // Missing distances fit the scene: its farthest corner is 9 away, 1 2 2 times 3.
    EXPECT_EQ(linesOf("Separator { PerspectiveCamera { position 2 5 5 } Cube { } }", {"camera"}),
              "camera \"\" perspective 0.7854 aspect 0 from 0.0099 to 9.9 matrix 1 0 0 2, 0 1 0 5, "
              "0 0 1 5\n");
    EXPECT_EQ(
        linesOf("PerspectiveCamera { heightAngle 4 nearDistance 20 }", {"camera"}),
        "camera \"\" perspective 0.7854 aspect 0 from 20 to 40 matrix 1 0 0 0, 0 1 0 0, 0 0 1 "
        "1\n");
}

TEST(Viewpoints, CamerasOfASwitchAreListed) {
    const std::string cameras = "DEF a PerspectiveCamera { } DEF b Separator { Translation { "
                                "translation 7 0 0 } DEF c OrthographicCamera { } Sphere { } "
                                "PointLight { } Info { string \"no\" } } Switch { DEF d "
                                "PerspectiveCamera { } } ";
    const auto names = [&cameras](const std::string& which) {
        std::string found;
        const Model model = evaluated("Separator { DEF list Switch { whichChild " + which + ' ' +
                                      cameras + "} USE list Cube { } }");
        for (const Camera& camera : model.cameras) {
            found += camera.name;
        }
        return found + ' ' + std::to_string(model.instances.size()) + ' ' +
               std::to_string(model.lights.size()) + ' ' + std::to_string(model.infos.size());
    };
    // The active camera comes first, and again where the Switch is used again.
    EXPECT_EQ(names("-1"), "acd 1 0 0");
    EXPECT_EQ(names("0"), "acda 1 0 0");
    EXPECT_EQ(names("1"), "cadc 3 2 1");
}

TEST(Viewpoints, LightsShineAlongTheirDirection) {
    EXPECT_EQ(linesOf("Separator { DirectionalLight { color 1 0.5 0 intensity 0.5 } }",
                      {"light", "note"}),
              "light \"\" directional color 1 0.21404 0 intensity 0.5\n");
    // To the left: the light's -Z is the world's -X. So its Z is X and, with Y up, its X is -Z.
    EXPECT_EQ(linesOf("DirectionalLight { direction -3 0 0 }", {"light"}),
              "light \"\" directional color 1 1 1 intensity 1 matrix 0 0 1 0, 0 1 0 0, -1 0 0 0\n");
    EXPECT_EQ(linesOf("Group { Translation { translation 1 2 3 } DEF l PointLight { location 0 0 4 "
                      "} PointLight { on FALSE } }",
                      {"light"}),
              "light \"l\" point color 1 1 1 intensity 1 matrix 1 0 0 1, 0 1 0 2, 0 0 1 7\n");
    EXPECT_EQ(linesOf("SpotLight { location 0 0 0 dropOffRate 0.5 cutOffAngle 0.6 }", {"light"}),
              "light \"\" spot color 1 1 1 intensity 1 angles 0.3 0.6\n");
    EXPECT_EQ(linesOf("SpotLight { location 0 0 0 cutOffAngle 9 }", {"light"}),
              "light \"\" spot color 1 1 1 intensity 1 angles 1.55509 1.5708\n");
    EXPECT_EQ(linesOf("Separator { PointLight { } Separator { PointLight { } } }", {"note"}),
              "note approximated \"\": 1 light not limited: in the scene its effect ends with its "
              "Separator\n");
}

TEST(Viewpoints, InfoTextsAndNotesAreKept) {
    EXPECT_EQ(modelText(evaluated("DEF a Separator { DEF i Info { string \"made by hand\" } USE i "
                                  "Info { } Odd { fields [ ] } Odd { fields [ ] } "
                                  "WWWInline { name \"b.wrl\" bboxSize 1 1 1 } LOD { range [ 5 ] "
                                  "DEF near Group { } Cube { } } }")),
              "info \"made by hand\"\n"
              "note unsupported \"a\": nodes of the unknown class Odd left out\n"
              "note missing \"a\": inlined scene \"b.wrl\" not shown\n");
}

} // namespace
} // namespace meshcast::evaluate
