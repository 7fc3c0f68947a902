#include "vrml/names.h"

#include "vrml/characters.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <new>

namespace meshcast {

namespace {

constexpr std::size_t kFirstSlots = 256; // A power of two, as is the growth.
constexpr std::size_t kGrowth = 4;

std::string_view viewOf(const NameEntry& entry) {
    return {entry.text, entry.length};
}

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

NameTable::NameTable(const NameTable* shared) : shared_(shared), slots_(kFirstSlots) {}

/// The slot that holds the text, or the free one where it belongs.
std::size_t NameTable::slotOf(std::string_view text, std::size_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    while (slots_[slot].entry != nullptr &&
           (slots_[slot].hash != hash || viewOf(*slots_[slot].entry) != text)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

InternedName NameTable::intern(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    // The library's hash: for a simpler one it is easy to find any number of names of one hash.
    const std::size_t hash = std::hash<std::string_view>()(text);
    if (shared_ != nullptr) {
        if (const Slot& slot = shared_->slots_[shared_->slotOf(text, hash)];
            slot.entry != nullptr) {
            return InternedName(*slot.entry);
        }
    }
    Slot& slot = slots_[slotOf(text, hash)];
    if (slot.entry != nullptr) {
        return InternedName(*slot.entry);
    }
    auto* const copy = static_cast<char*>(memory_.allocate(text.size() + 1, 1));
    *std::copy(text.begin(), text.end(), copy) = '\0';
    const std::size_t number = ++size_ + (shared_ != nullptr ? shared_->size_ : 0);
    void* const place = memory_.allocate(sizeof(NameEntry), alignof(NameEntry));
    auto* const entry =
        new (place) NameEntry{copy, text.size(), static_cast<std::uint32_t>(number)};
    slot = {hash, entry};
    if (size_ > slots_.size() / 2) {
        grow();
    }
    return InternedName(*entry);
}

InternedName NameTable::at(std::string_view text) const {
    return InternedName(*slots_[slotOf(text, std::hash<std::string_view>()(text))].entry);
}

void NameTable::grow() {
    std::vector<Slot> old(kGrowth * slots_.size());
    std::swap(old, slots_);
    for (const Slot& moved : old) {
        if (moved.entry != nullptr) {
            slots_[slotOf(viewOf(*moved.entry), moved.hash)] = moved;
        }
    }
}

void NameDictionary::add(InternedName name, QvNode* node) {
    Bearers& bearers = bearers_[name];
    if (bearers.several != nullptr) {
        appendDoubling(*bearers.several, node);
    } else if (bearers.only == nullptr) {
        bearers.only = node;
    } else {
        bearers.several = std::make_unique<std::vector<QvNode*>>();
        appendDoubling(*bearers.several, bearers.only);
        appendDoubling(*bearers.several, node);
    }
}

bool NameDictionary::remove(InternedName name, const QvNode* node) {
    Bearers& bearers = bearers_[name];
    if (bearers.several == nullptr) {
        const bool isBearer = bearers.only == node;
        if (isBearer) {
            bearers.only = nullptr;
        }
        return isBearer;
    }
    std::vector<QvNode*>& list = *bearers.several;
    const auto found = std::find(list.begin(), list.end(), node);
    if (found == list.end()) {
        return false;
    }
    list.erase(found);
    return true;
}

std::span<QvNode* const> NameDictionary::nodes(InternedName name) {
    const Bearers& bearers = bearers_[name];
    if (bearers.several != nullptr) {
        return *bearers.several;
    }
    return {&bearers.only, bearers.only == nullptr ? 0U : 1U};
}

bool isLegalNodeName(std::string_view text) {
    return !text.empty() && isNameStart(text.front()) &&
           std::all_of(text.begin(), text.end(), isLegalInside);
}

std::string madeLegal(std::string_view text) {
    std::string legal(isNameStart(text.front()) ? "" : "_");
    std::transform(text.begin(), text.end(), std::back_inserter(legal),
                   [](char c) { return isLegalInside(c) ? c : '_'; });
    return legal;
}

} // namespace meshcast
