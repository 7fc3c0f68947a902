#pragma once

#include <array>
#include <cstdint>

namespace meshcast {

// The character classes of the scene language, those of the C locale whatever the process's locale
// is. Bytes of 128 and more belong to no class.

namespace characters {

enum Class : std::uint8_t { kSpace = 1, kDigit = 2, kLetter = 4, kUnderscore = 8, kControl = 16 };

constexpr std::array<std::uint8_t, 256> makeTable() {
    std::array<std::uint8_t, 256> table{};
    for (unsigned c = 0; c < 128; ++c) {
        std::uint8_t& entry = table[c];
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            entry |= kSpace;
        }
        if (c >= '0' && c <= '9') {
            entry |= kDigit;
        }
        if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
            entry |= kLetter;
        }
        if (c == '_') {
            entry |= kUnderscore;
        }
        if (c < 32 || c == 127) {
            entry |= kControl;
        }
    }
    return table;
}

inline constexpr std::array<std::uint8_t, 256> kTable = makeTable();

constexpr bool has(char c, unsigned classes) {
    return (kTable[static_cast<unsigned char>(c)] & classes) != 0;
}

} // namespace characters

constexpr bool isSpace(char c) { return characters::has(c, characters::kSpace); }
constexpr bool isControl(char c) { return characters::has(c, characters::kControl); }
constexpr bool isNameStart(char c) {
    return characters::has(c, characters::kLetter | characters::kUnderscore);
}
constexpr bool isNameCharacter(char c) {
    return characters::has(c, characters::kLetter | characters::kUnderscore | characters::kDigit);
}

} // namespace meshcast
