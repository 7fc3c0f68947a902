#include "vrml/names.h"

#include "vrml/characters.h"
#include "vrml/keyed_hash.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <new>

namespace meshcast {

namespace {

constexpr std::size_t kFirstSlots = 256; // A power of two, as is the growth.
constexpr std::size_t kGrowth = 4;

std::string_view viewOf(const NameEntry& entry) { return {entry.text, entry.length}; }

/// For the names that every scene shares. They are known, so nobody can make them collide.
std::uint32_t sharedHashOf(std::string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
}

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

NameTable::NameTable(const NameTable* shared)
    : shared_(shared), slots_(std::make_unique<const NameEntry*[]>(kFirstSlots)),
      slotCount_(kFirstSlots) {}

std::uint32_t NameTable::hashOf(std::string_view text) const {
    return shared_ == nullptr ? sharedHashOf(text) : static_cast<std::uint32_t>(keyedHash(text));
}

/// The slot that holds the text, or the free one where it belongs.
const NameEntry*& NameTable::slotOf(std::string_view text, std::uint32_t hash) const {
    std::size_t slot = hash & (slotCount_ - 1);
    while (slots_[slot] != nullptr &&
           (slots_[slot]->hash != hash || viewOf(*slots_[slot]) != text)) {
        slot = (slot + 1) & (slotCount_ - 1);
    }
    return slots_[slot];
}

InternedName NameTable::intern(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (shared_ != nullptr) {
        if (const NameEntry* const shared = shared_->slotOf(text, sharedHashOf(text))) {
            return InternedName(*shared);
        }
    }
    const std::uint32_t hash = hashOf(text);
    const NameEntry*& slot = slotOf(text, hash);
    if (slot != nullptr) {
        return InternedName(*slot);
    }
    auto* const copy = static_cast<char*>(memory_.allocate(text.size() + 1, 1));
    *std::copy(text.begin(), text.end(), copy) = '\0';
    const std::size_t number = ++size_ + (shared_ == nullptr ? 0 : shared_->size_);
    void* const place = memory_.allocate(sizeof(NameEntry), alignof(NameEntry));
    slot = new (place) NameEntry{copy, text.size(), static_cast<std::uint32_t>(number), hash};
    const InternedName name(*slot);
    if (size_ > slotCount_ / 2) {
        grow();
    }
    return name;
}

InternedName NameTable::at(std::string_view text) const {
    return InternedName(*slotOf(text, hashOf(text)));
}

void NameTable::grow() {
    const auto old =
        std::exchange(slots_, std::make_unique<const NameEntry*[]>(kGrowth * slotCount_));
    const std::size_t oldCount = std::exchange(slotCount_, kGrowth * slotCount_);
    for (std::size_t i = 0; i < oldCount; ++i) {
        if (old[i] != nullptr) {
            slotOf(viewOf(*old[i]), old[i]->hash) = old[i];
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
