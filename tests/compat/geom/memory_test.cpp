#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr float kFloats[6] = {};
constexpr GEOMpacked_color kColors[2] = {};
constexpr std::int32_t kInts[] = {1, 1, 0};

// Makes an allocation of every kind, and makes each list that can grow do so.
void buildEverything() {
    const auto twice = [](const auto& add) { add(), add(); };
    const Object solid = make(GEOM_POLYHEDRON);
    twice([&] { GEOMadd_vertices(solid.get(), kFloats, 2, 0); });
    twice([&] { GEOMadd_colors(solid.get(), kColors, 2, 0); });
    twice([&] { GEOMadd_vertex_trans(solid.get(), kFloats, 2, 0); });
    twice([&] { GEOMadd_vertex_data(solid.get(), kInts, 2, 0); });
    twice([&] { GEOMadd_polygons(solid.get(), kInts, 0, 0); });
    twice([&] { GEOMadd_property(solid.get(), 1, 1); });
    GEOMgen_normals(solid.get(), 1);
    GEOMgen_normals(make(GEOM_POLYHEDRON).get(), 0);
    GEOMgen_normals(Object(GEOMcreate_mesh(nullptr, kFloats, 1, 2, 0)).get(), 0);
    const Object dots(GEOMcreate_sphere(nullptr, kFloats, kFloats, nullptr, nullptr, 2, 0));
    const Object lines = make(GEOM_POLYTRIANGLE);
    lines->flags = 0x1C8; // every sort of data that a strip can have
    twice([&] { GEOMadd_vertices(lines.get(), kFloats, 2, 0); });
    twice([&] { GEOMadd_polyline(lines.get(), kFloats, kFloats, 2, 0); });
    const Object labels(GEOMcreate_label(nullptr, 0));
    GEOMadd_label(labels.get(), "four", kFloats, kFloats, 1, kFloats, 1);
    GEOMtext_list& texts = labels->label.texts;
    for (; texts.used < texts.capacity; ++texts.used)
        texts.data[texts.used] = nullptr;
    GEOMadd_label(labels.get(), "four", kFloats, nullptr, 1, nullptr, -1);
}

// The messages of the process when allocation 1, 2, 3 ... fails, until there are no more
// allocations.
std::set<std::string> failuresOf(void (*build)()) {
    std::set<std::string> all;
    for (int n = 1, status = 1; status != 0; ++n) {
        const std::string said = written([&](int fd) {
            const pid_t child = fork();
            if (child == 0) {
                dup2(fd, STDERR_FILENO);
                allocationToFail = n;
                build();
                _exit(0);
            }
            EXPECT_EQ(waitpid(child, &status, 0), child);
        });
        EXPECT_EQ(status, said.empty() ? 0 : W_EXITCODE(1, 0));
        // addresses differ from child to child
        all.insert(std::regex_replace(said, std::regex("old ptr 0x[0-9a-f]+"), "old ptr"));
    }
    all.erase("");
    return all;
}

} // namespace

TEST(ExhaustedMemory, EndsTheProcessWithAMessage) {
    const std::set<std::string> failures = failuresOf(buildEverything);
    EXPECT_EQ(failures.size(), 45u); // a message that another place prints too would be missing
    EXPECT_TRUE(
        failures.contains("compat/geom/create line 304, 280 bytes\n"
                          "GEOM fatal error: GEOMcreate_obj: malloc failed creating object\n"));
    const std::regex first("compat/geom/\\w+ line \\d+, \\d+ bytes\nGEOM fatal error: .*\n");
    const std::regex grown("compat/geom/\\w+ line \\d+, \\d+ bytes, old ptr\n"
                           "GEOM fatal error: .*realloc.*\n");
    for (const std::string& said : failures)
        EXPECT_TRUE(std::regex_match(said, said.find("realloc") == said.npos ? first : grown))
            << said;
    // a size that overflows is an error
    const Object obj(GEOMcreate_mesh(nullptr, kFloats, 1, 1, 0));
    EXPECT_EXIT(GEOMadd_vertices(obj.get(), kFloats, INT64_MAX, 0), testing::ExitedWithCode(1),
                "create line 1832, 9223372036854775807 bytes, old ptr");
}
