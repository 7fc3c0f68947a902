#pragma once

#include <cstdint>

namespace meshcast {

/// Whether text becomes label objects: not 0 for yes. Nothing turns it on yet.
inline std::int32_t textSwitch = 0;

} // namespace meshcast
