#include "vrml/fields.h"

#include "io/large_block.h"
#include "vrml/field_table.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <new>
#include <span>
#include <type_traits>

namespace meshcast {

namespace {

/// Ends the process after a failed allocation, as `new` does: through the installed new-handler, or
/// by abort if there is none.
[[noreturn]] void outOfMemory() {
    if (const std::new_handler handler = std::get_new_handler()) {
        handler();
    }
    std::abort();
}

/// Skips white space and looks at the next character; true, with the character taken, when it is
/// `expected`.
bool skipTo(VrmlInput& input, char expected) {
    return input.skipWhiteSpace() && input.readExpected(expected);
}

bool readFloat(VrmlInput& input, float& value) {
    double wide = 0;
    if (!input.skipWhiteSpace() || !input.readReal(wide)) {
        return false;
    }
    value = static_cast<float>(wide);
    return true;
}

bool readScalar(VrmlInput& input, float& value) { return readFloat(input, value); }
bool readScalar(VrmlInput& input, std::int32_t& value) { return input.readInteger(value); }

/// Looks a word up in an enumeration; false when it is not there.
bool findWord(const Enumeration* words, InternedName word, std::int32_t& value) {
    const EnumWord* const entry = words == nullptr ? nullptr : words->find(word.view());
    if (entry != nullptr) {
        value = entry->value;
    }
    return entry != nullptr;
}

} // namespace

bool readField(VrmlInput& input, QvField& field, InternedName name, const Enumeration* words) {
    field.setIsDefault(false);
    if (skipTo(input, '~')) {
        field.setIsDefault(true);
        field.setIgnored(true);
        return true;
    }
    field.setIgnored(false);
    if (!field.readText(input, words)) {
        input.readError("Couldn't read value for field \"%s\"", name.c_str());
        return false;
    }
    if (skipTo(input, '~')) {
        field.setIgnored(true);
    }
    return true;
}

namespace {

template <class Field>
QvField* makeField() {
    return new Field();
}

template <class Field>
void destroyField(QvField* field) {
    delete static_cast<Field*>(field);
}

template <class Field>
bool readTextOf(QvField& field, VrmlInput& input, const Enumeration* words) {
    auto& typed = static_cast<Field&>(field);
    if constexpr (std::is_base_of_v<QvMField, Field>) {
        return typed.readAll(input);
    } else if constexpr (Field::kType == FieldType::kSFEnum ||
                         Field::kType == FieldType::kSFBitMask) {
        return typed.readValue(input, words);
    } else {
        return typed.readValue(input);
    }
}

/// What differs from type to type.
struct TypeInfo {
    std::string_view name;
    QvField* (*make)();
    void (*destroy)(QvField* field);
    bool (*readText)(QvField& field, VrmlInput& input, const Enumeration* words);
};

template <class Field>
constexpr TypeInfo typeInfo(std::string_view name) {
    return {name, makeField<Field>, destroyField<Field>, readTextOf<Field>};
}

/// By FieldType.
constexpr TypeInfo kTypes[] = {
    typeInfo<QvMFColor>("MFColor"),   typeInfo<QvMFFloat>("MFFloat"),
    typeInfo<QvMFLong>("MFLong"),     typeInfo<QvMFVec2f>("MFVec2f"),
    typeInfo<QvMFVec3f>("MFVec3f"),   typeInfo<QvSFBitMask>("SFBitMask"),
    typeInfo<QvSFBool>("SFBool"),     typeInfo<QvSFColor>("SFColor"),
    typeInfo<QvSFEnum>("SFEnum"),     typeInfo<QvSFFloat>("SFFloat"),
    typeInfo<QvSFImage>("SFImage"),   typeInfo<QvSFLong>("SFLong"),
    typeInfo<QvSFMatrix>("SFMatrix"), typeInfo<QvSFRotation>("SFRotation"),
    typeInfo<QvSFString>("SFString"), typeInfo<QvSFVec2f>("SFVec2f"),
    typeInfo<QvSFVec3f>("SFVec3f"),
};

const TypeInfo& infoOf(FieldType type) { return kTypes[static_cast<std::size_t>(type)]; }

} // namespace

std::string_view fieldTypeName(FieldType type) { return infoOf(type).name; }

std::optional<FieldType> findFieldType(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kTypes), std::end(kTypes),
                     [name](const TypeInfo& type) { return type.name == name; });
    if (found == std::end(kTypes)) {
        return std::nullopt;
    }
    return static_cast<FieldType>(found - std::begin(kTypes));
}

