#include "compat/geom/writer.h"
#include "tests/compat/geom/harness.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using Floats = std::vector<float>;

std::string record(const Object& obj, int flags = 0) {
    return written([&](int fd) { GEOMwrite_obj(obj.get(), fd, flags); });
}

// The object's record must be these bytes in both versions.
void expect_record(const Object& obj, const std::function<void(Bytes&)>& expected) {
    Bytes xdr(false);
    expected(xdr);
    EXPECT_EQ(record(obj), xdr.str());
    Bytes raw(true);
    expected(raw);
    const Environment old("KRA_GEOM_WRITE_V2");
    EXPECT_EQ(record(obj), raw.str());
}

const Floats kFloats = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
const Floats kFirst6 = {1, 2, 3, 4, 5, 6};
constexpr GEOMpacked_color kColors[] = {{0, 255, 0, 0}, {0, 0, 255, 0}};
const Floats kColorFloats = {1, 0, 0, 0, 1, 0};
constexpr std::int32_t kInts[] = {-5, 6, 7};

// Two vertices with normals, colours, data and trans.
void add_every_sort(GEOMobj* obj) {
    GEOMadd_vertices_with_data(obj, kFloats.data(), kFloats.data() + 6, kColors, 2, 0);
    GEOMadd_vertex_data(obj, kInts, 2, 0);
    GEOMadd_vertex_trans(obj, kFloats.data(), 2, 0);
}

} // namespace

TEST(Record, OfAMesh) {
    const Object obj(GEOMcreate_mesh(nullptr, kFloats.data(), 2, 2, 0));
    expect_record(obj, [](Bytes& b) { b.header(0, 1, 48).counts({2, 2}).floats(kFloats); });
    obj->mesh.primitive_data = {1, 1, block<std::int32_t>({9})};
    GEOMadd_uvs(obj.get(), kFloats.data(), 4, 0);
    obj->flags = GEOM_HAS_UVS | GEOM_HAS_UVWS | GEOM_HAS_PRIMITIVE_DATA;
    expect_record(obj, [](Bytes& b) { // both widths from one list; what it lacks is zero
        b.header(0x4C, 1, 4 * 4 * 8 + 4).counts({2, 2}).floats(kFloats);
        b.floats({1, 2, 3, 4, 5, 6, 7, 8}).floats({1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0}).ints({9});
    });
}

TEST(Record, OfAPolyhedron) {
    const Object obj = make(GEOM_POLYHEDRON);
    expect_record(obj, [](Bytes& b) { b.header(0, 2, 4).counts({0, 0, 0, 0}); });
    add_every_sort(obj.get());
    const std::int32_t list[] = {2, 1, 2, 1, 2, 0};
    GEOMadd_polygons(obj.get(), list, 0, 0);
    obj->flags |= GEOM_HAS_PRIMITIVE_DATA;
    expect_record(obj, [](Bytes& b) {
        b.header(0x1C3, 2, 4 * (3 + 2 + 2 * 11) + 4 + 8).counts({2, 3, 2, 2, 1, 2, 1, 2, 0});
        b.floats(kFirst6).floats({7, 8, 9, 10, 11, 12}).floats(kColorFloats).ints({-5, 6, 0, 0});
        b.floats({1, 2});
    });
    // dropped bits leave the arrays where they are
    EXPECT_EQ(record(obj, 7).substr(8, 4), std::string("\0\0\1\xC0", 4));
    EXPECT_EQ(record(obj, 7).substr(12), record(obj).substr(12));
}

TEST(Record, OfAPolytriangle) {
    const Object obj = make(GEOM_POLYTRIANGLE);
    GEOMadd_vertices(obj.get(), kFloats.data(), 1, 0);
    expect_record(obj, [](Bytes& b) {
        b.header(0, 3, 4 + 12).counts({1, 0, 0, 1}).floats({1, 2, 3});
    });
    GEOMadd_polyline(obj.get(), kFloats.data(), kFloats.data(), 2, 0);
    obj->polytriangle.segment_vertices = {2, 2, block(kFirst6)};
    obj->polytriangle.segment_colors = {2, 2, block(kFirst6)};
    obj->flags |= GEOM_HAS_NORMALS | GEOM_HAS_PRIMITIVE_DATA;
    expect_record(obj, [](Bytes& b) {
        // strip 4 * 9 + (4 - 8); line 8 * 6 + 7; segments 8 * 6 + 4
        b.header(0x43, 3, 8 + 32 + 55 + 52).counts({1, 1, 1});
        b.counts({1}).floats({1, 2, 3}).floats(Floats(6));
        b.counts({2}).floats(kFirst6).floats(kFirst6).ints({0});
        b.counts({2}).floats(kFirst6).floats(kFirst6).ints({0});
    });
}

