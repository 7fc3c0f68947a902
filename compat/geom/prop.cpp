// Property records, font numbers and messages.

#include "compat/geom/geom.h"
#include "compat/geom/memory.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The record lines are fixed, as those of create_sites.h are.
constexpr geom::AllocationSite kFirstRecord{"compat/geom/prop", 97,
                                            "malloc fails allocating a geom val"};
constexpr geom::AllocationSite kNextRecord{"compat/geom/prop", 88,
                                           "reallocating a value list fails"};

// The three words of a record. Records lie packed behind their bytes, so they are copied in and
// out and never read in place.
struct Record {
    std::uint32_t kind;
    std::uint32_t length; // bytes that follow the record's words
    std::uint32_t value;
};
static_assert(sizeof(Record) == GEOM_PROPERTY_BYTES);

Record record_at(const unsigned char* place) {
    Record record;
    std::memcpy(&record, place, sizeof record);
    return record;
}

std::size_t record_bytes(const Record& record) {
    return sizeof record + record.length;
}

std::size_t all_record_bytes(const GEOMobj& obj) {
    std::size_t bytes = 0;
    for (std::uint32_t i = 0; i < obj.nvals; ++i)
        bytes += record_bytes(record_at(obj.vals + bytes));
    return bytes;
}

constexpr std::array kFamilies = {"Courier", "Helvetica", "New Century", "Times",      "Charter",
                                  "Symbol",  "Roman",     "Script",      "Mathematics"};

// Bits of a font number. The lowest one means upright: it is set for text that is *not* italic,
// and readers of labels rely on that.
constexpr int kFontBase = 128;
constexpr int kFontPerFamily = 4;
constexpr int kFontBold = 2;
constexpr int kFontUpright = 1;

// Printed piece by piece: no buffer, so no message is cut and none needs memory when there is none.
[[gnu::format(printf, 2, 0)]] void print_message(const char* head, const char* format,
                                                 std::va_list arguments) {
    std::fputs(head, stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputs("\n", stderr);
}

} // namespace

int GEOMget_property(const GEOMobj* obj, std::uint32_t kind, std::uint32_t* value) {
    const unsigned char* place = obj->vals;
    for (std::uint32_t i = 0; i < obj->nvals; ++i) {
        const Record record = record_at(place);
        if (record.kind == kind) {
            *value = record.value;
            return 1;
        }
        place += record_bytes(record);
    }
    return 0;
}

unsigned char* GEOMadd_property(GEOMobj* obj, std::uint32_t kind, std::uint32_t value) {
    const Record record{kind, 0, value};
    const std::size_t end = all_record_bytes(*obj);
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

void GEOMerror(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    print_message("GEOM error: ", format, arguments);
    va_end(arguments);
}

void GEOMfatal_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    print_message("GEOM fatal error: ", format, arguments);
    va_end(arguments);
    std::exit(EXIT_FAILURE);
}
