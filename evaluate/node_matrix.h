#pragma once

#include "vrml/nodes.h"

#include <array>
#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>

// What the nodes of a scene that move things mean as matrices, in double precision. A scene writes
// points as rows, before the matrix; glm writes them as columns, after it, and stores columns where
// a scene writes rows. So the numbers lie in the same order, and what acts first stands last in a
// product.

namespace meshcast::evaluate {

/// A turn about an axis, in radians. Without a turn where the axis has no length.
glm::dmat4 rotationMatrix(const std::array<float, 4>& axisAndAngle);

glm::dmat4 matrixOf(const QvMatrixTransform& node);
glm::dmat4 matrixOf(const QvRotation& node);
glm::dmat4 matrixOf(const QvScale& node);
/// A point meets -center, -scaleOrientation, scaleFactor, scaleOrientation, rotation, center and
/// translation, in this order.
glm::dmat4 matrixOf(const QvTransform& node);
glm::dmat4 matrixOf(const QvTranslation& node);

/// For texture coordinates (s, t, 1), which meet -center, scaleFactor, rotation, center and
/// translation, in this order.
glm::dmat3 matrixOf(const QvTexture2Transform& node);

} // namespace meshcast::evaluate
