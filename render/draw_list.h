#pragma once

#include "evaluate/model.h"

#include <glm/mat4x4.hpp>
#include <vector>

namespace meshcast::render {

/// A primitive at the place of an instance.
struct Draw {
    const evaluate::Instance* instance;
    const evaluate::Primitive* primitive;
    double distance; ///< From the eye to the middle of the box around its geometry.
};

/// All that a model shows, in the order to draw it in: what is opaque as the scene has it, then
/// what one sees through, from the farthest to the nearest.
std::vector<Draw> drawList(const evaluate::Model& model, const glm::dmat4& worldToEye);

} // namespace meshcast::render
