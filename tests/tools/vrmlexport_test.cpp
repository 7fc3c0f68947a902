#include "tests/driver/scene_files.h"
#include "tests/support/glb.h"
#include "tests/support/shell.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <vector>

// Tests vrmlexport and `geomtool export` as processes: outputs, messages and statuses.
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

/// Each test has a temporary folder.
class VrmlExport : public testing::Test {
protected:
    ~VrmlExport() override { fs::remove_all(folder); }

    ShellOutcome run(const std::string& arguments) const {
        // Graphics drivers leak some memory, so leaks are not checked for pictures.
        return runShell(std::string("ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=")
                            .append(arguments.find(".png") == std::string::npos ? "1 " : "0 ")
                            .append(VRMLEXPORT " ")
                            .append(arguments),
                        folder);
    }
    void put(const std::string& name, const std::string& text) const {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::string get(const std::string& name) const { return contents(folder / name); }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path folder = [] {
        std::string name = testing::TempDir() + "vrmlexport-XXXXXX";
        return fs::path(mkdtemp(name.data()));
    }();
};

const std::string kHeader = "#VRML V1.0 ascii\n";
const std::string kCube = kHeader + "Separator { Cube { } }\n";

TEST_F(VrmlExport, ChoosesTheFormatByNameOrOption) {
    put("cube.wrl", kCube);
    for (const char* const name :
         {"a.glb", "a.OBJ", "--format stl -- -odd", "--format ply b.txt"}) {
        const ShellOutcome outcome = run(std::string("cube.wrl ") + name);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.out + outcome.err,
                  name == std::string("--format stl -- -odd")
                      ? "cube.wrl: 1 material is left out: stl files hold none\n"
                      : "");
    }
    EXPECT_TRUE(get("a.glb").starts_with("glTF"));
    EXPECT_THAT(get("a.OBJ"), HasSubstr("mtllib a.mtl"));
    EXPECT_EQ(get("-odd").size(), 84U + 12 * 50);
    EXPECT_TRUE(get("b.txt").starts_with("ply\n"));
    EXPECT_EQ(run("--format glb - - <cube.wrl").out, run("--format glb cube.wrl -").out);
    EXPECT_EQ(loadedGlb(run("--format glb - - <cube.wrl").out).scenes.at(0).name, "scene");
}

TEST_F(VrmlExport, DrawsPicturesOfTheGivenSize) {
    put("cube.wrl", kCube);
    ASSERT_EQ(run("--size 300x2 --background transparent --view top cube.wrl a.png").status, 0);
    const std::string png = get("a.png");
    EXPECT_EQ(png.substr(12, 14), std::string("IHDR\0\0\1\x2C\0\0\0\2\x08\6", 14));
    for (const char* const wrong :
         {"--size 0x1", "--size 9000x1", "--size 5", "--size 1x2x3", "--size 1x", "--size '1 x1'",
          "--background red", "--background '#12345'", "--background '#+12345'"}) {
        const ShellOutcome outcome = run(std::string(wrong) + " cube.wrl b.png");
        EXPECT_EQ(outcome.status, 2) << wrong;
        EXPECT_THAT(outcome.err, HasSubstr(": ")) << wrong;
    }
    const ShellOutcome noView = run("--view 'x\033y' cube.wrl b.png");
    EXPECT_EQ(noView.status, 1);
    EXPECT_EQ(noView.err, "vrmlexport: b.png: cannot be written: there is no view \"x?y\": it can "
                          "be fit, front, top, left; the scene has no cameras\n");
    const ShellOutcome noDriver =
        runShell("__EGL_VENDOR_LIBRARY_FILENAMES=/nowhere " VRMLEXPORT " cube.wrl b.png", folder);
    EXPECT_EQ(noDriver.status, 1);
    EXPECT_THAT(noDriver.err, HasSubstr("no driver for OpenGL ES 3.0 can be used"));
    EXPECT_EQ(files(), (std::vector<std::string>{"a.png", "cube.wrl"}));
}

TEST_F(VrmlExport, ReportsWrongUsage) {
    put("cube.wrl", kCube);
    EXPECT_THAT(run("cube.wrl").err, HasSubstr("OUTPUT is required"));
    EXPECT_THAT(run("cube.wrl -").err, HasSubstr("does not say which format"));
    EXPECT_THAT(run("cube.wrl 'a.x\033y'").err, HasSubstr("\"x?y\" is not a format"));
    EXPECT_EQ(run("cube.wrl a.xyz").status, 2);
    EXPECT_EQ(run("--segments 2 cube.wrl a.glb").status, 2);
    EXPECT_EQ(files(), std::vector<std::string>{"cube.wrl"});
}

