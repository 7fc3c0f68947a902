#pragma once

#include "vrml/names.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace meshcast {

class QvField;

/// A word of an enumeration as the catalogue declares it.
struct EnumWord {
    std::string_view word;
    std::int32_t value;
};

/// An enumeration or bit mask as the catalogue declares it.
struct Enumeration {
    std::string_view typeName;
    std::span<const EnumWord> words;
};

/// The words that an SFEnum or SFBitMask field accepts: two parallel arrays.
struct EnumTable {
    InternedName typeName;
    std::vector<std::int32_t> values;
    std::vector<InternedName> names;
};

/// The fields and enumerations of one node class, shared by its nodes. Built while the first node
/// of the class is constructed.
class FieldTable {
public:
    struct FieldEntry {
        InternedName name;
        std::uintptr_t position; ///< Distance in bytes from the node to the field.
    };

    /// Appends a field: its name and where it lies relative to `node`.
    void addField(std::string_view name, const QvNode& node, const QvField& field);
    /// Appends a word to the enumeration of that type name, which is made when it is new.
    void addEnumValue(std::string_view typeName, std::string_view word, std::int32_t value);

    std::span<const FieldEntry> fields() const { return fields_; }
    /// The node's field of that name, or null when the table has none. Of two fields of one name
    /// the first is found.
    QvField* findField(QvNode& node, InternedName name) const;
    /// The enumeration of that type name, or null. Valid as long as the table.
    const EnumTable* findEnumeration(InternedName typeName) const;

    /// The table of an enumeration that the catalogue declares; its words are added when it is
    /// asked for the first time.
    const EnumTable& declare(const Enumeration& enumeration);

private:
    struct Declared {
        const Enumeration* enumeration;
        const EnumTable* table;
    };

    EnumTable* findTable(InternedName typeName) const;

    std::vector<FieldEntry> fields_;
    /// Positions in a table too long to be searched, by the number of the name. The catalogue has
    /// no such table.
    std::unique_ptr<std::unordered_map<std::size_t, std::uintptr_t>> positions_;
    std::vector<std::unique_ptr<EnumTable>> enumerations_;
    std::vector<Declared> declared_;
};

} // namespace meshcast
