#include "vrml/catalogue_names.h"

#include "vrml/catalogue.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>

namespace meshcast {

namespace {

/// Words with a meaning of their own in a scene.
constexpr std::string_view kGrammar[] = {"DEF", "USE", "NULL", "fields"};

/// An open hash table that is never full. Every name of a scene is looked up here first, so the
/// hash is quick rather than strong; nobody can add names that collide.
class CatalogueNames {
public:
    CatalogueNames() {
        for (const ClassInfo& nodeClass : nodeClasses()) {
            add(nodeClass.name);
        }
        for (const std::string_view word : kGrammar) {
            add(word);
        }
        for (const ClassInfo& nodeClass : nodeClasses()) {
            for (const FieldInfo& field : nodeClass.fields) {
                add(field.name);
            }
        }
    }

    const NameEntry* find(std::string_view text) const {
        const NameEntry* const entry = slots_[slotOf(text)];
        return entry != nullptr && std::string_view(entry->text, entry->length) == text ? entry
                                                                                        : nullptr;
    }

    std::size_t size() const { return entries_.size(); }

private:
    static constexpr std::size_t kSlots = 512;

    /// The slot that holds the text, or the free one where it belongs.
    std::size_t slotOf(std::string_view text) const {
        const auto at = [text](std::size_t place) {
            return static_cast<unsigned char>(text[place]);
        };
        const std::size_t last = text.size() - 1;
        std::size_t slot =
            (text.size() * 83 + at(0) * 7 + at(last / 2) * 31 + at(last) * 113) % kSlots;
        while (slots_[slot] != nullptr &&
               std::string_view(slots_[slot]->text, slots_[slot]->length) != text) {
            slot = (slot + 1) % kSlots;
        }
        return slot;
    }

    void add(std::string_view text) {
        const NameEntry*& slot = slots_[slotOf(text)];
        if (slot == nullptr) {
            // Literals end in a zero, as a name's text has to.
            const auto number = static_cast<std::uint32_t>(entries_.size() + 1);
            slot = &entries_.emplace_back(NameEntry{text.data(), text.size(), number});
        }
    }

    std::deque<NameEntry> entries_;
    std::array<const NameEntry*, kSlots> slots_{};
};

const CatalogueNames& names() {
    static const CatalogueNames& names = *new CatalogueNames;
    return names;
}

} // namespace

const NameEntry* findCatalogueName(std::string_view text) {
    return names().find(text);
}

InternedName catalogueName(std::string_view text) {
    return InternedName(*findCatalogueName(text));
}

std::size_t catalogueNameCount() {
    return names().size();
}

} // namespace meshcast
