// Label objects. Each label is one element in every list that it has data for.

#include "compat/geom/create_sites.h"
#include "compat/geom/geom.h"
#include "compat/geom/list.h"
#include "compat/geom/memory.h"

#include <cstdint>
#include <cstring>

namespace {

namespace sites = geom::createSites;

// What the label int must be for a label to have none.
constexpr int kNoLabelData = -1;

template <class T, int N>
void appendOne(GEOMlist<T, N>& list, const T* element, const geom::GrowthSites& growth) {
    geom::append(list, element, 1, geom::kHeadroom, GEOM_COPY, growth);
}

char* copyText(const char* text) {
    const std::size_t bytes = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(
        geom::allocate(static_cast<std::int64_t>(bytes), sizeof(char), sites::kLabelText));
    std::memcpy(copy, text, bytes);
    return copy;
}

} // namespace

GEOMobj* GEOMcreate_label(const float* extent, std::uint32_t label_flags) {
    GEOMobj* obj = GEOMcreate_obj(GEOM_LABEL, extent);
    obj->label.label_flags = label_flags;
    return obj;
}

void GEOMadd_label(GEOMobj* obj, const char* text, const float* position, const float* offset,
                   float height, const float* color, int label) {
    if (obj->type != GEOM_LABEL)
        return;
    GEOMlabels& labels = obj->label;
    appendOne(labels.positions, position, sites::kVertices);
    if (offset != nullptr)
        appendOne(labels.offsets, offset, sites::kVertices);
    appendOne(labels.heights, &height, sites::kScalars);
    char* copy = copyText(text);
    appendOne(labels.texts, &copy, sites::kLabelTexts);
    if (color != nullptr) {
        appendOne(labels.colors, color, sites::kVertices);
        obj->flags |= GEOM_HAS_COLORS;
    }
    if (label != kNoLabelData) {
        const std::int32_t data = label;
        appendOne(labels.label_data, &data, sites::kInts);
        obj->flags |= GEOM_HAS_LABEL_DATA;
    }
}

std::uint32_t GEOMlabel_flags(int font, int title, int drop_shadow, int stroke,
                              std::uint32_t alignment, int extra) {
    const auto bit = [](int wanted, std::uint32_t flag) { return wanted != 0 ? flag : 0; };
    return (static_cast<std::uint32_t>(font) & GEOM_LABEL_FONT_MASK) |
           bit(title, GEOM_LABEL_TITLE) | bit(drop_shadow, GEOM_LABEL_DROP_SHADOW) |
           bit(stroke, GEOM_LABEL_STROKE) | alignment | bit(extra, GEOM_LABEL_EXTRA);
}
