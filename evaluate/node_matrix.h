#pragma once

#include "vrml/nodes.h"

#include <array>
#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>

// The matrices of transformation nodes, in double precision. A scene uses row vectors and row-major
// matrices, glm column vectors and column-major matrices. So the numbers are in the same order in
// memory, and in a product the transform that acts first is on the right.

namespace meshcast::evaluate {

/// A rotation about an axis, in radians; the identity if the axis has length 0.
glm::dmat4 rotationMatrix(const std::array<float, 4>& axisAndAngle);

glm::dmat4 matrixOf(const QvMatrixTransform& node);
glm::dmat4 matrixOf(const QvRotation& node);
glm::dmat4 matrixOf(const QvScale& node);
/// Applies -center, -scaleOrientation, scaleFactor, scaleOrientation, rotation, center and
/// translation, in this order.
glm::dmat4 matrixOf(const QvTransform& node);
glm::dmat4 matrixOf(const QvTranslation& node);

/// For texture coordinates (s, t, 1). Applies -center, scaleFactor, rotation, center and
/// translation, in this order.
glm::dmat3 matrixOf(const QvTexture2Transform& node);

} // namespace meshcast::evaluate
