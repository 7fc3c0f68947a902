// Single values are encoded by the XDR library through the stream's encode handle. Arrays are not,
// because a call through three function pointers per float would be most of the cost of writing an
// object. They are encoded a chunk at a time and passed to the same sink. A chunk never crosses the
// end of a piece, so that a failed write loses the same bytes as with single values.

#include "compat/geom/stream.h"

#include "compat/geom/format.h"
#include "compat/geom/geom.h"
#include "compat/geom/memory.h"
#include "io/retry.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <type_traits>

namespace {

// The version of a stream before its first record.
constexpr int kNoVersionYet = 23;

constexpr std::size_t kXdrUnit = BYTES_PER_XDR_UNIT;

// ---- The descriptor

std::int64_t flush(GEOMstream& stream) {
    const std::size_t fill = stream.writeFill;
    stream.writeFill = 0;
    stream.hasWritten = true;
    return geom::writePiece(stream.fd, stream.writeBuffer.data(), fill);
}

// Counts n bytes that were stored after the fill position, for which there was room. Writes the
// piece if they complete it. Returns n, or a result below 1.
std::int64_t advance(GEOMstream& stream, std::size_t n) {
    stream.writeFill += n;
    if (stream.writeFill == GEOM_PIECE_BYTES) {
        const std::int64_t result = flush(stream);
        if (result < 1)
            return result;
    }
    return static_cast<std::int64_t>(n);
}

// Reads the next piece into the read buffer; false at the end of the input or on an error.
bool refill(GEOMstream& stream) {
    stream.readPosition = 0;
    stream.readFill = 0;
    const ssize_t result =
        meshcast::io::readSome(stream.fd, stream.readBuffer.data(), GEOM_PIECE_BYTES);
    if (result < 1)
        return false;
    stream.readFill = static_cast<std::size_t>(result);
    return true;
}

// ---- The operations of the XDR handles

GEOMstream& streamOf(XDR* handle) { return *static_cast<GEOMstream*>(handle->x_private); }

bool_t getLong(XDR* handle, long* value) {
    std::uint32_t word = 0;
    if (geom::readStream(&streamOf(handle), &word, sizeof word) != sizeof word)
        return FALSE;
    *value = static_cast<std::int32_t>(ntohl(word));
    return TRUE;
}

bool_t putLong(XDR* handle, const long* value) {
    GEOMstream& stream = streamOf(handle);
    const std::uint32_t word = htonl(static_cast<std::uint32_t>(*value));
    return stream.sink(&stream, &word, sizeof word) >= 0 ? TRUE : FALSE;
}

bool_t getBytes(XDR* handle, char* bytes, u_int n) {
    return geom::readStream(&streamOf(handle), bytes, n) == n ? TRUE : FALSE;
}

bool_t putBytes(XDR* handle, const char* bytes, u_int n) {
    GEOMstream& stream = streamOf(handle);
    return stream.sink(&stream, bytes, n) == n ? TRUE : FALSE;
}

u_int getPosition(XDR* /*handle*/) { return 0; }

bool_t setPosition(XDR* /*handle*/, u_int /*position*/) {
    return TRUE; // does not move, but callers that rewind can go on
}

std::int32_t* noInlineAccess(XDR* /*handle*/, u_int /*n*/) { return nullptr; }

void destroyNothing(XDR* /*handle*/) {}

bool_t controlNothing(XDR* /*handle*/, int /*request*/, void* /*info*/) { return FALSE; }

constexpr XDR::xdr_ops kOperations = {getLong,        putLong,        getBytes,
                                      putBytes,       getPosition,    setPosition,
                                      noInlineAccess, destroyNothing, controlNothing};

void openHandle(XDR& handle, xdr_op direction, GEOMstream& stream) {
    handle.x_op = direction;
    handle.x_ops = &kOperations;
    handle.x_private = &stream;
}

// ---- Encoding

bool isRaw(const GEOMstream& stream, bool forced) {
    return stream.version < GEOM_FIRST_XDR_VERSION || forced;
}

// The unsigned word with the size of T.
template <class T>
using WordOf = std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;

// The word with its bytes in the given order in memory.
template <std::endian Order, class Word>
constexpr Word ordered(Word word) {
    if constexpr (Order == std::endian::native)
        return word;
    else if constexpr (sizeof(Word) == sizeof(std::uint32_t))
        return __builtin_bswap32(word);
    else
        return __builtin_bswap64(word);
}

template <class T>
void putRaw(GEOMstream* stream, T value) {
    const auto word = ordered<std::endian::little>(std::bit_cast<WordOf<T>>(value));
    stream->sink(stream, &word, sizeof word);
}

// Encodes `n` values into `out`.
template <std::endian Order, class T>
void encode(unsigned char* out, const T* values, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const auto word = ordered<Order>(std::bit_cast<WordOf<T>>(values[i]));
        std::memcpy(out + i * sizeof word, &word, sizeof word);
    }
}

// `putOne` writes a value that crosses the end of a piece.
template <class T>
void putArray(GEOMstream* stream, const T* values, std::int64_t n, bool raw,
              void (*putOne)(GEOMstream*, T)) {
    std::array<unsigned char, GEOM_PIECE_BYTES> chunk;
    // For the stream's own sink, encode directly into the buffer.
    const bool inPlace = stream->sink == GEOMstream_write;
    for (auto left = static_cast<std::size_t>(std::max<std::int64_t>(n, 0)); left > 0;) {
        const std::size_t fits = (GEOM_PIECE_BYTES - stream->writeFill) / sizeof(T);
        if (fits == 0) {
            putOne(stream, *values++);
            --left;
            continue;
        }
        const std::size_t count = std::min(fits, left);
        unsigned char* const out =
            inPlace ? stream->writeBuffer.data() + stream->writeFill : chunk.data();
        if (raw)
            encode<std::endian::little>(out, values, count);
        else
            encode<std::endian::big>(out, values, count);
        if (inPlace)
            advance(*stream, count * sizeof(T));
        else
            stream->sink(stream, out, static_cast<std::int64_t>(count * sizeof(T)));
        values += count;
        left -= count;
    }
}

} // namespace

