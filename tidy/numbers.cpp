#include "tidy/numbers.h"

#include "tidy/node_class.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace meshcast::tidy {

namespace {

bool isWhole(const std::string& word, NumberKind kind) {
    return endOfNumber(word.c_str(), kind) == word.c_str() + word.size();
}

/// `0X1F` as `0x1F`; empty for other words.
std::string lowerHexadecimal(std::string_view word) {
    const std::size_t sign = word.starts_with('-') ? 1 : 0;
    const std::string_view digits = word.substr(std::min(word.size(), sign + 2));
    const bool isHexadecimal = !digits.empty() && word[sign] == '0' &&
                               (word[sign + 1] == 'X' || word[sign + 1] == 'x') &&
                               std::all_of(digits.begin(), digits.end(), isHexDigit);
    return isHexadecimal ? std::string(word.substr(0, sign)).append("0x").append(digits) : "";
}

/// A real without its fraction, as an integer; empty when it does not fit.
std::string truncated(const std::string& word) {
    constexpr double kTooLarge = 2147483648.0;
    const ScannedReal scanned = scanReal(word.c_str());
    if (!scanned.ok || scanned.end != word.c_str() + word.size() ||
        !(std::abs(scanned.value) < kTooLarge)) {
        return {};
    }
    return std::to_string(static_cast<std::int32_t>(scanned.value));
}

} // namespace

MendedNumber mendNumber(std::string_view word, NumberKind kind) {
    using How = MendedNumber::How;
    std::string number(word);
    if (isWhole(number, kind)) {
        return {How::kAsIs, {}};
    }
    number.erase(0, number.starts_with('+') ? 1 : 0);
    if (isWhole(number, kind)) {
        return {How::kRewritten, number};
    }
    if (const std::string hexadecimal = lowerHexadecimal(number); !hexadecimal.empty()) {
        if (kind == NumberKind::kReal) {
            return {How::kRewritten, std::to_string(scanInteger(hexadecimal.c_str()).value)};
        }
        if (isWhole(hexadecimal, kind)) {
            return {How::kRewritten, hexadecimal};
        }
    }
    static constexpr std::string_view kSuffixes = "fFdDlL";
    if (!number.empty() && kSuffixes.find(number.back()) != std::string_view::npos) {
        number.pop_back();
    }
    std::replace_if(
        number.begin(), number.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
    std::replace(number.begin(), number.end(), ',', '.');
    if (isWhole(number, kind)) {
        return {How::kRewritten, number};
    }
    if (kind != NumberKind::kReal && isWhole(number, NumberKind::kReal)) {
        if (std::string text = truncated(number); isWhole(text, kind)) {
            return {How::kRewritten, std::move(text)};
        }
    }
    return {How::kNone, "0"};
}

bool beginsNumber(const Lexer& lexer, const char* p) {
    static constexpr std::array<std::string_view, 3> kNames = {"nan", "inf", "infinity"};
    const char c = lexer.at(p);
    if (isDigit(c) || c == '-' || c == '+' || c == '.') {
        return true;
    }
    if (c != 'n' && c != 'N' && c != 'i' && c != 'I') {
        return false;
    }
    const std::string_view word = lexer.word(p);
    return std::any_of(kNames.begin(), kNames.end(), [word](auto name) {
        return equalInAnyCase(word.substr(0, word.find('(')), name);
    });
}

} // namespace meshcast::tidy
