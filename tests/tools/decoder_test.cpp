#include "tests/tools/records.h"
#include "tools/geomtool/decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace {

using namespace geom_stream;

Object object_of(const std::string& name) {
    const records::Bytes record = records::named(name);
    DecodeResult result = decode(record.bytes);
    EXPECT_FALSE(result.error) << name << ": offset " << result.error->offset << ": "
                               << result.error->message;
    if (result.objects.size() != 1)
        return {};
    EXPECT_EQ(result.objects.front().size, record.bytes.size()) << name;
    return result.objects.front();
}

TEST(Decoder, ReadsTheHeaderOfBothVersions) {
    const Object big = object_of("polyhedron 10");
    EXPECT_EQ(big.version, 10);
    EXPECT_EQ(big.kind(), Kind::polyhedron);
    EXPECT_EQ(big.extent, (std::array<float, 6>{-1, 0, 0, 1, 0, 0}));
    EXPECT_TRUE(big.has_extent);
    EXPECT_EQ(big.name, "Ab");
    EXPECT_EQ(big.second_text, "");
    ASSERT_EQ(big.properties.size(), 1U);
    EXPECT_EQ(big.properties[0].kind, 6U);
    EXPECT_EQ(big.properties[0].value, 4U);
    EXPECT_EQ(big.properties[0].bytes, (std::vector{std::byte{1}, std::byte{2}, std::byte{3}}));

    const Object little = object_of("polyhedron 7");
    EXPECT_EQ(little.version, 7);
    EXPECT_FALSE(little.has_extent);
    EXPECT_EQ(little.header_size, 16U);
    EXPECT_EQ(little.name, "N");
    EXPECT_EQ(little.properties.at(0).bytes, std::vector{std::byte{0xff}});
}

TEST(Decoder, ReadsMeshes) {
    const Object big = object_of("mesh 10");
    EXPECT_EQ(big.mesh().u, 2);
    EXPECT_EQ(big.mesh().vertices, (std::vector<Vec3>{{1, 2, 0.5F}, {}, {}, {}}));
    EXPECT_EQ(big.mesh().uvs, (std::vector<Vec2>{{}, {}, {}, {0, 0.5F}}));
    EXPECT_EQ(big.mesh().primitive_data, std::vector{-2});
    const Object little = object_of("mesh 7");
    EXPECT_EQ(little.mesh().vertices, (std::vector<Vec3>{{}, {}, {0, 0, 1}}));
    EXPECT_EQ(little.mesh().normals, (std::vector<Vec3>{{1, 0, 0}, {}, {}}));
    EXPECT_EQ(little.mesh().uvws, (std::vector<Vec3>{{}, {}, {0, 0, 2}}));
    EXPECT_EQ(little.mesh().vertex_data, (std::vector{-2, 0, 0}));
    EXPECT_EQ(little.mesh().vertex_trans, (std::vector{0.0F, 0.0F, 0.5F}));
}

TEST(Decoder, ReadsPolyhedra) {
    const Object early = object_of("polyhedron 10");
    EXPECT_EQ(early.polyhedron().polygon_list, (std::vector<std::int64_t>{1, 1, 0, 0, 0}));
    EXPECT_EQ(early.polyhedron().polygons(), (std::vector<std::vector<std::int64_t>>{{1}}));
    EXPECT_EQ(early.polyhedron().colours, (std::vector<Vec3>{{0, 0, 0.5F}}));
    EXPECT_EQ(early.polyhedron().uvs, (std::vector<Vec2>{{0, 0.5F}}));
    EXPECT_EQ(early.polyhedron().uvws, (std::vector<Vec3>{{0, 0, 2}}));
    EXPECT_EQ(early.polyhedron().vertex_data, std::vector{7});
    EXPECT_EQ(early.polyhedron().primitive_data, (std::vector{8, 9}));
    const Object odd = object_of("polyhedron 7");
    EXPECT_EQ(odd.polyhedron().polygons(), (std::vector<std::vector<std::int64_t>>{{2, -1}}));
    EXPECT_TRUE(std::isnan(odd.polyhedron().vertices.at(1)[0]));
    EXPECT_TRUE(std::isinf(odd.polyhedron().vertices.at(1)[1]));
    EXPECT_TRUE(std::signbit(odd.polyhedron().vertices.at(1)[2]));
}

