#pragma once

#include "vrml/names.h"

#include <cstddef>
#include <string_view>

namespace meshcast {

// The names that every scene shares: those of the catalogue's classes and fields, and the words of
// the grammar. Interned once for the process when the first is asked for, and constant from then
// on. The classes come first, so that number i + 1 is the name of nodeClasses()[i].

/// The entry of a text that is such a name; null for any other text.
const NameEntry* findCatalogueName(std::string_view text);

/// The handle of a text that is such a name.
InternedName catalogueName(std::string_view text);

/// How many there are: they have the numbers from 1 to this one.
std::size_t catalogueNameCount();

} // namespace meshcast
