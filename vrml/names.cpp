#include "vrml/names.h"

#include "vrml/characters.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace meshcast {

namespace {

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

std::uint32_t NameTable::hashOf(std::string_view text) {
    // The library's hash: for a simpler one it is easy to find any number of names of one hash.
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
}

/// The slot that holds the text, or the free one where it belongs.
std::size_t NameTable::slotOf(std::string_view text, std::uint32_t hash) const {
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot].place != 0 && (slots_[slot].hash != hash || nameAt(slot).view() != text)) {
        slot = after(slot);
    }
    return slot;
}

/// The name in a slot; the empty name if the slot is free.
InternedName NameTable::nameAt(std::size_t slot) const {
    const std::uint32_t place = slots_[slot].place;
    return place == 0 ? InternedName() : InternedName(entries_[place - 1]);
}

InternedName NameTable::intern(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const std::uint32_t hash = hashOf(text);
    std::size_t number = entries_.size() + 1;
    if (shared_ != nullptr) {
        if (const InternedName name = shared_->nameAt(shared_->slotOf(text, hash)); !name.empty()) {
            return name;
        }
        number += shared_->entries_.size();
    }
    const std::size_t slot = slotOf(text, hash);
    if (slots_[slot].place == 0) {
        auto* const copy = static_cast<char*>(texts_.allocate(text.size() + 1, 1));
        *std::copy(text.begin(), text.end(), copy) = '\0';
        entries_.push_back({copy, text.size(), static_cast<std::uint32_t>(number)});
        slots_[slot] = {hash, static_cast<std::uint32_t>(entries_.size())};
        if (entries_.size() > slots_.size() / 2) {
            grow();
        }
        return InternedName(entries_.back());
    }
    return nameAt(slot);
}

void NameTable::grow() {
    constexpr std::size_t kGrowth = 4;
    std::vector<Slot> old(kGrowth * slots_.size());
    std::swap(old, slots_);
    for (const Slot& moved : old) {
        if (moved.place != 0) {
            std::size_t slot = moved.hash & (slots_.size() - 1);
            while (slots_[slot].place != 0) {
                slot = after(slot);
            }
            slots_[slot] = moved;
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
