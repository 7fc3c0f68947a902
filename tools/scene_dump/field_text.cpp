#include "tools/scene_dump/scene_dump.h"
#include "vrml/fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace meshcast {

namespace {

/// The shortest text that reads back as the number.
template <class Number>
std::string numberText(Number number) {
    if constexpr (std::is_floating_point_v<Number>) {
        if (std::isinf(number)) {
            return number < 0 ? "-1e999" : "1e999"; // The language has no word for infinity.
        }
    }
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    return {digits, end};
}

template <class Number>
std::string numberTexts(const Number* numbers, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text.append(i == 0 ? "" : " ").append(numberText(numbers[i]));
    }
    return text;
}

template <std::size_t Count>
std::string realsText(const QvField& field) {
    const auto& value = static_cast<const QvSFReals<Count>&>(field).value;
    return numberTexts(value.data(), value.size());
}

template <class Scalar, std::size_t Width>
std::string listText(const QvField& field) {
    constexpr std::int32_t kValuesInLine = 8;
    const auto& list = static_cast<const QvMFieldOf<Scalar, Width>&>(field);
    std::string text = "[ ";
    for (std::int32_t i = 0; i < list.num; ++i) {
        text.append(i == 0 ? "" : i % kValuesInLine == 0 ? ",\n" : ", ");
        text.append(numberTexts(list.at(i), Width));
    }
    return text + (list.num == 0 ? "]" : " ]");
}

/// The text in quotes, with a backslash before each quote in it. A text that ends in a backslash
/// would escape the closing quote; it was read as a bare word and is written as one.
std::string stringText(const std::string& value) {
    if (value.ends_with('\\')) {
        return value;
    }
    std::string text = "\"";
    for (const char c : value) {
        text.append(c == '"' ? "\\" : "").push_back(c);
    }
    return text + "\"";
}

std::string imageText(const QvSFImage& image) {
    const auto stored = static_cast<std::size_t>(std::min(image.components, 4));
    const std::size_t pixels = std::size_t(image.width > 0 ? image.width : 0) *
                               std::size_t(image.height > 0 ? image.height : 0);
    std::string text = numberText(image.width) + " " + numberText(image.height) + " " +
                       numberText(image.components);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        std::uint32_t number = 0;
        for (std::size_t byte = 0; byte < stored; ++byte) {
            number = number << 8 | image.bytes()[pixel * stored + byte];
        }
        text.append(" ").append(numberText(number));
    }
    return text;
}

const EnumWord* wordOf(std::int32_t value, const Enumeration* words) {
    if (words == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(words->words().begin(), words->words().end(),
                                    [value](const EnumWord& word) { return word.value == value; });
    return found == words->words().end() ? nullptr : &*found;
}

/// One word if there is one for the value, otherwise a list of the words that combine to it.
std::string maskText(std::int32_t value, const Enumeration* words) {
    if (const EnumWord* const word = wordOf(value, words)) {
        return std::string(word->word);
    }
    std::string text;
    if (words != nullptr) {
        for (const EnumWord& word : words->words()) {
            if (word.value != 0 && (value & word.value) == word.value) {
                text.append(text.empty() ? "" : " | ").append(word.word);
            }
        }
    }
    return "( " + text + (text.empty() ? ")" : " )");
}

} // namespace

std::string fieldText(const QvField& field, const Enumeration* words) {
    switch (field.type()) {
    case FieldType::kMFColor:
    case FieldType::kMFVec3f:
        return listText<float, 3>(field);
    case FieldType::kMFFloat:
        return listText<float, 1>(field);
    case FieldType::kMFLong:
        return listText<std::int32_t, 1>(field);
    case FieldType::kMFVec2f:
        return listText<float, 2>(field);
    case FieldType::kSFBitMask:
        return maskText(static_cast<const QvSFBitMask&>(field).value, words);
    case FieldType::kSFBool:
        return static_cast<const QvSFBool&>(field).value != 0 ? "TRUE" : "FALSE";
    case FieldType::kSFEnum: {
        const EnumWord* const word = wordOf(static_cast<const QvSFEnum&>(field).value, words);
        return word == nullptr ? "" : std::string(word->word);
    }
    case FieldType::kSFFloat:
        return numberText(static_cast<const QvSFFloat&>(field).value);
    case FieldType::kSFImage:
        return imageText(static_cast<const QvSFImage&>(field));
    case FieldType::kSFLong:
        return numberText(static_cast<const QvSFLong&>(field).value);
    case FieldType::kSFMatrix:
        return realsText<16>(field);
    case FieldType::kSFRotation:
        return realsText<4>(field);
    case FieldType::kSFString:
        return stringText(static_cast<const QvSFString&>(field).value);
    case FieldType::kSFVec2f:
        return realsText<2>(field);
    case FieldType::kSFColor:
    case FieldType::kSFVec3f:
        return realsText<3>(field);
    }
    return {};
}

} // namespace meshcast
