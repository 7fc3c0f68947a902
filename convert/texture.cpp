#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>

namespace meshcast {

namespace {

struct Extension {
    std::string_view text;
    ImageType type;
};

constexpr std::array<Extension, 5> kExtensions = {{{"rgb", ImageType::kRgb},
                                                   {"sgi", ImageType::kRgb},
                                                   {"gif", ImageType::kGif},
                                                   {"jpg", ImageType::kJpeg},
                                                   {"jpeg", ImageType::kJpeg}}};

/// A file name shorter than this names no file.
constexpr std::size_t kShortestName = 2;

/// The scene may come from anywhere: its relative names start here.
constexpr std::string_view kSceneDirectory = "./";

std::string_view afterLastSlash(std::string_view path) {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole path.
}

bool isAbsolute(std::string_view path) {
    return path.starts_with('/');
}
bool isAddress(std::string_view path) {
    return path.starts_with("http:");
}

std::string sourcePath(std::string_view name) {
    if (isAbsolute(name)) {
        return std::string(name);
    }
    return std::string(kSceneDirectory).append(isAddress(name) ? afterLastSlash(name) : name);
}

// ---- inline images

/// Pixels of an inline image as records of alpha, red, green, blue.
class PixelReader {
public:
    explicit PixelReader(const QvSFImage& image) : image_(image) {}

    std::array<std::uint8_t, 4> read(std::size_t row, std::size_t column) {
        const auto components = static_cast<std::size_t>(image_.components);
        // Rows are a height apart, not a width: kept, the files' readers undo it.
        const std::size_t first =
            (row * static_cast<std::size_t>(image_.height) + column) * components;
        switch (components) {
        case 1:
            return gray(byteAt(first));
        case 2:
            alpha_ = inverted(byteAt(first + 1));
            return gray(byteAt(first));
        case 3:
            return {alpha_, byteAt(first), byteAt(first + 1), byteAt(first + 2)};
        case 4:
            alpha_ = inverted(byteAt(first + 3));
            return {alpha_, byteAt(first), byteAt(first + 1), byteAt(first + 2)};
        default:
            return gray(0);
        }
    }

private:
    static std::uint8_t inverted(std::uint8_t byte) {
        return static_cast<std::uint8_t>(~static_cast<unsigned>(byte));
    }
    std::array<std::uint8_t, 4> gray(std::uint8_t value) const {
        return {alpha_, value, value, value};
    }
    /// Zero where the distance of the rows leads out of the image.
    std::uint8_t byteAt(std::size_t index) const {
        const std::span<const std::uint8_t> bytes = image_.bytes();
        return index < bytes.size() ? bytes[index] : std::uint8_t(0);
    }

    const QvSFImage& image_;
    std::uint8_t alpha_ = 0; // Stays from pixel to pixel.
};

/// Writes the raw file of an inline image: 8 bytes that hold width and height, big-endian, then the
/// pixels, the last row first. False when the file cannot be opened.
bool writeRawImage(const std::string& path, const QvSFImage& image) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "w"));
    if (file == nullptr) {
        return false;
    }
    const auto width = static_cast<std::uint16_t>(image.width);
    const auto height = static_cast<std::uint16_t>(image.height);
    const std::array<std::uint8_t, 8> header = {
        0, 0, static_cast<std::uint8_t>(width >> 8),  static_cast<std::uint8_t>(width & 0xFF),
        0, 0, static_cast<std::uint8_t>(height >> 8), static_cast<std::uint8_t>(height & 0xFF)};
    std::fwrite(header.data(), 1, header.size(), file.get());
    PixelReader pixels(image);
    for (std::size_t row = height; row-- > 0;) {
        for (std::size_t column = 0; column < width; ++column) {
            const std::array<std::uint8_t, 4> pixel = pixels.read(row, column);
            std::fwrite(pixel.data(), 1, pixel.size(), file.get());
        }
    }
    return true;
}

} // namespace

ImageType imageType(std::string_view path) {
    const std::size_t point = path.rfind('.');
    if (point == std::string_view::npos) {
        return ImageType::kUnknown;
    }
    const std::string_view text = path.substr(point + 1);
    const auto* const found =
        std::find_if(kExtensions.begin(), kExtensions.end(),
                     [text](const Extension& extension) { return extension.text == text; });
    return found == kExtensions.end() ? ImageType::kUnknown : found->type;
}

std::string convertedName(const std::string& folder, std::string_view source) {
    std::string name = folder;
    const std::string_view part =
        isAbsolute(source) || isAddress(source) ? afterLastSlash(source) : source;
    name.append("/").append(part);
    if (imageType(part) == ImageType::kUnknown) {
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
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted += '\'';
}

/// The texture's file name as the platform sees it: up to a zero byte.
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
    const ImageType type = imageType(name);
    if (type == ImageType::kUnknown) {
        sink_.print("Unknown Image type:\n" + std::string(name));
        textures_ = false;
        return;
    }
    const std::string command = images.converters[static_cast<std::size_t>(type) - 1] + " " +
                                shellWord(sourcePath(name)) + " " +
                                shellWord(convertedName(images.folder, name));
    // Whether the converter has done its work shows in the copy, not in its exit status.
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
