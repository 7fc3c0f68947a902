#include "tests/compat/geom/harness.h"

#include <algorithm>
#include <limits>

// Every documented end for want of memory: its memory line and its words.

namespace {

constexpr float kFloats[100] = {};
constexpr GEOMpacked_color kColors[2] = {};
constexpr std::int32_t kInts[] = {1, 1, 0};

using Act = void (*)(GEOMobj*);

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

constexpr Act none = [](GEOMobj*) {};
constexpr Act object = [](GEOMobj*) { make(1); };
constexpr Act verts = [](GEOMobj* o) { GEOMadd_vertices(o, kFloats, 2, 0); };
constexpr Act toomany = [](GEOMobj* o) { GEOMadd_vertices(o, kFloats, kMost, 0); };
constexpr Act colors = [](GEOMobj* o) { GEOMadd_colors(o, kColors, 2, 0); };
constexpr Act radii = [](GEOMobj* o) { GEOMadd_radii(o, kFloats, 2, 0); };
constexpr Act data = [](GEOMobj* o) { GEOMadd_vertex_data(o, kInts, 2, 0); };
constexpr Act polys = [](GEOMobj* o) { GEOMadd_polygons(o, kInts, 0, 0); };
constexpr Act line = [](GEOMobj* o) { GEOMadd_polyline(o, kFloats, kFloats, 2, 0); };
constexpr Act value = [](GEOMobj* o) { GEOMadd_property(o, 1, 1); };
constexpr Act label = [](GEOMobj* o) { GEOMadd_label(o, "four", kFloats, kFloats, 1, kFloats, 1); };
constexpr Act labels = [](GEOMobj* o) { std::for_each_n(kFloats, 100, [o](float) { label(o); }); };
constexpr Act smooth = [](GEOMobj* o) { GEOMgen_normals(o, 0); };
constexpr Act facets = [](GEOMobj* o) { GEOMgen_normals(o, 1); };
constexpr Act solid = [](GEOMobj* o) { verts(o), polys(o); };
constexpr Act mesh = [](GEOMobj* o) { verts(o), o->mesh.u = o->mesh.v = 1; };

struct Failure {
    std::uint32_t type, flags;
    Act before, fails;
    int allocation;    // the one of `fails` that gets no memory
    const char* place; // a pattern
    const char* message;
};

} // namespace

