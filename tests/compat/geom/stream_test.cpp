#include "compat/geom/stream.h"
#include "tests/compat/geom/harness.h"
#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <limits>
#include <unistd.h>

namespace {

using Put = std::function<void(GEOMstream*)>;

// The bytes that `put` writes, after `offset` bytes that fill a part of the first piece.
std::string streamed(int version, const Put& put, std::size_t offset = 0) {
    return written([&](int fd) {
        GEOMstream* stream = geom::createStream(fd);
        stream->version = version;
        const std::string before(offset, '.');
        GEOMstream_write(stream, before.data(), std::ssize(before));
        put(stream);
        geom::closeStream(stream);
    });
}

template <class T>
void expectBulkAsSingle(void (*many)(GEOMstream*, const T*, std::int64_t),
                        void (*one)(GEOMstream*, T), const std::vector<T>& values) {
    const Put inBulk = [&](auto* s) { many(s, values.data(), std::ssize(values)); };
    const Put elsewhere = [&](auto* s) {
        s->sink = [](auto* t, const void* bytes, auto n) { return GEOMstream_write(t, bytes, n); };
        inBulk(s);
    };
    const Put oneByOne = [&](auto* s) {
        for (const T value : values)
            one(s, value);
    };
    // a value may cross the end of a piece; only in raw streams, at offsets not divisible by 4
    const std::pair<int, std::size_t> places[] = {{10, 0}, {10, 8188}, {7, 4097}, {7, 8189}};
    for (const auto& [version, offset] : places)
        for (const IoFault fault : {IoFault{5}, {0}, {-1, EIO}}) {
            std::vector<std::string> streams;
            for (const Put& put : {inBulk, elsewhere, oneByOne}) {
                writeFaults = {fault};
                streams.push_back(streamed(version, put, offset));
            }
            EXPECT_EQ(streams, std::vector(3, streams[0])) << version << ' ' << offset;
        }
    writeFaults.clear();
}

} // namespace

TEST(Stream, BulkEncodingEqualsTheXdrRoutines) {
    Floats floats; // each exponent with both signs and four mantissas
    for (std::uint32_t top = 0; top < 512; ++top)
        for (const std::uint32_t mantissa : {0u, 1u, 0x400000u, 0x7FFFFFu})
            floats.push_back(std::bit_cast<float>(top << 23 | mantissa));
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    expectBulkAsSingle(geom::putFloats, geom::putFloat, floats);
    expectBulkAsSingle(geom::putInt64s, geom::putInt64,
                       {0, -1, 0x0102030405060708, ~least, least, 1LL << 31, 42});
    expectBulkAsSingle(geom::putInts, geom::putInt, {0, -1, 0x01020304, INT32_MIN});
}

TEST(Stream, HonoursRawModesAndTheStringLimit) {
    const Put all = [](GEOMstream* s) {
        s->rawInts = s->rawFloats = s->rawInt64s = true;
        geom::putInt(s, 0x01020304);
        geom::putFloat(s, 1);
        geom::putInt64(s, -2);
        geom::putString(s, "xyz"); // strings stay XDR
        GEOMstream_write(s, "none", -4);
    };
    const auto bytes = records::fromHex("04030201 0000803f feffffffffffffff 00000003 78797a00");
    EXPECT_EQ(streamed(10, all), bytes.str());
    const std::string longest(GEOM_MAX_STRING_BYTES + 1, 'x'); // one byte too long
    EXPECT_EQ(streamed(8, [&](auto* s) { geom::putString(s, longest.data() + 1); }).size(),
              10'000'004u);
    EXPECT_EQ(streamed(8, [&](auto* s) { geom::putString(s, longest.data()); }).size(), 4u);
}

TEST(Stream, LosesOnlyThePieceWhoseWriteFails) {
    std::string data;
    for (int i = 0; i < 3 * 8192 + 100; ++i)
        data += static_cast<char>(i * 7 >> 4);
    // short and interrupted writes continue; after a write that fails, its piece and the rest are
    // lost
    const auto expect = [&](std::deque<IoFault> faults, std::int64_t result, std::size_t kept) {
        writeFaults = std::move(faults);
        const std::string bytes = streamed(10, [&](GEOMstream* s) {
            EXPECT_EQ(GEOMstream_write(s, data.data(), std::ssize(data)), result);
            GEOMstream_write(s, "end", 3);
        });
        EXPECT_EQ(bytes, data.substr(0, kept) + "end");
    };
    expect({{100}, {-1, EINTR}, {8000}}, std::ssize(data), data.size());
    expect({{8192}, {-1, ENOSPC}}, -1, 8192);
    expect({{8192}, {8192}, {0}}, 0, 16384);
    // a 64-bit number across the end of a piece that fails: its second half is lost after an error,
    // but is written after a write of 0 bytes
    for (const long failure : {0, -1}) {
        writeFaults = {{failure, EIO}};
        const std::string bytes = streamed(
            10, [](auto* s) { geom::putInt64(s, 5); }, 8188);
        EXPECT_EQ(bytes, failure == 0 ? std::string("\0\0\0\5", 4) : "");
    }
}

TEST(Stream, ReadsAndRestoresTheFilePosition) {
    written([](int fd) {
        ASSERT_EQ(write(fd, "\xff\xff\xff\xf7\0\0\0\1", 8), 8);
        lseek(fd, 0, SEEK_SET);
        long word = 0;
        for (const long expected : {-9, 1, 0}) {
            GEOMstream* stream = geom::createStream(fd);
            EXPECT_EQ(XDR_GETLONG(&stream->decode, &word), expected == 0 ? FALSE : TRUE);
            EXPECT_EQ(word, expected == 0 ? 1 : expected);
            geom::closeStream(stream);
            EXPECT_EQ(lseek(fd, 0, SEEK_CUR), expected == -9 ? 4 : 8);
        }
    });
}
