#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// True for the first bytes of gzip-compressed data.
bool isCompressed(std::string_view bytes);

/// How long data may become that is inflated: 128 times what it is, or 16 MiB if that is more, and
/// never longer than a scene. Scenes come to a tenth of that; what goes beyond is made to fill the
/// memory.
std::uint64_t mostInflated(std::uint64_t compressedSize);

/// Inflates gzip-compressed data in place, all its members, to at most `limit` bytes: it stops as
/// soon as there are more. Returns why that failed; nothing when it did not. What follows the last
/// member is ignored, as gzip does. The compressed bytes are given up before there are others.
std::string inflate(std::string& bytes, std::uint64_t limit);

} // namespace meshcast::tidy
