#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// What the beginning of a file says about it.
struct Preamble {
    std::string refusal; ///< Why the file is not a scene ("is HTML, ..."); empty when it is one.
    /// The length of the line that is or replaces the header line, without its newline.
    std::size_t headerSize = 0;
    bool hasHeader = false; ///< That line is exactly the header.
    /// Messages about changes already made to the bytes and about the coming change of the header.
    std::vector<std::string> repairs;
};

/// The one header line that the filter accepts.
inline constexpr std::string_view kHeader = "#VRML V1.0 ascii";

/// Converts line ends, and bytes that the filter takes for the end of the file, in place. Then
/// looks for the header.
Preamble prepare(std::string& bytes);

} // namespace meshcast::tidy
