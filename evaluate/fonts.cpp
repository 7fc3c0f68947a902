#include "evaluate/fonts.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <array>
#include <glm/vec3.hpp>
#include <utility>

// Outlines are loaded unscaled and without hinting, so that a font file gives the same shapes
// everywhere.

namespace meshcast::evaluate {

struct FontSet::Library {
    Library() { isOpen = FT_Init_FreeType(&library) == 0; }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        if (isOpen) {
            FT_Done_FreeType(library);
        }
    }

    FT_Library library = nullptr;
    bool isOpen = false;
};

struct Font::Face {
    Face() = default;
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;
    ~Face() {
        if (face != nullptr) {
            FT_Done_Face(face);
        }
    }

    FT_Face face = nullptr;
    double unit = 1; ///< The height of capitals, in units of the font.
};

namespace {

/// The corners of outlines. Curves are approximated by edges.
class OutlineReader {
public:
    explicit OutlineReader(double unit) : unit_(unit) {}

    void read(FT_Outline& outline) {
        FT_Outline_Funcs functions{};
        functions.move_to = [](const FT_Vector* to, void* self) {
            static_cast<OutlineReader*>(self)->counts.push_back(0);
            return static_cast<OutlineReader*>(self)->moveTo(at(*to));
        };
        functions.line_to = [](const FT_Vector* to, void* self) {
            return static_cast<OutlineReader*>(self)->moveTo(at(*to));
        };
        functions.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* self) {
            auto& reader = *static_cast<OutlineReader*>(self);
            const glm::dvec2 from = reader.at_;
            // Raises the conic to a cubic: its control points are two thirds of the way to the
            // conic's.
            const glm::dvec2 c = at(*control);
            return reader.curveTo((from + c * 2.0) / 3.0, (at(*to) + c * 2.0) / 3.0, at(*to));
        };
        functions.cubic_to = [](const FT_Vector* first, const FT_Vector* second,
                                const FT_Vector* to, void* self) {
            return static_cast<OutlineReader*>(self)->curveTo(at(*first), at(*second), at(*to));
        };
        FT_Outline_Decompose(&outline, &functions, this);
    }

    std::vector<glm::dvec3> corners;
    std::vector<std::uint32_t> counts;

private:
    static constexpr int kStepsOfCurve = 6;

    static glm::dvec2 at(const FT_Vector& v) {
        return {static_cast<double>(v.x), static_cast<double>(v.y)};
    }

    int moveTo(const glm::dvec2& to) {
        at_ = to;
        corners.emplace_back(to / unit_, 0);
        ++counts.back();
        return 0;
    }

    int curveTo(const glm::dvec2& first, const glm::dvec2& second, const glm::dvec2& to) {
        const glm::dvec2 from = at_;
        for (int step = 1; step <= kStepsOfCurve; ++step) {
            const double t = static_cast<double>(step) / kStepsOfCurve;
            const double s = 1 - t;
            moveTo(s * s * s * from + 3 * s * s * t * first + 3 * s * t * t * second +
                   t * t * t * to);
        }
        return 0;
    }

    double unit_;
    glm::dvec2 at_{};
};

/// The height of capitals: as given by the font, or else that of its H.
double heightOfCapitals(FT_Face face) {
    const auto* const table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (table != nullptr && table->version >= 2 && table->version != 0xFFFF &&
        table->sCapHeight > 0) {
        return table->sCapHeight;
    }
    if (FT_Load_Char(face, 'H', FT_LOAD_NO_SCALE) == 0 && face->glyph->metrics.horiBearingY > 0) {
        return static_cast<double>(face->glyph->metrics.horiBearingY);
    }
    constexpr double kUsual = 0.7;
    return kUsual * face->units_per_EM;
}

} // namespace

Font::Font(std::unique_ptr<Face> face) : face_(std::move(face)) {}

Font::~Font() = default;

const Glyph& Font::glyph(char32_t character) {
    const auto [known, isNew] = glyphs_.try_emplace(character);
    if (isNew) {
        known->second = make(character);
    }
    return known->second;
}

Glyph Font::make(char32_t character) {
    Glyph glyph;
    FT_Face face = face_->face;
    if (FT_Load_Char(face, character, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) {
        return glyph;
    }
    glyph.advance = static_cast<double>(face->glyph->metrics.horiAdvance) / face_->unit;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
        return glyph;
    }
    OutlineReader outlines(face_->unit);
    outlines.read(face->glyph->outline);
    Triangulation triangulation;
    triangulator_.triangulateOutlines(outlines.corners, outlines.counts, triangulation);
    for (const glm::dvec3& corner : outlines.corners) {
        glyph.vertices.emplace_back(corner);
    }
    for (const MixedCorner& mixed : triangulation.mixed) {
        glm::dvec2 mean{};
        for (std::size_t i = 0; i < mixed.corners.size(); ++i) {
            mean += glyph.vertices[mixed.corners[i]] * static_cast<double>(mixed.weights[i]);
        }
        glyph.vertices.push_back(mean);
    }
    glyph.triangles = std::move(triangulation.triangles);
    return glyph;
}

FontSet::FontSet(const EvaluateOptions& options) : options_(options) {}

FontSet::~FontSet() {
    fonts_.clear(); // Before the library is closed.
}

Font* FontSet::find(const FontRequest& request) {
    const auto [known, isNew] = fonts_.try_emplace(request);
    if (isNew) {
        known->second =
            open(options_.findFont ? options_.findFont(request) : findInstalledFont(request));
    }
    return known->second.get();
}

std::unique_ptr<Font> FontSet::open(const FontFile& file) {
    if (file.path.empty()) {
        return nullptr;
    }
    if (library_ == nullptr) {
        library_ = std::make_unique<Library>();
    }
    auto face = std::make_unique<Font::Face>();
    if (!library_->isOpen ||
        FT_New_Face(library_->library, file.path.c_str(), file.index, &face->face) != 0 ||
        !FT_IS_SCALABLE(face->face)) {
        return nullptr;
    }
    face->unit = heightOfCapitals(face->face);
    return std::unique_ptr<Font>(new Font(std::move(face)));
}

} // namespace meshcast::evaluate
