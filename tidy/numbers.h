#pragma once

#include "tidy/lexer.h"
#include "vrml/number_scan.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace meshcast::tidy {

enum class NumberKind : std::uint8_t {
    kReal,
    kInteger,
    kUnsigned, ///< The value of a pixel.
};

/// The end of the number that the reader accepts at `p`, or null when it accepts none.
inline const char* endOfNumber(const char* p, NumberKind kind) {
    if (kind == NumberKind::kReal) {
        return endOfReal(p);
    }
    const bool isSigned = *p == '-' || *p == '+';
    return isSigned && kind == NumberKind::kUnsigned ? nullptr : endOfInteger(p);
}

/// What to write for a word where a number is expected.
struct MendedNumber {
    enum class How : std::uint8_t {
        kAsIs,
        kRewritten, ///< The same number in a notation that the reader accepts.
        kNone,      ///< Not recognisable as a number: 0.
    };
    How how;
    std::string text;
};

/// Converts a word to a number that the reader accepts. Understands C's suffixes, `0X1F`,
/// hexadecimal reals, Fortran's exponents and decimal commas. A real loses its fraction where an
/// integer is expected.
MendedNumber mendNumber(std::string_view word, NumberKind kind);

/// True when the word at `p` begins like a number, or is `nan` or `inf`.
bool beginsNumber(const Lexer& lexer, const char* p);

} // namespace meshcast::tidy
