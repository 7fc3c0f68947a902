#include "convert/record_cache.h"
#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

// Repeated shapes are written as copies of their records. The output must be the same as without
// copies.
namespace meshcast {
namespace {

struct Written {
    std::string bytes, messages;
    std::size_t copies;
};

Written written(std::string_view body, bool takesCopies, const ConvertOptions& options = {}) {
    const ReadScene read(body);
    MemorySink sink(takesCopies);
    MessageText messages;
    convertScene(read.scene, sink, messages, options);
    return {sink.bytes(), read.messages + messages.text, sink.copies};
}

/// Compares a conversion with copies to one without; returns the number of copies.
std::size_t copiesOf(std::string_view body, const ConvertOptions& options = {}) {
    const Written again = written(body, true, options);
    const Written converted = written(body, false, options);
    EXPECT_EQ(again.bytes, converted.bytes) << body;
    EXPECT_EQ(again.messages, converted.messages) << body;
    EXPECT_FALSE(again.bytes.empty());
    return again.copies;
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

TEST(RecordCache, CopiesPrimitivesOfTheSameSize) {
    EXPECT_EQ(copiesOf("Group { " + repeated("Cube { width 3 } ", 5) + "}"), 3U);
    EXPECT_EQ(copiesOf("Group { " + repeated("Cylinder { } Sphere { } Cone { } ", 3) + "}"), 6U);
    EXPECT_EQ(copiesOf("Group { " +
                       repeated("Cube { width 3 } Cube { height 3 } Cube { depth 3 } "
                                "Sphere { radius 0 } Sphere { radius -0.0 } ",
                                2) +
                       "}"),
              0U);
}

TEST(RecordCache, ConvertsAgainUnderOtherProperties) {
    const std::string points = "Coordinate3 { point [0 0 0, 1 0 0, 1 1 0, 0 1 0] } ";
    const std::string uses = repeated("USE Face USE Line USE Points ", 3);
    const std::string shapes =
        "DEF Face IndexedFaceSet { coordIndex [0, 1, 2, -1, 0, 2, 3, -1] normalIndex [0, 1, 0] } "
        "DEF Line IndexedLineSet { coordIndex [0, 1, 2, -1] materialIndex [0, 1, 0] } "
        "DEF Points PointSet { numPoints 2 } ";
    const std::string fourColors = "Material { diffuseColor [1 0 0, 0 1 0, 0 0 1, 1 1 1] } ";
    const std::string sets[] = {
        "Coordinate3 { point [5 0 0, 1 0 0, 1 1 0, 0 1 9] } ",
        fourColors + "MaterialBinding { value PER_VERTEX } ",
        "Material { diffuseColor [0 0 0, 0 1 0, 0 0 1, 1 1 1] } ",
        "MaterialBinding { value PER_VERTEX_INDEXED } ",
        "Normal { vector [0 0 1, 0 1 0, 1 0 0, 0 0 -1] } NormalBinding { value PER_VERTEX } ",
        "Normal { vector [0 0 -1, 0 1 0, 1 0 0, 0 0 -1] } ",
        "NormalBinding { value PER_VERTEX_INDEXED } ",
    };
    std::string scene = "Group { " + points + shapes + uses;
    for (const std::string& properties : sets) {
        scene += properties + uses;
    }
    // Of the three uses of a shape under the same properties, the last is written as a copy. Where
    // the shape is defined there are four uses, of which two are copies.
    EXPECT_EQ(copiesOf(scene + "}"), 3U * (1 + std::size(sets)) + 3U);
}

TEST(RecordCache, ReportsMessagesOfRepeatedShapesAgain) {
    const std::string bad = "Group { Coordinate3 { point [0 0 0, 1 0 0] } DEF Bad IndexedLineSet { "
                            "coordIndex [0, 7, 1, -1, 0, 1, -1] } " +
                            repeated("USE Bad ", 3) + "}";
    EXPECT_EQ(copiesOf(bad), 0U);
    const std::string cubes = "Group { " + repeated("Cube { width -1 } ", 4) + "}";
    ConvertOptions options;
    options.verify = true;
    EXPECT_EQ(copiesOf(cubes, options), 0U);
    options = {};
    options.textures = true;
    EXPECT_EQ(copiesOf(cubes, options), 0U);
}

TEST(RecordCache, LeavesOutLongRecords) {
    std::string points = "0 0 0";
    std::string indices = "0";
    for (int i = 1; i < 1000; ++i) {
        points.append(", ").append(std::to_string(i)).append(" 0 1");
        indices.append(", ").append(std::to_string(i));
    }
    EXPECT_EQ(copiesOf("Group { Coordinate3 { point [" + points +
                       "] } DEF Long IndexedFaceSet { coordIndex [" + indices + "] } " +
                       repeated("USE Long ", 4) + "}"),
              0U);
}

TEST(RecordCache, IsBounded) {
    RecordCache cache;
    const std::vector<unsigned char> records(4000, 7);
    std::size_t kept = 0;
    for (std::uint64_t i = 0; i < 20'000; ++i) {
        const RecordCache::Key key = {i % 7, i};
        cache.find(key);
        ASSERT_TRUE(cache.find(key).hasComeBefore);
        cache.keep(key, records);
        const RecordCache::Entry entry = cache.find(key);
        kept += entry.isKept ? 1 : 0;
        ASSERT_TRUE(!entry.isKept || std::ranges::equal(entry.records, records));
    }
    EXPECT_GT(kept, 1000U);
    EXPECT_LE(kept * records.size(), std::size_t(16) * 1024 * 1024);
    EXPECT_TRUE(cache.find({0, 0}).isKept) << "the first records are not dropped";
}

} // namespace
} // namespace meshcast
