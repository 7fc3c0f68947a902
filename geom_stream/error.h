#pragma once

#include <cstdint>
#include <string>

namespace geom_stream {

/// Where and how a stream departs from the format.
struct Error {
    std::uint64_t offset = 0; ///< in the stream, bytes; of the item that is missing or wrong
    std::string message;      ///< what was expected there and what was found
};

} // namespace geom_stream
