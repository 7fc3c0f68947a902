#include "vrml/field_table.h"

#include "vrml/fields.h"
#include "vrml/node.h"

#include <algorithm>

namespace meshcast {

namespace {

/// Enumerations grow by this many words at a time.
constexpr std::size_t kEnumGrowth = 6;

/// Tables of more fields than this are looked up by hash: an input may declare a million.
constexpr std::size_t kLongestSearched = 16;

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
    const InternedName interned(name);
    if (fields_.size() == kLongestSearched) {
        positions_ = std::make_unique<decltype(positions_)::element_type>();
        for (const FieldEntry& entry : fields_) {
            positions_->try_emplace(entry.name.number(), entry.position);
        }
    }
    if (positions_ != nullptr) {
        positions_->try_emplace(interned.number(), position);
    }
    appendDoubling(fields_, FieldEntry{interned, position});
}

QvField* FieldTable::findField(QvNode& node, InternedName name) const {
    const std::uintptr_t* position = nullptr;
    if (positions_ != nullptr) {
        const auto found = positions_->find(name.number());
        position = found == positions_->end() ? nullptr : &found->second;
    } else {
        const auto found =
            std::find_if(fields_.begin(), fields_.end(),
                         [name](const FieldEntry& entry) { return entry.name == name; });
        position = found == fields_.end() ? nullptr : &found->position;
    }
    if (position == nullptr) {
        return nullptr;
    }
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(&node) + *position;
    return reinterpret_cast<QvField*>(address); // NOLINT(performance-no-int-to-ptr): see addField
}

EnumTable* FieldTable::findTable(InternedName typeName) const {
    const auto found =
        std::find_if(enumerations_.begin(), enumerations_.end(),
                     [typeName](const auto& each) { return each->typeName == typeName; });
    return found == enumerations_.end() ? nullptr : found->get();
}

const EnumTable* FieldTable::findEnumeration(InternedName typeName) const {
    return findTable(typeName);
}

void FieldTable::addEnumValue(std::string_view typeName, std::string_view word,
                              std::int32_t value) {
    const InternedName type(typeName);
    EnumTable* table = findTable(type);
    if (table == nullptr) {
        appendDoubling(enumerations_, std::make_unique<EnumTable>(EnumTable{type, {}, {}}));
        table = enumerations_.back().get();
    }
    appendGrowing(table->values, value);
    appendGrowing(table->names, InternedName(word));
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
