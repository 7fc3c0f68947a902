#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace meshcast {

namespace {

/// Which converter an image needs, by the text after the last '.' of its path.
constexpr std::array<std::pair<std::string_view, std::size_t>, 5> kExtensions = {
    {{"rgb", 0}, {"sgi", 0}, {"gif", 1}, {"jpg", 2}, {"jpeg", 2}}};

/// A shorter file name counts as missing.
constexpr std::size_t kShortestName = 2;

/// Relative names start here, since the path of a scene on standard input is not known.
constexpr std::string_view kSceneDirectory = "./";

std::string_view afterLastSlash(std::string_view path) {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole path.
}

bool isAbsolute(std::string_view path) { return path.starts_with('/'); }
bool isAddress(std::string_view path) { return path.starts_with("http:"); }

std::string sourcePath(std::string_view name) {
    if (isAbsolute(name)) {
        return std::string(name);
    }
    return std::string(kSceneDirectory).append(isAddress(name) ? afterLastSlash(name) : name);
}

/// The index of the converter for an image; none if its type is unknown.
std::optional<std::size_t> converterFor(std::string_view path) {
    const std::size_t point = path.rfind('.');
    for (const auto& [extension, converter] : kExtensions) {
        if (point != std::string_view::npos && path.substr(point + 1) == extension) {
            return converter;
        }
    }
    return std::nullopt;
}

// ---- inline images

/// A pixel of an inline image: alpha, red, green, blue.
std::array<std::uint8_t, 4> pixelAt(const QvSFImage& image, std::size_t row, std::size_t column) {
    const auto components = static_cast<std::size_t>(image.components);
    if (components < 1 || components > 4) {
        return {};
    }
    // Kept: the distance of rows is the height, not the width; readers of the files rely on it.
    // Bytes outside the image are zero.
    const std::size_t first = (row * static_cast<std::size_t>(image.height) + column) * components;
    const auto byteAt = [first, bytes = image.bytes()](std::size_t component) {
        const std::size_t index = first + component;
        return index < bytes.size() ? bytes[index] : std::uint8_t(0);
    };
    const bool hasAlpha = components % 2 == 0;
    const std::size_t green = components < 3 ? 0 : 1; // Gray gives all three colours.
    return {hasAlpha ? static_cast<std::uint8_t>(~unsigned{byteAt(components - 1)})
                     : std::uint8_t(0),
            byteAt(0), byteAt(green), byteAt(2 * green)};
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileOwner = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file for writing and empties it; null on errors. The name is fixed and the folder often
/// shared, so a symbolic link of that name may be an attack and is not followed.
FileOwner openForWriting(const std::string& path) {
    constexpr mode_t kReadWriteForAll = 0666; // As for std::fopen; the umask applies.
    const int descriptor = ::open(
        path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kReadWriteForAll);
    FileOwner file(descriptor < 0 ? nullptr : ::fdopen(descriptor, "w"));
    if (file == nullptr && descriptor >= 0) {
        ::close(descriptor);
    }
    return file;
}

/// Writes the raw file of an inline image: 8 bytes that hold width and height, big-endian, then the
/// pixels, the last row first. False when the file cannot be opened.
bool writeRawImage(const std::string& path, const QvSFImage& image) {
    const FileOwner file = openForWriting(path);
    if (file == nullptr) {
        return false;
    }
    const auto width = static_cast<std::uint16_t>(image.width);
    const auto height = static_cast<std::uint16_t>(image.height);
    const std::array<std::uint8_t, 8> header = {
        0, 0, static_cast<std::uint8_t>(width >> 8),  static_cast<std::uint8_t>(width & 0xFF),
        0, 0, static_cast<std::uint8_t>(height >> 8), static_cast<std::uint8_t>(height & 0xFF)};
    std::fwrite(header.data(), 1, header.size(), file.get());
    for (std::size_t row = height; row-- > 0;) {
        for (std::size_t column = 0; column < width; ++column) {
            const std::array<std::uint8_t, 4> pixel = pixelAt(image, row, column);
            std::fwrite(pixel.data(), 1, pixel.size(), file.get());
        }
    }
    return true;
}

} // namespace

std::string convertedName(const std::string& folder, std::string_view source) {
    std::string name = folder;
    const std::string_view part =
        isAbsolute(source) || isAddress(source) ? afterLastSlash(source) : source;
    name.append("/").append(part);
    if (!converterFor(part)) {
        return name.append(".x");
    }
    name.resize(name.size() - 3);
    return name.append("x");
}

std::string shellWord(const std::string& text) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                        "0123456789._-/+:@%,=";
    if (text.find_first_not_of(kPlain) == std::string::npos) {
        return text;
    }
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string_view("'\\''") : std::string_view(&c, 1);
    }
    return quoted += '\'';
}

/// The texture's file name up to its first zero byte, as the system takes it.
std::string_view Converter::fileName(const QvTexture2& texture) const {
    return writtenImages_.contains(&texture) ? std::string_view(options_.programTag)
                                             : texture.filename.value.c_str();
}

void Converter::prepareTexture(const QvTexture2& texture) {
    if (!textures_) {
        return;
    }
    const ImageConversion& images = options_.images;
    const std::string_view name = fileName(texture);
    if (name.size() < kShortestName) {
        if (writeRawImage(convertedName(images.folder, options_.programTag), texture.image)) {
            writtenImages_.insert(&texture);
        }
        return;
    }
    const std::optional<std::size_t> converter = converterFor(name);
    if (!converter) {
        sink_.print("Unknown Image type:\n" + std::string(name));
        textures_ = false;
        return;
    }
    const std::string command = images.converters[*converter] + " " + shellWord(sourcePath(name)) +
                                " " + shellWord(convertedName(images.folder, name));
    // Kept: the exit status of the converter is ignored.
    [[maybe_unused]] const int status = std::system(command.c_str());
}

std::optional<TextureUse> Converter::textureInForce(const QvState& state) const {
    const QvTexture2* const texture = textures_ ? state.texture2() : nullptr;
    if (texture == nullptr || fileName(*texture).size() < kShortestName) {
        return std::nullopt;
    }
    return TextureUse{convertedName(options_.images.folder, fileName(*texture)),
                      texture->wrapS.value != QvTexture2::REPEAT,
                      texture->wrapT.value != QvTexture2::REPEAT};
}

} // namespace meshcast
