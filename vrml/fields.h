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
/// below names its type.
class QvField {
public:
    QvField() = default;
    QvField(const QvField&) = delete;
    QvField& operator=(const QvField&) = delete;
    virtual ~QvField() = default;

    /// Reads the text of the field's value, one value or a list. False when it cannot be read.
    bool readText(VrmlInput& input);

    /// Set while the field holds its default: no value has been read for it.
    bool isDefault() const { return (flags_ & kIsDefault) != 0; }
    void setIsDefault(bool on) { setFlag(kIsDefault, on); }
    /// Set when the input marks the field with `~`.
    bool ignored() const { return (flags_ & kIgnored) != 0; }
    void setIgnored(bool on) { setFlag(kIgnored, on); }

private:
    static constexpr std::uint32_t kIsDefault = 1;
    static constexpr std::uint32_t kIgnored = 2;
    static constexpr std::uint32_t kIsList = 4; // A QvMField.

    friend class QvMField;

    void setFlag(std::uint32_t flag, bool on) { flags_ = on ? flags_ | flag : flags_ & ~flag; }

    std::uint32_t flags_ = kIsDefault;
};

/// Reads a field whose name has been read: its value, and a `~` instead of it or after it, which
/// marks the field as ignored. Reports a value that cannot be read.
bool readField(VrmlInput& input, QvField& field, InternedName name);

/// A field type's name, as in `fields` declarations: "SFFloat".
std::string_view fieldTypeName(FieldType type);
/// The type of that name, if there is one.
std::optional<FieldType> findFieldType(std::string_view name);
/// Makes an empty field.
std::unique_ptr<QvField> createField(FieldType type);

/// A field of one value.
class QvSField : public QvField {
public:
    /// Reads the value. The comment of each type lists the errors that it reports. On failure the
    /// caller reports that the field could not be read.
    virtual bool readValue(VrmlInput& input) = 0;
};

/// A field of `Count` reals, stored as floats in the order read.
template <std::size_t Count>
class QvSFReals : public QvSField {
public:
    QvSFReals() = default;
    explicit QvSFReals(const std::array<float, Count>& initial) : value(initial) {}
    bool readValue(VrmlInput& input) final;

    std::array<float, Count> value{};
};

class QvSFFloat final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFFloat;

    explicit QvSFFloat(float initial = 0) : value(initial) {}
    bool readValue(VrmlInput& input) override;

    float value;
};

class QvSFLong final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFLong;

    explicit QvSFLong(std::int32_t initial = 0) : value(initial) {}
    bool readValue(VrmlInput& input) override;

    std::int32_t value;
};

/// 0 or 1, written as a number or as TRUE or FALSE. Reports any other number or word.
class QvSFBool final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFBool;

    explicit QvSFBool(bool initial = false) : value(initial ? 1 : 0) {}
    bool readValue(VrmlInput& input) override;

    std::int32_t value;
};

/// One word of an enumeration. Reports a word that the enumeration does not hold.
class QvSFEnum : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFEnum;

    QvSFEnum() = default;
    QvSFEnum(const Enumeration& words, std::int32_t initial) : value(initial), words_(&words) {}
    bool readValue(VrmlInput& input) override;

    std::int32_t value = 0;

protected:
    /// Looks a word up in the field's enumeration; false when it is not there.
    bool findWord(InternedName word, std::int32_t& found) const;

private:
    /// The accepted words; null for a field that a scene declares, which accepts none.
    const Enumeration* words_ = nullptr;
};

/// Words of an enumeration combined by OR: one word, or words between parentheses separated by `|`.
/// Reports an unknown word and a list that is not closed.
class QvSFBitMask final : public QvSFEnum {
public:
    static constexpr FieldType kType = FieldType::kSFBitMask;

    using QvSFEnum::QvSFEnum;
    bool readValue(VrmlInput& input) override;
};

/// An image: width, height, bytes per pixel, then a number for each pixel whose lowest bytes are
/// stored, the most significant first.
class QvSFImage final : public QvSField {
public:
    static constexpr FieldType kType = FieldType::kSFImage;

    bool readValue(VrmlInput& input) override;

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

    explicit QvSFString(const char* initial = "") : value(initial) {}
    bool readValue(VrmlInput& input) override;

    std::string value;
};

/// A field of any number of values, written as a list in brackets or as one bare value.
class QvMField : public QvField {
public:
    QvMField() { setFlag(kIsList, true); }
    /// Reads the values. Reports a list value that cannot be read and a bad separator.
    virtual bool readAll(VrmlInput& input) = 0;
    /// Makes the field hold `count` values, keeping the leading ones.
    virtual void setCount(std::int32_t count) = 0;
    /// Resizes the array to exactly `count` values, keeping the leading ones. 0 frees it.
    virtual void reallocate(std::int32_t count) = 0;
    /// Reads one value into a slot that exists.
    virtual bool readOneValue(VrmlInput& input, std::int32_t index) = 0;

    std::int32_t num = 0;    ///< Number of values.
    std::int32_t maxNum = 0; ///< Number of values that the array has room for.
};

/// A list of values of `Width` scalars each, in one array of `num` x `Width` scalars.
template <class Scalar, std::size_t Width>
class QvMFieldOf : public QvMField {
public:
    QvMFieldOf() = default;
    /// A list that starts with one value.
    explicit QvMFieldOf(const std::array<Scalar, Width>& initial);
    ~QvMFieldOf() override { release(); }

    bool readAll(VrmlInput& input) final;
    void setCount(std::int32_t count) final;
    void reallocate(std::int32_t count) final;
    bool readOneValue(VrmlInput& input, std::int32_t index) final;

    /// The scalars of the value `index`, which must exist.
    const Scalar* at(std::int32_t index) const {
        return values + static_cast<std::size_t>(index) * Width;
    }

private:
    void release();
    /// Makes room for `count` values, keeping those that there are; false without memory.
    bool tryReallocate(std::int32_t count);
    /// Makes room for `fresh` values after `count`, and for more if more may come.
    void makeRoom(std::int32_t count, std::size_t fresh, bool isLast);

    /// The initial value. It is stored in place because most lists keep it.
    std::array<Scalar, Width> initial_{};

public:
    Scalar* values = nullptr;
};

/// A field type that differs from others in its name only.
template <class Base, FieldType Type>
class TypedField final : public Base {
public:
    static constexpr FieldType kType = Type;
    using Base::Base;
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
