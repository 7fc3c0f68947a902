#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace meshcast {

class QvNode;

/// Appends to a list that grows as all lists of pointers in the reader do: room for 4, then
/// doubled.
template <class T>
void appendDoubling(std::vector<T>& list, T value) {
    if (list.size() == list.capacity()) {
        list.reserve(list.empty() ? 4 : 2 * list.capacity());
    }
    list.push_back(std::move(value));
}

/// The one shared copy of a name's text.
struct NameEntry {
    const char* text; ///< Ends in a zero byte that is not part of the name.
    std::size_t length;
    std::uint32_t hash;
    const NameEntry* next; ///< The next entry of the bucket.
};

/// The empty name, which every name variable starts with.
extern const NameEntry kEmptyName;

/// A handle to the one shared copy of a name's text, which lives until the process ends. Equal
/// texts have equal handles, so comparing names compares pointers.
class InternedName {
public:
    /// The empty name.
    InternedName() : entry_(&kEmptyName) {}
    /// The handle of a text; the first use of a text copies it.
    explicit InternedName(std::string_view text);

    const char* c_str() const { return entry_->text; }
    std::string_view view() const { return {entry_->text, entry_->length}; }
    bool empty() const { return entry_->length == 0; }
    /// The address of the shared text, unique to the name.
    std::uintptr_t address() const { return reinterpret_cast<std::uintptr_t>(entry_->text); }

    friend bool operator==(InternedName a, InternedName b) { return a.entry_ == b.entry_; }

private:
    const NameEntry* entry_;
};

/// A hash table from names to values, keyed by the address of the name's text (its low 32 bits
/// choose the bucket). Starts with 251 buckets and doubles them as it fills, so that a file with a
/// million names is read in linear time. Values stay until the table goes.
template <class Value>
class NameMap {
public:
    NameMap() : buckets_(kFirstBuckets, kNone) {}

    /// The value under a name, or null. Valid until a name is entered.
    Value* find(InternedName name) {
        for (std::uint32_t i = buckets_[bucketOf(name)]; i != kNone; i = entries_[i].next) {
            if (entries_[i].name == name) {
                return &entries_[i].value;
            }
        }
        return nullptr;
    }

    /// The value under a name, made empty if the name is new. Valid until the next call.
    Value& operator[](InternedName name) {
        if (Value* const value = find(name)) {
            return *value;
        }
        return append(name, Value{});
    }

    /// Enters a value unless the name has one.
    void add(InternedName name, Value value) {
        if (find(name) == nullptr) {
            append(name, std::move(value));
        }
    }

private:
    Value& append(InternedName name, Value value) {
        if (entries_.size() >= buckets_.size()) {
            rehash(2 * buckets_.size() + 1);
        }
        std::uint32_t& head = buckets_[bucketOf(name)];
        entries_.push_back({name, head, std::move(value)});
        head = static_cast<std::uint32_t>(entries_.size() - 1);
        return entries_.back().value;
    }

    struct Entry {
        InternedName name;
        std::uint32_t next;
        Value value;
    };

    static constexpr std::size_t kFirstBuckets = 251;
    static constexpr std::uint32_t kNone = UINT32_MAX;

    std::size_t bucketOf(InternedName name) const {
        return static_cast<std::uint32_t>(name.address()) % buckets_.size();
    }

    void rehash(std::size_t count) {
        buckets_.assign(count, kNone);
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            std::uint32_t& head = buckets_[bucketOf(entries_[i].name)];
            entries_[i].next = head;
            head = static_cast<std::uint32_t>(i);
        }
    }

    std::vector<std::uint32_t> buckets_;
    std::vector<Entry> entries_;
};

/// The nodes defined by DEF in one input: each name, as written, leads to the latest node under it.
using ReferenceTable = NameMap<QvNode*>;

/// All living nodes that bear a name, by name; several nodes may share one.
class NameDictionary {
public:
    /// The process's dictionary, made on first use.
    static NameDictionary& global();

    /// Appends a node to the list of a name.
    void add(InternedName name, QvNode* node);

    /// Takes a node off the list of a name; false when it is not on it.
    bool remove(InternedName name, const QvNode* node);

    /// The nodes under a name, in the order in which they were added. Valid until the next call.
    std::span<QvNode* const> nodes(InternedName name);

private:
    NameMap<std::vector<QvNode*>> lists_;
};

/// A name as a node may bear it: a text that starts with a letter or `_` and holds no white space,
/// control character, quote, backslash, brace or plus sign. Any other text is rewritten, a `_` for
/// every such character and one in front of a bad start.
InternedName legalNodeName(InternedName name);

} // namespace meshcast
