#pragma once

#include "tools/vrmltidy/cursor.h"
#include "vrml/number_scan.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace meshcast::tidy {

// Numbers as the reader takes them, without their values, and what becomes of those that it does
// not take.

enum class NumberKind : std::uint8_t {
    kReal,
    kInteger,
    kUnsigned, ///< A pixel.
};

/// The end of the real number that begins at `p`, or null where there is none or one with a leading
/// `+`. scanReal agrees.
inline const char* skipReal(const char* p) {
    p += *p == '-' ? 1 : 0;
    const char* const digits = p;
    while (isDigit(*p)) {
        ++p;
    }
    bool any = p != digits;
    if (*p == '.') {
        const char* const fraction = ++p;
        while (isDigit(*p)) {
            ++p;
        }
        any = any || p != fraction;
    }
    if (!any) {
        return nullptr;
    }
    if (*p == 'e' || *p == 'E') {
        ++p;
        p += *p == '-' || *p == '+' ? 1 : 0;
        const char* const exponent = p;
        while (isDigit(*p)) {
            ++p;
        }
        return p == exponent ? nullptr : p;
    }
    return p;
}

/// The same for an integer and scanInteger.
inline const char* skipInteger(const char* p) {
    p += *p == '-' ? 1 : 0;
    if (*p == '0') {
        const ScannedMagnitude scanned = scanMagnitude(p);
        return scanned.ok ? scanned.end : nullptr;
    }
    const char* const digits = p;
    while (isDigit(*p)) {
        ++p;
    }
    return p == digits ? nullptr : p;
}

const char* skipNumber(const char* p, NumberKind kind);

/// What to write for a word that stands where a number is expected.
struct MendedNumber {
    enum class How : std::uint8_t {
        kAsIs,
        kRewritten, ///< The same number as the reader takes it.
        kNone,      ///< No number at all: 0.
    };
    How how;
    std::string text;
};

/// Mends a word: a leading `+` and the suffix of a C constant are dropped, `0X1F` is written as
/// `0x1F`, or in decimal for a real; what is left is no number.
MendedNumber mendNumber(std::string_view word, NumberKind kind);

/// True when the word at the cursor begins as numbers do, or is `nan` or `inf`.
bool beginsNumber(const Cursor& cursor);
/// True for `nan`, `inf` and `infinity` in any letter case.
bool isNamedNonNumber(std::string_view word);
/// The word at the cursor, with the parentheses of `-nan(ind)`.
std::string_view numberWord(const Cursor& cursor);

} // namespace meshcast::tidy
