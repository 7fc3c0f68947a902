#pragma once

#include "evaluate/evaluate.h"
#include "evaluate/triangulate.h"

#include <cstdint>
#include <glm/vec2.hpp>
#include <map>
#include <memory>
#include <vector>

namespace meshcast::evaluate {

/// The installed font that fits best, as fontconfig finds it.
FontFile findInstalledFont(const FontRequest& request);

/// A character's shape, in units of its font: capitals are 1 high.
struct Glyph {
    double advance = 0; ///< From its origin to that of the next one.
    std::vector<glm::dvec2> vertices;
    std::vector<std::uint32_t> triangles; ///< Counterclockwise.
};

/// A font of outlines. Glyphs are made when they are first asked for.
class Font {
public:
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    /// The glyph of a character; that of a missing one when the font does not have it.
    const Glyph& glyph(char32_t character);

private:
    friend class FontSet;
    struct Face;
    explicit Font(std::unique_ptr<Face> face);

    Glyph make(char32_t character);

    std::unique_ptr<Face> face_;
    Triangulator triangulator_;
    std::map<char32_t, Glyph> glyphs_;
};

/// The fonts of a scene, opened when they are first asked for.
class FontSet {
public:
    /// `options` must outlive the set.
    explicit FontSet(const EvaluateOptions& options);
    ~FontSet();
    FontSet(const FontSet&) = delete;
    FontSet& operator=(const FontSet&) = delete;

    /// Null when no font is installed, or it has no outlines.
    Font* find(const FontRequest& request);

private:
    struct Library;

    std::unique_ptr<Font> open(const FontFile& file);

    const EvaluateOptions& options_;
    std::unique_ptr<Library> library_;
    std::map<FontRequest, std::unique_ptr<Font>> fonts_;
};

} // namespace meshcast::evaluate
