#include "tests/compat/geom/harness.h"

#include <gmock/gmock.h>

#include <limits>
#include <regex>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr float kFloats[6] = {};
constexpr GEOMpacked_color kColors[2] = {};
constexpr std::int32_t kInts[] = {1, 1, 0};

// Needs every sort of block once and, where it can grow, once more. The objects live as long as
// the process that builds them, which is short.
void build_everything() {
    const auto twice = [](const auto& add) { add(), add(); };
    GEOMobj* obj = GEOMcreate_obj(GEOM_POLYHEDRON, nullptr);
    twice([obj] { GEOMadd_vertices(obj, kFloats, 2, 0); });
    twice([obj] { GEOMadd_colors(obj, kColors, 2, 0); });
    twice([obj] { GEOMadd_vertex_trans(obj, kFloats, 2, 0); });
    twice([obj] { GEOMadd_vertex_data(obj, kInts, 2, 0); });
    twice([obj] { GEOMadd_polygons(obj, kInts, 0, 0); });
    twice([obj] { GEOMadd_property(obj, 1, 1); });
    GEOMgen_normals(obj, 1);
    GEOMgen_normals(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr), 0);
    GEOMgen_normals(GEOMcreate_mesh(nullptr, kFloats, 1, 2, 0), 0);

    obj = GEOMcreate_obj(GEOM_POLYTRIANGLE, nullptr);
    obj->flags = 0x1C8; // every sort of data that a strip can have
    twice([obj] { GEOMadd_vertices(obj, kFloats, 2, 0); });
    twice([obj] { GEOMadd_polyline(obj, kFloats, kFloats, 1, 0); });

    obj = GEOMcreate_label(nullptr, 0);
    GEOMadd_label(obj, "four", kFloats, kFloats, 1, kFloats, 1);
    obj->label.texts.used = obj->label.texts.capacity;
    GEOMadd_label(obj, "four", kFloats, nullptr, 1, nullptr, -1);
}

// What the process says when allocation 1, 2, 3 ... fails, until none is left to fail: a line each,
// different ones only, without old pointers and without line numbers that follow the source.
std::string failures_of(void (*build)()) {
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
            EXPECT_TRUE(status == 0 || (WIFEXITED(status) && WEXITSTATUS(status) == 1)) << status;
        });
        said = std::regex_replace(said, std::regex("(norm|create) line \\d\\d,"), "$1 line *,");
        said = std::regex_replace(said, std::regex("old ptr 0x[0-9a-f]+\n"), "old ptr *\n");
        said = std::regex_replace(said, std::regex("\nGEOM fatal error"), "");
        if (all.find(said) == std::string::npos)
            all += said;
    }
    return all;
}

} // namespace

TEST(ExhaustedMemory, EndsTheProcessWithItsLineAndWords) {
    EXPECT_EQ(
        failures_of(build_everything),
        R"(compat/geom/create line 304, 280 bytes: GEOMcreate_obj: malloc failed creating object
compat/geom/create line 1824, 24 bytes: malloc failed adding vertices
compat/geom/create line 1832, 48 bytes, old ptr *: malloc failed reallocing vertices
compat/geom/create line 1708, 24 bytes: malloc failed adding vertices
compat/geom/create line 1716, 48 bytes, old ptr *: malloc failed reallocing vertices
compat/geom/create line 1746, 8 bytes: malloc failed adding scalars
compat/geom/create line 1754, 16 bytes, old ptr *: malloc failed reallocing scalars
compat/geom/create line 1785, 8 bytes: malloc failed adding ints
compat/geom/create line 1793, 16 bytes, old ptr *: malloc failed reallocing ints
compat/geom/create line 1615, 24 bytes: malloc fails allocating plist
compat/geom/create line 1917, 40 bytes, old ptr *: reallocing plist fails
compat/geom/prop line 97, 12 bytes: malloc fails allocating a geom val
compat/geom/prop line 88, 24 bytes, old ptr *: reallocating a value list fails
compat/geom/norm line *, 24 bytes: can't alloc new verts
compat/geom/norm line *, 24 bytes: can't alloc new colors
compat/geom/norm line *, 8 bytes: can't alloc vdata
compat/geom/norm line *, 8 bytes: can't alloc vtrans
compat/geom/norm line *, 24 bytes: can't allocate new norm
compat/geom/norm line *, 8 bytes: malloc fails allocating new normals
compat/geom/norm line *, 24 bytes: Can't alloc mesh normals
compat/geom/create line *, 24 bytes: alloc fails on ptri v list
compat/geom/create line *, 24 bytes: alloc fails on ptri vt list
compat/geom/create line *, 24 bytes: alloc fails on ptri vd list
compat/geom/create line *, 24 bytes: alloc fails on ptri pd list
compat/geom/create line 1673, 24 bytes: malloc fails allocating vert list
compat/geom/create line *, 48 bytes, old ptr *: realloc fails on ptri vert list
compat/geom/create line *, 48 bytes, old ptr *: realloc fails on ptri uv list
compat/geom/create line *, 48 bytes, old ptr *: realloc fails on ptri vdata list
compat/geom/create line *, 48 bytes, old ptr *: realloc fails on ptri pdata list
compat/geom/create line *, 48 bytes, old ptr *: realloc fails on ptri vtrans list
compat/geom/create line 924, 24 bytes: alloc fails on pl v list
compat/geom/create line 926, 24 bytes: alloc fails on pl c list
compat/geom/create line 928, 24 bytes: alloc fails on pl vd list
compat/geom/create line 930, 24 bytes: alloc fails on pl pp list
compat/geom/create line 1673, 12 bytes: malloc fails allocating vert list
compat/geom/create line 912, 48 bytes, old ptr *: realloc fails on pl vert list
compat/geom/create line 915, 48 bytes, old ptr *: realloc fails on pl color list
compat/geom/create line 918, 48 bytes, old ptr *: realloc fails on pl vdata list
compat/geom/create line 921, 48 bytes, old ptr *: realloc fails on pl pdata list
compat/geom/create line 1824, 1200 bytes: malloc failed adding vertices
compat/geom/create line 1746, 400 bytes: malloc failed adding scalars
compat/geom/create line 2049, 5 bytes: can't allocate label name
compat/geom/create line 2053, 800 bytes: can't alloc label list
compat/geom/create line 1785, 400 bytes: malloc failed adding ints
compat/geom/create line 2062, 1600 bytes, old ptr *: can't realloc label list
)");
    // a size that does not fit is not asked for
    const Object obj(GEOMcreate_mesh(nullptr, kFloats, 1, 1, 0));
    EXPECT_EXIT(GEOMadd_vertices(obj.get(), kFloats, std::numeric_limits<std::int64_t>::max(), 0),
                testing::ExitedWithCode(1), "create line 1832, 9223372036854775807 bytes");
}
