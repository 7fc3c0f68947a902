#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Random pieces of scene text. What classes there are, with which fields and words, is asked of the
// catalogue.

namespace meshcast::fuzz {

/// Decisions that a seed determines.
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

/// A field type, and how a value of it is written.
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
    bool isGroup; ///< Children may stand in its body.
    std::vector<CatalogueField> fields;

    /// The field of that name, or null.
    const CatalogueField* find(std::string_view fieldName) const;
};

/// All classes that a scene may name, with their fields in their order.
std::span<const CatalogueClass> catalogue();
/// The class of that name, or null.
const CatalogueClass* findClass(std::string_view name);

/// A number as indices are: mostly small, -1 often, sometimes far out.
std::string randomInteger(Random& random);
/// A number as coordinates are, sometimes one that breaks arithmetic.
std::string randomReal(Random& random);
/// A node with some of its fields, of the catalogue or of a class that declares its own.
std::string randomNode(Random& random);

} // namespace meshcast::fuzz
