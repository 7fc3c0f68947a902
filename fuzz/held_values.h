#pragma once

#include "compat/geom/geom.h"
#include "geom_stream/object.h"

namespace meshcast::fuzz {

/// The object as a reader of its record must find it: its own lists, with zeros for what its flags
/// promise and its lists lack.
geom_stream::Object heldValues(const GEOMobj& object);

} // namespace meshcast::fuzz