TEST_F(VrmlExport, LeavesFilesUnchangedOnFailure) {
    put("other.wrl", "#VRML V2.0 utf8\nShape { }\n");
    put("cube.wrl", kCube);
    put("old.glb", "old");
    EXPECT_EQ(run("other.wrl old.glb").status, 1);
    EXPECT_EQ(run("none.wrl old.glb").err,
              "vrmlexport: none.wrl: cannot be read: No such file or directory\n");
    EXPECT_EQ(run("cube.wrl none/a.glb").status, 1);
    EXPECT_THAT(run("cube.wrl --format gltf -").err, HasSubstr("several files"));
    EXPECT_THAT(run("cube.wrl --format glb - >/dev/full").err, HasSubstr("No space left"));
    EXPECT_EQ(get("old.glb"), "old");
    EXPECT_EQ(files(), (std::vector<std::string>{"cube.wrl", "old.glb", "other.wrl"}));
}

TEST_F(VrmlExport, RepairsUnlessStrict) {
    put("two.wrl", kHeader + "Cube { }\nSphere { radius 1,5 }\nConeOfLight { }\n");
    const ShellOutcome repaired = run("two.wrl a.glb");
    EXPECT_EQ(repaired.status, 0);
    EXPECT_THAT(repaired.err, HasSubstr("two.wrl:3: "));
    EXPECT_THAT(repaired.err, HasSubstr("repairs\n"));
    EXPECT_EQ(loadedGlb(get("a.glb")).nodes.size(), 2U);
    EXPECT_EQ(run("--quiet two.wrl a.glb").err, "");

    put("bad.wrl", kHeader + "Separator { Cube { size 2 } }\n");
    const ShellOutcome strict = run("--strict bad.wrl b.glb");
    EXPECT_EQ(strict.status, 1);
    EXPECT_THAT(strict.err, HasSubstr("Unknown field"));
    EXPECT_THAT(strict.err, HasSubstr("cannot be read without repairs"));
    EXPECT_FALSE(fs::exists(folder / "b.glb"));
    EXPECT_EQ(run("bad.wrl b.glb").status, 0);
}

TEST_F(VrmlExport, InlinesScenesFromTheRootOnly) {
    put("world/main.wrl", kHeader + "Separator { WWWInline { name \"part.wrl\" } "
                                    "WWWInline { name \"../outside.wrl\" } }\n");
    put("world/part.wrl", kCube);
    put("outside.wrl", kCube);
    const ShellOutcome inside = run("world/main.wrl a.glb");
    EXPECT_EQ(inside.status, 0);
    EXPECT_EQ(loadedGlb(get("a.glb")).nodes.size(), 1U) << inside.err;
    EXPECT_THAT(inside.err, HasSubstr("outside.wrl"));
    EXPECT_EQ(run("--root . world/main.wrl a.glb").status, 0);
    EXPECT_EQ(loadedGlb(get("a.glb")).nodes.size(), 2U);
    // Names of images are relative to the scene that names them.
    put("world/parts/textured.wrl",
        kHeader + "Separator { Texture2 { filename dot.png } Cube { } }\n");
    put("world/parts/dot.png", "no image");
    put("world/more.wrl", kHeader + "Separator { WWWInline { name \"parts/textured.wrl\" } }\n");
    EXPECT_THAT(run("world/more.wrl a.glb").err,
                HasSubstr("\"parts/dot.png\" is an image of an unknown kind"));
    EXPECT_THAT(run("--no-inline world/main.wrl a.glb").err, HasSubstr("no shapes"));
    EXPECT_EQ(loadedGlb(get("a.glb")).nodes.size(), 0U);
}

TEST_F(VrmlExport, WritesAJsonReport) {
    put("scene.wrl", kHeader + "Separator { Translation { translation 1 0 0 } DEF Box Cube { }\n"
                               "Texture2 { filename \"none.png\" } Sphere { radius 1,5 } }\n");
    const ShellOutcome outcome = run("--segments 8 --report report.json scene.wrl a.stl");
    const auto report = nlohmann::json::parse(get("report.json"));
    EXPECT_EQ(report["scene"], "scene.wrl");
    EXPECT_EQ(report["written"], true);
    EXPECT_EQ(report["repairs"].at(0)["line"], 3);
    EXPECT_EQ(report["counts"]["instances"], 2);
    EXPECT_EQ(report["counts"]["triangles"], 12 + 8 * 2 + 8 * 2 * 2);
    EXPECT_EQ(report["bounds"]["min"][1], -1.5);
    EXPECT_EQ(report["bounds"]["max"][0], 2.5);
    EXPECT_THAT(report["notes"].dump(), HasSubstr("none.png"));
    for (const auto& note : report["notes"]) {
        EXPECT_THAT(outcome.err, HasSubstr(note["text"].get<std::string>()));
    }
    put("other.wrl", "#VRML V2.0 utf8\n");
    EXPECT_EQ(run("--report failed.json other.wrl a.stl").status, 1);
    const auto failed = nlohmann::json::parse(get("failed.json"));
    EXPECT_EQ(failed["written"], false);
    EXPECT_THAT(failed["failure"].get<std::string>(), HasSubstr("VRML 2.0"));
}

