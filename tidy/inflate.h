#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// True for the first bytes of gzip-compressed data.
bool isCompressed(std::string_view bytes);

/// The largest size to which data of this size may be inflated: 128 times the size or 16 MiB,
/// whichever is more, but at most the largest size of a scene. Real scenes need a tenth of that.
/// The limit protects from files that were made to exhaust the memory.
std::uint64_t mostInflated(std::uint64_t compressedSize);

/// Inflates all members of gzip-compressed data in place. Stops with an error as soon as there are
/// more than `limit` bytes. Returns the reason of a failure, or an empty string. Like gzip, ignores
/// what follows the last member. Frees the compressed bytes before the result is allocated.
std::string inflate(std::string& bytes, std::uint64_t limit);

} // namespace meshcast::tidy
