#pragma once

#include "geom_stream/error.h"
#include "geom_stream/object.h"
#include "geom_stream/stream_input.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)

/// Decoder of GEOM streams, written from docs/stream-format.md alone. It shares only
/// the numbers of the format with the writer, so that each checks the other.
///
/// It accepts any bytes. Bytes that violate the format are an error with an offset. Vertex numbers
/// and `bytecount` are not checked.
namespace geom_stream {

/// Decodes a stream object by object. Memory is proportional to the bytes of the largest record
/// that have arrived, not to the length of the stream nor to a count in it.
class RecordReader {
public:
    /// Reads a stream in blocks from its first byte.
    explicit RecordReader(ReadBytes read) : input_(std::move(read)) {}

    /// The next object; none at the end of the stream and after an error. Throws what `read`
    /// throws, and std::bad_alloc.
    std::optional<Object> next();

    /// The error that ended decoding, if there was one.
    const std::optional<Error>& error() const { return error_; }

    /// Skips the rest of the stream and returns the size of the whole stream in bytes. There are no
    /// objects after that.
    std::uint64_t skipToEnd() { return input_.skipToEnd(); }

private:
    Input input_;
    std::optional<Error> error_;
};

struct DecodeResult {
    std::vector<Object> objects; ///< in stream order, up to the error if there is one
    std::optional<Error> error;
};

/// Decodes a whole stream in memory; an empty one holds zero objects.
DecodeResult decode(std::span<const std::byte> stream);

} // namespace geom_stream

#pragma GCC visibility pop
