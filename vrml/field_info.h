#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

class QvField;
class QvNode;

/// A word of an enumeration.
struct EnumWord {
    std::string_view word;
    std::int32_t value;
};

/// The words that an SFEnum or SFBitMask field accepts.
class Enumeration {
public:
    constexpr Enumeration(std::string_view name, std::initializer_list<EnumWord> words)
        : typeName(name), count_(words.size()) {
        std::copy(words.begin(), words.end(), words_.begin());
    }

    std::span<const EnumWord> words() const { return {words_.data(), count_}; }
    /// The entry of that word, or null.
    const EnumWord* find(std::string_view word) const;

    std::string_view typeName;

private:
    static constexpr std::size_t kMostWords = 9; // Of a binding.

    std::size_t count_;
    std::array<EnumWord, kMostWords> words_{};
};

/// The field types, in the order of their names.
enum class FieldType : std::uint8_t {
    kMFColor,
    kMFFloat,
    kMFLong,
    kMFVec2f,
    kMFVec3f,
    kSFBitMask,
    kSFBool,
    kSFColor,
    kSFEnum,
    kSFFloat,
    kSFImage,
    kSFLong,
    kSFMatrix,
    kSFRotation,
    kSFString,
    kSFVec2f,
    kSFVec3f,
};

/// Whether fields of the type own memory: lists, images and texts.
constexpr bool ownsMemory(FieldType type) {
    return type <= FieldType::kMFVec3f || type == FieldType::kSFImage ||
           type == FieldType::kSFString;
}

/// What the nodes of a class do when the scene is walked.
enum class NodeKind : std::uint8_t {
    kShape,    ///< Is geometry.
    kProperty, ///< Applies to the shapes after it.
    kGroup,    ///< Holds children.
    kInfo,     ///< Text for people who read the file.
};

/// One field of a class of the catalogue.
struct FieldInfo {
    std::string_view name;
    FieldType type;
    const Enumeration* words;     ///< Of SFEnum and SFBitMask; null for the other types.
    QvField& (*of)(QvNode& node); ///< The field of a node, which must be of the class.
};

/// Describes the field that is the member `Member` of a node class, as in
/// field<&QvSphere::radius>("radius").
template <auto Member>
struct FieldOf;
template <class Node, class Field, Field Node::*Member>
struct FieldOf<Member> {
    static QvField& of(QvNode& node) { return static_cast<Node&>(node).*Member; }
    static constexpr FieldType kType = Field::kType;
};
template <auto Member>
constexpr FieldInfo field(std::string_view name, const Enumeration* words = nullptr) {
    return {name, FieldOf<Member>::kType, words, FieldOf<Member>::of};
}

/// The declaration of a class of the catalogue.
template <std::size_t Count>
struct ClassDeclaration {
    std::string_view name;
    NodeKind kind;
    std::array<FieldInfo, Count> fields;
};
template <class... Fields>
constexpr ClassDeclaration<sizeof...(Fields)> declare(std::string_view name, NodeKind kind,
                                                      Fields... fields) {
    return {name, kind, {fields...}};
}

} // namespace meshcast

#pragma GCC visibility pop
