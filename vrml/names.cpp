#include "vrml/names.h"

#include "vrml/characters.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <iterator>
#include <string>

namespace meshcast {

const NameEntry kEmptyName = {"", 0, 0, nullptr};

namespace {

/// The interning table: every name of the process, once.
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
        std::uint32_t hash = hashOf(text);
        for (const NameEntry* entry = bucketOf(hash); entry != nullptr; entry = entry->next) {
            if (entry->hash == hash && std::string_view(entry->text, entry->length) == text) {
                return entry;
            }
        }
        if (entries_.size() >= buckets_.size()) {
            rehash(4 * buckets_.size() + 1);
            hash = hashOf(text);
        }
        const NameEntry*& head = bucketOf(hash);
        entries_.push_back({copy(text), text.size(), hash, head});
        head = &entries_.back();
        return head;
    }

private:
    static constexpr std::size_t kFirstBuckets = 1999;
    static constexpr std::size_t kPoolSize = 4000;

    NameTable() : buckets_(kFirstBuckets, nullptr) {}

    const NameEntry*& bucketOf(std::uint32_t hash) {
        return buckets_[hash % static_cast<std::uint32_t>(buckets_.size())];
    }

    /// Cheap, and good for the words of the language. It is easy to find any number of names with
    /// one value, though, so a table that has grown uses the library's hash instead.
    std::uint32_t hashOf(std::string_view text) const {
        if (buckets_.size() > kFirstBuckets) {
            return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
        }
        std::uint32_t hash = 0;
        unsigned shift = 0;
        for (const char c : text) {
            hash ^= static_cast<std::uint32_t>(static_cast<signed char>(c)) << shift;
            shift += 5;
            if (shift > 24) {
                shift -= 24;
            }
        }
        return hash;
    }

    /// Copies a text with a zero behind it. Short texts share pools, so that many of them cost one
    /// allocation.
    const char* copy(std::string_view text) {
        const std::size_t size = text.size() + 1;
        char* target = nullptr;
        if (size >= kPoolSize) {
            target = new char[size];
        } else {
            if (size > kPoolSize - poolUsed_) {
                pool_ = new char[kPoolSize];
                poolUsed_ = 0;
            }
            target = pool_ + poolUsed_;
            poolUsed_ += size;
        }
        text.copy(target, text.size());
        target[text.size()] = '\0';
        return target;
    }

    void rehash(std::size_t count) {
        buckets_.assign(count, nullptr);
        for (NameEntry& entry : entries_) {
            entry.hash = hashOf({entry.text, entry.length});
            const NameEntry*& head = bucketOf(entry.hash);
            entry.next = head;
            head = &entry;
        }
    }

    std::vector<const NameEntry*> buckets_;
    std::deque<NameEntry> entries_;
    char* pool_ = nullptr;
    std::size_t poolUsed_ = kPoolSize;
};

bool isLegalInside(char c) {
    static constexpr std::string_view kForbidden = "+'\"\\{}";
    return !isSpace(c) && !isControl(c) && kForbidden.find(c) == std::string_view::npos;
}

} // namespace

InternedName::InternedName(std::string_view text) : entry_(NameTable::global().intern(text)) {}

NameDictionary& NameDictionary::global() {
    static NameDictionary& dictionary = *new NameDictionary;
    return dictionary;
}

void NameDictionary::add(InternedName name, QvNode* node) {
    appendDoubling(lists_[name], node);
}

bool NameDictionary::remove(InternedName name, const QvNode* node) {
    std::vector<QvNode*>* const list = lists_.find(name);
    if (list == nullptr) {
        return false;
    }
    // From the back: whoever destroys many nodes of one name destroys the newest first.
    const auto found = std::find(list->rbegin(), list->rend(), node);
    if (found == list->rend()) {
        return false;
    }
    list->erase(std::next(found).base());
    return true;
}

std::span<QvNode* const> NameDictionary::nodes(InternedName name) {
    const std::vector<QvNode*>* const list = lists_.find(name);
    return list == nullptr ? std::span<QvNode* const>() : std::span<QvNode* const>(*list);
}

InternedName legalNodeName(InternedName name) {
    const std::string_view text = name.view();
    if (text.empty()) {
        return name;
    }
    std::string rewritten(isNameStart(text.front()) ? "" : "_");
    std::transform(text.begin(), text.end(), std::back_inserter(rewritten),
                   [](char c) { return isLegalInside(c) ? c : '_'; });
    return rewritten == text ? name : InternedName(rewritten);
}

} // namespace meshcast
