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
    kUnsigned, ///< A pixel.
};

/// The end of the number at `p` as the reader takes it, or null where it takes none.
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
        kRewritten, ///< The same number as the reader takes it.
        kNone,      ///< No number can be made out: 0.
    };
    How how;
    std::string text;
};

/// Mends a word: C's suffixes, `0X1F`, hexadecimal reals, Fortran's exponents and decimal commas
/// become what the reader takes; a real where an integer belongs loses its fraction.
MendedNumber mendNumber(std::string_view word, NumberKind kind);

/// True when the word at `p` begins as numbers do, or is `nan` or `inf`.
bool beginsNumber(const Lexer& lexer, const char* p);

} // namespace meshcast::tidy