TEST(Record, OfSpheres) {
    const float extent[] = {-1, -2, -3, 1, 2, 3};
    const Object plain(GEOMcreate_sphere(extent, kFloats.data(), nullptr, nullptr, nullptr, 1, 0));
    expect_record(plain, [](Bytes& b) {
        std::string header = Bytes(b).header(0x20, 4, 4).str();
        Bytes middle = b;
        header.replace(16, 28, middle.floats({-1, -2, -3, 1, 2, 3}).ints({1}).str());
        b.append(header).counts({1}).floats({1, 2, 3});
    });
    const Object obj = make(GEOM_SPHERE);
    add_every_sort(obj.get());
    GEOMadd_radii(obj.get(), kFloats.data(), 2, 0);
    expect_record(obj, [](Bytes& b) {
        b.header(0x183, 4, 20).counts({2}).floats(kFirst6).floats({1, 2});
        b.floats({7, 8, 9, 10, 11, 12}).floats(kColorFloats).ints({-5, 6}).floats({1, 2});
    });
}

TEST(Record, OfLabels) {
    const Object obj(GEOMcreate_label(nullptr, 0x4081));
    GEOMadd_label(obj.get(), "ab", kFloats.data(), kFloats.data(), 0.5F, nullptr, -1);
    expect_record(obj, [](Bytes& b) {
        b.header(0, 5, 11 + 3).counts({1}).ints({0x4081, 3}).run(std::string("ab\0", 3));
        b.floats({1, 2, 3}).floats({1, 2, 3}).floats({0.5F});
    });
    GEOMadd_label(obj.get(), "", kFloats.data(), nullptr, 2, kFloats.data() + 3, 8);
    expect_record(obj, [](Bytes& b) {
        b.header(0x12, 5, 2 * 15 + 4).counts({2}).ints({0x4081, 3}).run(std::string("ab\0", 3));
        b.ints({1}).run(std::string(1, '\0')).floats({1, 2, 3, 1, 2, 3});
        b.floats({1, 2, 3, 0, 0, 0}).floats({0.5F, 2}).floats({4, 5, 6, 0, 0, 0}).ints({8, 0});
    });
}

TEST(Record, CarriesPropertiesAndTexts) {
    const Object obj = make(GEOM_POLYHEDRON);
    const std::uint32_t words[] = {9, 3, 1};
    obj->vals = block<unsigned char>(std::vector<unsigned char>(15, 'p'));
    std::memcpy(obj->vals, words, sizeof words);
    obj->nvals = 1;
    GEOMadd_property(obj.get(), 6, 2);
    obj->name = block<char>({'b', 'o', 'x', '\0'});
    const auto properties = [](Bytes& b) {
        b.ints({2}).ints({9, 3, 1}).run("ppp").ints({6, 0, 2});
    };
    Bytes xdr(false);
    xdr.ints({0x474D3634, 27, 0, 2}).floats(Floats(6)).ints({0}).counts({4});
    properties(xdr);
    xdr.ints({3}).run("box").ints({0}).counts({0, 0, 0, 0});
    EXPECT_EQ(record(obj), xdr.str());
    Bytes raw(true);
    raw.ints({0x474D3634, 27 + 4 + 1, 0, 2}).floats(Floats(6)).ints({0}).counts({4});
    properties(raw);
    raw.run(std::string("box\0\0", 5)).counts({0, 0, 0, 0});
    const Environment old("KRA_GEOM_WRITE_V2");
    EXPECT_EQ(record(obj), raw.str());
}

TEST(Record, OfAnUnknownKindIsRefused) {
    EXPECT_EQ(captured_stderr([] { EXPECT_EQ(record(make(6)), ""); }),
              "GEOM error: GEOMserialize_obj: unable to write out object type\n");
}

TEST(Record, SurvivesAStreamWithoutMemory) {
    const Object obj = make(GEOM_POLYHEDRON);
    add_every_sort(obj.get());
    const std::string whole = record(obj);
    for (const int allocation : {1, 2, 3}) // the stream, its write buffer, its read buffer
        EXPECT_EQ(written([&](int fd) {
                      fail_allocation(allocation);
                      GEOMwrite_obj(obj.get(), fd, 0);
                  }),
                  allocation == 1 ? "" : whole);
}

TEST(Record, GoesThroughTheCallbackInTheVersionAskedFor) {
    static std::string taken;
    taken.clear();
    const GEOMwrite_func take = [](GEOMstream*, const void* bytes, std::int64_t n) {
        taken.append(static_cast<const char*>(bytes), static_cast<std::size_t>(n));
        return n;
    };
    const Object obj = make(GEOM_SPHERE);
    GEOMstream* stream = geom::create_stream(-1);
    GEOMserialize_obj(take, obj.get(), stream, 0, 9);
    EXPECT_EQ(stream->version, 7);
    GEOMserialize_obj(take, obj.get(), stream, 0, 11);
    EXPECT_EQ(stream->version, 11);
    geom::close_stream(stream);
    EXPECT_EQ(taken, Bytes(true).header(0x20, 4, 0).counts({0}).str() +
                         Bytes(false).header(0x20, 4, 0).counts({0}).str());
}

TEST(Trace, ShowsEveryStepOnStandardOutput) {
    const Object obj = make(GEOM_POLYHEDRON);
    add_every_sort(obj.get());
    const Environment debug("KRA_GEOM_DEBUG");
    testing::internal::CaptureStdout();
    record(obj, 2);
    const std::string trace = testing::internal::GetCapturedStdout();
    EXPECT_THAT(trace, testing::MatchesRegex(R"(
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

)"));
}
