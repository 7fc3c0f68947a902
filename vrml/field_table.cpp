#include "vrml/field_table.h"

#include "vrml/catalogue.h"

#include <algorithm>

namespace meshcast {

namespace {

/// Tables with more fields than this are searched by hash, since a scene may declare a million.
constexpr std::size_t kLongestSearched = 16;

} // namespace

const EnumWord* Enumeration::find(std::string_view word) const {
    const auto* const end = words_.data() + count_;
    const auto* const found = std::find_if(
        words_.data(), end, [word](const EnumWord& each) { return each.word == word; });
    return found == end ? nullptr : found;
}

FieldTable::FieldTable(std::string_view className, std::span<const FieldInfo> fields)
    : className_(className) {
    fields_.reserve(fields.size());
    for (const FieldInfo& info : fields) {
        add({catalogueName(info.name), info.type, &info, nullptr});
    }
}

const Enumeration* FieldTable::findEnumeration(std::string_view typeName) const {
    for (const FieldEntry& entry : fields_) {
        if (entry.info != nullptr && entry.info->words != nullptr &&
            entry.info->words->typeName == typeName) {
            return entry.info->words;
        }
    }
    return nullptr;
}

void FieldTable::add(const FieldEntry& entry) {
    if (fields_.size() == kLongestSearched) {
        places_ = std::make_unique<decltype(places_)::element_type>();
        for (std::size_t place = 0; place < fields_.size(); ++place) {
            places_->try_emplace(fields_[place].name.number(), place);
        }
    }
    if (places_ != nullptr) {
        places_->try_emplace(entry.name.number(), fields_.size());
    }
    appendDoubling(fields_, entry);
}

const FieldTable::FieldEntry* FieldTable::findField(InternedName name) const {
    if (places_ != nullptr) {
        const auto found = places_->find(name.number());
        return found == places_->end() ? nullptr : &fields_[found->second];
    }
    const auto found = std::find_if(fields_.begin(), fields_.end(),
                                    [name](const auto& each) { return each.name == name; });
    return found == fields_.end() ? nullptr : &*found;
}

} // namespace meshcast
