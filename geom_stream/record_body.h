#pragma once

#include "geom_stream/item_reader.h"
#include "geom_stream/object.h"

namespace geom_stream {

/// Reads a body of the given kind into the object, whose flags tell which arrays it has.
void readBody(ItemReader& in, Kind kind, Object& object);

} // namespace geom_stream
