#pragma once

#include "evaluate/model.h"
#include "vrml/nodes.h"

#include <glm/mat4x4.hpp>
#include <optional>

namespace meshcast::evaluate {

/// Converts a camera node. `place` is the current transform. Distances that the scene does not give
/// are 0 until setDistances().
Camera cameraOf(const QvPerspectiveCamera& node, const glm::dmat4& place);
Camera cameraOf(const QvOrthographicCamera& node, const glm::dmat4& place);

/// Sets missing near and far distances of cameras so that the whole model is between them.
void setDistances(Model& model);

/// Converts a light node; nothing when it is off.
std::optional<Light> lightOf(const QvDirectionalLight& node, const glm::dmat4& place);
std::optional<Light> lightOf(const QvPointLight& node, const glm::dmat4& place);
std::optional<Light> lightOf(const QvSpotLight& node, const glm::dmat4& place);

} // namespace meshcast::evaluate
