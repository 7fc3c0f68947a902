#include "fuzz/object_values.h"
#include "geom_stream/record_reader.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace geom_stream;
using meshcast::fuzz::ObjectValues;

/// Decodes through a callback that yields no more than `pieceSize` bytes at a time.
DecodeResult decodeInPieces(std::span<const std::byte> stream, std::size_t pieceSize) {
    std::span rest = stream;
    RecordReader reader([&](std::byte* into, std::size_t capacity) {
        const std::size_t size = std::min({capacity, pieceSize, rest.size()});
        std::copy_n(rest.begin(), size, into);
        rest = rest.subspan(size);
        return size;
    });
    DecodeResult result;
    while (std::optional<Object> object = reader.next()) {
        result.objects.push_back(std::move(*object));
    }
    result.error = reader.error();
    EXPECT_FALSE(reader.next()) << "after the end";
    EXPECT_EQ(reader.skipToEnd(), stream.size());
    return result;
}

void expectSame(const DecodeResult& result, const DecodeResult& expected) {
    ASSERT_EQ(result.objects.size(), expected.objects.size());
    for (std::size_t i = 0; i < expected.objects.size(); ++i) {
        EXPECT_EQ(ObjectValues(result.objects[i]), ObjectValues(expected.objects[i]));
        EXPECT_EQ(result.objects[i].size, expected.objects[i].size);
    }
    ASSERT_EQ(result.error.has_value(), expected.error.has_value());
    if (expected.error) {
        EXPECT_EQ(result.error->offset, expected.error->offset);
        EXPECT_EQ(result.error->message, expected.error->message);
    }
}

TEST(RecordReader, DecodesTruncatedRecordsInPieces) {
    for (const auto& [name, hex] : records::by_name) {
        const std::vector<std::byte> record = records::named(name).bytes;
        for (std::size_t size = 0; size <= record.size(); ++size) {
            const std::span cut = std::span(record).first(size);
            for (const std::size_t pieceSize : {1U, 7U, 61U}) {
                SCOPED_TRACE(name + " cut to " + std::to_string(size));
                expectSame(decodeInPieces(cut, pieceSize), decode(cut));
            }
        }
    }
}

// An array several times as long as the buffer, between records of the other version and odd
// lengths.
TEST(RecordReader, ReadsArraysLargerThanItsBuffer) {
    constexpr std::size_t kCount = 0x7531;
    const std::vector<std::byte> label = records::named("label 7").bytes;
    std::vector<std::byte> stream = label;
    const auto append = [&stream](const std::vector<std::byte>& bytes) {
        stream.insert(stream.end(), bytes.begin(), bytes.end());
    };
    append(records::fromHex(records::header10("z3 20", "z3 04", "0004") + "z6 7531,").bytes);
    for (std::size_t i = 0; i < kCount; ++i) {
        const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(i));
        for (int shift = 24; shift >= 0; shift -= 8) {
            stream.push_back(static_cast<std::byte>(bits >> shift));
        }
        stream.resize(stream.size() + 2 * sizeof(float));
    }
    const std::size_t end = stream.size();
    append(label);

    for (const std::size_t pieceSize : {1000U, 65521U, 1U << 20}) {
        const DecodeResult result = decodeInPieces(stream, pieceSize);
        ASSERT_EQ(result.objects.size(), 3U);
        EXPECT_EQ(result.objects[0].version, 7);
        EXPECT_EQ(result.objects[1].version, 10);
        EXPECT_EQ(result.objects[2].version, 7);
        EXPECT_EQ(result.objects[2].offset, end);
        const std::vector<Vec3>& centres = result.objects[1].sphere().vertices;
        ASSERT_EQ(centres.size(), kCount);
        for (std::size_t i = 0; i < kCount; ++i) {
            ASSERT_EQ(centres[i], (Vec3{static_cast<float>(i), 0, 0}));
        }
    }
    const DecodeResult cut = decode(std::span(stream).first(end - 1));
    ASSERT_TRUE(cut.error);
    EXPECT_EQ(cut.error->offset, label.size() + 72);
    EXPECT_EQ(cut.error->message, "expected 30001 centres of 12 bytes each, 360011 bytes left");
}

} // namespace
