#include "evaluate/images.h"

#include "evaluate/pixels.h"
#include "evaluate/utf8.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>

namespace meshcast::evaluate {

namespace {

namespace fs = std::filesystem;

std::string quoted(const std::string& name) { return '"' + toUtf8(name) + '"'; }

/// A name with a scheme, as http: has one, is no file's. One letter is a drive of another system.
bool isAddress(const std::string& name) {
    const std::size_t colon = name.find(':');
    return colon != std::string::npos && colon > 1 && name.find('/') > colon;
}

bool readAll(const fs::path& path, std::uint64_t limit, std::vector<std::uint8_t>& bytes) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return false;
    }
    const std::uintmax_t size = fs::file_size(path, error);
    if (error || size > limit) {
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    bytes.resize(static_cast<std::size_t>(size));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    return file.gcount() == static_cast<std::streamsize>(size);
}

} // namespace

std::optional<fs::path> pathUnderRoot(const std::string& name, const fs::path& folder,
                                      const fs::path& root) {
    if (root.empty() || name.empty() || name.find('\0') != std::string::npos || isAddress(name)) {
        return std::nullopt;
    }
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');
    std::error_code error;
    const fs::path found = fs::canonical(folder / path, error);
    if (error) {
        return std::nullopt;
    }
    const fs::path top = fs::canonical(root, error);
    if (error) {
        return std::nullopt;
    }
    const auto [rest, unused] = std::mismatch(top.begin(), top.end(), found.begin(), found.end());
    return rest == top.end() ? std::optional(found) : std::nullopt;
}

bool ImageLoader::hasImage(const QvTexture2& texture) {
    return !texture.filename.value.empty() || !texture.image.bytes().empty();
}

std::optional<std::uint32_t> ImageLoader::find(const QvTexture2& texture) {
    const auto [known, isNew] = byTexture_.try_emplace(&texture);
    if (!isNew) {
        return known->second;
    }
    const std::string& name = texture.filename.value;
    if (!name.empty()) {
        const auto [named, isNewName] = byName_.try_emplace(name);
        if (isNewName) {
            named->second = load(name);
        }
        known->second = named->second;
    }
    if (!known->second && !texture.image.bytes().empty()) {
        known->second = decode(texture);
    }
    return known->second;
}

void ImageLoader::missing(const std::string& name, const char* why) {
    notes_.add(Note::Kind::kMissing, "texture " + quoted(name) + ' ' + why);
}

bool ImageLoader::mayDecode(std::uint64_t width, std::uint64_t height, const std::string& name) {
    const std::uint64_t left = options_.limits.imagePixels - pixels_;
    if (width == 0 || height > left / width) {
        notes_.add(Note::Kind::kLimit,
                   "texture " + quoted(name) + " left out: the images have too many pixels");
        return false;
    }
    pixels_ += width * height;
    return true;
}

bool ImageLoader::mayKeep(std::uint64_t bytes, const std::string& name) {
    if (bytes > options_.limits.imageBytes - bytes_) {
        notes_.add(Note::Kind::kLimit,
                   "texture " + quoted(name) + " left out: the images have too many bytes");
        return false;
    }
    bytes_ += bytes;
    return true;
}

ImageLoader::Found ImageLoader::add(Image image) {
    images_.push_back(std::move(image));
    return static_cast<std::uint32_t>(images_.size() - 1);
}

ImageLoader::Found ImageLoader::load(const std::string& name) {
    Image image;
    image.name = toUtf8(name);
    const auto path = pathUnderRoot(name, options_.folder, options_.root);
    const char* const unreadable = "cannot be read from the folder of the scene";
    if (!path) {
        missing(name, unreadable);
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    if (!readAll(*path, options_.limits.imageBytes, bytes)) {
        missing(name, unreadable);
        return std::nullopt;
    }
    const auto size = sizeOfImage(bytes);
    if (!size) {
        missing(name, "is an image of an unknown kind");
        return std::nullopt;
    }
    if (!mayDecode(size->width, size->height, name)) {
        return std::nullopt;
    }
    const std::optional<Pixels> pixels = decodeImage(bytes);
    if (!pixels) {
        missing(name, "is damaged");
        return std::nullopt;
    }
    image.width = pixels->width;
    image.height = pixels->height;
    image.hasAlpha = hasAlpha(*pixels);
    // Other kinds, which few viewers show, are written anew.
    if (isPng(bytes) || isJpeg(bytes)) {
        image.type = isPng(bytes) ? Image::Type::kPng : Image::Type::kJpeg;
        image.bytes = std::move(bytes);
    } else {
        image.bytes = encodePng(*pixels);
    }
    return mayKeep(image.bytes.size(), name) ? add(std::move(image)) : std::nullopt;
}

ImageLoader::Found ImageLoader::decode(const QvTexture2& texture) {
    const QvSFImage& field = texture.image;
    const std::string& name = texture.filename.value;
    Pixels pixels;
    pixels.width = static_cast<std::uint32_t>(std::max<std::int16_t>(field.width, 0));
    pixels.height = static_cast<std::uint32_t>(std::max<std::int16_t>(field.height, 0));
    pixels.components = static_cast<std::uint32_t>(field.components);
    const std::size_t row = std::size_t(pixels.width) * pixels.components;
    if (field.components < 1 || field.components > 4 || row == 0 ||
        field.bytes().size() != row * pixels.height) {
        missing(name, "is an image of an unknown kind");
        return std::nullopt;
    }
    if (!mayDecode(pixels.width, pixels.height, name)) {
        return std::nullopt;
    }
    // The first row is the lowest one, where files have the highest.
    for (std::size_t y = pixels.height; y > 0; --y) {
        const auto from = field.bytes().subspan((y - 1) * row, row);
        pixels.bytes.insert(pixels.bytes.end(), from.begin(), from.end());
    }
    Image image;
    image.width = pixels.width;
    image.height = pixels.height;
    image.hasAlpha = hasAlpha(pixels);
    image.bytes = encodePng(pixels);
    return mayKeep(image.bytes.size(), name) ? add(std::move(image)) : std::nullopt;
}

} // namespace meshcast::evaluate
