#include "vrml/list_scan.h"

#include "vrml/characters.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cstring>

// Nearly all time of reading goes to lists of short numbers. Eight characters are looked at at a
// time, as the bytes of a word, since loops that end after a few digits are mispredicted.

namespace meshcast {

namespace {

static_assert(sizeof(std::uint64_t) <= kScanSlack);

constexpr std::uint64_t kBlanks = 0x2020202020202020;

/// The next eight characters, the first one in the lowest byte.
std::uint64_t load(const char* from) {
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    return word;
}

/// The number of the lowest byte that is not zero; 8 if there is none.
unsigned lowestByte(std::uint64_t word) {
    return static_cast<unsigned>(std::countr_zero(word)) / 8;
}

/// A run of at most eight decimal digits.
struct Digits {
    unsigned count;
    std::uint32_t value;
};

Digits scanDigits(const char* first) {
    // The characters of digits become their values, all others more than 9. Adding 0x76 sets the
    // highest bit of those; what it carries only reaches characters after them.
    const std::uint64_t values = load(first) ^ 0x3030303030303030;
    const std::uint64_t others = (values | (values + 0x7676767676767676)) & 0x8080808080808080;
    const unsigned count = lowestByte(others);
    // Moved up, the digits follow zeros and end the word. In two steps, for a count of 0.
    const unsigned half = 4 * (8 - count);
    std::uint64_t word = values << half << half;
    // Pairs of digits, then fours, then all eight.
    word = (word * 10 + (word >> 8)) & 0x00FF00FF00FF00FF;
    word = (word * 100 + (word >> 16)) & 0x0000FFFF0000FFFF;
    word = word * 10000 + (word >> 32);
    return {count, static_cast<std::uint32_t>(word)};
}

/// Steps over a character under a condition. The statement without instructions keeps the condition
/// a branch, which the processor guesses and goes on. What compilers make of it otherwise, an
/// addition of 0 or 1, has to wait for the character, and that for each one doubles the time.
void step(const char*& p) {
    ++p;
    asm("" : "+r"(p));
}

const char* skipBlanks(const char* p, std::uint32_t& lines) {
    if (*p == ' ') {
        step(p);
    }
    while (isSpace(*p)) {
        lines += *p == '\n' ? 1 : 0;
        ++p;
        std::uint64_t others = load(p) ^ kBlanks; // indentation
        while (others == 0) {
            p += 8;
            others = load(p) ^ kBlanks;
        }
        p += lowestByte(others);
    }
    return p;
}

constexpr std::array<std::uint32_t, 9> kPowers = {1,      10,      100,      1000,     10000,
                                                  100000, 1000000, 10000000, 100000000};

/// The end of the number at `p`; null if it is not certain what the general reader makes of it.
const char* scanScalar(const char* p, float& scalar) {
    constexpr bool kRoundsOnce = FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1;
    const char* const first = p;
    const bool negative = *p == '-';
    if (negative) {
        step(p);
    }
    const Digits whole = scanDigits(p);
    p += whole.count;
    Digits fraction{0, 0};
    if (*p == '.') {
        fraction = scanDigits(++p);
        p += fraction.count;
    }
    // At most 15 digits make an integer that a double holds exactly, so that the division gives the
    // nearest double, as in scanReal. A longer run of digits goes on at p.
    const unsigned count = whole.count + fraction.count;
    if (kRoundsOnce && count - 1 < 15 && !isNameCharacter(*p)) {
        const std::uint64_t digits =
            std::uint64_t{whole.value} * kPowers[fraction.count] + fraction.value;
        const double value = static_cast<double>(digits) / kPowers[fraction.count];
        scalar = static_cast<float>(negative ? -value : value);
        return p;
    }
    const ScannedReal scanned = scanReal(first);
    scalar = static_cast<float>(scanned.value);
    return scanned.ok ? scanned.end : nullptr;
}

const char* scanScalar(const char* p, std::int32_t& scalar) {
    const char* const first = p;
    const bool negative = *p == '-';
    if (negative) {
        step(p);
    }
    const Digits digits = scanDigits(p);
    // After a 0 other digits are octal, or hexadecimal.
    if (digits.count - 1 < 7 && (*p != '0' || digits.count == 1)) {
        const auto value = static_cast<std::int32_t>(digits.value);
        scalar = negative ? -value : value;
        return p + digits.count;
    }
    const ScannedInteger scanned = scanInteger(first);
    scalar = scanned.value;
    return scanned.ok ? scanned.end : nullptr;
}

} // namespace

template <class Scalar>
PlainValues scanPlainValues(const char* first, std::size_t width, std::span<Scalar> into) {
    PlainValues taken{first};
    const char* p = first;
    std::uint32_t lines = 0;
    while (into.size() - taken.count >= width) {
        for (std::size_t i = 0; i < width; ++i) {
            p = scanScalar(skipBlanks(p, lines), into[taken.count + i]);
            if (p == nullptr) {
                return taken;
            }
        }
        p = skipBlanks(p, lines);
        if (*p == ',') {
            p = skipBlanks(p + 1, lines);
        } else if (*p != ']') {
            return taken;
        }
        // After a comma the end of the text, a comment and a byte 255 are left to the general
        // reader.
        const bool closed = *p == ']';
        if (*p <= ' ' || *p == '#') {
            return taken;
        }
        taken = {p + (closed ? 1 : 0), taken.count + width, lines, closed};
        if (closed) {
            return taken;
        }
    }
    return taken;
}

template PlainValues scanPlainValues(const char* first, std::size_t width, std::span<float> into);
template PlainValues scanPlainValues(const char* first, std::size_t width,
                                     std::span<std::int32_t> into);

} // namespace meshcast
