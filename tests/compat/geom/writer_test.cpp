#include "compat/geom/parts.h"
#include "compat/geom/writer.h"
#include "tests/compat/geom/harness.h"
#include "tests/support/records.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <unistd.h>

namespace {

std::string record(const Object& obj, int flags = 0) {
    return written([&](int fd) { GEOMwrite_obj(obj.get(), fd, flags); });
}

void expectRecord(const std::string& name, const Object& obj) {
    if (name.ends_with('7'))
        setenv("KRA_GEOM_WRITE_V2", "", 1);
    EXPECT_EQ(record(obj), records::named(name).str()) << name;
    unsetenv("KRA_GEOM_WRITE_V2");
}

// Fills every array that the object's flags announce, for n vertices, with the values of the
// records.
void fill(Object& obj, const geom::Part& part, std::size_t n, std::size_t primitives) {
    const auto give = [&]<class T, int N>(std::uint32_t bit, GEOMlist<T, N>* list, T last,
                                          std::size_t count) {
        if (list == nullptr || (obj->flags & bit) != bit)
            return;
        std::vector<T> values(count * N);
        values.back() = last;
        geom::clear(*list);
        *list = {std::ssize(values) / N, std::ssize(values) / N, block(values)};
    };
    give(0, part.vertices, records::vertex, n);
    give(GEOM_HAS_NORMALS, part.normals, records::normal, n);
    give(GEOM_HAS_COLORS, part.colors, records::colour, n);
    give(GEOM_HAS_UVS, part.uvs, records::uv, 2 * n);
    give(GEOM_HAS_UVWS, part.uvs, records::uvw, 3 * n);
    give(GEOM_HAS_VERTEX_DATA, part.vertex_data, records::vertex_data, n);
    give(GEOM_HAS_PRIMITIVE_DATA, part.primitive_data, records::primitive_data, primitives);
    give(GEOM_HAS_VERTEX_TRANS, part.vertex_trans, records::vertex_trans, n);
}

Object filled(std::uint32_t type, std::uint32_t flags, std::size_t n, std::size_t primitives) {
    Object obj = make(type);
    obj->flags = flags;
    fill(obj, geom::partOf(*obj), n, primitives);
    return obj;
}

} // namespace

TEST(Record, MatchesTheOneWrittenByHand) {
    Object obj = filled(GEOM_MESH, 0x44, 4, 1);
    obj->mesh.u = obj->mesh.v = 2;
    expectRecord("mesh 10", obj);
    obj = filled(GEOM_MESH, 0x189, 3, 0);
    obj->mesh.u = 3, obj->mesh.v = 1;
    expectRecord("mesh 7", obj);

    obj = filled(GEOM_POLYHEDRON, 0xCE, 1, 2);
    obj->polyhedron.polygons = {5, 2, 2, block(std::vector<std::int64_t>{1, 1, 0, 0, 0})};
    obj->extent[0] = -1, obj->extent[3] = 1, obj->has_extent = 1;
    obj->vals = property(6, 4, {1, 2, 3});
    obj->nvals = 1;
    obj->name = block<char>({'A', 'b', 0});
    expectRecord("polyhedron 10", obj);
    obj = make(GEOM_POLYHEDRON);
    GEOMadd_vertices(obj.get(), Floats{0, 0, 0, NAN, INFINITY, -0.0F}.data(), 2, 0);
    GEOMadd_polygons(obj.get(), Ints{2, 2, -1, 0}.data(), 0, 0);
    obj->vals = property(6, 2, {255});
    obj->nvals = 1;
    obj->name = block<char>({'N', 0});
    expectRecord("polyhedron 7", obj);

    obj = make(GEOM_POLYTRIANGLE);
    obj->flags = 0x1C0;
    GEOMpolytriangle& all = obj->polytriangle;
    GEOMadd_vertices(obj.get(), Floats(9).data(), 3, 0);
    GEOMadd_polyline(obj.get(), Floats(6).data(), Floats(6).data(), 2, 0);
    all.strip_normals = block(std::vector<GEOMvector_list>(1));
    all.strip_colors = block(std::vector<GEOMvector_list>(1));
    obj->flags = 0x1C3;
    fill(obj, geom::stripOf(all, 0), 3, 1);
    fill(obj, geom::polylineOf(all, 0), 2, 1);
    fill(obj, geom::segmentsOf(all), 2, 1);
    expectRecord("polytriangle 10", obj);
    obj = make(GEOM_POLYTRIANGLE);
    obj->polytriangle.lines = 1;
    obj->polytriangle.line_vertices = block(std::vector<GEOMvector_list>(1));
    GEOMadd_polyline(obj.get(), Floats{0, 0, records::vertex}.data(), nullptr, 1, 0);
    expectRecord("polytriangle 7", obj);

    expectRecord("sphere 10", filled(GEOM_SPHERE, 0, 1, 0));
    obj = filled(GEOM_SPHERE, 0x183, 1, 0);
    GEOMadd_radii(obj.get(), Floats{0.01F}.data(), 1, 0);
    expectRecord("sphere 7", obj);

    obj.reset(GEOMcreate_label(nullptr, 0x408E));
    const float vectors[] = {0, 0, records::vertex, 0, 0, 2, 0, 0, records::colour};
    GEOMadd_label(obj.get(), "ab", vectors, vectors + 3, 0.5F, vectors + 6, 12);
    expectRecord("label 10", obj);
    obj.reset(GEOMcreate_label(nullptr, 0x9081));
    for (const char* text : {"", "\xff"})
        GEOMadd_label(obj.get(), text, Floats(3).data(), nullptr, 0, nullptr, -1);
    expectRecord("label 7", obj);
}

