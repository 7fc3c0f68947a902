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

/// The shape of a character. The height of capitals is 1.
struct Glyph {
    double advance = 0; ///< The distance from its origin to that of the next glyph.
    std::vector<glm::dvec2> vertices;
    std::vector<std::uint32_t> triangles; ///< Indices of counterclockwise triangles.
};

/// An outline font. Glyphs are made when they are first needed.
class Font {
public:
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    /// The glyph of a character, or the font's glyph for missing characters.
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

/// The fonts of a scene, opened when they are first needed.
class FontSet {
public:
    /// `options` must outlive the set.
    explicit FontSet(const EvaluateOptions& options);
    ~FontSet();
    FontSet(const FontSet&) = delete;
    FontSet& operator=(const FontSet&) = delete;

    /// The best font for a request. Null when no font is installed or the font has no outlines.
    Font* find(const FontRequest& request);

private:
    struct Library;

    std::unique_ptr<Font> open(const FontFile& file);

    const EvaluateOptions& options_;
    std::unique_ptr<Library> library_;
    std::map<FontRequest, std::unique_ptr<Font>> fonts_;
};

} // namespace meshcast::evaluate
