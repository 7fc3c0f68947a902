#pragma once

#include "geom_stream/item_reader.h"
#include "geom_stream/object.h"

namespace geom_stream {

/// Reads the header of a record into the object, and sets the reader to the record's byte order.
/// Returns the kind of the body, which is valid only if the reader has no error then.
Kind readHeader(ItemReader& in, Object& object);

} // namespace geom_stream
