#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// True for the first bytes of gzip-compressed data.
bool isCompressed(std::string_view bytes);

/// Inflates gzip-compressed data, one member after another, to at most `limit` bytes. Returns why
/// that failed; nothing when it did not. What follows the last member is ignored, as gzip does.
std::string inflate(std::string_view compressed, std::size_t limit, std::string& inflated);

} // namespace meshcast::tidy
