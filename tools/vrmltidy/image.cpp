#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/value.h"

#include <cstdint>
#include <string>

namespace meshcast::tidy {

namespace {

/// The numbers of pixels that follow the three of an image's head, if the reader takes the head.
/// More than four bytes a pixel are no image, and would be room for nothing.
bool pixelCount(const std::int32_t (&head)[3], std::uint64_t& count) {
    const auto width = static_cast<std::int16_t>(head[0]);
    const auto height = static_cast<std::int16_t>(head[1]);
    constexpr std::int32_t kMostComponents = 4;
    if (width < 0 || height < 0 || head[2] < 0 || head[2] > kMostComponents) {
        return false;
    }
    count = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    return true;
}

} // namespace

bool Value::passImage() {
    Cursor place = cursor_;
    std::int32_t head[3] = {};
    for (std::int32_t& number : head) {
        place.skipSpace();
        const ScannedInteger scanned = scanInteger(place.at);
        if (!scanned.ok || place.peek() == '+' || place.atEnd()) {
            return false;
        }
        number = scanned.value;
        place.at = scanned.end;
    }
    std::uint64_t count = 0;
    if (!pixelCount(head, count)) {
        return false;
    }
    for (; count > 0; --count) {
        place.skipSpace();
        const char* const end = skipNumber(place.at, NumberKind::kUnsigned);
        if (end == nullptr || place.atEnd()) {
            return false;
        }
        place.at = end;
    }
    return accept(place.at);
}

/// Commas and words that are no numbers among the pixels. Too few pixels are no image.
bool Value::mendImage() {
    Cursor place = cursor_;
    std::int32_t head[3] = {};
    std::uint64_t wanted = 3;
    std::uint64_t found = 0;
    for (; found < wanted; ++found) {
        while (place.skipSpace(), place.peek() == ',') {
            ++place.at;
        }
        if (!beginsNumber(place)) {
            return false;
        }
        const std::string_view word = numberWord(place);
        if (found < 3) {
            const MendedNumber mended = mendNumber(word, NumberKind::kInteger);
            head[found] = scanInteger(mended.how == MendedNumber::How::kAsIs ? word.data()
                                                                             : mended.text.c_str())
                              .value;
        }
        place.at += word.size();
        if (found == 2) {
            std::uint64_t pixels = 0;
            if (!pixelCount(head, pixels)) {
                return false;
            }
            wanted += pixels;
        }
    }
    const char* const end = place.at;
    place.at = cursor_.at;
    for (std::uint64_t i = 0; i < wanted; ++i) {
        while (place.skipSpace(), place.peek() == ',') {
            text_.replace({place.at, 1}, " ");
            ++place.at;
        }
        const std::string_view word = numberWord(place);
        const MendedNumber mended =
            mendNumber(word, i < 3 ? NumberKind::kInteger : NumberKind::kUnsigned);
        if (mended.how != MendedNumber::How::kAsIs) {
            text_.replace(word, mended.text);
        }
        place.at += word.size();
    }
    reporter_.repaired(cursor_.at, "mended the numbers in " + quoted(place_.fieldName));
    cursor_.at = end;
    return true;
}

} // namespace meshcast::tidy
