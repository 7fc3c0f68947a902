#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace meshcast {
class Enumeration;
} // namespace meshcast

namespace meshcast::tidy {

// The node classes as the tidier needs them, taken from the filter's own catalogue:
// what a class is called, which fields it has, and how the text of each looks.

/// What the text of a field's value is made of.
struct ValueType {
    enum class Kind : std::uint8_t { kReal, kInteger, kBool, kEnum, kMask, kString, kImage };

    bool isNumeric() const { return kind == Kind::kReal || kind == Kind::kInteger; }

    Kind kind;
    std::uint8_t width = 1; ///< Numbers that make one value.
    bool isList = false;
    const Enumeration* words = nullptr; ///< Of kEnum and kMask; null where no word fits.
};

struct FieldInfo {
    std::string name;
    ValueType type;
};

struct ClassInfo {
    /// The field of that name, or null. Of two fields of one name the first is found.
    const FieldInfo* field(std::string_view fieldName) const;
    /// The field of that name in whatever letter case, or null.
    const FieldInfo* fieldInAnyCase(std::string_view fieldName) const;
    void addField(std::string_view fieldName, ValueType type);

    std::string name;
    bool isGroup = false;
    bool picksChild = false; ///< A group whose children are chosen by their number.
    bool isInline = false;   ///< A node that names another scene.

private:
    std::vector<FieldInfo> fields_;
    /// Where fields are, by name, once they are too many to be searched: a scene may declare a
    /// million.
    std::unordered_map<std::string, std::size_t> places_;
};

/// The class of that name, or null.
const ClassInfo* findClass(std::string_view name);
/// The class of that name in whatever letter case, or null.
const ClassInfo* findClassInAnyCase(std::string_view name);

/// The type of a field that a scene declares ("SFFloat"), if there is such a type.
std::optional<ValueType> declaredType(std::string_view typeName);

/// The word of an enumeration that another spelling or dialect means; empty when none or more than
/// one could be meant.
std::string_view meantWord(const Enumeration* words, std::string_view written);
/// True when the enumeration holds exactly this word.
bool holdsWord(const Enumeration* words, std::string_view word);

/// Compares in any case of the letters A to Z.
bool equalInAnyCase(std::string_view a, std::string_view b);

} // namespace meshcast::tidy
