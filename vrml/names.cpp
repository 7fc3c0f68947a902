#include "vrml/names.h"

#include "vrml/catalogue_names.h"
#include "vrml/characters.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace meshcast {

namespace {

constexpr std::size_t kFirstSlots = 256; // A power of two, as is the growth.
constexpr std::size_t kGrowth = 4;
constexpr std::size_t kPoolSize = 4000;

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

NameTable::NameTable() : slots_(kFirstSlots), poolUsed_(kPoolSize) {}

InternedName NameTable::intern(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (const NameEntry* const shared = findCatalogueName(text)) {
        return InternedName(*shared);
    }
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
    std::size_t slot = hash & (slots_.size() - 1);
    for (; slots_[slot].place != 0; slot = after(slot)) {
        if (slots_[slot].hash == hash) {
            const NameEntry& entry = entries_[slots_[slot].place - 1];
            if (std::string_view(entry.text, entry.length) == text) {
                return InternedName(entry);
            }
        }
    }
    const auto number = static_cast<std::uint32_t>(catalogueNameCount() + entries_.size() + 1);
    const NameEntry& entry = entries_.emplace_back(NameEntry{copy(text), text.size(), number});
    slots_[slot] = {hash, static_cast<std::uint32_t>(entries_.size())};
    if (entries_.size() > slots_.size() / 2) {
        grow();
    }
    return InternedName(entry);
}

void NameTable::grow() {
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

/// Copies a text and ends it in a zero. Short texts share pools, so that many of them cost one
/// allocation.
const char* NameTable::copy(std::string_view text) {
    const auto newPool = [this](std::size_t size) {
        return pools_.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
    };
    const std::size_t size = text.size() + 1;
    char* target = nullptr;
    if (size >= kPoolSize) {
        target = newPool(size);
    } else {
        if (size > kPoolSize - poolUsed_) {
            pool_ = newPool(kPoolSize);
            poolUsed_ = 0;
        }
        target = pool_ + poolUsed_;
        poolUsed_ += size;
    }
    text.copy(target, text.size());
    target[text.size()] = '\0';
    return target;
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
