#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// What a file begins with, and what it is made of.
struct Preamble {
    std::string refusal; ///< What the file is when it is no scene; empty otherwise.
    /// Length of what stands in the place of the header line, its newline aside.
    std::size_t headerSize = 0;
    bool hasHeader = false; ///< That is the header, exactly.
    /// What was done to the bytes, and what is to be done to the header.
    std::vector<std::string> repairs;
};

/// The one header line that the filter accepts.
inline constexpr std::string_view kHeader = "#VRML V1.0 ascii";

/// Makes text of the bytes of a file, in place (line ends, bytes that the filter takes for the end
/// of the file), and looks for the header.
Preamble prepare(std::string& bytes);

} // namespace meshcast::tidy
