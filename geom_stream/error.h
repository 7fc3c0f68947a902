#pragma once

#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

namespace geom_stream {

/// The first error of a stream.
struct Error {
    std::uint64_t offset = 0; ///< of the missing or wrong item, in bytes from the stream's start
    std::string message;      ///< what was expected and what was found
};

} // namespace geom_stream

#pragma GCC visibility pop
