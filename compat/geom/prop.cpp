// Property records and font numbers.

#include "compat/geom/prop.h"

#include "compat/geom/memory.h"

#include <array>
#include <cstring>

namespace {

// The line numbers are fixed, like those in createSites.h.
constexpr geom::AllocationSite kFirstRecord{"compat/geom/prop", 97,
                                            "malloc fails allocating a geom val"};
constexpr geom::AllocationSite kNextRecord{"compat/geom/prop", 88,
                                           "reallocating a value list fails"};

constexpr std::array kFamilies = {"Courier", "Helvetica", "New Century", "Times",      "Charter",
                                  "Symbol",  "Roman",     "Script",      "Mathematics"};

// Bits of a font number. Kept: the lowest one means upright and is set for text that is *not*
// italic. Readers of labels rely on it.
constexpr int kFontBase = 128;
constexpr int kFontPerFamily = 4;
constexpr int kFontBold = 2;
constexpr int kFontUpright = 1;

} // namespace

geom::Property geom::propertyAt(const unsigned char* place) {
    Property property;
    std::memcpy(&property, place, sizeof property);
    return property;
}

std::size_t geom::propertyBytes(const Property& property) {
    return sizeof property + property.length;
}

std::size_t geom::propertyBytes(const GEOMobj& obj) {
    std::size_t bytes = 0;
    for (std::uint32_t i = 0; i < obj.nvals; ++i)
        bytes += propertyBytes(propertyAt(obj.vals + bytes));
    return bytes;
}

int GEOMget_property(const GEOMobj* obj, std::uint32_t kind, std::uint32_t* value) {
    const unsigned char* place = obj->vals;
    for (std::uint32_t i = 0; i < obj->nvals; ++i) {
        const geom::Property record = geom::propertyAt(place);
        if (record.kind == kind) {
            *value = record.value;
            return 1;
        }
        place += geom::propertyBytes(record);
    }
    return 0;
}

unsigned char* GEOMadd_property(GEOMobj* obj, std::uint32_t kind, std::uint32_t value) {
    const geom::Property record{kind, 0, value};
    const std::size_t end = geom::propertyBytes(*obj);
    void* block = obj->nvals == 0
                      ? geom::allocate(1, sizeof record, kFirstRecord)
                      : geom::reallocate(obj->vals, static_cast<std::int64_t>(end + sizeof record),
                                         1, kNextRecord);
    obj->vals = static_cast<unsigned char*>(block);
    std::memcpy(obj->vals + end, &record, sizeof record);
    ++obj->nvals;
    return obj->vals;
}

int GEOMfont_number(const char* family, int bold, int italic) {
    std::size_t index = 0;
    while (index < kFamilies.size() && std::strcmp(kFamilies[index], family) != 0)
        ++index;
    if (index == kFamilies.size()) {
        index = 0;
        GEOMerror("unrecognized font name: %s (using: %s)", family, kFamilies[index]);
    }
    return kFontBase + kFontPerFamily * static_cast<int>(index) + (bold != 0 ? kFontBold : 0) +
           (italic != 0 ? 0 : kFontUpright);
}
