#pragma once

#include "evaluate/fonts.h"
#include "evaluate/model.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace meshcast::evaluate {

/// The layout of lines of text in the XY plane.
struct TextLayout {
    enum class Justification : std::uint8_t { kLeft, kCenter, kRight };

    double size = 10;   ///< The height of a line. Capitals are 0.8 of it.
    double spacing = 1; ///< The distance between baselines, as a multiple of `size`.
    double width = 0;   ///< If above 0, each line is scaled to this width.
    Justification justification = Justification::kLeft;
};

/// Makes the triangles of a text, facing +Z. The first baseline is at y = 0. At x = 0 is the start,
/// the middle or the end of lines, by their justification. A newline starts a new line. Texture
/// coordinates are positions divided by `size`. Nothing when there would be more than
/// `mostTriangles`.
std::optional<Geometry> makeText(std::string_view text, const TextLayout& layout, Font& font,
                                 std::uint64_t mostTriangles);

} // namespace meshcast::evaluate
