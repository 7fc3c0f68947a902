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

/// Decoder of GEOM streams, written from docs/stream-format.md alone. It shares nothing with the
/// writer, so that each checks the other.
///
/// It accepts any bytes. A departure from the format is an error with its offset; vertex numbers
/// and `bytecount` are handed on as they stand.
namespace geom_stream {

/// Decodes a stream object by object. Memory follows the largest record, as far as its bytes really
/// arrive: neither the length of the stream nor a count in it takes any.
class RecordReader {
public:
    /// Reads from the stream's first byte on, in blocks.
    explicit RecordReader(ReadBytes read) : input_(std::move(read)) {}

    /// The next object; none at the end of the stream, or after an error, which stays. What
    /// `read` throws passes through, and so does std::bad_alloc.
    std::optional<Object> next();

    /// What ended the stream early, if anything did.
    const std::optional<Error>& error() const { return error_; }

    /// Reads the rest of the stream, whatever it holds, and returns the size of the whole in bytes.
    /// No object comes after that.
    std::uint64_t skipToEnd() { return input_.skipToEnd(); }

private:
    Input input_;
    std::optional<Error> error_;
};

struct DecodeResult {
    std::vector<Object> objects; ///< in stream order; those before the error, if there is one
    std::optional<Error> error;
};

/// Decodes a whole stream in memory; an empty one holds zero objects.
DecodeResult decode(std::span<const std::byte> stream);

} // namespace geom_stream
