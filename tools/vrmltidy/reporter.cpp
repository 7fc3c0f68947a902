#include "tools/vrmltidy/reporter.h"

#include <algorithm>

namespace meshcast::tidy {

std::size_t Reporter::lineOf(const char* at) {
    constexpr std::size_t kBlockSize = 4096;
    if (newlinesBefore_.empty()) {
        std::uint32_t newlines = 0;
        for (std::size_t first = 0; first <= source_.size(); first += kBlockSize) {
            newlinesBefore_.push_back(newlines);
            const std::string_view block = source_.substr(first, kBlockSize);
            newlines += static_cast<std::uint32_t>(std::count(block.begin(), block.end(), '\n'));
        }
    }
    const std::size_t block = static_cast<std::size_t>(at - source_.data()) / kBlockSize;
    const char* first = source_.data() + block * kBlockSize;
    std::size_t line = 1 + newlinesBefore_[block];
    if (lastPlace_ != nullptr && lastPlace_ >= first && lastPlace_ <= at) {
        first = lastPlace_;
        line = lastLine_;
    }
    lastLine_ = line + static_cast<std::size_t>(std::count(first, at, '\n'));
    lastPlace_ = at;
    return lastLine_;
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
