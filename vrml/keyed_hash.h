#pragma once

#include <cstdint>
#include <string_view>

namespace meshcast {

/// The SipHash-2-4 of a text (Aumasson and Bernstein, "SipHash: a fast short-input PRF", 2012),
/// under a key that is drawn once per process. Whoever writes a scene cannot know which names
/// collide, so tables of names stay fast whatever they hold. Nothing that is written may depend on
/// these values: they differ from run to run.
std::uint64_t keyedHash(std::string_view text);

} // namespace meshcast
