#pragma once

#include "compat/geom/geom.h"

#include <rpc/xdr.h>

#include <array>
#include <cstddef>
#include <cstdint>

// The buffered stream that carries records to a descriptor, and the primitives that encode numbers
// and text into it.

/// Bytes per piece: the descriptor is written in pieces of this size, the last one at close.
inline constexpr std::size_t GEOM_PIECE_BYTES = GEOM_COPY_BYTES;

struct GEOMstream;

/// Takes n bytes. Returns n, or a result below 1 after a failed write.
using GEOMwrite_func = std::int64_t (*)(GEOMstream* stream, const void* bytes, std::int64_t n);

struct GEOMstream {
    int fd;
    std::array<unsigned char, GEOM_PIECE_BYTES> writeBuffer;
    std::size_t writeFill;
    bool hasWritten; ///< some piece
    std::array<unsigned char, GEOM_PIECE_BYTES> readBuffer;
    std::size_t readPosition;
    std::size_t readFill;
    XDR decode; ///< takes its bytes from geom::readStream()
    XDR encode; ///< hands its bytes to `sink`
    GEOMwrite_func sink;
    int version; ///< the protocol version; below GEOM_FIRST_XDR_VERSION everything is raw
    /// Force raw encoding of one type of number in an XDR stream. Off by default.
    bool rawInts;
    bool rawFloats;
    bool rawInt64s;
};

/// Buffers n bytes, none if n is below 0, and writes each full piece. Returns n. If a write returns
/// less than 1, returns that; the piece and the rest of the n bytes are lost.
std::int64_t GEOMstream_write(GEOMstream* stream, const void* bytes, std::int64_t n);

namespace geom {

/// Opens a stream on `fd`, with the sink GEOMstream_write(). Null when there is no memory for it.
GEOMstream* createStream(int fd);

/// Writes n bytes to a descriptor, in as many calls as it takes. Returns n, or the first result of
/// a write below 1.
std::int64_t writePiece(int fd, const unsigned char* bytes, std::size_t n);

/// Writes the buffered bytes, seeks the descriptor back over bytes that were read ahead, and frees
/// the stream. The descriptor stays open.
void closeStream(GEOMstream* stream);

/// Reads up to n bytes; returns how many came before the end of the input or an error.
std::int64_t readStream(GEOMstream* stream, void* bytes, std::int64_t n);

/// The primitives. XDR is big-endian (RFC 4506), raw is little-endian, on every machine. Results of
/// the sink are ignored: a failed write cuts the record short, and the next one is still attempted.
void putInt(GEOMstream* stream, std::int32_t value);
void putFloat(GEOMstream* stream, float value);
void putInt64(GEOMstream* stream, std::int64_t value);

/// n values one after another, without a count. Writes the same bytes as n single calls, also after
/// a failed write.
void putInts(GEOMstream* stream, const std::int32_t* values, std::int64_t n);
void putFloats(GEOMstream* stream, const float* values, std::int64_t n);
void putInt64s(GEOMstream* stream, const std::int64_t* values, std::int64_t n);

/// n bytes as they are; in an XDR stream zero bytes follow up to a multiple of 4.
void putOpaque(GEOMstream* stream, const void* bytes, std::int64_t n);

/// The length without NUL as an int, then the text as an opaque run. For a text longer than
/// GEOM_MAX_STRING_BYTES, XDR writes only the length, so that readers cannot decode the record.
void putString(GEOMstream* stream, const char* text);

} // namespace geom
