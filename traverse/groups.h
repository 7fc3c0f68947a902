#pragma once

#include <cstdint>

namespace meshcast {

/// The number of grouping nodes that the walk has open, one inside the other (unknown nodes and
/// inlines do not count).
extern std::int32_t traversalNestingLevel;

} // namespace meshcast
