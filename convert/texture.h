#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace meshcast {

class QvState;

/// The image formats that a converter is known for.
enum class ImageType { kUnknown = 0, kRgb = 1, kGif = 2, kJpeg = 3 };

/// The type that the text behind a path's last '.' tells, letter case included.
ImageType imageType(std::string_view path);

/// Where the converted copy of an image lies: in the directory of the environment variable RGBTMP,
/// or /tmp. Of an absolute path or an http: address the last part names the copy. A known ending
/// loses its last three characters for an x (a.rgb: a.x, a.jpeg: a.jx); any other name gets .x.
std::string convertedName(std::string_view source);

/// A word of a shell command: quoted if it holds a character that could mean something to the
/// shell.
std::string shellWord(const std::string& text);

/// Prepares the image of the Texture2 node in force, so that a converted copy lies under its
/// convertedName: writes an inline image to a raw file and names the node after it, or runs the
/// converter on the image file. An image of an unknown type is reported on standard output and
/// turns the texture switch off.
void loadTexture(const QvState& state);

/// How a shape uses the texture in force.
struct TextureUse {
    std::string name; ///< Of the converted image.
    bool clampS;      ///< Coordinates outside [0, 1] are clamped; otherwise mirrored.
    bool clampT;
};

/// The texture in force; none when no Texture2 node names an image.
std::optional<TextureUse> checkTexture(const QvState& state);

} // namespace meshcast
