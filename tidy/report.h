#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// Converts offsets in a text to line numbers.
class LineIndex {
public:
    explicit LineIndex(std::string_view text) : text_(text) {}

    /// The line, from 1, of the byte at `offset`.
    std::size_t lineAt(std::size_t offset);

private:
    std::string_view text_;
    std::vector<std::size_t>
        newlinesBefore_; ///< Newlines before each block, counted when first needed.
    // The latest result: the next offset is usually a little further.
    std::size_t lastOffset_ = 0;
    std::size_t lastLine_ = 1;
};

/// Makes text from a scene, or a file name, safe for a terminal: control characters and invalid
/// UTF-8 bytes become `?`.
std::string printable(std::string_view text);

/// Text from a scene in quotes, for a message: ASCII only, and cut when it is long.
std::string quoted(std::string_view text);

/// "1 value", "2 values".
std::string counted(std::size_t count, std::string_view noun);

} // namespace meshcast::tidy
