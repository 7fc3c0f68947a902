#include "tidy/report.h"

#include "vrml/characters.h"

#include <algorithm>

namespace meshcast::tidy {

namespace {

/// The length of the UTF-8 sequence of the printable character that a text begins with, or 0.
std::size_t sequenceLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) {
        return isControl(text.front()) ? 0 : 1;
    }
    const std::size_t length = lead >= 0xf0 ? 4 : (lead >= 0xe0 ? 3 : 2);
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length) {
        return 0;
    }
    // 0xc2 0x80 to 0xc2 0x9f are control characters, too.
    const auto second = static_cast<unsigned char>(text[1]);
    const bool isControlCode = lead == 0xc2 && second < 0xa0;
    const bool isSound = std::all_of(text.begin() + 1, text.begin() + static_cast<int>(length),
                                     [](char c) { return (c & '\xc0') == '\x80'; });
    return isSound && !isControlCode ? length : 0;
}

} // namespace

std::size_t LineIndex::lineAt(std::size_t offset) {
    constexpr std::size_t kBlockSize = 4096;
    if (newlinesBefore_.empty()) {
        std::size_t newlines = 0;
        for (std::size_t first = 0; first <= text_.size(); first += kBlockSize) {
            newlinesBefore_.push_back(newlines);
            const std::string_view block = text_.substr(first, kBlockSize);
            newlines += static_cast<std::size_t>(std::count(block.begin(), block.end(), '\n'));
        }
    }
    const std::size_t block = offset / kBlockSize;
    std::size_t first = block * kBlockSize;
    std::size_t line = 1 + newlinesBefore_[block];
    if (lastOffset_ >= first && lastOffset_ <= offset) {
        first = lastOffset_;
        line = lastLine_;
    }
    const std::string_view passed = text_.substr(first, offset - first);
    lastOffset_ = offset;
    lastLine_ = line + static_cast<std::size_t>(std::count(passed.begin(), passed.end(), '\n'));
    return lastLine_;
}

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        shown += length == 0 ? std::string_view("?") : text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return shown;
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    std::string shown = "\"";
    for (const char c : text.substr(0, kLongest)) {
        shown += c >= ' ' && c < '\x7f' ? c : '?';
    }
    return shown.append(text.size() > kLongest ? "...\"" : "\"");
}

std::string counted(std::size_t count, std::string_view noun) {
    return std::to_string(count).append(" ").append(noun).append(count == 1 ? "" : "s");
}

} // namespace meshcast::tidy
