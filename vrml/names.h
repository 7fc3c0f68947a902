#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

class QvNode;

/// Appends to a list whose capacity starts at 4 and doubles, as for all lists of pointers in the
/// reader.
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
    std::uint32_t number; ///< 0 for the empty name, then the catalogue's names, then a scene's.
    std::uint32_t hash;   ///< Of the text.
};

/// The empty name, which every name variable starts with.
inline constexpr NameEntry kEmptyName = {"", 0, 0, 0};

/// A handle to the one shared copy of a name's text. Equal texts have equal handles, within a scene
/// and where one is of the catalogue, so comparing names compares pointers.
class InternedName {
public:
    /// The empty name.
    InternedName() : entry_(&kEmptyName) {}
    /// The name of an entry that outlives the handle.
    explicit InternedName(const NameEntry& entry) : entry_(&entry) {}

    const char* c_str() const { return entry_->text; }
    std::string_view view() const { return {entry_->text, entry_->length}; }
    bool empty() const { return entry_->length == 0; }
    /// Unique to the name within a scene. Tables by name are arrays indexed by this number, because
    /// names that are used together then lie close together in memory.
    std::size_t number() const { return entry_->number; }

    friend bool operator==(InternedName a, InternedName b) { return a.entry_ == b.entry_; }

private:
    const NameEntry* entry_;
};

/// A hash table of names by their texts, each stored once. Open addressing with linear probing: a
/// lookup touches neighbouring slots only.
class NameTable {
public:
    /// A table for the names that `shared` does not hold; names in `shared` keep the handles they
    /// have there. Names of a scene may be chosen to collide, so a table with a `shared` one hashes
    /// them with a key. A table without one holds only the program's own names.
    explicit NameTable(const NameTable* shared = nullptr);

    /// The handle of a text, valid as long as the table; the first use of a text copies it.
    InternedName intern(std::string_view text);
    /// The handle of a text that the table itself must hold.
    InternedName at(std::string_view text) const;
    std::size_t size() const { return size_; }

private:
    std::uint32_t hashOf(std::string_view text) const;
    const NameEntry*& slotOf(std::string_view text, std::uint32_t hash) const;
    void grow();

    const NameTable* shared_;
    std::unique_ptr<const NameEntry*[]> slots_; ///< Null where a slot is free.
    std::size_t slotCount_;
    std::size_t size_ = 0;
    std::pmr::monotonic_buffer_resource memory_; ///< Of the entries and their texts.
};

/// Values by name. Names start with Value{}.
template <class Value>
class NameMap {
public:
    /// The value under a name. Valid until the next call.
    Value& operator[](InternedName name) {
        if (name.number() >= values_.size()) {
            values_.resize(name.number() + 1);
        }
        return values_[name.number()];
    }

private:
    std::vector<Value> values_;
};

/// The nodes defined by DEF in one input: each name, as written, leads to the latest node under it.
using ReferenceTable = NameMap<QvNode*>;

/// The nodes of a scene that bear a name, by name; several nodes may share one.
class NameDictionary {
public:
    /// Appends a node to the list of a name.
    void add(InternedName name, QvNode* node);

    /// Removes a node from the list of a name; false when it is not in the list.
    bool remove(InternedName name, const QvNode* node);

    /// The nodes under a name, in the order in which they were added. Valid until the next call.
    std::span<QvNode* const> nodes(InternedName name);

private:
    /// Nearly every name has one node and needs no list.
    struct Bearers {
        QvNode* only = nullptr;
        std::unique_ptr<std::vector<QvNode*>> several;
    };
    NameMap<Bearers> bearers_;
};

/// Whether a text may be a node's name: it starts with a letter or `_` and holds no white space,
/// control character, quote, backslash, brace or plus sign. The empty text may not.
bool isLegalNodeName(std::string_view text);

/// Makes any other text legal: replaces each such character by `_`, and puts a `_` before the text
/// if it does not start with a letter or `_`.
std::string madeLegal(std::string_view text);

} // namespace meshcast

#pragma GCC visibility pop