TEST(Decoder, ReadsPolytriangles) {
    const Object big = object_of("polytriangle 10");
    const VertexArrays& strip = big.polytriangle().strips.at(0);
    EXPECT_EQ(strip.normals, (std::vector<Vec3>{{}, {}, {0, 0, 1}}));
    EXPECT_EQ(strip.colours, (std::vector<Vec3>{{}, {}, {0, 0, 0.5F}}));
    EXPECT_EQ(strip.vertex_data, (std::vector{0, 0, 5}));
    EXPECT_EQ(strip.primitive_data, std::vector{6});
    EXPECT_EQ(strip.vertex_trans, (std::vector{0.0F, 0.0F, 2.0F}));
    const VertexArrays& polyline = big.polytriangle().polylines.at(0);
    EXPECT_EQ(polyline.colours, (std::vector<Vec3>{{}, {0, 0, 0.5F}}));
    EXPECT_TRUE(polyline.normals.empty());
    EXPECT_EQ(polyline.primitive_data, std::vector{8});
    EXPECT_EQ(big.polytriangle().segments.vertices, (std::vector<Vec3>{{}, {0, 0, 2}}));
    EXPECT_EQ(big.polytriangle().segments.primitive_data, std::vector{10});
    const Object little = object_of("polytriangle 7");
    EXPECT_TRUE(little.polytriangle().polylines.at(0).vertices.empty());
    EXPECT_EQ(little.polytriangle().polylines.at(1).vertices, (std::vector<Vec3>{{0, 0, 2}}));
}

TEST(Decoder, ReadsSpheresAndLabels) {
    EXPECT_EQ(object_of("sphere 10").sphere().vertices, (std::vector<Vec3>{{0, 0, 1}}));
    EXPECT_TRUE(object_of("sphere 10").sphere().radii.empty());
    const Sphere sphere = object_of("sphere 7").sphere();
    EXPECT_EQ(sphere.radii, std::vector{0.01F});
    EXPECT_EQ(sphere.normals, (std::vector<Vec3>{{0, 0, 1}}));
    EXPECT_EQ(sphere.colours, (std::vector<Vec3>{{1, 0, 0}}));
    EXPECT_EQ(sphere.vertex_data, std::vector{11});
    EXPECT_EQ(sphere.vertex_trans, std::vector{0.5F});
    const Label label = object_of("label 10").label();
    EXPECT_EQ(label.label_flags, 0x408eU);
    EXPECT_EQ(label.texts, std::vector<std::string>{"ab"});
    EXPECT_EQ(label.offsets, (std::vector<Vec3>{{0, 0, 2}}));
    EXPECT_EQ(label.heights, std::vector{0.5F});
    EXPECT_EQ(label.data, std::vector{12});
    EXPECT_EQ(object_of("label 7").label().texts, (std::vector<std::string>{"", "\xff"}));
}

TEST(Decoder, KnowsTheByteCountOfEveryKind) {
    for (const auto& [name, hex] : records::by_name) {
        const Object object = object_of(name);
        EXPECT_EQ(expected_byte_count(object), object.byte_count) << name;
    }
}

TEST(Decoder, ReportsTheItemThatACutLeavesIncomplete) {
    const records::Bytes stream = records::all();
    std::vector<std::size_t> ends; // of the records
    for (const Object& object : decode(stream.bytes).objects)
        ends.push_back(object.offset + object.size);
    ASSERT_EQ(ends.size(), records::by_name.size());

    for (std::size_t cut = 0; cut < stream.bytes.size(); ++cut) {
        // A copy of its own, so that a sanitizer sees a read behind the cut.
        const std::vector<std::byte> prefix(stream.bytes.data(), stream.bytes.data() + cut);
        const DecodeResult result = decode(prefix);
        EXPECT_EQ(result.objects.size(), std::ranges::upper_bound(ends, cut) - ends.begin());
        const bool between = cut == 0 || std::ranges::binary_search(ends, cut);
        ASSERT_EQ(result.error.has_value(), !between) << "cut at " << cut;
        if (!between) {
            EXPECT_EQ(result.error->offset, *(std::ranges::upper_bound(stream.items, cut) - 1))
                << "cut at " << cut << ": " << result.error->message;
        }
    }
}

