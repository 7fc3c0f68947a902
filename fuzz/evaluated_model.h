#pragma once

#include "evaluate/model.h"

#include <cstddef>
#include <cstdint>

namespace meshcast::fuzz {

/// The model of a scene of any bytes, with limits that keep it small.
evaluate::Model modelOf(const std::uint8_t* data, std::size_t size);

} // namespace meshcast::fuzz
