#include "tidy/numbers.h"
#include "tidy/report.h"
#include "tidy/value.h"

#include <cstdint>
#include <string>

namespace meshcast::tidy {

namespace {

/// How many numbers an image has, computed from the first three; 0 when the reader rejects these.
/// Images with more than four components per pixel are invalid.
std::uint64_t numberCount(const std::int32_t (&head)[3]) {
    constexpr std::int32_t kMostComponents = 4;
    const auto width = static_cast<std::int16_t>(head[0]);
    const auto height = static_cast<std::int16_t>(head[1]);
    if (width < 0 || height < 0 || head[2] < 0 || head[2] > kMostComponents) {
        return 0;
    }
    return 3 + static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

NumberKind kindOf(std::uint64_t index) {
    return index < 3 ? NumberKind::kInteger : NumberKind::kUnsigned;
}

const char* skipCommas(Lexer& lexer, const char* p, bool skips) {
    p = lexer.skipSpace(p);
    while (skips && lexer.at(p) == ',') {
        p = lexer.skipSpace(p + 1);
    }
    return p;
}

/// The end of an image, or null. The reader accepts numbers separated by white space. With
/// `isTolerant`, also commas and damaged numbers.
const char* endOfImage(Lexer& lexer, const char* p, bool isTolerant) {
    std::int32_t head[3] = {};
    std::uint64_t count = 3;
    for (std::uint64_t i = 0; i < count; ++i) {
        p = skipCommas(lexer, p, isTolerant);
        const char* end = p == lexer.end() ? nullptr : endOfNumber(p, kindOf(i));
        std::string text;
        if (isTolerant) {
            const std::string_view word = lexer.word(p);
            if (!beginsNumber(lexer, p)) {
                return nullptr;
            }
            end = p + word.size();
            const MendedNumber mended = mendNumber(word, kindOf(i));
            text = mended.how == MendedNumber::How::kAsIs ? std::string(word) : mended.text;
        }
        if (end == nullptr) {
            return nullptr;
        }
        if (i < 3) {
            head[i] = scanInteger(isTolerant ? text.c_str() : p).value;
        }
        if (i == 2) {
            count = numberCount(head);
            if (count == 0) {
                return nullptr;
            }
        }
        p = end;
    }
    return p;
}

} // namespace

PassedValue passImage(const ValuePlace& place, const char* first) {
    Lexer& lexer = place.lexer;
    if (const char* const end = endOfImage(lexer, first, false)) {
        if (maySeparate(place, end)) {
            return {end};
        }
    }
    const char* const end = endOfImage(lexer, first, true);
    if (end == nullptr) {
        return {};
    }
    std::string text;
    std::uint64_t i = 0;
    for (const char* p = first; p != end; ++i) {
        const char* const next = skipCommas(lexer, p, true);
        for (bool inComment = false; p != next; ++p) {
            inComment = *p == '#' || (inComment && *p != '\n');
            text += *p == ',' && !inComment ? ' ' : *p;
        }
        const std::string_view word = lexer.word(next);
        const MendedNumber mended = mendNumber(word, kindOf(i));
        text += mended.how == MendedNumber::How::kAsIs ? word : std::string_view(mended.text);
        p = next + word.size();
    }
    place.edits.replace(first, end, text, "mended the numbers in " + quoted(place.field.name));
    return {end};
}

} // namespace meshcast::tidy
