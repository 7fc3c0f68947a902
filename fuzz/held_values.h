#pragma once

#include "compat/geom/geom.h"
#include "geom_stream/object.h"

namespace meshcast::fuzz {

/// The object that a reader of its record must find: its lists, with zeros for elements that its
/// flags announce but its lists do not have.
geom_stream::Object heldValues(const GEOMobj& object);

} // namespace meshcast::fuzz
