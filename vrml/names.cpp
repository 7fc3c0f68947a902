#include "vrml/names.h"

#include "vrml/characters.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <iterator>
#include <string>

namespace meshcast {

const NameEntry kEmptyName = {"", 0, 0};

namespace {

/// The interning table: every name of the process, once. It is searched along neighbouring slots
/// that hold the hashes, so that a new name, whatever the number of names, costs one look into
/// memory that is not at hand.
class NameTable {
public:
    static NameTable& global() {
        // Never destroyed: handles are used until the process has ended.
        static NameTable& table = *new NameTable;
        return table;
    }

    const NameEntry* intern(std::string_view text) {
        if (text.empty()) {
            return &kEmptyName;
        }
        // The library's hash: for a simpler one it is easy to find any number of names of one hash.
        const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
        std::size_t place = placeOf(hash);
        for (; !slots_[place].isFree(); place = behind(place)) {
            if (slots_[place].hash == hash) {
                const NameEntry& entry = entries_[slots_[place].number];
                if (std::string_view(entry.text, entry.length) == text) {
                    return &entry;
                }
            }
        }
        const auto number = static_cast<std::uint32_t>(entries_.size());
        entries_.push_back({copy(text), text.size(), number});
        slots_[place] = {hash, number};
        if (entries_.size() > slots_.size() / 2) {
            rebuild(kGrowth * slots_.size());
        }
        return &entries_.back();
    }

    /// Marks what the table holds now. Names to come get pools of their own.
    NameScope::Mark mark() {
        poolUsed_ = kPoolSize;
        return {entries_.size(), pools_.size()};
    }

    void forgetSince(const NameScope::Mark& mark) {
        if (entries_.size() == mark.names) {
            return;
        }
        entries_.resize(mark.names, kEmptyName);
        pools_.resize(mark.pools);
        poolUsed_ = kPoolSize;
        std::size_t slots = kFirstSlots;
        while (entries_.size() > slots / 2) {
            slots *= kGrowth;
        }
        rebuild(slots);
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0; // The empty name has no slot.

        bool isFree() const { return number == 0; }
    };

    static constexpr std::size_t kFirstSlots = 2048; // A power of two, as is the growth.
    static constexpr std::size_t kGrowth = 4;
    static constexpr std::size_t kPoolSize = 4000;

    NameTable() : slots_(kFirstSlots), entries_(1, kEmptyName) {}

    std::size_t placeOf(std::uint32_t hash) const { return hash & (slots_.size() - 1); }
    std::size_t behind(std::size_t place) const { return (place + 1) & (slots_.size() - 1); }

    /// Makes a table of that many slots for the names that there are.
    void rebuild(std::size_t count) {
        std::vector<Slot> old(count);
        std::swap(old, slots_);
        for (const Slot& slot : old) {
            if (slot.isFree() || slot.number >= entries_.size()) {
                continue;
            }
            std::size_t place = placeOf(slot.hash);
            while (!slots_[place].isFree()) {
                place = behind(place);
            }
            slots_[place] = slot;
        }
    }

    /// Copies a text with a zero behind it. Short texts share pools, so that many of them cost one
    /// allocation.
    const char* copy(std::string_view text) {
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

    char* newPool(std::size_t size) {
        return pools_.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
    }

    std::vector<Slot> slots_;
    /// By number; the first is the empty name.
    std::deque<NameEntry> entries_;
    std::vector<std::unique_ptr<char[]>> pools_;
    char* pool_ = nullptr; ///< The pool in use.
    std::size_t poolUsed_ = kPoolSize;
};

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

InternedName::InternedName(std::string_view text) : entry_(NameTable::global().intern(text)) {}

NameScope::NameScope() : start_(NameTable::global().mark()) {}

NameScope::~NameScope() {
    NameTable::global().forgetSince(start_);
}

NameDictionary& NameDictionary::global() {
    static NameDictionary& dictionary = *new NameDictionary;
    return dictionary;
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
    // From the back: whoever destroys many nodes of one name destroys the newest first.
    std::vector<QvNode*>& list = *bearers.several;
    const auto found = std::find(list.rbegin(), list.rend(), node);
    if (found == list.rend()) {
        return false;
    }
    list.erase(std::next(found).base());
    return true;
}

std::span<QvNode* const> NameDictionary::nodes(InternedName name) {
    const Bearers& bearers = bearers_[name];
    if (bearers.several != nullptr) {
        return *bearers.several;
    }
    return {&bearers.only, bearers.only == nullptr ? 0U : 1U};
}

InternedName legalNodeName(InternedName name) {
    const std::string_view text = name.view();
    if (text.empty()) {
        return name;
    }
    const bool startsWell = isNameStart(text.front());
    if (startsWell && std::all_of(text.begin(), text.end(), isLegalInside)) {
        return name;
    }
    std::string rewritten(startsWell ? "" : "_");
    std::transform(text.begin(), text.end(), std::back_inserter(rewritten),
                   [](char c) { return isLegalInside(c) ? c : '_'; });
    return InternedName(rewritten);
}

} // namespace meshcast
