#pragma once

#include "evaluate/model.h"
#include "vrml/nodes.h"

#include <glm/mat4x4.hpp>
#include <optional>

namespace meshcast::evaluate {

/// A camera at its place. `place` is the transform in force. Distances that the scene does not give
/// are 0 until setDistances().
Camera cameraOf(const QvPerspectiveCamera& node, const glm::dmat4& place);
Camera cameraOf(const QvOrthographicCamera& node, const glm::dmat4& place);

/// Gives the cameras of a model the distances that they lack, so that all of the model is between
/// them.
void setDistances(Model& model);

/// A light at its place. Nothing when it is off.
std::optional<Light> lightOf(const QvDirectionalLight& node, const glm::dmat4& place);
std::optional<Light> lightOf(const QvPointLight& node, const glm::dmat4& place);
std::optional<Light> lightOf(const QvSpotLight& node, const glm::dmat4& place);

} // namespace meshcast::evaluate
