#pragma once

#include "evaluate/model.h"

#include <glm/mat4x4.hpp>
#include <vector>

namespace meshcast::render {

/// A primitive of an instance.
struct Draw {
    const evaluate::Instance* instance;
    const evaluate::Primitive* primitive;
    double distance; ///< From the camera to the centre of the geometry's bounding box.
};

/// All primitives of a model in drawing order: opaque ones in the order of the scene, then
/// transparent ones from the farthest to the nearest.
std::vector<Draw> drawList(const evaluate::Model& model, const glm::dmat4& worldToEye);

} // namespace meshcast::render
