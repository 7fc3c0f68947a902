#include "vrml/number_scan.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>

namespace meshcast {

namespace {

constexpr std::uint64_t kMaxMagnitude = std::numeric_limits<std::uint64_t>::max();

/// The powers of ten that a double holds exactly.
constexpr std::array<double, 23> kExactPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMaxExactPower = static_cast<int>(kExactPowers.size()) - 1;
constexpr std::uint64_t kMaxExactInteger = std::uint64_t(1) << 53;
/// This many decimal digits always fit 64 bits.
constexpr std::ptrdiff_t kMaxSafeDigits = 19;
/// Exponents are cut here: far beyond any double, far from overflowing the sums they enter.
constexpr std::int64_t kMaxExponent = std::int64_t(1) << 40;

constexpr unsigned digitValue(char c) {
    if (isDigit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    return static_cast<unsigned>((c | 0x20) - 'a') + 10U;
}

/// Converts the characters that `taken` accepts. `SafeDigits` digits of the base always fit 64
/// bits; a longer number is converted again with saturation.
template <unsigned Base, std::ptrdiff_t SafeDigits, class Taken>
ScannedMagnitude accumulate(const char* first, Taken taken) {
    const char* end = first;
    std::uint64_t magnitude = 0;
    for (; taken(*end); ++end) {
        magnitude = magnitude * Base + digitValue(*end);
    }
    if (end - first > SafeDigits) {
        magnitude = 0;
        for (const char* p = first; p != end; ++p) {
            const unsigned digit = digitValue(*p);
            const bool fits = magnitude <= (kMaxMagnitude - digit) / Base;
            magnitude = fits ? magnitude * Base + digit : kMaxMagnitude;
        }
    }
    return {end, magnitude, end != first};
}

/// The value of a decimal without sign to which the fast path of scanReal does not apply.
double nearestDouble(const char* first, const char* last, std::uint64_t mantissa,
                     std::int64_t exponent, std::int64_t digits) {
    double value = 0;
    const auto [end, error] = std::from_chars(first, last, value);
    if (error != std::errc::result_out_of_range) {
        return value;
    }
    // from_chars does not tell an overflow from an underflow. A decimal whose leading digit is
    // before the point is too large, any other too small.
    if (digits > kMaxSafeDigits) {
        const char* lead = first;
        while (*lead == '0' || *lead == '.') {
            digits -= *lead == '0' ? 1 : 0;
            ++lead;
        }
        return exponent + digits > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return mantissa != 0 && exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

} // namespace

ScannedMagnitude scanMagnitude(const char* first) {
    if (*first != '0') {
        return accumulate<10, kMaxSafeDigits>(first, isDigit);
    }
    if (first[1] == 'x') {
        return accumulate<16, 16>(first + 2, isHexDigit);
    }
    ScannedMagnitude scanned =
        accumulate<8, 21>(first, [](char c) { return c >= '0' && c <= '7'; });
    while (isDigit(*scanned.end)) {
        ++scanned.end;
    }
    return scanned;
}

ScannedInteger scanInteger(const char* first) {
    const bool negative = *first == '-';
    const char* const digits = *first == '-' || *first == '+' ? first + 1 : first;
    // Nearly every integer is a short decimal.
    std::uint64_t magnitude = 0;
    const char* end = digits;
    for (; isDigit(*end); ++end) {
        magnitude = magnitude * 10 + digitValue(*end);
    }
    bool ok = true;
    if (end == digits || *digits == '0' || end - digits >= kMaxSafeDigits) {
        const ScannedMagnitude scanned = scanMagnitude(digits);
        constexpr std::uint64_t kMaxPositive = std::numeric_limits<std::int64_t>::max();
        magnitude = std::min(scanned.magnitude, negative ? kMaxPositive + 1 : kMaxPositive);
        end = scanned.end;
        ok = scanned.ok;
    }
    const std::uint64_t bits = negative ? 0 - magnitude : magnitude;
    return {end, static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)), ok};
}

// Most numbers of a scene are short decimals. With a mantissa of at most 53 bits and a power of ten
// that a double holds exactly, one multiplication or division of two exact doubles rounds once and
// so gives the nearest double (W. Clinger, "How to read floating point numbers accurately", 1990).
// Everything else goes to std::from_chars.
ScannedReal scanReal(const char* first) {
    std::uint64_t mantissa = 0; // Overflows beyond kMaxSafeDigits digits, and is not used then.
    const RealParts parts = walkReal(
        first, [&mantissa](char c) { mantissa = mantissa * 10 + static_cast<unsigned>(c - '0'); });
    if (!parts.ok) {
        return {parts.end, 0, false};
    }
    const bool negative = *first == '-';
    const std::int64_t digits = parts.digitCount;
    std::int64_t exponent = 0;
    if (parts.exponent != nullptr) {
        const bool negativeExponent = *parts.exponent == '-';
        const char* p = parts.exponent + (isDigit(*parts.exponent) ? 0 : 1);
        for (; p != parts.end; ++p) {
            if (exponent < kMaxExponent) {
                exponent = exponent * 10 + (*p - '0');
            }
        }
        if (negativeExponent) {
            exponent = -exponent;
        }
    }
    exponent -= parts.fractionCount;

    double value = 0;
    // Wider intermediate results would round twice.
    constexpr bool kRoundsOnce = FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1;
    if (kRoundsOnce && digits <= kMaxSafeDigits && mantissa <= kMaxExactInteger &&
        exponent >= -kMaxExactPower && exponent <= kMaxExactPower) {
        value = static_cast<double>(mantissa);
        if (exponent < 0) {
            value /= kExactPowers[static_cast<std::size_t>(-exponent)];
        } else {
            value *= kExactPowers[static_cast<std::size_t>(exponent)];
        }
    } else {
        value = nearestDouble(parts.digits, parts.end, mantissa, exponent, digits);
    }
    return {parts.end, negative ? -value : value, true};
}

} // namespace meshcast
