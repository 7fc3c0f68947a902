#include "tools/vrmltidy/numbers.h"

#include "tools/vrmltidy/catalogue.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace meshcast::tidy {

namespace {

bool isWhole(std::string_view word, NumberKind kind) {
    return !word.empty() && skipNumber(word.data(), kind) == word.data() + word.size();
}

/// Hexadecimal digits behind `0X` or `0x` with an optional sign; empty when it is none.
std::string lowerHexadecimal(std::string_view word) {
    const std::size_t sign = word.starts_with('-') ? 1 : 0;
    const std::string_view digits = word.substr(std::min(word.size(), sign + 2));
    const bool isHexadecimal = word.size() > sign + 2 && word[sign] == '0' &&
                               (word[sign + 1] == 'X' || word[sign + 1] == 'x') &&
                               std::all_of(digits.begin(), digits.end(), isHexDigit);
    return isHexadecimal ? std::string(word.substr(0, sign)).append("0x").append(digits) : "";
}

/// An integer that is written as a real, without its fraction; empty when it does not fit.
std::string truncated(std::string_view word) {
    constexpr double kTooLarge = 2147483648.0;
    const ScannedReal scanned = scanReal(word.data());
    if (!scanned.ok || scanned.end != word.data() + word.size() ||
        !(std::abs(scanned.value) < kTooLarge)) {
        return {};
    }
    return std::to_string(static_cast<std::int32_t>(scanned.value));
}

} // namespace

const char* skipNumber(const char* p, NumberKind kind) {
    switch (kind) {
    case NumberKind::kReal:
        return skipReal(p);
    case NumberKind::kInteger:
        return skipInteger(p);
    default:
        return *p == '-' ? nullptr : skipInteger(p);
    }
}

MendedNumber mendNumber(std::string_view word, NumberKind kind) {
    using How = MendedNumber::How;
    if (isWhole(word, kind)) {
        return {How::kAsIs, {}};
    }
    const std::string_view number = word.substr(word.starts_with('+') ? 1 : 0);
    if (isWhole(number, kind)) {
        return {How::kRewritten, std::string(number)};
    }
    const bool isSigned = number.starts_with('-');
    const std::string hexadecimal = lowerHexadecimal(number);
    if (!hexadecimal.empty() && !(isSigned && kind == NumberKind::kUnsigned)) {
        return {How::kRewritten, kind == NumberKind::kReal
                                     ? std::to_string(scanInteger(hexadecimal.c_str()).value)
                                     : hexadecimal};
    }
    static constexpr std::string_view kSuffixes = "fFdDlL";
    const std::string_view stem = number.substr(0, number.empty() ? 0 : number.size() - 1);
    if (!number.empty() && kSuffixes.find(number.back()) != std::string_view::npos &&
        isWhole(stem, kind)) {
        return {How::kRewritten, std::string(stem)};
    }
    // Fortran writes 1.5D+02.
    std::string exponent(number);
    std::replace_if(
        exponent.begin(), exponent.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
    if (isWhole(exponent, kind)) {
        return {How::kRewritten, std::move(exponent)};
    }
    if (kind != NumberKind::kReal && !(isSigned && kind == NumberKind::kUnsigned)) {
        if (std::string text = truncated(number); !text.empty()) {
            return {How::kRewritten, std::move(text)};
        }
    }
    return {How::kNone, "0"};
}

bool isNamedNonNumber(std::string_view word) {
    static constexpr std::array<std::string_view, 3> kNames = {"nan", "inf", "infinity"};
    return std::any_of(kNames.begin(), kNames.end(),
                       [word](auto name) { return equalInAnyCase(word, name); });
}

bool beginsNumber(const Cursor& cursor) {
    const char c = cursor.peek();
    return isDigit(c) || c == '-' || c == '+' || c == '.' || isNamedNonNumber(cursor.word());
}

std::string_view numberWord(const Cursor& cursor) {
    const std::string_view word = cursor.word();
    const std::size_t sign = word.starts_with('-') || word.starts_with('+') ? 1 : 0;
    const char* last = word.data() + word.size();
    if (equalInAnyCase(word.substr(sign), "nan") && last != cursor.end && *last == '(') {
        do {
            ++last;
        } while (last != cursor.end && isNameCharacter(*last));
        if (last != cursor.end && *last == ')') {
            return {word.data(), static_cast<std::size_t>(last + 1 - word.data())};
        }
    }
    return word;
}

} // namespace meshcast::tidy
