#include "evaluate/fonts.h"

#include <fontconfig/fontconfig.h>
#include <memory>
#include <string>

namespace meshcast::evaluate {

namespace {

struct DestroyConfig {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
struct DestroyPattern {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using PatternOwner = std::unique_ptr<FcPattern, DestroyPattern>;

const char* nameOf(FontRequest::Family family) {
    switch (family) {
    case FontRequest::Family::kSans:
        return "sans-serif";
    case FontRequest::Family::kTypewriter:
        return "monospace";
    default:
        return "serif";
    }
}

} // namespace

FontFile findInstalledFont(const FontRequest& request) {
    const std::unique_ptr<FcConfig, DestroyConfig> config(FcInitLoadConfigAndFonts());
    const PatternOwner pattern(FcPatternCreate());
    if (config == nullptr || pattern == nullptr) {
        return {};
    }
    FcPatternAddString(pattern.get(), FC_FAMILY,
                       reinterpret_cast<const FcChar8*>(nameOf(request.family)));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT,
                        request.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_NORMAL);
    FcPatternAddInteger(pattern.get(), FC_SLANT,
                        request.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(config.get(), pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const PatternOwner found(FcFontMatch(config.get(), pattern.get(), &result));
    FcChar8* path = nullptr;
    if (found == nullptr || FcPatternGetString(found.get(), FC_FILE, 0, &path) != FcResultMatch) {
        return {};
    }
    FontFile file{reinterpret_cast<const char*>(path), 0};
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.index);
    return file;
}

} // namespace meshcast::evaluate
