#pragma once

#include "evaluate/fonts.h"
#include "evaluate/model.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace meshcast::evaluate {

/// How lines of text are laid out in the XY plane.
struct TextLayout {
    enum class Justification : std::uint8_t { kLeft, kCenter, kRight };

    double size = 10;   ///< The height of a line. Capitals are 0.8 of it.
    double spacing = 1; ///< From one baseline to the next lower one, in sizes.
    double width = 0;   ///< Above 0: each line is made that wide.
    Justification justification = Justification::kLeft;
};

/// The triangles of a text, which face +Z. The first baseline is at y = 0; x = 0 is where lines
/// begin, have their middle, or end. A newline begins the next line. Texture coordinates are
/// positions in sizes. Nothing when there would be more than `mostTriangles`.
std::optional<Geometry> makeText(std::string_view text, const TextLayout& layout, Font& font,
                                 std::uint64_t mostTriangles);

} // namespace meshcast::evaluate
