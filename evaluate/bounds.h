#pragma once

#include "evaluate/model.h"

#include <array>
#include <optional>

#pragma GCC visibility push(default)

namespace meshcast::evaluate {

/// The least and the greatest coordinates of what is drawn: of every vertex that an index of a
/// placed primitive names. Nothing when there is none.
std::optional<std::array<Vec3, 2>> boundsOf(const Model& model);

} // namespace meshcast::evaluate

#pragma GCC visibility pop
