#pragma once

#include <array>
#include <string>
#include <string_view>

namespace meshcast {

/// The image formats that a converter is known for.
enum class ImageType { kUnknown = 0, kRgb = 1, kGif = 2, kJpeg = 3 };

/// How the images of textures are converted, by programs of their own.
struct ImageConversion {
    std::string folder = "/tmp"; ///< Where the converted copies go.
    /// The commands that convert an image, by its type from ImageType::kRgb on.
    std::array<std::string, 3> converters = {"rgb2kra", "gif2kra", "jpg2kra"};
};

/// The type that the text after a path's last '.' tells, letter case included.
ImageType imageType(std::string_view path);

/// Where the converted copy of an image lies: in `folder`. Of an absolute path or an http: address
/// the last part names the copy. A known ending loses its last three characters for an x (a.rgb:
/// a.x, a.jpeg: a.jx); any other name gets .x.
std::string convertedName(const std::string& folder, std::string_view source);

/// A word of a shell command: quoted if it holds a character that could mean something to the
/// shell.
std::string shellWord(const std::string& text);

} // namespace meshcast
