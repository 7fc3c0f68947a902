#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast {

class QvState;

/// How a shape uses the texture in force.
struct TextureUse {
    std::string name; ///< Of the converted image.
    bool clampS;      ///< Coordinates outside [0, 1] are clamped; otherwise mirrored.
    bool clampT;
};

/// Where the converted copy of an image lies: in `folder`. Of an absolute path or an http: address
/// the last part names the copy. A known ending loses its last three characters for an x (a.rgb:
/// a.x, a.jpeg: a.jx); any other name gets .x.
std::string convertedName(const std::string& folder, std::string_view source);

/// A word of a shell command: quoted if it holds a character that could mean something to the
/// shell.
std::string shellWord(const std::string& text);

/// Texture coordinates for points (3 floats each) that have none. S runs along the longest side of
/// their bounding box: of equal ones along Z, or along X where Z is shorter. T runs along the
/// middle side; where sides are equal, along X, or along Y if S takes X. Both are divided by the
/// length of the side that S takes. Returns 2 floats per point.
std::vector<float> projectedCoordinates(std::span<const float> points);

/// Passes texture coordinates (2 floats each) through the texture transforms in force, newest
/// first, and brings the results into [0, 1]: clamped, or repeated with every other period
/// mirrored.
void transformTextureCoordinates(const QvState& state, const TextureUse& texture,
                                 std::span<float> uvs);

} // namespace meshcast
