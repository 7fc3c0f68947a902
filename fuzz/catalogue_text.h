#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Random pieces of scene text, with the classes, fields and words of the catalogue.

namespace meshcast::fuzz {

/// Pseudorandom decisions, determined by a seed.
class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    /// 0 to count - 1; 0 if there is no choice.
    std::size_t below(std::size_t count) { return count == 0 ? 0 : engine_() % count; }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    template <class List>
    const auto& oneOf(const List& list) {
        return list[below(std::size(list))];
    }

private:
    std::minstd_rand engine_;
};

/// A field type with a function that writes a random value of it.
struct ValueWriter {
    std::string_view name; ///< As in `fields` declarations.
    std::string (*value)(Random& random, std::span<const std::string> words);
};

std::span<const ValueWriter> fieldTypes();

struct CatalogueField {
    std::string name;
    const ValueWriter* type = nullptr;
    std::vector<std::string> words; ///< Of its enumeration.

    std::string randomValue(Random& random) const { return type->value(random, words); }
};

struct CatalogueClass {
    std::string_view name;
    bool isGroup; ///< Its body may have children.
    std::vector<CatalogueField> fields;

    /// The field of that name, or null.
    const CatalogueField* find(std::string_view fieldName) const;
};

/// All classes of nodes, with their fields in the order of declaration.
std::span<const CatalogueClass> catalogue();
/// The class of that name, or null.
const CatalogueClass* findClass(std::string_view name);

/// A number like those in lists of indices: mostly small, often -1, sometimes far out of range.
std::string randomInteger(Random& random);
/// A number like coordinates, sometimes one that makes arithmetic overflow.
std::string randomReal(Random& random);
/// A node with some of its fields. Its class is one of the catalogue, or one that declares its
/// fields.
std::string randomNode(Random& random);

} // namespace meshcast::fuzz
