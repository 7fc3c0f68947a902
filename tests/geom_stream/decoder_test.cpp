#include "geom_stream/record_reader.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <span>

namespace {

using namespace geom_stream;

// Decodes a stream of one object and checks its byte count.
Object objectOf(const std::string& name, const std::vector<std::byte>& stream) {
    const DecodeResult result = decode(stream);
    EXPECT_FALSE(result.error) << name << ": offset " << result.error->offset << ": "
                               << result.error->message;
    if (result.objects.size() != 1)
        return {};
    const Object& object = result.objects.front();
    EXPECT_EQ(object.size, stream.size()) << name;
    EXPECT_EQ(expectedByteCount(object), object.byteCount) << name;
    return object;
}

Object objectOf(const std::string& name) { return objectOf(name, records::named(name).bytes); }

// Checks that the arrays are those that the flags announce, with the values of the records.
void expectArrays(const VertexArrays& arrays, std::uint32_t flags, std::size_t n,
                  std::size_t primitives) {
    const auto expect = [flags](const auto& values, std::uint32_t bit, std::size_t count,
                                auto last) {
        std::decay_t<decltype(values)> expected((flags & bit) == bit ? count : 0);
        if (!expected.empty())
            expected.back() = last;
        EXPECT_EQ(values, expected) << "flag " << bit;
    };
    const bool shared = (flags & flag::kUvws) != 0;
    expect(arrays.vertices, 0, n, Vec3{0, 0, records::vertex});
    expect(arrays.normals, flag::kNormals, n, Vec3{0, 0, records::normal});
    expect(arrays.colours, flag::kColours, n, Vec3{0, 0, records::colour});
    expect(arrays.uvs, flag::kUvs, n, Vec2{0, shared ? 0 : records::uv});
    expect(arrays.uvws, flag::kUvws, n, Vec3{0, 0, records::uvw});
    expect(arrays.vertexData, flag::kVertexData, n, records::vertex_data);
    expect(arrays.primitiveData, flag::kPrimitiveData, primitives, records::primitive_data);
    expect(arrays.vertexTrans, flag::kVertexTrans, n, records::vertex_trans);
}

using Polygons = std::vector<std::vector<std::int64_t>>;

TEST(Decoder, ReadsPolyhedraAndHeaders) {
    const Object big = objectOf("polyhedron 10");
    EXPECT_EQ(big.version, 10);
    EXPECT_EQ(big.extent, (std::array<float, 6>{-1, 0, 0, 1, 0, 0}));
    EXPECT_TRUE(big.hasExtent);
    EXPECT_EQ(big.name, "Ab");
    ASSERT_EQ(big.properties.size(), 1U);
    EXPECT_EQ(big.properties[0].kind, 6U);
    EXPECT_EQ(big.properties[0].value, 4U);
    EXPECT_EQ(big.properties[0].bytes, (std::vector{std::byte{1}, std::byte{2}, std::byte{3}}));
    EXPECT_EQ(big.polyhedron().polygonList, (std::vector<std::int64_t>{1, 1, 0, 0, 0}));
    EXPECT_EQ(big.polyhedron().polygons(), (Polygons{{1}}));
    expectArrays(big.polyhedron(), 0xCE, 1, 2);

    const Object little = objectOf("polyhedron 7");
    EXPECT_EQ(little.version, 7);
    EXPECT_FALSE(little.hasExtent);
    EXPECT_EQ(little.headerSize, 16U);
    EXPECT_EQ(little.name, "N");
    EXPECT_EQ(little.properties.at(0).bytes, std::vector{std::byte{0xff}});
    EXPECT_EQ(little.polyhedron().polygons(), (Polygons{{2, -1}}));
    const Vec3 odd = little.polyhedron().vertices.at(1);
    EXPECT_TRUE(std::isnan(odd[0]) && std::isinf(odd[1]) && std::signbit(odd[2]));
}

TEST(Decoder, ReadsTheOtherKinds) {
    const Object mesh_10 = objectOf("mesh 10");
    EXPECT_EQ(mesh_10.mesh().u, 2);
    expectArrays(mesh_10.mesh(), 0x44, 4, 1);
    const Object mesh_7 = objectOf("mesh 7");
    EXPECT_EQ(mesh_7.mesh().u, 3);
    expectArrays(mesh_7.mesh(), 0x189, 3, 0);
    const Polytriangle big = objectOf("polytriangle 10").polytriangle();
    expectArrays(big.strips.at(0), 0x1C3, 3, 1);
    expectArrays(big.polylines.at(0), 0xC2, 2, 1);
    expectArrays(big.segments, 0xC2, 2, 1);
    const Polytriangle little = objectOf("polytriangle 7").polytriangle();
    EXPECT_TRUE(little.polylines.at(0).vertices.empty());
    expectArrays(little.polylines.at(1), 0, 1, 0);
    EXPECT_TRUE(objectOf("sphere 10").sphere().radii.empty());
    expectArrays(objectOf("sphere 10").sphere(), 0, 1, 0);
    EXPECT_EQ(objectOf("sphere 7").sphere().radii, std::vector{0.01F});
    expectArrays(objectOf("sphere 7").sphere(), 0x183, 1, 0);
    const Label label = objectOf("label 10").label();
    EXPECT_EQ(label.labelFlags, 0x408eU);
    EXPECT_EQ(label.texts, std::vector<std::string>{"ab"});
    EXPECT_EQ(label.positions, (std::vector<Vec3>{{0, 0, 1}}));
    EXPECT_EQ(label.offsets, (std::vector<Vec3>{{0, 0, 2}}));
    EXPECT_EQ(label.heights, std::vector{0.5F});
    EXPECT_EQ(label.colours, (std::vector<Vec3>{{0, 0, 0.5F}}));
    EXPECT_EQ(label.data, std::vector{12});
    EXPECT_EQ(objectOf("label 7").label().texts, (std::vector<std::string>{"", "\xff"}));
}

TEST(Decoder, ReportsTheIncompleteItemOfATruncatedStream) {
    const records::Bytes stream = records::all();
    std::vector<std::size_t> ends; // of the records
    for (const Object& object : decode(stream.bytes).objects)
        ends.push_back(object.offset + object.size);
    ASSERT_EQ(ends.size(), records::by_name.size());

    for (std::size_t cut = 0; cut < stream.bytes.size(); ++cut) {
        // A copy, so that a sanitizer detects reads after the end.
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

TEST(Decoder, ReportsWhatContradictsTheFormat) {
    struct Corruption {
        std::string record;
        std::size_t place;
        std::string hex;
        std::size_t offset; // of the error
        std::string message;
    };
    const Corruption corruptions[] = {
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
        {"polyhedron 10", 84, "7fffffffffffffff", 108,
         "expected 9223372036854775807 polygon list words of 8 bytes each, 96 bytes left"},
        {"polyhedron 10", 99, "0c", 108, "expected 15 polygon list words of 8 bytes each, 96"},
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
        {"label 10", 82, "63", 80, "whose only NUL is its last byte"},
    };
    for (const Corruption& corruption : corruptions) {
        std::vector<std::byte> bytes = records::named(corruption.record).bytes;
        std::ranges::copy(records::fromHex(corruption.hex).bytes, &bytes[corruption.place]);
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

// The bytes of the worked example in stream-format.md. Checks the offsets of its rows.
std::vector<std::byte> workedExample() {
    std::ifstream document(STREAM_FORMAT_DOCUMENT);
    std::string line;
    while (std::getline(document, line) && line != "## Worked example") {
    }
    std::vector<std::byte> example;
    while (std::getline(document, line)) {
        const std::size_t bar = line.find('|');
        if (bar == std::string::npos || line.starts_with("offset"))
            continue;
        EXPECT_EQ(std::stoul(line), example.size()) << line;
        const auto row = records::fromHex(line.substr(bar + 1, line.find('|', bar + 1) - bar - 1));
        example.insert(example.end(), row.bytes.begin(), row.bytes.end());
    }
    return example;
}

TEST(StreamFormat, WorkedExampleIsCorrect) {
    const Object object = objectOf("worked example", workedExample());
    EXPECT_EQ(object.size, 200U);
    EXPECT_EQ(object.version, 10);
    EXPECT_EQ(object.byteCount, 92);
    EXPECT_EQ(object.flags, flag::kNormals);
    EXPECT_EQ(object.polyhedron().polygons(), (Polygons{{1, 2, 3}}));
    EXPECT_EQ(object.polyhedron().vertices, (std::vector<Vec3>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
    EXPECT_EQ(object.polyhedron().normals, std::vector<Vec3>(3, {0, 0, 1}));
}

} // namespace
