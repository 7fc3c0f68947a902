#pragma once

#include "evaluate/mesh_draft.h"
#include "vrml/nodes.h"

#include <cmath>
#include <cstdint>
#include <glm/geometric.hpp>
#include <optional>

namespace meshcast::evaluate {

/// A vector of a Normal node, normalised. Nothing when the number is out of range or the vector has
/// no direction.
inline std::optional<Vec3> unitNormal(const QvNormal& normals, std::int32_t number) {
    if (number < 0 || number >= normals.vector.num) {
        return std::nullopt;
    }
    const float* const vector = normals.vector.at(number);
    const glm::dvec3 normal(vector[0], vector[1], vector[2]);
    const double length = glm::length(normal);
    if (!(length > 0) || !std::isfinite(length)) {
        return std::nullopt;
    }
    return narrow(normal / length);
}

} // namespace meshcast::evaluate