TEST(ExhaustedMemory, EndsTheProcessWithItsLineAndWords) {
    constexpr std::uint32_t every = 0x1C8; // every sort of data that a strip can have
    const Failure cases[] = {
        {2, 0, none, object, 1, "create line 304, 280",
         "GEOMcreate_obj: malloc failed creating object"},
        {2, 0, none, verts, 1, "create line 1824, 24", "malloc failed adding vertices"},
        {2, 0, verts, verts, 1, "create line 1832, 48", "malloc failed reallocing vertices"},
        {2, 0, verts, toomany, 0, "create line 1832, 9223372036854775807",
         "malloc failed reallocing vertices"},
        {2, 0, none, colors, 1, "create line 1708, 24", "malloc failed adding vertices"},
        {2, 0, colors, colors, 1, "create line 1716, 48", "malloc failed reallocing vertices"},
        {4, 0, none, radii, 1, "create line 1746, 8", "malloc failed adding scalars"},
        {4, 0, radii, radii, 1, "create line 1754, 16", "malloc failed reallocing scalars"},
        {4, 0, none, data, 1, "create line 1785, 8", "malloc failed adding ints"},
        {4, 0, data, data, 1, "create line 1793, 16", "malloc failed reallocing ints"},
        {2, 0, none, polys, 1, "create line 1615, 24", "malloc fails allocating plist"},
        {2, 0, polys, polys, 2, "create line 1917, 40", "reallocing plist fails"},
        {5, 0, none, label, 3, "create line 1746, 400", "malloc failed adding scalars"},
        {5, 0, none, label, 4, "create line 2049, 8", "can't allocate label name"},
        {5, 0, none, label, 5, "create line 2053, 800", "can't alloc label list"},
        {5, 0, labels, label, 5, "create line 2062, 1600", "can't realloc label list"},
        {5, 0, none, label, 7, "create line 1785, 400", "malloc failed adding ints"},
        {3, 0xC0, none, line, 1, "create line 924, 24", "alloc fails on pl v list"},
        {3, 0xC0, none, line, 2, "create line 926, 24", "alloc fails on pl c list"},
        {3, 0xC0, none, line, 3, "create line 928, 24", "alloc fails on pl vd list"},
        {3, 0xC0, none, line, 4, "create line 930, 24", "alloc fails on pl pp list"},
        {3, 0xC0, none, line, 5, "create line 1673, 24", "malloc fails allocating vert list"},
        {3, 0xC0, line, line, 1, "create line 912, 48", "realloc fails on pl vert list"},
        {3, 0xC0, line, line, 2, "create line 915, 48", "realloc fails on pl color list"},
        {3, 0xC0, line, line, 3, "create line 918, 48", "realloc fails on pl vdata list"},
        {3, 0xC0, line, line, 4, "create line 921, 48", "realloc fails on pl pdata list"},
        {3, every, none, verts, 1, "create line [0-9]+, 24", "alloc fails on ptri v list"},
        {3, every, none, verts, 2, "create line [0-9]+, 24", "alloc fails on ptri vt list"},
        {3, every, none, verts, 3, "create line [0-9]+, 24", "alloc fails on ptri vd list"},
        {3, every, none, verts, 4, "create line [0-9]+, 24", "alloc fails on ptri pd list"},
        {3, every, verts, verts, 1, "create line [0-9]+, 48", "realloc fails on ptri vert list"},
        {3, every, verts, verts, 2, "create line [0-9]+, 48", "realloc fails on ptri uv list"},
        {3, every, verts, verts, 3, "create line [0-9]+, 48", "realloc fails on ptri vdata list"},
        {3, every, verts, verts, 4, "create line [0-9]+, 48", "realloc fails on ptri pdata list"},
        {3, every, verts, verts, 5, "create line [0-9]+, 48", "realloc fails on ptri vtrans list"},
        {2, 0, none, value, 1, "prop line 97, 12", "malloc fails allocating a geom val"},
        {2, 0, value, value, 1, "prop line 88, 24", "reallocating a value list fails"},
        {1, 0, mesh, smooth, 1, "norm line [0-9]+, 12", "Can't alloc mesh normals"},
        {2, 0, solid, smooth, 1, "norm line [0-9]+, 24", "malloc fails allocating new normals"},
        {2, 0x182, solid, facets, 1, "norm line [0-9]+, 12", "can't allocate new norm"},
        {2, 0x182, solid, facets, 2, "norm line [0-9]+, 12", "can't alloc new verts"},
        {2, 0x182, solid, facets, 3, "norm line [0-9]+, 12", "can't alloc new colors"},
        {2, 0x182, solid, facets, 4, "norm line [0-9]+, 8", "can't alloc vdata"},
        {2, 0x182, solid, facets, 5, "norm line [0-9]+, 8", "can't alloc vtrans"},
    };
    for (const Failure& c : cases) {
        const Object obj = make(c.type);
        obj->flags = c.flags;
        c.before(obj.get());
        const bool grows = std::string(c.message).find("realloc") != std::string::npos;
        EXPECT_EXIT((fail_allocation(c.allocation), c.fails(obj.get())), testing::ExitedWithCode(1),
                    testing::MatchesRegex(std::string("compat/geom/") + c.place + " bytes" +
                                          (grows ? ", old ptr 0x[0-9a-f]+" : "") +
                                          "\nGEOM fatal error: " + c.message + "\n"));
    }
}
