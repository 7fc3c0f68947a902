#pragma once

#include "vrml/field_info.h"
#include "vrml/input.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

/// The base of all fields: a typed value of a node, with a default. The kType of each field class
/// below names its type. A field keeps its type in one byte instead of having virtual operations,
/// because the pointer to those would be the largest part of most fields.
class QvField {
public:
    QvField(const QvField&) = delete;
    QvField& operator=(const QvField&) = delete;

    FieldType type() const { return type_; }

    /// Reads the text of the field's value, one value or a list. False when it cannot be read.
    /// `words` are those that the field accepts if it is an SFEnum or SFBitMask; null for none.
    bool readText(VrmlInput& input, const Enumeration* words);

    /// Set while the field holds its default: no value has been read for it.
    bool isDefault() const { return (flags_ & kIsDefault) != 0; }
    void setIsDefault(bool on) { setFlag(kIsDefault, on); }
    /// Set when the input marks the field with `~`.
    bool ignored() const { return (flags_ & kIgnored) != 0; }
    void setIgnored(bool on) { setFlag(kIgnored, on); }

protected:
    explicit QvField(FieldType type) : type_(type) {}
    ~QvField() = default;

private:
    static constexpr unsigned kIsDefault = 1;
    static constexpr unsigned kIgnored = 2;

    void setFlag(unsigned flag, bool on) {
        flags_ = static_cast<std::uint8_t>(on ? flags_ | flag : flags_ & ~flag);
    }

    FieldType type_;
    std::uint8_t flags_ = kIsDefault;
};

/// Reads a field whose name has been read: its value, and a `~` instead of it or after it, which
/// marks the field as ignored. Reports a value that cannot be read. `words` as in readText.
bool readField(VrmlInput& input, QvField& field, InternedName name,
               const Enumeration* words = nullptr);

/// A field type's name, as in `fields` declarations: "SFFloat".
std::string_view fieldTypeName(FieldType type);
/// The type of that name, if there is one.
std::optional<FieldType> findFieldType(std::string_view name);
/// Destroys a field as what its type says.
struct FieldDeleter {
    void operator()(QvField* field) const;
};
using OwnedField = std::unique_ptr<QvField, FieldDeleter>;

/// Makes an empty field.
OwnedField createField(FieldType type);

/// A field of one value. Its readValue reads the value. The comment of each type lists the errors
/// that it reports; on failure the caller reports that the field could not be read.
class QvSField : public QvField {
protected:
    using QvField::QvField;
};

/// A field of `Count` reals, stored as floats in the order read.
template <std::size_t Count>
class QvSFReals : public QvSField {
public:
    using Initial = std::array<float, Count>;

    bool readValue(VrmlInput& input);

    std::array<float, Count> value;

protected:
    explicit QvSFReals(FieldType type, const Initial& initial = {})
        : QvSField(type), value(initial) {}
};

class QvSFFloat final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFFloat;

    explicit QvSFFloat(float initial = 0) : QvSField(kType), value(initial) {}
    bool readValue(VrmlInput& input);

    float value;
};

class QvSFLong final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFLong;

    explicit QvSFLong(std::int32_t initial = 0) : QvSField(kType), value(initial) {}
    bool readValue(VrmlInput& input);

    std::int32_t value;
};

/// 0 or 1, written as a number or as TRUE or FALSE. Reports any other number or word.
class QvSFBool final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFBool;

    explicit QvSFBool(bool initial = false) : QvSField(kType), value(initial ? 1 : 0) {}
    bool readValue(VrmlInput& input);

    std::int32_t value;
};

/// One word of an enumeration. Reports a word that the enumeration does not hold.
class QvSFEnum final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFEnum;

    explicit QvSFEnum(std::int32_t initial = 0) : QvSField(kType), value(initial) {}
    /// Null for `words` accepts none.
    bool readValue(VrmlInput& input, const Enumeration* words);

    std::int32_t value;
};

/// Words of an enumeration combined by OR: one word, or words between parentheses separated by `|`.
/// Reports an unknown word and a list that is not closed.
class QvSFBitMask final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFBitMask;

    explicit QvSFBitMask(std::int32_t initial = 0) : QvSField(kType), value(initial) {}
    /// Null for `words` accepts none.
    bool readValue(VrmlInput& input, const Enumeration* words);

    std::int32_t value;
};

