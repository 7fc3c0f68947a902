#pragma once

#include "vrml/field_table.h"
#include "vrml/input.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast {

class QvNode;

/// The base of all fields: a typed value of a node, with a default.
class QvField {
public:
    QvField() = default;
    /// Declares the field, under `name`, in the class's FieldTable if `node` is the first of its
    /// class.
    QvField(QvNode& node, const char* name);
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

    /// The node that owns a field which its input declares; null for the fields of the catalogue.
    QvNode* container = nullptr;

private:
    static constexpr std::uint32_t kIsDefault = 1;
    static constexpr std::uint32_t kIgnored = 2;
    static constexpr std::uint32_t kIsList = 4; // A QvMField.

    friend class QvMField;

    void setFlag(std::uint32_t flag, bool on) { flags_ = on ? flags_ | flag : flags_ & ~flag; }

    std::uint32_t flags_ = kIsDefault;
};

/// Reads a field whose name has been read: its value, and `~` in its place or behind it, which
/// marks the field as ignored. Reports a value that cannot be read.
bool readField(VrmlInput& input, QvField& field, InternedName name);

/// Makes an empty field of one of the seventeen types, named as in `fields` declarations
/// ("SFFloat"). Null when there is no such type.
std::unique_ptr<QvField> createField(std::string_view typeName);

/// A field of one value.
class QvSField : public QvField {
public:
    using QvField::QvField;
    /// Reads the value. What it reports itself is said where the type is defined; its caller
    /// reports that the field could not be read.
    virtual bool readValue(VrmlInput& input) = 0;
};

/// A field of `Count` reals, stored as floats in the order read.
template <std::size_t Count>
class QvSFReals : public QvSField {
public:
    QvSFReals() = default;
    QvSFReals(QvNode& node, const char* name, const std::array<float, Count>& initial)
        : QvSField(node, name), value(initial) {}
    bool readValue(VrmlInput& input) final;

    std::array<float, Count> value{};
};

/// Red, green, blue.
class QvSFColor final : public QvSFReals<3> {
    using QvSFReals::QvSFReals;
};
/// Four rows of four, in the order read.
class QvSFMatrix final : public QvSFReals<16> {
    using QvSFReals::QvSFReals;
};
/// Axis x, y, z and the angle in radians.
class QvSFRotation final : public QvSFReals<4> {
    using QvSFReals::QvSFReals;
};
class QvSFVec2f final : public QvSFReals<2> {
    using QvSFReals::QvSFReals;
};
class QvSFVec3f final : public QvSFReals<3> {
    using QvSFReals::QvSFReals;
};

class QvSFFloat final : public QvSField {
public:
    QvSFFloat() = default;
    QvSFFloat(QvNode& node, const char* name, float initial)
        : QvSField(node, name), value(initial) {}
    bool readValue(VrmlInput& input) override;

    float value = 0;
};

class QvSFLong final : public QvSField {
public:
    QvSFLong() = default;
    QvSFLong(QvNode& node, const char* name, std::int32_t initial)
        : QvSField(node, name), value(initial) {}
    bool readValue(VrmlInput& input) override;

    std::int32_t value = 0;
};

/// 0 or 1, written as a number or as TRUE or FALSE. Reports any other number or word.
class QvSFBool final : public QvSField {
public:
    QvSFBool() = default;
    QvSFBool(QvNode& node, const char* name, bool initial)
        : QvSField(node, name), value(initial ? 1 : 0) {}
    bool readValue(VrmlInput& input) override;

    std::int32_t value = 0;
};

/// One word of an enumeration. Reports a word that the enumeration does not hold.
class QvSFEnum : public QvSField {
public:
    QvSFEnum() = default;
    QvSFEnum(QvNode& node, const char* name, const Enumeration& enumeration, std::int32_t initial);
    bool readValue(VrmlInput& input) override;

    /// The words that fit; null for a field that an input declares: none does.
    const EnumTable* words() const { return table_; }

    std::int32_t value = 0;

protected:
    /// Looks a word up in the field's enumeration; false when it is not there.
    bool findWord(InternedName word, std::int32_t& found) const;

private:
    const EnumTable* table_ = nullptr;
};

/// Words of an enumeration combined by OR: one word, or words between parentheses separated by `|`.
/// Reports an unknown word and a list that is not closed.
class QvSFBitMask final : public QvSFEnum {
public:
    using QvSFEnum::QvSFEnum;
    bool readValue(VrmlInput& input) override;
};

/// An image: width, height, bytes per pixel, then a number for each pixel whose lowest bytes are
/// stored, the most significant first.
class QvSFImage final : public QvSField {
public:
    QvSFImage() = default;
    /// An image without pixels.
    QvSFImage(QvNode& node, const char* name) : QvSField(node, name) {}
    bool readValue(VrmlInput& input) override;

    /// The bytes of the pixels in input order, `components` of each. Of a wider pixel than the four
    /// bytes that a number has, these four: the ones before them would be zero.
    std::span<const std::uint8_t> bytes() const { return bytes_; }

    std::int16_t width = 0;
    std::int16_t height = 0;
    std::int32_t components = 0;

private:
    std::vector<std::uint8_t> bytes_;
};

class QvSFString final : public QvSField {
public:
    QvSFString() = default;
    QvSFString(QvNode& node, const char* name, const char* initial)
        : QvSField(node, name), value(initial) {}
    bool readValue(VrmlInput& input) override;

    std::string value;
};

/// A field of any number of values, written as a list in brackets or as one bare value.
class QvMField : public QvField {
public:
    QvMField() { setFlag(kIsList, true); }
    QvMField(QvNode& node, const char* name) : QvField(node, name) { setFlag(kIsList, true); }
    /// Reads the values. Reports a value of a list that cannot be read and a bad separator.
    virtual bool readAll(VrmlInput& input) = 0;
    /// Makes the field hold `count` values, keeping the leading ones.
    virtual void setCount(std::int32_t count) = 0;
    /// Gives the array room for exactly `count` values, the leading ones kept; none frees it.
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
    QvMFieldOf(QvNode& node, const char* name, const std::array<Scalar, Width>& initial);
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

    /// The value that the list starts with: most lists are never given another.
    std::array<Scalar, Width> initial_{};

public:
    Scalar* values = nullptr;
};

class QvMFColor final : public QvMFieldOf<float, 3> {
    using QvMFieldOf::QvMFieldOf;
};
class QvMFFloat final : public QvMFieldOf<float, 1> {
    using QvMFieldOf::QvMFieldOf;
};
class QvMFLong final : public QvMFieldOf<std::int32_t, 1> {
    using QvMFieldOf::QvMFieldOf;
};
class QvMFVec2f final : public QvMFieldOf<float, 2> {
    using QvMFieldOf::QvMFieldOf;
};
class QvMFVec3f final : public QvMFieldOf<float, 3> {
    using QvMFieldOf::QvMFieldOf;
};

} // namespace meshcast
