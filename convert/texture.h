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

/// The path of the converted copy of an image, in `folder`. The copy of an absolute path or an
/// http: address is named after the last part. In a name with a known extension, x replaces the
/// last three characters (a.rgb: a.x, a.jpeg: a.jx); any other name gets .x.
std::string convertedName(const std::string& folder, std::string_view source);

/// Quotes a word of a shell command if it holds characters that may be special to the shell.
std::string shellWord(const std::string& text);

/// Texture coordinates for points (3 floats each) that have none. S runs along the longest side of
/// their bounding box: of equal ones along Z, or along X where Z is shorter. T runs along the
/// middle side; where sides are equal, along X, or along Y if S takes X. Both are divided by the
/// length of the side that S takes. Returns 2 floats per point.
std::vector<float> projectedCoordinates(std::span<const float> points);

/// Applies the texture transforms in force, newest first, to texture coordinates (2 floats each),
/// and maps the results to [0, 1]: clamped, or repeated with every other period mirrored.
void transformTextureCoordinates(const QvState& state, const TextureUse& texture,
                                 std::span<float> uvs);

} // namespace meshcast
