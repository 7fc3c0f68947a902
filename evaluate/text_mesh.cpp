#include "evaluate/text_mesh.h"

#include "evaluate/utf8.h"

#include <algorithm>

namespace meshcast::evaluate {

namespace {

constexpr double kCapitals = 0.8;

double widthOf(std::string_view line, Font& font) {
    double width = 0;
    while (!line.empty()) {
        width += font.glyph(takeCharacter(line)).advance;
    }
    return width;
}

/// Converts a point of a glyph to a position in the plane.
struct LinePlace {
    double x, y, scaleX, scaleY;
};

void addGlyph(Geometry& geometry, const Glyph& glyph, const LinePlace& place, double size) {
    const auto first = static_cast<std::uint32_t>(geometry.positions.size());
    for (const glm::dvec2& vertex : glyph.vertices) {
        const double x = place.x + place.scaleX * vertex.x;
        const double y = place.y + place.scaleY * vertex.y;
        geometry.positions.push_back({static_cast<float>(x), static_cast<float>(y), 0});
        geometry.normals.push_back({0, 0, 1});
        geometry.uvs.push_back({static_cast<float>(x / size), static_cast<float>(y / size)});
    }
    for (const std::uint32_t corner : glyph.triangles) {
        geometry.indices.push_back(first + corner);
    }
}

} // namespace

std::optional<Geometry> makeText(std::string_view text, const TextLayout& layout, Font& font,
                                 std::uint64_t mostTriangles) {
    Geometry geometry;
    const double scale = kCapitals * layout.size;
    std::uint64_t triangles = 0;
    double y = 0;
    for (;;) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        ++triangles; // An empty line takes time too.
        const double natural = widthOf(line, font) * scale;
        const bool isFitted = layout.width > 0 && natural > 0;
        const double width = isFitted ? layout.width : natural;
        LinePlace place{0, y, isFitted ? scale * layout.width / natural : scale, scale};
        if (layout.justification == TextLayout::Justification::kCenter) {
            place.x = -width / 2;
        } else if (layout.justification == TextLayout::Justification::kRight) {
            place.x = -width;
        }
        while (!line.empty()) {
            const Glyph& glyph = font.glyph(takeCharacter(line));
            // A glyph without triangles, such as a space, takes time too.
            triangles += std::max<std::uint64_t>(glyph.triangles.size() / 3, 1);
            if (triangles > mostTriangles) {
                return std::nullopt;
            }
            if (!glyph.triangles.empty()) {
                addGlyph(geometry, glyph, place, layout.size);
            }
            place.x += glyph.advance * place.scaleX;
        }
        if (end == text.size()) {
            return geometry;
        }
        text.remove_prefix(end + 1);
        y -= layout.spacing * layout.size;
    }
}

} // namespace meshcast::evaluate
