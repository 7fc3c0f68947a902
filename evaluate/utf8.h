#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace meshcast::evaluate {

/// Removes the next character from a text and returns its code point. Bytes that are not valid
/// UTF-8 are read as ISO 8859-1, because many scenes are older than UTF-8.
inline char32_t takeCharacter(std::string_view& text) {
    const auto byteAt = [&text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned first = byteAt(0);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    constexpr char32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr unsigned kFirstBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = first & kFirstBits[length];
    bool isValid = length > 0;
    for (std::size_t i = 1; i < length; ++i) {
        isValid = isValid && (byteAt(i) & 0xC0U) == 0x80;
        character = character << 6U | (byteAt(i) & 0x3FU);
    }
    isValid = isValid && character >= kLowest[length] && character <= 0x10FFFF &&
              (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(isValid ? length : 1);
    return isValid ? character : first;
}

/// Appends a character as UTF-8.
inline void appendUtf8(std::string& text, char32_t character) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6U);
        append(0x80 | (character & 0x3FU));
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12U);
        append(0x80 | (character >> 6U & 0x3FU));
        append(0x80 | (character & 0x3FU));
    } else {
        append(0xF0 | character >> 18U);
        append(0x80 | (character >> 12U & 0x3FU));
        append(0x80 | (character >> 6U & 0x3FU));
        append(0x80 | (character & 0x3FU));
    }
}

/// Converts a text to valid UTF-8.
inline std::string toUtf8(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        appendUtf8(result, takeCharacter(text));
    }
    return result;
}

} // namespace meshcast::evaluate
