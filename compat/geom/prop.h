#pragma once

#include "compat/geom/geom.h"

#include <cstddef>
#include <cstdint>

// The property records of an object. They are packed without alignment, so they are copied out and
// never read in place.

namespace geom {

struct Property {
    std::uint32_t kind;
    std::uint32_t length; ///< bytes that follow the record's words
    std::uint32_t value;
};
static_assert(sizeof(Property) == GEOM_PROPERTY_BYTES);

/// The words of the record at `place`.
Property propertyAt(const unsigned char* place);

/// The bytes of one record, and of all records of an object.
std::size_t propertyBytes(const Property& property);
std::size_t propertyBytes(const GEOMobj& obj);

} // namespace geom
