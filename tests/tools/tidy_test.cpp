#include "tests/driver/scene_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Tests vrmltidy as a process. For each scene NAME.wrl of tests/scenes/tidy, the output must equal
// NAME.tidied and the messages NAME.err. A scene without NAME.tidied must be refused. If
// MESHCAST_RERECORD is set, these files are written instead.
namespace {

namespace fs = std::filesystem;

const fs::path kDirty = fs::path(SCENES) / "tidy";

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

/// Runs a shell command in a folder.
Outcome run(const std::string& command, const fs::path& folder = kDirty) {
    const fs::path errors =
        fs::path(testing::TempDir()) / ("tidy." + std::to_string(getpid()) + ".err");
    Outcome result{};
    std::FILE* const pipe =
        popen(std::string("cd '")
                  .append(folder.string() + "' && { " + command + "; } 2>'" + errors.string() + "'")
                  .c_str(),
              "r");
    std::array<char, 65536> block{};
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) {
        result.out.append(block.data(), size);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = contents(errors);
    fs::remove(errors);
    return result;
}

const std::string kTidy = VRMLTIDY " ";

std::vector<fs::path> dirtyFiles() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(kDirty)) {
        if (entry.path().extension() == ".wrl") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void compareOrRecord(fs::path expected, const char* ending, const std::string& found) {
    expected.replace_extension(ending);
    if (std::getenv("MESHCAST_RERECORD") == nullptr) {
        EXPECT_EQ(found, contents(expected)) << expected;
    } else if (found.empty()) {
        fs::remove(expected);
    } else {
        std::ofstream(expected, std::ios::binary) << found;
    }
}

class DirtyScenes : public testing::TestWithParam<fs::path> {};
INSTANTIATE_TEST_SUITE_P(Files, DirtyScenes, testing::ValuesIn(dirtyFiles()),
                         [](const auto& test) { return testName(test.param); });

TEST_P(DirtyScenes, AreRepaired) {
    const std::string name = GetParam().filename();
    const Outcome tidied = run(kTidy + name);
    compareOrRecord(GetParam(), ".tidied", tidied.out);
    compareOrRecord(GetParam(), ".err", tidied.err);
    EXPECT_EQ(tidied.status, name.starts_with("refused-") ? 1 : 0);
    if (tidied.status == 0) {
        const Outcome filtered = run(kTidy + "--quiet " + name + " | " MESHCAST " >/dev/null");
        EXPECT_EQ(filtered.err.find("read error"), std::string::npos) << filtered.err;
        const Outcome again = run(kTidy + "--quiet " + name + " | " + kTidy + "--strict");
        EXPECT_EQ(again.out + again.err, tidied.out);
    }
}

class CleanScenes : public testing::TestWithParam<fs::path> {};
INSTANTIATE_TEST_SUITE_P(Files, CleanScenes, testing::ValuesIn(sceneFiles()),
                         [](const auto& test) { return testName(test.param); });

TEST_P(CleanScenes, KeepTheirStream) {
    const std::string scene = std::string("'").append(GetParam().string()).append("'");
    const Outcome before = run(MESHCAST " <" + scene);
    if (before.err.find("read error") == std::string::npos) {
        EXPECT_EQ(run(kTidy + scene + " | " MESHCAST).out, before.out);
    }
}

TEST(VrmlTidy, InlinesScenes) {
    const fs::path folder = kDirty / "inline";
    for (const auto& [root, ending] : {std::pair("", ""), std::pair("--root .. ", ".wider")}) {
        const Outcome inlined = run(kTidy + "--inline " + root + "world.wrl", folder);
        compareOrRecord(folder / "world", (std::string(ending) + ".tidied").c_str(), inlined.out);
        compareOrRecord(folder / "world", (std::string(ending) + ".err").c_str(), inlined.err);
        EXPECT_EQ(inlined.status, 0);
    }
}

TEST(VrmlTidy, EndsWithTheDocumentedStatus) {
    struct Case {
        const char* command; ///< VRMLTIDY stands for the program.
        int status;
        const char* message; ///< The beginning of the error output.
    };
    const std::vector<Case> cases = {
        {"VRMLTIDY --quiet several-nodes.wrl >/dev/null", 0, ""},
        {"VRMLTIDY --strict several-nodes.wrl", 1,
         "several-nodes.wrl:4: put 3 top-level nodes into one Group\nseveral-nodes.wrl:5: dropped"},
        {"VRMLTIDY --strict --quiet several-nodes.wrl", 1,
         "vrmltidy: several-nodes.wrl: needs repairs, which --strict does not allow\n"},
        {"VRMLTIDY --strict several-nodes.tidied >/dev/null", 0, ""},
        {"VRMLTIDY <header-case.wrl >/dev/null", 0, "<stdin>:1: rewrote the header line"},
        {"VRMLTIDY nothing.wrl", 1, "vrmltidy: nothing.wrl: cannot be read: No such file"},
        {"VRMLTIDY .", 1, "vrmltidy: .: cannot be read: Is a directory"},
        {"VRMLTIDY several-nodes.tidied >/dev/full", 1,
         "vrmltidy: standard output: cannot be written: No space left"},
        {"VRMLTIDY -o nowhere/x.wrl several-nodes.tidied", 1,
         "vrmltidy: nowhere/x.wrl: cannot be written: No such file"},
        {"VRMLTIDY -o /dev/full several-nodes.tidied", 1, "vrmltidy: /dev/full: cannot be written"},
        {"VRMLTIDY --root . several-nodes.wrl", 2, "--root requires --inline"},
        {"VRMLTIDY --inline --root nowhere several-nodes.wrl", 1,
         "vrmltidy: nowhere: cannot be used as a root"},
        {"VRMLTIDY --no-such-option", 2, "The following argument was not expected"},
        {"VRMLTIDY a.wrl b.wrl", 2, "The following argument was not expected"},
        {"VRMLTIDY --help >/dev/null", 0, ""},
        {"VRMLTIDY --version >/dev/null", 0, ""},
        {"head -c 40000000 /dev/zero | gzip | VRMLTIDY", 1,
         "<stdin>:1: inflated gzip-compressed data\n<stdin>: 1 repair\n"
         "vrmltidy: <stdin>: inflates to more than 16777216 bytes"},
        {"yes 'Group {' | head -n 10000 | { echo '#VRML V1.0 ascii'; cat; } | VRMLTIDY >/dev/null",
         0, "<stdin>:10002: added 10000 missing closing braces\n<stdin>: 1 repair\n"},
        {"yes 'Group {' | head -n 10001 | { echo '#VRML V1.0 ascii'; cat; } | VRMLTIDY", 1,
         "vrmltidy: <stdin>: is nested deeper than 10000 levels\n"},
    };
    for (const Case& test : cases) {
        std::string command = test.command;
        for (std::size_t at; (at = command.find("VRMLTIDY")) != std::string::npos;) {
            command.replace(at, 8, VRMLTIDY);
        }
        const Outcome result = run(command);
        EXPECT_EQ(result.status, test.status) << test.command;
        EXPECT_EQ(result.err.substr(0, std::string(test.message).size()), test.message)
            << test.command;
        EXPECT_TRUE(*test.message != '\0' || result.err.empty()) << result.err;
        EXPECT_EQ(result.out, "") << test.command;
    }
}

TEST(VrmlTidy, ReplacesFilesAtomically) {
    const fs::path folder = fs::path(testing::TempDir()) / ("tidy." + std::to_string(getpid()));
    fs::create_directory(folder);
    const auto write = [&](const char* scene) {
        return run(kTidy + "--quiet -o '" + (folder / "x.wrl").string() + "' " + scene).status;
    };
    EXPECT_EQ(write("several-nodes.wrl"), 0);
    EXPECT_EQ(write("refused-xml.wrl"), 1);
    EXPECT_EQ(contents(folder / "x.wrl"), contents(kDirty / "several-nodes.tidied"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    fs::remove_all(folder);
}

} // namespace
