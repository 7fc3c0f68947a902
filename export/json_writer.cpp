#include "export/json_writer.h"

#include <array>
#include <charconv>

namespace meshcast::exporter {

void JsonWriter::startElement() {
    if (isMember_) {
        isMember_ = false;
        return;
    }
    if (!isFirst_) {
        text_ += ',';
    }
    if (depth_ > 0 && depth_ <= deepestBreak_) {
        text_.append("\n").append(depth_, '\t');
    }
    isFirst_ = false;
}

JsonWriter& JsonWriter::begin(char bracket) {
    startElement();
    text_ += bracket;
    ++depth_;
    isFirst_ = true;
    return *this;
}

JsonWriter& JsonWriter::end(char bracket) {
    const bool isEmpty = isFirst_;
    --depth_;
    if (!isEmpty && depth_ < deepestBreak_) {
        text_.append("\n").append(depth_, '\t');
    }
    text_ += bracket;
    isFirst_ = false;
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    startElement();
    text_.append("\"").append(name).append("\":");
    isMember_ = true;
    return *this;
}

JsonWriter& JsonWriter::value(float number) {
    startElement();
    std::array<char, 24> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text_.append(digits.data(), result.ptr);
    return *this;
}

JsonWriter& JsonWriter::append(unsigned long long number) {
    startElement();
    std::array<char, 24> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text_.append(digits.data(), result.ptr);
    return *this;
}

JsonWriter& JsonWriter::value(bool is) {
    startElement();
    text_ += is ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    startElement();
    text_ += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (byte < 0x20 || byte == 0x7F || c == '<') {
            constexpr std::string_view kDigits = "0123456789abcdef";
            text_.append("\\u00").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 0xFU]);
        } else {
            text_ += c;
        }
    }
    text_ += '"';
    return *this;
}

} // namespace meshcast::exporter
