#pragma once

#include <span>
#include <vector>

namespace meshcast {

class QvState;
struct TextureUse;

/// Texture coordinates for points (3 floats each) that have none: S runs along the longest side of
/// their bounding box, T along the next, both measured in the length of the longest.
/// Yields 2 floats per point.
std::vector<float> projectedCoordinates(std::span<const float> points);

/// Passes texture coordinates (2 floats each) through the texture transforms in force, newest
/// first, and brings the results into [0, 1]: clamped, or repeated with every other period
/// mirrored.
void transformTextureCoordinates(const QvState& state, const TextureUse& texture,
                                 std::span<float> uvs);

} // namespace meshcast
