#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <cstdint>

namespace meshcast {

namespace {

const char* fontName(std::int32_t family) {
    return family == QvFontStyle::SERIF  ? "Times"
           : family == QvFontStyle::SANS ? "Helvetica"
                                         : "Courier";
}

std::uint32_t alignment(std::int32_t justification) {
    return justification == QvAsciiText::CENTER  ? GEOM_LABEL_CENTER
           : justification == QvAsciiText::RIGHT ? GEOM_LABEL_RIGHT
                                                 : GEOM_LABEL_LEFT;
}

} // namespace

// Text becomes one label at the origin.
void Converter::visit(const QvAsciiText& shape, const QvState& state) {
    constexpr float kOrigin[3] = {0, 0, 0};
    constexpr float kHeight = 0.15F;

    const QvFontStyle defaultStyle;
    if (!options_.text) {
        return;
    }
    const ShapeContext context(state);
    const auto* const given = state.fontStyle();
    const QvFontStyle& font = given != nullptr ? *given : defaultStyle;
    const int fontNumber =
        GEOMfont_number(fontName(font.family.value), font.style.value & QvFontStyle::BOLD,
                        font.style.value & QvFontStyle::ITALIC);
    const ObjectOwner object(GEOMcreate_label(
        nullptr, GEOMlabel_flags(fontNumber, 0, 0, 0, alignment(shape.justification.value), 0)));
    GEOMadd_label(object.get(), shape.string.value.c_str(), kOrigin, kOrigin, kHeight, nullptr, -1);
    write(*object);
}

} // namespace meshcast
