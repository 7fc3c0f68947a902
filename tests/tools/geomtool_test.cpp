#include "tests/support/records.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using testing::HasSubstr;

struct Outcome {
    int status;
    std::string out, err;
    long peak; ///< memory, kilobytes
};

std::string contents(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// Runs the program in a folder that has these bytes in the file `stream`. The arguments may
/// contain redirections, and the text `before` may be a command that ends with a pipe.
class Geomtool : public testing::Test {
protected:
    ~Geomtool() override { std::filesystem::remove_all(folder); }

    Outcome run(const std::string& arguments, const std::vector<std::byte>& stream = {},
                const std::string& before = "") const {
        std::ofstream file(folder + "/stream", std::ios::binary);
        for (const std::byte byte : stream)
            file.put(static_cast<char>(byte));
        file.close();
        const std::string command = "cd '" + folder + "' && exec 2>err >out && " + before + "'" +
                                    GEOMTOOL_PROGRAM + "' " + arguments;
        const pid_t child = fork();
        if (child == 0) {
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(127);
        }
        int status = 0;
        rusage usage{}; // of the child and its own children
        wait4(child, &status, 0, &usage);
        return {WEXITSTATUS(status), contents(folder + "/out"), contents(folder + "/err"),
                usage.ru_maxrss};
    }

    std::string folder = [] {
        std::string name = testing::TempDir() + "geomtool-XXXXXX";
        return std::string(mkdtemp(name.data()));
    }();
};

constexpr const char* polyhedron_listing = R"(object 1: polyhedron, version 10, offset 0, 204 bytes
  name       "Ab"
  flags      colours|uvs|uvws|primitive-data|vertex-data (0xce)
  counts     polygons 2, indices 2, vertices 1
  property   kind 6, value 4, 3 bytes
  extent     -1 0 0 .. 1 0 0
  bytecount  76
  bounds     0 0 1 .. 0 0 1
  note       polygon list ends after 1 of 2 polygons
1 object, 204 bytes
)";

constexpr const char* label_listing = R"(object 1: label, version 7, offset 0, 137 bytes
  flags      none (0x0)
  counts     labels 2
  label      font 129 Courier, centred, drop shadow (0x9081)
  bytecount  25
  bounds     0 0 0 .. 0 0 0
  texts
    1  ""
    2  "\xff"
  positions
    1  0 0 0
    2  0 0 0
  offsets
    1  0 0 0
    2  0 0 0
  heights
    1  0
    2  0
1 object, 137 bytes
)";

TEST_F(Geomtool, ListsObjectsAsText) {
    EXPECT_EQ(run("info stream", records::named("polyhedron 10").bytes).out, polyhedron_listing);
    EXPECT_EQ(run("info --values - <stream", records::named("label 7").bytes).out, label_listing);
    const Outcome odd = run("info --values stream", records::named("polyhedron 7").bytes);
    EXPECT_THAT(odd.out, HasSubstr("  bounds     0 0 0 .. 0 inf 0\n"
                                   "  note       vertex numbers outside 1 to 2: 1\n"));
    EXPECT_THAT(odd.out, HasSubstr("    2  nan inf -0\n"));
    std::vector<std::byte> miscounted = records::named("sphere 10").bytes;
    miscounted[51] = std::byte{5};
    EXPECT_THAT(run("info stream", miscounted).out,
                HasSubstr("note       bytecount should be 4\n"));
}

TEST_F(Geomtool, ListsObjectsAsJson) {
    const auto stream = records::all();
    const auto json = nlohmann::json::parse(run("info --json --values <stream", stream.bytes).out);
    EXPECT_EQ(json["total"], (nlohmann::json{{"objects", 10},
                                             {"vertices", 18},
                                             {"polygons", 3},
                                             {"bytes", 1667},
                                             {"stream_bytes", 1667}}));
    const auto totals = nlohmann::json::parse(run("info --json --totals stream", stream.bytes).out);
    EXPECT_EQ(totals, (nlohmann::json{{"total", json["total"]}, {"error", nullptr}}));
    EXPECT_EQ(json["error"], nullptr);
    const auto& polyhedron = json["objects"].at(5);
    EXPECT_EQ(polyhedron["kind"], "polyhedron");
    EXPECT_EQ(polyhedron["values"]["polygons"], (nlohmann::json{{2, -1}}));
    EXPECT_EQ(polyhedron["values"]["vertices"].dump(), R"([[0.0,0.0,0.0],["nan","inf",-0.0]])");
    EXPECT_EQ(json["objects"].at(6)["values"]["strips"].at(0)["vertex-trans"].dump(),
              "[0.0,0.0,0.25]");
    EXPECT_EQ(json["objects"].at(9)["values"]["radii"].dump(), "[0.01]");

    auto cut = stream.bytes;
    cut.resize(300);
    const auto broken = nlohmann::json::parse(run("info --json stream", cut).out);
    EXPECT_EQ(broken["objects"].size(), 2U);
    EXPECT_EQ(broken["error"]["offset"], 297);
}

TEST_F(Geomtool, ReturnsTheDocumentedStatus) {
    const Outcome empty = run("info <stream");
    EXPECT_EQ(empty.status, 0);
    EXPECT_EQ(empty.out, "0 objects, 0 bytes\n");
    EXPECT_EQ(run("info --totals stream").out,
              "objects   0\nvertices  0\npolygons  0\nbytes     0\n");

    auto cut = records::named("label 7").bytes;
    cut.insert(cut.end(), 3, std::byte{0});
    const Outcome broken = run("info stream", cut);
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.out.ends_with("\n1 object, 137 of 140 bytes\n")) << broken.out;
    EXPECT_EQ(broken.err, "geomtool: stream: offset 137: expected magic (4 bytes), 3 bytes left\n");

    EXPECT_EQ(run("info absent").err, "geomtool: cannot read absent: No such file or directory\n");
    for (const char* arguments : {"", "info absent", "info .", "info --wrong", "info stream more",
                                  "frobnicate", "info stream >/dev/full"})
        EXPECT_EQ(run(arguments).status, 2) << arguments;
    EXPECT_EQ(run("info --json .").out, "");
    EXPECT_EQ(run("info --help").status, 0);
    EXPECT_TRUE(run("--version").out.starts_with("geomtool "));
}

// A stream of 200 MB in records of 1 MB, and a record of 72 bytes that declares an array of 400 MB.
TEST_F(Geomtool, NeedsMemoryForTheLargestRecordOnly) {
    // The address sanitizer keeps freed memory in its quarantine.
    setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1);
    const std::string header = records::header10("z3 20", "z3 04", "0004");
    const Outcome many = run("info --totals", records::fromHex(header + "z5 015180 z1036800").bytes,
                             "for i in $(seq 200); do cat stream; done | ");
    EXPECT_EQ(many.out, "objects   200\nvertices  0\npolygons  0\nbytes     207374400\n");
    EXPECT_LT(many.peak, 100'000);
    const Outcome claim = run("info stream", records::fromHex(header + "z4 02000000").bytes);
    EXPECT_THAT(claim.err, HasSubstr("expected 33554432 centres of 12 bytes each, 0 bytes left"));
    EXPECT_LT(claim.peak, 100'000);
}

} // namespace