bool QvField::readText(VrmlInput& input, const Enumeration* words) {
    return infoOf(type_).readText(*this, input, words);
}

void FieldDeleter::operator()(QvField* field) const { infoOf(field->type()).destroy(field); }

OwnedField createField(FieldType type) { return OwnedField(infoOf(type).make()); }

// ---- single values

template <std::size_t Count>
bool QvSFReals<Count>::readValue(VrmlInput& input) {
    return std::all_of(value.begin(), value.end(),
                       [&input](float& component) { return readFloat(input, component); });
}

template class QvSFReals<2>;
template class QvSFReals<3>;
template class QvSFReals<4>;
template class QvSFReals<16>;

bool QvSFFloat::readValue(VrmlInput& input) { return readFloat(input, value); }

bool QvSFLong::readValue(VrmlInput& input) { return input.readInteger(value); }

bool QvSFBool::readValue(VrmlInput& input) {
    std::int32_t number = 0;
    if (input.readInteger(number)) {
        if (number != 0 && number != 1) {
            input.readError("Illegal value for QvSFBool: %d (must be 0 or 1)", number);
            return false;
        }
        value = number;
        return true;
    }
    InternedName word;
    if (!input.readName(word)) {
        return false;
    }
    if (word.view() == "TRUE" || word.view() == "FALSE") {
        value = word.view() == "TRUE" ? 1 : 0;
        return true;
    }
    // Kept: the message names the accepted words, not the word that was read.
    input.readError("Unknown value (\"%s\") for QvSFBool ", "(must be TRUE or FALSE)");
    return false;
}

bool QvSFEnum::readValue(VrmlInput& input, const Enumeration* words) {
    InternedName word;
    if (!input.readName(word)) {
        return false;
    }
    if (!findWord(words, word, value)) {
        input.readError("Unknown QvSFEnum enumeration value \"%s\"", word.c_str());
        return false;
    }
    return true;
}

bool QvSFBitMask::readValue(VrmlInput& input, const Enumeration* words) {
    value = 0;
    const bool list = skipTo(input, '(');
    for (;;) {
        InternedName word;
        if (!input.readName(word) && !list) {
            return false;
        }
        std::int32_t bits = 0;
        // Inside parentheses a word may be missing: "( )" and "( A | | B )" are masks.
        if (!(list && word.empty()) && !findWord(words, word, bits)) {
            input.readError("Unknown QvSFBitMask bit mask value \"%s\"", word.c_str());
            return false;
        }
        value |= bits;
        if (!list) {
            return true;
        }
        char c = 0;
        if (!input.skipWhiteSpace() || !input.get(c)) {
            input.readError("EOF reached before '%c' in QvSFBitMask value", ')');
            return false;
        }
        if (c == ')') {
            return true;
        }
        if (c != '|') {
            // Kept: the arguments are shifted by one, and the character found is not named.
            input.readError("Expected '%c' or '%c', got '%c' ", 'i', '|', ')');
            return false;
        }
    }
}

bool QvSFImage::readValue(VrmlInput& input) {
    if (!input.readShort(width) || !input.readShort(height) || !input.readInteger(components)) {
        return false;
    }
    bytes_.clear();
    if (width < 0 || height < 0 || components < 0) {
        return false;
    }
    // The scene may claim any size, so memory is taken only for pixels that have been read.
    const std::int64_t pixels = std::int64_t(width) * height;
    const int stored = std::min(components, 4);
    for (std::int64_t pixel = 0; pixel < pixels; ++pixel) {
        std::uint32_t number = 0;
        if (!input.skipWhiteSpace() || !input.readUnsigned(number)) {
            return false;
        }
        for (int byte = stored - 1; byte >= 0; --byte) {
            bytes_.push_back(static_cast<std::uint8_t>(number >> (8 * byte)));
        }
    }
    return true;
}

bool QvSFString::readValue(VrmlInput& input) { return input.readString(value); }

// ---- lists

template <class Scalar, std::size_t Width>
QvMFieldOf<Scalar, Width>::QvMFieldOf(FieldType type, const Initial& initial)
    : QvMField(type), initial_(initial), values(initial_.data()) {
    num = 1;
    maxNum = 1;
}

