#pragma once

#include "vrml/field_info.h"
#include "vrml/names.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

/// The fields of one node class by name, shared by all its nodes. A node that declares its own
/// fields has a table of its own.
class FieldTable {
public:
    struct FieldEntry {
        InternedName name;
        FieldType type;
        const FieldInfo* info; ///< In the catalogue; null for a field that a scene declares.
        QvField* declared;     ///< The field that a scene declares; null for one of the catalogue.

        QvField& of(QvNode& node) const { return declared != nullptr ? *declared : info->of(node); }
        /// The words that the field accepts; null for one that a scene declares.
        const Enumeration* words() const { return info == nullptr ? nullptr : info->words; }
    };

    FieldTable() = default;
    /// The table of a class of the catalogue.
    FieldTable(std::string_view className, std::span<const FieldInfo> fields);

    /// As the scene language spells it; empty for a class that a scene declares.
    std::string_view className() const { return className_; }
    std::span<const FieldEntry> fields() const { return fields_; }
    /// The enumeration of that type name among the words of the fields, or null.
    const Enumeration* findEnumeration(std::string_view typeName) const;

    /// Appends a field that a scene declares.
    void addField(InternedName name, FieldType type, QvField& field) {
        add({name, type, nullptr, &field});
    }
    /// The field of that name, or null when the table has none. Of two fields of one name the
    /// first is found.
    const FieldEntry* findField(InternedName name) const;

private:
    void add(const FieldEntry& entry);

    std::string_view className_;
    std::vector<FieldEntry> fields_;
    /// Indices of the fields by the number of their name, for long tables. No class of the
    /// catalogue needs this.
    std::unique_ptr<std::unordered_map<std::size_t, std::size_t>> places_;
};

} // namespace meshcast

#pragma GCC visibility pop
