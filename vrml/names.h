#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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
    std::uint32_t number; ///< Names are numbered as they come; the empty name has the number 0.
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
    /// Unique to the name. What is kept by name is kept in arrays by this number: the names of a
    /// scene come one after another, where the buckets of a hash table lie anywhere in memory.
    std::size_t number() const { return entry_->number; }

    friend bool operator==(InternedName a, InternedName b) { return a.entry_ == b.entry_; }

private:
    const NameEntry* entry_;
};

/// Forgets, when it ends, the names that were new in its time, so that a process that reads scene
/// after scene does not keep the names of all. No handle of such a name may be used after that: the
/// class tables and the reader's own words, which are made when they are first needed, have to be
/// there before.
class NameScope {
public:
    NameScope();
    NameScope(const NameScope&) = delete;
    NameScope& operator=(const NameScope&) = delete;
    ~NameScope();

    /// What the table of names held at a time.
    struct Mark {
        std::size_t names;
        std::size_t pools;
    };

private:
    Mark start_;
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
    /// Nearly every name has one node, for which no list is needed.
    struct Bearers {
        QvNode* only = nullptr;
        std::unique_ptr<std::vector<QvNode*>> several;
    };
    NameMap<Bearers> bearers_;
};

/// A name as a node may bear it: a text that starts with a letter or `_` and holds no white space,
/// control character, quote, backslash, brace or plus sign. Any other text is rewritten, a `_` for
/// every such character and one in front of a bad start.
InternedName legalNodeName(InternedName name);

} // namespace meshcast
