#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// Turns places of a text into line numbers.
class LineIndex {
public:
    explicit LineIndex(std::string_view text) : text_(text) {}

    /// The line, from 1, of the byte at `offset`.
    std::size_t lineAt(std::size_t offset);

private:
    std::string_view text_;
    std::vector<std::size_t> newlinesBefore_; ///< Of each block, counted when first asked for.
    // The latest answer: the next place is mostly a little further.
    std::size_t lastOffset_ = 0;
    std::size_t lastLine_ = 1;
};

/// Text of a scene, or the name of a file, without characters that would reach a terminal as
/// commands: control characters and bytes of no valid UTF-8 become `?`.
std::string printable(std::string_view text);

/// A piece of a scene in quotes, as a message shows it: cut when it is long, ASCII only.
std::string quoted(std::string_view text);

/// "1 value", "2 values".
std::string counted(std::size_t count, std::string_view noun);

} // namespace meshcast::tidy
