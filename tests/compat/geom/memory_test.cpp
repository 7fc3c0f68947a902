#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <regex>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr float kFloats[6] = {};
constexpr GEOMpacked_color kColors[2] = {};
constexpr std::int32_t kInts[] = {1, 1, 0};

// Needs every sort of block once and, where it can grow, once more.
void build_everything() {
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

// What the process says when allocation 1, 2, 3 ... fails, until none is left to fail: line, bytes
// and words, each once. Line numbers that follow the source are left out.
std::string failures_of(void (*build)()) {
    const std::regex form(
        "compat/geom/(?:(?:norm|create) line \\d\\d|(?:create|prop) line (\\d+)), "
        "(\\d+) bytes(, old ptr 0x[0-9a-f]+)?\nGEOM fatal error: (.*)\n");
    std::string all;
    for (int n = 1, status = 1; status != 0; ++n) {
        std::string said = written([&](int fd) {
            const pid_t child = fork();
            if (child == 0) {
                dup2(fd, STDERR_FILENO);
                allocation_to_fail = n;
                build();
                _exit(0);
            }
            EXPECT_EQ(waitpid(child, &status, 0), child);
        });
        EXPECT_EQ(status, said.empty() ? 0 : W_EXITCODE(1, 0));
        EXPECT_EQ(said.find("realloc") == said.npos, said.find("old ptr") == said.npos) << said;
        said = std::regex_replace(said, form, "$1 $2 $4\n");
        if (all.find(said) == std::string::npos)
            all += said;
    }
    return all;
}

} // namespace

TEST(ExhaustedMemory, EndsTheProcessWithItsLineAndWords) {
    EXPECT_EQ(failures_of(build_everything),
              "304 280 GEOMcreate_obj: malloc failed creating object\n"
              "1824 24 malloc failed adding vertices\n1832 48 malloc failed reallocing vertices\n"
              "1708 24 malloc failed adding vertices\n1716 48 malloc failed reallocing vertices\n"
              "1746 8 malloc failed adding scalars\n1754 16 malloc failed reallocing scalars\n"
              "1785 8 malloc failed adding ints\n1793 16 malloc failed reallocing ints\n"
              "1615 24 malloc fails allocating plist\n1917 40 reallocing plist fails\n"
              "97 12 malloc fails allocating a geom val\n88 24 reallocating a value list fails\n"
              " 24 can't alloc new verts\n 24 can't alloc new colors\n 8 can't alloc vdata\n"
              " 8 can't alloc vtrans\n 24 can't allocate new norm\n"
              " 8 malloc fails allocating new normals\n 24 Can't alloc mesh normals\n"
              " 24 alloc fails on ptri v list\n 24 alloc fails on ptri vt list\n"
              " 24 alloc fails on ptri vd list\n 24 alloc fails on ptri pd list\n"
              "1673 24 malloc fails allocating vert list\n 48 realloc fails on ptri vert list\n"
              " 48 realloc fails on ptri uv list\n 48 realloc fails on ptri vdata list\n"
              " 48 realloc fails on ptri pdata list\n 48 realloc fails on ptri vtrans list\n"
              "924 24 alloc fails on pl v list\n926 24 alloc fails on pl c list\n"
              "928 24 alloc fails on pl vd list\n930 24 alloc fails on pl pp list\n"
              "912 48 realloc fails on pl vert list\n915 48 realloc fails on pl color list\n"
              "918 48 realloc fails on pl vdata list\n921 48 realloc fails on pl pdata list\n"
              "1824 1200 malloc failed adding vertices\n1746 400 malloc failed adding scalars\n"
              "2049 5 can't allocate label name\n2053 800 can't alloc label list\n"
              "1785 400 malloc failed adding ints\n2062 1600 can't realloc label list\n");
    // a size that does not fit is not asked for
    const Object obj(GEOMcreate_mesh(nullptr, kFloats, 1, 1, 0));
    EXPECT_EXIT(GEOMadd_vertices(obj.get(), kFloats, INT64_MAX, 0), testing::ExitedWithCode(1),
                "create line 1832, 9223372036854775807 bytes, old ptr");
}
