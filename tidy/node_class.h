#pragma once

#include "vrml/field_info.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// The syntax of a field's value.
struct ValueType {
    enum class Kind : std::uint8_t { kReal, kInteger, kBool, kEnum, kMask, kString, kImage };

    Kind kind;
    std::uint8_t width = 1; ///< How many numbers make one value.
    bool isList = false;
    const Enumeration* words = nullptr; ///< Of kEnum and kMask; null when no word is valid.
};

struct Field {
    std::string name;
    ValueType type;
};

/// What the repairs need to know about a class: its fields and the special properties of its nodes.
struct NodeClass {
    /// The field of that name, or null. Finds the first of two fields with the same name.
    const Field* field(std::string_view fieldName) const;
    /// The field of that name, ignoring letter case, or null.
    const Field* fieldInAnyCase(std::string_view fieldName) const;
    void addField(std::string_view fieldName, ValueType type);

    std::string name;
    bool isGroup = false;
    bool isDeclared = false;    ///< In the scene, by a `fields` list.
    bool keepsItsState = false; ///< Coordinates set inside it have no effect after it.
    bool picksChild = false;    ///< Shows one child, chosen by number.
    bool isInline = false;      ///< Names another scene.
    bool namesImage = false;    ///< Shows the image of a file.
    bool setsCoordinates = false;
    bool drawsPoints = false; ///< Its number of points may be left out.
    std::vector<Field> fields;

private:
    /// The index of `fields` by name, used when there are many: a scene may declare a million.
    std::map<std::string, std::size_t, std::less<>> places_;
};

/// The class of that name in the catalogue, or null.
const NodeClass* findClass(std::string_view name);
/// The class of that name in the catalogue, ignoring letter case, or null.
const NodeClass* findClassInAnyCase(std::string_view name);

/// The type named in a declaration of fields ("SFFloat"); nothing if there is no such type.
std::optional<ValueType> declaredType(std::string_view typeName);

/// Compares two texts, ignoring the case of the letters A to Z.
bool equalInAnyCase(std::string_view a, std::string_view b);

} // namespace meshcast::tidy