struct Corruption {
    std::string record;
    std::size_t place;
    std::string hex;
    std::size_t offset; // of the error
    std::string message;
};

TEST(Decoder, ReportsWhatContradictsTheFormat) {
    const std::vector<Corruption> corruptions{
        {"sphere 10", 0, "00", 0, "expected magic \"GM64\" or \"46MG\""},
        {"polyhedron 10", 4, "00000010", 4, "expected hdrsize 15, found 16"},
        {"polyhedron 7", 4, "11", 4, "expected hdrsize 16, found 17"},
        {"polyhedron 7", 4, "0e", 70, "expected the NUL of name within hdrsize"},
        {"sphere 10", 8, "00000200", 8, "expected data with bits 0x1 to 0x100 only, found 512"},
        {"sphere 10", 12, "00000006", 12, "expected type 1 to 5, found 6"},
        {"sphere 10", 40, "00000002", 40, "expected has_extent 0 or 1, found 2"},
        {"sphere 10", 52, "ffffffff", 52, "expected property count of at least 0, found -1"},
        {"polyhedron 10", 60, "ffffffff", 68, "expected property bytes (4294967295 bytes)"},
        {"polyhedron 10", 71, "01", 71, "expected padding of zero bytes"},
        {"polyhedron 10", 72, "00989680", 72, "expected name of at most 9999999 bytes"},
        {"polyhedron 10", 84, "ff", 84, "expected polygon count of at least 0, found -"},
        {"polyhedron 10", 84, "7fffffffffffffff", 108, "polygon list words"},
        {"polyhedron 10", 92, "7fffffffffffffff", 108, "polygon list words"},
        {"polyhedron 10", 100, "7fffffffffffffff", 148, "vertices of 12 bytes each, 56 bytes left"},
        {"polyhedron 10", 115, "04", 108, "expected a corner count that fits"},
        {"polyhedron 10", 115, "03", 140, "expected 2 polygons with 2 indices"},
        {"polyhedron 10", 108, "ff", 108, "expected a corner count that fits"},
        {"polyhedron 10", 147, "01", 140, "expected the 0 that ends the polygon list, found 1"},
        {"mesh 10", 64, "7fffffffffffffff", 80, "x 2 vertices"},
        {"mesh 10", 72, "ffffffffffffffff", 72, "expected mesh dimension v of at least 0"},
        {"polytriangle 10", 80, "0000000000000002", 80, "expected segments marker 0 or 1"},
        {"polytriangle 7", 66, "ffffffffffffff7f", 110, "expected polyline vertex count"},
        {"label 10", 76, "00000000", 76, "expected label length of at least 1, found 0"},
        {"label 10", 80, "00", 80, "whose only NUL is its last byte"},
        {"label 10", 82, "63", 80, "whose only NUL is its last byte"},
    };
    for (const Corruption& corruption : corruptions) {
        std::vector<std::byte> bytes = records::named(corruption.record).bytes;
        std::ranges::copy(records::from_hex(corruption.hex).bytes,
                          bytes.begin() + static_cast<std::ptrdiff_t>(corruption.place));
        const DecodeResult result = decode(bytes);
        ASSERT_TRUE(result.error) << corruption.record << " " << corruption.message;
        EXPECT_EQ(result.error->offset, corruption.offset) << result.error->message;
        EXPECT_NE(result.error->message.find(corruption.message), std::string::npos)
            << result.error->message;
    }
}

TEST(Decoder, SurvivesEveryByteChanged) {
    const records::Bytes stream = records::all();
    for (std::size_t place = 0; place < stream.bytes.size(); ++place) {
        for (const std::byte value : {std::byte{0x00}, std::byte{0x7f}, std::byte{0xff}}) {
            std::vector<std::byte> bytes = stream.bytes;
            bytes[place] = value;
            const DecodeResult result = decode(bytes);
            EXPECT_LE(result.error ? result.error->offset : 0, bytes.size());
        }
    }
}

} // namespace