std::int64_t geom::writePiece(int fd, const unsigned char* bytes, std::size_t n) {
    std::size_t done = 0;
    while (done < n) {
        const ssize_t result = meshcast::io::writeSome(fd, bytes + done, n - done);
        if (result < 1)
            return result;
        done += static_cast<std::size_t>(result);
    }
    return static_cast<std::int64_t>(n);
}

GEOMstream* geom::createStream(int fd) {
    void* const memory = geom::tryAllocate(sizeof(GEOMstream));
    if (memory == nullptr)
        return nullptr;
    // Initialised member by member, because clearing the buffers would cost as much as writing a
    // small object.
    auto* const stream = new (memory) GEOMstream;
    stream->fd = fd;
    stream->writeFill = 0;
    stream->hasWritten = false;
    stream->readPosition = 0;
    stream->readFill = 0;
    stream->sink = GEOMstream_write;
    stream->version = kNoVersionYet;
    stream->rawInts = false;
    stream->rawFloats = false;
    stream->rawInt64s = false;
    openHandle(stream->decode, XDR_DECODE, *stream);
    openHandle(stream->encode, XDR_ENCODE, *stream);
    return stream;
}

void geom::closeStream(GEOMstream* stream) {
    if (stream->writeFill > 0)
        flush(*stream);
    if (stream->readFill > stream->readPosition)
        ::lseek(stream->fd, -static_cast<off_t>(stream->readFill - stream->readPosition), SEEK_CUR);
    geom::release(stream);
}

std::int64_t GEOMstream_write(GEOMstream* stream, const void* bytes, std::int64_t n) {
    // Most calls write one word. An aligned word always fits the buffer.
    if (n == kXdrUnit && stream->writeFill % kXdrUnit == 0) {
        std::memcpy(stream->writeBuffer.data() + stream->writeFill, bytes, kXdrUnit);
        return advance(*stream, kXdrUnit);
    }
    const auto* source = static_cast<const unsigned char*>(bytes);
    auto left = static_cast<std::size_t>(std::max<std::int64_t>(n, 0));
    while (left > 0) {
        const std::size_t piece = std::min(left, GEOM_PIECE_BYTES - stream->writeFill);
        std::memcpy(stream->writeBuffer.data() + stream->writeFill, source, piece);
        source += piece;
        left -= piece;
        const std::int64_t result = advance(*stream, piece);
        if (result < 1)
            return result;
    }
    return n;
}

std::int64_t geom::readStream(GEOMstream* stream, void* bytes, std::int64_t n) {
    auto* target = static_cast<unsigned char*>(bytes);
    std::int64_t done = 0;
    while (done < n) {
        if (stream->readPosition == stream->readFill && !refill(*stream))
            break;
        const std::size_t piece =
            std::min(static_cast<std::size_t>(n - done), stream->readFill - stream->readPosition);
        std::memcpy(target + done, stream->readBuffer.data() + stream->readPosition, piece);
        stream->readPosition += piece;
        done += static_cast<std::int64_t>(piece);
    }
    return done;
}

void geom::putInt(GEOMstream* stream, std::int32_t value) {
    if (isRaw(*stream, stream->rawInts)) {
        putRaw(stream, value);
        return;
    }
    const long word = value;
    XDR_PUTLONG(&stream->encode, &word);
}

void geom::putFloat(GEOMstream* stream, float value) {
    if (isRaw(*stream, stream->rawFloats))
        putRaw(stream, value);
    else
        xdr_float(&stream->encode, &value);
}

void geom::putInt64(GEOMstream* stream, std::int64_t value) {
    if (isRaw(*stream, stream->rawInt64s))
        putRaw(stream, value);
    else
        xdr_int64_t(&stream->encode, &value);
}

void geom::putInts(GEOMstream* stream, const std::int32_t* values, std::int64_t n) {
    putArray(stream, values, n, isRaw(*stream, stream->rawInts), putInt);
}

void geom::putFloats(GEOMstream* stream, const float* values, std::int64_t n) {
    putArray(stream, values, n, isRaw(*stream, stream->rawFloats), putFloat);
}

void geom::putInt64s(GEOMstream* stream, const std::int64_t* values, std::int64_t n) {
    putArray(stream, values, n, isRaw(*stream, stream->rawInt64s), putInt64);
}

void geom::putOpaque(GEOMstream* stream, const void* bytes, std::int64_t n) {
    constexpr std::array<unsigned char, kXdrUnit> padding{};
    stream->sink(stream, bytes, n);
    const std::int64_t pad = -n & (static_cast<std::int64_t>(kXdrUnit) - 1);
    if (!isRaw(*stream, false) && pad > 0)
        stream->sink(stream, padding.data(), pad);
}

void geom::putString(GEOMstream* stream, const char* text) {
    if (isRaw(*stream, false)) {
        const std::size_t length = std::strlen(text);
        putRaw(stream, static_cast<std::int32_t>(length));
        stream->sink(stream, text, static_cast<std::int64_t>(length));
        return;
    }
    char* mutableText = const_cast<char*>(text); // not written to: the handle encodes
    xdr_string(&stream->encode, &mutableText, GEOM_MAX_STRING_BYTES);
}
