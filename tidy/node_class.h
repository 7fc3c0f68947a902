#pragma once

#include "vrml/field_info.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// What the text of a field's value is made of.
struct ValueType {
    enum class Kind : std::uint8_t { kReal, kInteger, kBool, kEnum, kMask, kString, kImage };

    Kind kind;
    std::uint8_t width = 1; ///< Numbers that make one value.
    bool isList = false;
    const Enumeration* words = nullptr; ///< Of kEnum and kMask; null where no word fits.
};

struct Field {
    std::string name;
    ValueType type;
};

/// A class as the repairs need it: its fields, and what is special about its nodes.
struct NodeClass {
    /// The field of that name, or null. Of two fields of one name the first is found.
    const Field* field(std::string_view fieldName) const;
    /// The field of that name in whatever letter case, or null.
    const Field* fieldInAnyCase(std::string_view fieldName) const;
    void addField(std::string_view fieldName, ValueType type);

    std::string name;
    bool isGroup = false;
    bool isDeclared = false;    ///< By its `fields`, in the scene.
    bool keepsItsState = false; ///< Coordinates inside it are not in force after it.
    bool picksChild = false;    ///< Shows children by their number.
    bool isInline = false;      ///< Names another scene.
    bool namesImage = false;    ///< Shows the image of a file.
    bool setsCoordinates = false;
    bool drawsPoints = false; ///< Its number of points may be left out.
    std::vector<Field> fields;

private:
    /// Where fields are, once they are too many to be searched: a scene may declare a million.
    std::map<std::string, std::size_t, std::less<>> places_;
};

/// The class of the catalogue of that name, or null.
const NodeClass* findClass(std::string_view name);
/// The class of that name in whatever letter case, or null.
const NodeClass* findClassInAnyCase(std::string_view name);

/// The type of a field that a scene declares ("SFFloat"), if there is such a type.
std::optional<ValueType> declaredType(std::string_view typeName);

/// Compares in any case of the letters A to Z.
bool equalInAnyCase(std::string_view a, std::string_view b);

} // namespace meshcast::tidy
