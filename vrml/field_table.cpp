#include "vrml/field_table.h"

#include "vrml/fields.h"
#include "vrml/node.h"

#include <algorithm>

namespace meshcast {

namespace {

/// Enumerations grow by this many words at a time.
constexpr std::size_t kEnumGrowth = 6;

template <class T>
void appendGrowing(std::vector<T>& list, T value) {
    if (list.size() == list.capacity()) {
        list.reserve(list.size() + kEnumGrowth);
    }
    list.push_back(value);
}

} // namespace

void FieldTable::addField(std::string_view name, const QvNode& node, const QvField& field) {
    // The distance may be one between two allocations (fields that an input declares live on the
    // heap), hence integers: they wrap where a pointer difference would not be defined.
    const std::uintptr_t position =
        reinterpret_cast<std::uintptr_t>(&field) - reinterpret_cast<std::uintptr_t>(&node);
    appendDoubling(fields_, FieldEntry{InternedName(name), position});
}

QvField* FieldTable::findField(QvNode& node, InternedName name) const {
    const auto found = std::find_if(fields_.begin(), fields_.end(),
                                    [name](const FieldEntry& entry) { return entry.name == name; });
    if (found == fields_.end()) {
        return nullptr;
    }
    return reinterpret_cast<QvField*>(reinterpret_cast<std::uintptr_t>(&node) + found->position);
}

void FieldTable::addEnumValue(std::string_view typeName, std::string_view word,
                              std::int32_t value) {
    const InternedName type(typeName);
    auto table = std::find_if(enumerations_.begin(), enumerations_.end(),
                              [type](const EnumTable& each) { return each.typeName == type; });
    if (table == enumerations_.end()) {
        enumerations_.push_back({type, {}, {}});
        table = std::prev(enumerations_.end());
    }
    appendGrowing(table->values, value);
    appendGrowing(table->names, InternedName(word));
}

const EnumTable* FieldTable::findEnumeration(InternedName typeName) const {
    const auto found =
        std::find_if(enumerations_.begin(), enumerations_.end(),
                     [typeName](const EnumTable& each) { return each.typeName == typeName; });
    return found == enumerations_.end() ? nullptr : &*found;
}

const EnumTable& FieldTable::declare(const Enumeration& enumeration) {
    for (const Declared& declared : declared_) {
        if (declared.enumeration == &enumeration) {
            return *declared.table;
        }
    }
    for (const EnumWord& word : enumeration.words) {
        addEnumValue(enumeration.typeName, word.word, word.value);
    }
    declared_.push_back({&enumeration, findEnumeration(InternedName(enumeration.typeName))});
    return *declared_.back().table;
}

} // namespace meshcast
