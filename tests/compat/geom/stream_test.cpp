#include "compat/geom/stream.h"
#include "tests/compat/geom/harness.h"

#include <bit>
#include <cerrno>
#include <limits>
#include <unistd.h>

namespace {

using Put = std::function<void(GEOMstream*)>;

// What `put` leaves on the descriptor, `offset` bytes into the first piece.
std::string streamed(int version, const Put& put, std::size_t offset = 0) {
    return written([&](int fd) {
        GEOMstream* stream = geom::create_stream(fd);
        stream->version = version;
        const std::string before(offset, '.');
        GEOMstream_write(stream, before.data(), static_cast<std::int64_t>(offset));
        put(stream);
        geom::close_stream(stream);
    });
}

// Floats of every class: each exponent with both signs and four mantissas.
std::vector<float> all_float_classes() {
    std::vector<float> values;
    for (std::uint32_t top = 0; top < 512; ++top)
        for (const std::uint32_t mantissa : {0u, 1u, 0x400000u, 0x7FFFFFu})
            values.push_back(std::bit_cast<float>(top << 23 | mantissa));
    return values;
}

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

template <class T>
void expect_bulk_as_single(void (*many)(GEOMstream*, const T*, std::int64_t),
                           void (*one)(GEOMstream*, T), const std::vector<T>& values) {
    const Put in_bulk = [&](auto* s) { many(s, values.data(), std::ssize(values)); };
    const Put one_by_one = [&](auto* s) {
        for (const T value : values)
            one(s, value);
    };
    // at the start of a piece, at ends that cut a value; only raw streams stand at odd places
    const std::pair<int, std::size_t> places[] = {{10, 0},   {10, 8184}, {10, 8188}, {7, 0},
                                                  {7, 4097}, {7, 8188},  {7, 8189}};
    for (const auto& [version, offset] : places)
        for (const WriteFault fault : {WriteFault{8192}, {5}, {0}, {-1, EIO}, {-1, EINTR}}) {
            script_writes({fault});
            const std::string bulk = streamed(version, in_bulk, offset);
            script_writes({fault});
            EXPECT_EQ(bulk, streamed(version, one_by_one, offset)) << version << ' ' << offset;
        }
    script_writes({});
}

} // namespace

TEST(Stream, BulkWritesTheBytesOfTheXdrRoutines) {
    expect_bulk_as_single(geom::put_floats, geom::put_float, all_float_classes());
    expect_bulk_as_single(geom::put_int64s, geom::put_int64,
                          {0, 1, -1, 0x0102030405060708, ~kLeast, kLeast, 1LL << 31, 42});
    expect_bulk_as_single(geom::put_ints, geom::put_int,
                          {0, 1, -1, 0x01020304, INT32_MAX, INT32_MIN});
}

TEST(Stream, EncodesByVersionAndSwitch) {
    const Put all = [](GEOMstream* s) {
        geom::put_int(s, 0x01020304);
        geom::put_float(s, 1);
        geom::put_int64(s, -2);
        geom::put_opaque(s, "abcde", 5);
        geom::put_string(s, "xyz");
    };
    for (const bool raw : {false, true}) {
        Bytes bytes(raw);
        bytes.ints({0x01020304}).floats({1}).counts({-2}).run("abcde").ints({3}).run("xyz");
        EXPECT_EQ(streamed(raw ? 7 : 8, all), bytes.str());
    }
    EXPECT_EQ(streamed(10,
                       [&](GEOMstream* s) {
                           s->raw_ints = s->raw_floats = s->raw_int64s = true;
                           all(s);
                       }),
              Bytes(true).ints({0x01020304}).floats({1}).counts({-2}).str() +
                  Bytes(false).run("abcde").ints({3}).run("xyz").str());
    const std::string longest(GEOM_MAX_STRING_BYTES, 'x');
    const auto put = [](const std::string& text) {
        return streamed(10, [&](GEOMstream* s) { geom::put_string(s, text.c_str()); }).size();
    };
    EXPECT_EQ(put(longest), 4u + longest.size() + 1); // padded by one
    EXPECT_EQ(put(longest + "x"), 4u);
}

TEST(Stream, WritesPiecesAndLosesOnlyTheOneThatFails) {
    const std::string data = [] {
        std::string bytes;
        for (int i = 0; i < 3 * 8192 + 100; ++i)
            bytes += static_cast<char>(i * 7 >> 4);
        return bytes;
    }();
    std::int64_t result = 0;
    const auto write_all = [&](std::deque<WriteFault> faults) {
        script_writes(std::move(faults));
        std::string bytes = streamed(10, [&](GEOMstream* s) {
            result = GEOMstream_write(s, data.data(), std::ssize(data));
            GEOMstream_write(s, "end", 3);
        });
        script_writes({});
        return bytes;
    };
    EXPECT_EQ(write_all({{100}, {-1, EINTR}, {8000}}), data + "end"); // short, interrupted
    EXPECT_EQ(result, std::ssize(data));
    EXPECT_EQ(write_all({{8192}, {-1, ENOSPC}}), data.substr(0, 8192) + "end");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(write_all({{8192}, {8192}, {0}}), data.substr(0, 16384) + "end");
    EXPECT_EQ(result, 0);
    // a 64-bit number cut by a failed piece: its second half is given up after an error only
    for (const long failure : {0, -1}) {
        script_writes({{failure, EIO}});
        EXPECT_EQ(streamed(
                      10, [](auto* s) { geom::put_int64(s, 5); }, 8188),
                  failure == 0 ? std::string("\0\0\0\5", 4) : "");
    }
}

TEST(Stream, ReadsBackAndReturnsWhatItReadAhead) {
    float value = 0;
    std::int64_t count = 0;
    char text[4] = {};
    long word = 0;
    written([&](int fd) {
        const std::string bytes =
            Bytes(false).floats({2.5F}).counts({-3}).run("abc").ints({-9, 1}).str();
        ASSERT_EQ(write(fd, bytes.data(), bytes.size()), std::ssize(bytes));
        lseek(fd, 0, SEEK_SET);
        GEOMstream* stream = geom::create_stream(fd);
        XDR* decode = &stream->decode;
        EXPECT_TRUE(xdr_float(decode, &value));
        EXPECT_TRUE(xdr_int64_t(decode, &count));
        EXPECT_TRUE(xdr_opaque(decode, text, 3));
        EXPECT_TRUE(XDR_GETLONG(decode, &word));
        EXPECT_EQ(XDR_GETPOS(decode), 0u);
        EXPECT_TRUE(XDR_SETPOS(decode, 4));
        geom::close_stream(stream);
        EXPECT_EQ(lseek(fd, 0, SEEK_CUR), 20);
        stream = geom::create_stream(fd);
        long unread = 5;
        EXPECT_TRUE(XDR_GETLONG(&stream->decode, &unread));
        EXPECT_FALSE(XDR_GETLONG(&stream->decode, &unread));
        EXPECT_EQ(unread, 1);
        geom::close_stream(stream);
    });
    EXPECT_EQ(value, 2.5F);
    EXPECT_EQ(count, -3);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(word, -9);
}