TEST(Record, HasZerosForWhatTheObjectLacks) {
    Object obj = filled(GEOM_POLYHEDRON, 0x4, 1, 0);
    obj->flags = GEOM_HAS_NORMALS | GEOM_HAS_UVWS;
    EXPECT_EQ(record(obj, 7), // clears bits in the header, but the arrays are written
              records::fromHex(records::header10("z3 08", "z3 02", "0028") +
                               "z23 01 z8, z8 3f800000, z12, z4 40000000 z4")
                  .str());
    obj = make(GEOM_MESH);
    obj->mesh.v = 3; // no vertices and no cells, but the byte count is (4 u - 4) (v - 1)
    obj->flags = GEOM_HAS_PRIMITIVE_DATA;
    EXPECT_EQ(record(obj),
              records::fromHex("474d3634,z4,z3 40,z3 01,z28,fffffffffffffff8,z12,z15 03").str());
}

TEST(Record, NeedsAStreamAndSetsItsVersion) {
    const Object obj = make(GEOM_SPHERE);
    const std::string bytes = written([&](int fd) {
        allocationToFail = 1;
        EXPECT_EQ(messagesOf([&] { GEOMwrite_obj(obj.get(), fd, 0); }), "");
    });
    EXPECT_EQ(allocationToFail, 0);
    EXPECT_EQ(bytes, "");
    GEOMstream* stream = geom::createStream(-1);
    GEOMserialize_obj(GEOMstream_write, obj.get(), stream, 0, 9);
    EXPECT_EQ(stream->version, 7);
    geom::closeStream(stream);
}

// In a child process, since a process reads the variable only once. GoogleTest runs suites named
// *DeathTest before all others, so this process has not read it yet.
TEST(TraceDeathTest, ShowsEveryStepOnStandardOutput) {
    const auto traceTwice = [] {
        const Object obj = make(GEOM_POLYHEDRON);
        obj->flags = 0x183;
        dup2(STDERR_FILENO, STDOUT_FILENO); // EXPECT_EXIT checks standard error
        setenv("KRA_GEOM_DEBUG", "", 1);
        record(obj, 2);
        unsetenv("KRA_GEOM_DEBUG"); // has no effect any more
        record(obj, 2);
        std::exit(0);
    };
    EXPECT_EXIT(traceTwice(), testing::ExitedWithCode(0), testing::MatchesRegex(R"((
Writing geometry to a file ...
GEOMwrite_obj \(obj=0x[0-9a-f]+, fd=[0-9]+, flags=2\)
   GEOMserialize_obj \(func=0x[0-9a-f]+, obj=0x[0-9a-f]+, arg=0x[0-9a-f]+, flags=2, proto_version=10\)
      head.magic = 0x474d3634
      head.hdrsize = 0
      head.data = 385
      head.type = 2
      head.has_extent = 0
      head.bytecount = 0
      head.nvals = 0
      GEOM_write_polyh \(func=0x[0-9a-f]+, head=0x[0-9a-f]+, obj=0x[0-9a-f]+, arg=0x[0-9a-f]+, proto_version=10\)
   return from GEOMserialize_obj
return from GEOMwrite_obj

){2})"));
}
