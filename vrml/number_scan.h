#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

namespace meshcast {

// Numbers as the scene language writes them, scanned in one pass. The text must end in a character
// that belongs to no number (a terminating zero serves). Nothing here depends on the locale.

/// True for the decimal digits only.
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// True for the decimal digits and the letters a to f in either case.
constexpr bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// The value of an integer's digits, without a sign.
struct ScannedMagnitude {
    const char* end;         ///< The first character that was not taken.
    std::uint64_t magnitude; ///< Saturated at the largest 64-bit number.
    bool ok;                 ///< There was at least one digit.
};

/// Scans decimal digits, octal digits after a leading `0`, or hexadecimal digits after `0x`
/// (lower-case x only), with the value that `strtoul` gives in base 0: after a leading `0`, the
/// digits 8 and 9 are taken but end the conversion.
ScannedMagnitude scanMagnitude(const char* first);

/// The low 32 bits of what a 64-bit `strtoul` gives for the digits.
inline std::uint32_t narrowUnsigned(const ScannedMagnitude& scanned) {
    return static_cast<std::uint32_t>(scanned.magnitude);
}

struct ScannedInteger {
    const char* end;    ///< The first character that was not taken.
    std::int32_t value; ///< The low 32 bits of what a 64-bit `strtol` gives in base 0.
    bool ok;            ///< There was at least one digit.
};

/// Scans an optional sign and digits as scanMagnitude does.
ScannedInteger scanInteger(const char* first);

struct ScannedReal {
    const char* end; ///< The first character that was not taken.
    double value;
    bool ok; ///< There were digits before or after the point, and after any exponent marker.
};

/// Scans an optional sign, digits with an optional point, and an optional exponent. The value is
/// the double nearest to the decimal, as `strtod` gives it in the C locale: infinity beyond the
/// largest double, zero below the smallest, each with the sign of the number.
ScannedReal scanReal(const char* first);

/// The parts of a real number.
struct RealParts {
    const char* end;      ///< The first character that was not taken.
    const char* digits;   ///< After the sign.
    const char* fraction; ///< After the point, or where a point would be.
    const char* exponent; ///< After the exponent marker, its sign included; null without one.
    std::int64_t digitCount;
    std::int64_t fractionCount; ///< Of the digits, those after the point.
    bool ok;                    ///< As in ScannedReal.
};

/// Finds the parts of a real number without computing its value. Calls `digit` with each digit
/// before the exponent. All readers of reals use this grammar.
template <class OnDigit>
inline RealParts walkReal(const char* first, OnDigit digit) {
    const char* p = first + (*first == '-' || *first == '+' ? 1 : 0);
    RealParts parts{p, p, p, nullptr, 0, 0, false};
    for (; isDigit(*p); ++p) {
        digit(*p);
    }
    parts.digitCount = p - parts.digits;
    parts.fraction = p;
    if (*p == '.') {
        parts.fraction = ++p;
        for (; isDigit(*p); ++p) {
            digit(*p);
        }
        parts.fractionCount = p - parts.fraction;
        parts.digitCount += parts.fractionCount;
    }
    parts.ok = parts.digitCount != 0;
    if (parts.ok && (*p == 'e' || *p == 'E')) {
        parts.exponent = ++p;
        p += *p == '-' || *p == '+' ? 1 : 0;
        parts.ok = isDigit(*p);
        while (isDigit(*p)) {
            ++p;
        }
    }
    parts.end = p;
    return parts;
}

/// The end of the real number at `first`, or null if there is none.
inline const char* endOfReal(const char* first) {
    const RealParts parts = walkReal(first, [](char) {});
    return parts.ok ? parts.end : nullptr;
}

/// The end of the integer at `first`, or null if there is none.
inline const char* endOfInteger(const char* first) {
    const char* const digits = first + (*first == '-' || *first == '+' ? 1 : 0);
    if (*digits == '0') { // Octal or hexadecimal.
        const ScannedMagnitude scanned = scanMagnitude(digits);
        return scanned.ok ? scanned.end : nullptr;
    }
    const char* end = digits;
    while (isDigit(*end)) {
        ++end;
    }
    return end == digits ? nullptr : end;
}

} // namespace meshcast

#pragma GCC visibility pop
