#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace meshcast {

/// How many bytes after the zero byte that ends a text scanPlainValues may look at. Any bytes will
/// do.
inline constexpr std::size_t kScanSlack = 8;

/// The values at the start of a list, or of the rest of one.
struct PlainValues {
    const char* end;       ///< After the separator of the last value, or where no value was taken.
    std::size_t count = 0; ///< Of the scalars stored.
    std::uint32_t lines = 0; ///< Newlines before `end`.
    bool closed = false;     ///< `]` followed, and `end` is after it.
};

/// Reads values of `width` scalars each, and the comma after each, up to the `]` that ends the list
/// or until `into` has no room for another one. Takes only values that the general reader would
/// read to the same scalars without an error, with nothing but white space between: it stops before
/// any value of which this is not certain, such as one that is followed by a comment or by the end
/// of the text.
template <class Scalar>
PlainValues scanPlainValues(const char* first, std::size_t width, std::span<Scalar> into);

} // namespace meshcast