/// An image: width, height, bytes per pixel, then a number for each pixel whose lowest bytes are
/// stored, the most significant first.
class QvSFImage final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFImage;

    QvSFImage() : QvSField(kType) {}
    bool readValue(VrmlInput& input);

    /// The bytes of the pixels in input order: `components` bytes per pixel, but at most the four
    /// that a number has.
    std::span<const std::uint8_t> bytes() const { return bytes_; }

    std::int16_t width = 0;
    std::int16_t height = 0;
    std::int32_t components = 0;

private:
    std::vector<std::uint8_t> bytes_;
};

class QvSFString final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFString;

    explicit QvSFString(const char* initial = "") : QvSField(kType), value(initial) {}
    bool readValue(VrmlInput& input);

    std::string value;
};

/// A field of any number of values, written as a list in brackets or as one bare value.
class QvMField : public QvField {
public:
    std::int32_t num = 0;    ///< Number of values.
    std::int32_t maxNum = 0; ///< Number of values that the array has room for.

protected:
    using QvField::QvField;
};

/// A list of values of `Width` scalars each, in one array of `num` x `Width` scalars.
template <class Scalar, std::size_t Width>
class QvMFieldOf : public QvMField {
public:
    using Initial = std::array<Scalar, Width>;

    /// Reads the values. Reports a list value that cannot be read and a bad separator.
    bool readAll(VrmlInput& input);
    /// Makes the field hold `count` values, keeping the leading ones.
    void setCount(std::int32_t count);
    /// Resizes the array to exactly `count` values, keeping the leading ones. 0 frees it.
    void reallocate(std::int32_t count);
    /// Reads one value into a slot that exists.
    bool readOneValue(VrmlInput& input, std::int32_t index);

    /// The scalars of the value `index`, which must exist.
    const Scalar* at(std::int32_t index) const {
        return values + static_cast<std::size_t>(index) * Width;
    }

protected:
    explicit QvMFieldOf(FieldType type) : QvMField(type) {}
    /// A list that starts with one value.
    QvMFieldOf(FieldType type, const Initial& initial);
    ~QvMFieldOf() { release(); }

private:
    void release();
    /// Makes room for `count` values, keeping those that there are; false without memory.
    bool tryReallocate(std::int32_t count);
    /// Makes room for `fresh` values after `count`, and for more if more may come.
    void makeRoom(std::int32_t count, std::size_t fresh, bool isLast);

    /// The initial value. It is stored in place because most lists keep it.
    Initial initial_{};

public:
    Scalar* values = nullptr;
};

/// A field type that differs from others in its name only.
template <class Base, FieldType Type>
class TypedField final : public Base {
public:
    static constexpr FieldType kType = Type;

    TypedField() : Base(kType) {}
    explicit TypedField(const typename Base::Initial& initial) : Base(kType, initial) {}
};

/// Red, green, blue.
using QvSFColor = TypedField<QvSFReals<3>, FieldType::kSFColor>;
/// Four rows of four, in the order read.
using QvSFMatrix = TypedField<QvSFReals<16>, FieldType::kSFMatrix>;
/// Axis x, y, z and the angle in radians.
using QvSFRotation = TypedField<QvSFReals<4>, FieldType::kSFRotation>;
using QvSFVec2f = TypedField<QvSFReals<2>, FieldType::kSFVec2f>;
using QvSFVec3f = TypedField<QvSFReals<3>, FieldType::kSFVec3f>;

using QvMFColor = TypedField<QvMFieldOf<float, 3>, FieldType::kMFColor>;
using QvMFFloat = TypedField<QvMFieldOf<float, 1>, FieldType::kMFFloat>;
using QvMFLong = TypedField<QvMFieldOf<std::int32_t, 1>, FieldType::kMFLong>;
using QvMFVec2f = TypedField<QvMFieldOf<float, 2>, FieldType::kMFVec2f>;
using QvMFVec3f = TypedField<QvMFieldOf<float, 3>, FieldType::kMFVec3f>;

} // namespace meshcast

#pragma GCC visibility pop
