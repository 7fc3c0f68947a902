#include "tests/driver/scene_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// Converts each scene with the program. The stream, as geomtool lists it, must equal NAME.listing,
// and the messages must equal NAME.err. These files are next to the scene, or in expected/ for the
// examples; a missing file means no output. If MESHCAST_RERECORD is set, the files are written
// instead.
namespace {

class Scenes : public testing::TestWithParam<std::filesystem::path> {};
INSTANTIATE_TEST_SUITE_P(Files, Scenes, testing::ValuesIn(sceneFiles()),
                         [](const auto& test) { return testName(test.param); });

void compareOrRecord(const std::filesystem::path& expected, const std::string& found) {
    if (std::getenv("MESHCAST_RERECORD") == nullptr) {
        EXPECT_EQ(found, contents(expected)) << expected;
    } else if (found.empty()) {
        std::filesystem::remove(expected);
    } else {
        std::ofstream(expected, std::ios::binary) << found;
    }
}

int statusOf(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_P(Scenes, BecomeTheExpectedStreamAndMessages) {
    const std::filesystem::path scene = GetParam();
    const bool isExample = scene.parent_path() == EXAMPLES;
    const std::filesystem::path expected =
        std::filesystem::path(SCENES) / (isExample ? "expected" : "") / scene.stem();
    const std::string scratch =
        testing::TempDir() + testName(scene) + "." + std::to_string(getpid());
    const std::string stream = scratch + ".geom";

    EXPECT_EQ(statusOf(std::string(MESHCAST) + " <'" + scene.string() + "' >'" + stream + "' 2>'" +
                       scratch + ".err'"),
              0);
    EXPECT_EQ(statusOf(std::string(GEOMTOOL) + " info " + (isExample ? "" : "--values ") + "'" +
                       stream + "' >'" + scratch + ".listing'"),
              0);
    const bool isEmpty = std::filesystem::file_size(stream) == 0;
    compareOrRecord(expected.string() + ".listing", isEmpty ? "" : contents(scratch + ".listing"));
    compareOrRecord(expected.string() + ".err", contents(scratch + ".err"));
    for (const char* const ending : {".geom", ".err", ".listing"}) {
        std::filesystem::remove(scratch + ending);
    }
}

} // namespace