template <class Scalar, std::size_t Width>
void QvMFieldOf<Scalar, Width>::release() {
    if (values != initial_.data()) {
        std::free(values);
    }
}

template <class Scalar, std::size_t Width>
void QvMFieldOf<Scalar, Width>::setCount(std::int32_t count) {
    if (count != num) {
        reallocate(count);
    }
}

template <class Scalar, std::size_t Width>
bool QvMFieldOf<Scalar, Width>::tryReallocate(std::int32_t count) {
    const std::size_t size = static_cast<std::size_t>(count) * Width * sizeof(Scalar);
    const bool isInitial = values == initial_.data();
    void* const grown = std::realloc(isInitial ? nullptr : values, size);
    if (grown == nullptr) {
        return false;
    }
    values = static_cast<Scalar*>(io::preferLargePages(grown, size));
    maxNum = count;
    if (isInitial) {
        std::copy(initial_.begin(), initial_.end(), values);
    }
    return true;
}

template <class Scalar, std::size_t Width>
void QvMFieldOf<Scalar, Width>::reallocate(std::int32_t count) {
    if (count <= 0) {
        release();
        values = nullptr;
        count = 0;
    } else if (!tryReallocate(count)) {
        outOfMemory();
    }
    num = count;
    maxNum = count;
}

template <class Scalar, std::size_t Width>
void QvMFieldOf<Scalar, Width>::makeRoom(std::int32_t count, std::size_t fresh, bool isLast) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    if (fresh > static_cast<std::size_t>(kMost - count)) {
        outOfMemory();
    }
    const std::int32_t needed = count + static_cast<std::int32_t>(fresh);
    if (needed <= maxNum) {
        return;
    }
    const std::int32_t ample = std::max(needed, maxNum > kMost / 2 ? kMost : 2 * maxNum);
    if ((isLast || !tryReallocate(ample)) && !tryReallocate(needed)) {
        outOfMemory();
    }
}

template <class Scalar, std::size_t Width>
bool QvMFieldOf<Scalar, Width>::readOneValue(VrmlInput& input, std::int32_t index) {
    Scalar* const slot = values + static_cast<std::size_t>(index) * Width;
    return std::all_of(slot, slot + Width,
                       [&input](Scalar& scalar) { return readScalar(input, scalar); });
}

// A list has no unused room once it has been read. Before that it grows ahead of its values, but
// without memory for that only as far as it has to, so that no list fails for it.
template <class Scalar, std::size_t Width>
bool QvMFieldOf<Scalar, Width>::readAll(VrmlInput& input) {
    if (!skipTo(input, '[')) {
        setCount(1);
        return readOneValue(input, 0);
    }
    if (skipTo(input, ']')) {
        setCount(0);
        return true;
    }
    constexpr std::size_t kPartSize = 1024 / Width * Width;
    std::array<Scalar, kPartSize> part; // of plain values, set as far as they are read
    std::int32_t count = 0;
    for (;;) {
        std::size_t scalars = 0;
        const bool closed = input.readPlainValues(Width, std::span<Scalar>(part), scalars);
        makeRoom(count, scalars / Width, closed);
        std::copy_n(part.begin(), scalars, values + static_cast<std::size_t>(count) * Width);
        count += static_cast<std::int32_t>(scalars / Width);
        if (closed) {
            break;
        }
        if (scalars == kPartSize) {
            continue;
        }
        makeRoom(count, 1, false);
        const bool read = readOneValue(input, count);
        ++count;
        char c = 0;
        if (!read || !input.skipWhiteSpace() || !input.get(c)) {
            input.readError("Couldn't read value %d of field", count);
            return false;
        }
        if (c == ']') {
            break;
        }
        if (c != ',') {
            input.readError("Expected '%c' or '%c' but got '%c' while reading value %d", ',', ']',
                            c, count);
            return false;
        }
        if (skipTo(input, ']')) {
            break;
        }
    }
    if (count != maxNum) {
        reallocate(count);
    }
    num = count;
    return true;
}

template class QvMFieldOf<float, 1>;
template class QvMFieldOf<float, 2>;
template class QvMFieldOf<float, 3>;
template class QvMFieldOf<std::int32_t, 1>;

} // namespace meshcast
