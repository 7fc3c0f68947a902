#pragma once

#include <cstdint>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

/// The SipHash-2-4 of a text (Aumasson and Bernstein, "SipHash: a fast short-input PRF", 2012),
/// with a key that is drawn once per process. The author of a scene cannot know which names
/// collide, so tables of names stay fast. Output must not depend on these values, since they differ
/// from run to run.
std::uint64_t keyedHash(std::string_view text);

} // namespace meshcast

#pragma GCC visibility pop
