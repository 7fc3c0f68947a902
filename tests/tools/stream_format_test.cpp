#include "tests/tools/records.h"
#include "tools/geomtool/decoder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

// The rows "offset | bytes | meaning" of the worked example, offsets checked on the way.
std::vector<std::byte> worked_example() {
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
        const auto row = records::from_hex(line.substr(bar + 1, line.find('|', bar + 1) - bar - 1));
        example.insert(example.end(), row.bytes.begin(), row.bytes.end());
    }
    return example;
}

TEST(StreamFormat, WorkedExampleIsWhatItSays) {
    const geom_stream::DecodeResult result = geom_stream::decode(worked_example());
    ASSERT_FALSE(result.error) << result.error->message;
    ASSERT_EQ(result.objects.size(), 1U);
    const geom_stream::Object& object = result.objects.front();
    EXPECT_EQ(object.size, 200U);
    EXPECT_EQ(object.version, 10);
    EXPECT_EQ(object.byte_count, 92);
    EXPECT_EQ(geom_stream::expected_byte_count(object), 92);
    EXPECT_EQ(object.flags, geom_stream::flag::normals);
    const geom_stream::Polyhedron& triangle = object.polyhedron();
    EXPECT_EQ(triangle.polygons(), (std::vector<std::vector<std::int64_t>>{{1, 2, 3}}));
    EXPECT_EQ(triangle.vertices, (std::vector<geom_stream::Vec3>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
    EXPECT_EQ(triangle.normals, (std::vector<geom_stream::Vec3>(3, {0, 0, 1})));
}

} // namespace