TEST_F(VrmlExport, EscapesControlCharactersOfScenes) {
    put("odd\033[2J.wrl", kHeader +
                              "Separator { DEF a\033c Cube { } Texture2 { filename \"\033x\" } "
                              "Sphere { } }\n");
    const ShellOutcome outcome = run("odd*.wrl a.obj");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err.find('\033'), std::string::npos) << outcome.err;
    EXPECT_EQ(get("a.obj").find('\033'), std::string::npos);
}

TEST_F(VrmlExport, LimitsRepeatedNodes) {
    std::string text = kHeader + "Separator { DEF n0 Separator { Cube { } }\n";
    for (int i = 0; i < 21; ++i) {
        const std::string below = "USE n" + std::to_string(i);
        text += "DEF n" + std::to_string(i + 1) + " Separator { " + below + " " + below + " }\n";
    }
    put("doubling.wrl", text + "}\n");
    const ShellOutcome outcome = run("--report r.json doubling.wrl a.glb");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(get("r.json"), HasSubstr("\"kind\":\"limit\""));
    EXPECT_THAT(run("doubling.wrl a.obj").err, HasSubstr("vertices"));
}

#ifndef __SANITIZE_ADDRESS__ // The sanitizer needs too much memory itself.
// A software renderer accepts triangles faster than it draws them.
TEST_F(VrmlExport, LimitsTheMemoryOfTheRenderer) {
    std::string text = kHeader + "Separator {\n";
    for (int i = 0; i < 40; ++i) {
        text += "Sphere { }\n";
    }
    put("spheres.wrl", text + "}\n");
    // The peak of memory is known for all child processes together, so this statement runs in a
    // process of its own.
    EXPECT_EXIT(
        {
            const int status = run("--size 64x48 --segments 256 spheres.wrl a.png").status;
            struct rusage used {};
            getrusage(RUSAGE_CHILDREN, &used);
            constexpr long kMostKilobytes = 300'000;
            std::_Exit(status == 0 && used.ru_maxrss < kMostKilobytes ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

class ExportedScenes : public testing::TestWithParam<fs::path> {};
INSTANTIATE_TEST_SUITE_P(Files, ExportedScenes, testing::ValuesIn(sceneFiles()),
                         [](const auto& test) { return testName(test.param); });

// Every exported file can be read by an independent implementation and has as many nodes as the
// report counts.
TEST_P(ExportedScenes, CanBeLoaded) {
    const std::string scene = "'" + GetParam().string() + "'";
    const ShellOutcome glb =
        runShell(VRMLEXPORT " --format glb --report /dev/stderr --quiet " + scene + " -",
                 testing::TempDir());
    if (glb.status == 0) {
        const auto counts = nlohmann::json::parse(glb.err)["counts"];
        const auto nodes = counts["instances"].get<std::size_t>() +
                           counts["cameras"].get<std::size_t>() +
                           counts["lights"].get<std::size_t>();
        EXPECT_EQ(loadedGlb(glb.out).nodes.size(), nodes);
    } else {
        EXPECT_EQ(glb.out, "");
        EXPECT_THAT(glb.err, HasSubstr("vrmlexport: "));
    }
    const ShellOutcome stream =
        runShell(MESHCAST " <" + scene + " 2>/dev/null | " GEOMTOOL " export --format glb - -",
                 testing::TempDir());
    EXPECT_EQ(stream.status, 0) << stream.err;
    loadedGlb(stream.out);
}

TEST_F(VrmlExport, GeomtoolExportsObjectsAsTheStreamHasThem) {
    put("scene.wrl", kHeader + "Separator { Translation { translation 9 0 0 } Cube { } Sphere { }\n"
                               "Coordinate3 { point [ 0 0 0, 1 0 0, 1 2 0 ] }\n"
                               "IndexedLineSet { coordIndex [ 0, 1, 2, -1 ] }\n"
                               "PointSet { numPoints 1 } }\n");
    const std::string stream = "<scene.wrl " MESHCAST " | ";
    const ShellOutcome outcome = runShell(
        stream + GEOMTOOL " export - a.glb && " + stream + GEOMTOOL " export - a.obj", folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const tinygltf::Model gltf = loadedGlb(get("a.glb"));
    std::vector<std::string> names;
    for (const auto& node : gltf.nodes) {
        names.push_back(node.name);
    }
    EXPECT_THAT(names, testing::ElementsAre("object 1 (polyhedron)", "object 2 (sphere)",
                                            "object 3 (polytriangle)", "object 4 (sphere)"));
    EXPECT_THAT(gltf.accessors.at(0).maxValues, testing::ElementsAre(1, 1, 1)) << "not moved";
    EXPECT_EQ(gltf.nodes[1].mesh, gltf.nodes[3].mesh) << "spheres share a mesh";
    EXPECT_EQ(gltf.nodes[3].matrix.at(0), 0.01);
    EXPECT_THAT(get("a.obj"), HasSubstr("g object_1_(polyhedron)\n"));

    const ShellOutcome broken =
        runShell(stream + "head -c -10 | " GEOMTOOL " export - b.glb", folder);
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.err, HasSubstr("offset "));
    EXPECT_EQ(loadedGlb(get("b.glb")).nodes.size(), 3U) << "the objects before the damage";
}

} // namespace
