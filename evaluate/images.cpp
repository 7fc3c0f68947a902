#include "evaluate/images.h"

#include "evaluate/pixels.h"
#include "evaluate/utf8.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <variant>

namespace meshcast::evaluate {

namespace {

namespace fs = std::filesystem;

std::string quoted(const std::string& name) { return '"' + toUtf8(name) + '"'; }

/// True for names with a scheme such as http:. A single letter would be a drive of another system.
bool isAddress(const std::string& name) {
    const std::size_t colon = name.find(':');
    return colon != std::string::npos && colon > 1 && name.find('/') > colon;
}

} // namespace

ImageLoader::ImageLoader(std::vector<Image>& images, const EvaluateOptions& options, Notes& notes)
    : images_(images), options_(options), notes_(notes), mayStillRead_(options.limits.imageBytes) {
    if (options.root.empty()) {
        return;
    }
    auto root = io::Folder::open(options.root.string());
    if (auto* const folder = std::get_if<io::Folder>(&root)) {
        root_.emplace(std::move(*folder));
    }
    std::error_code error;
    folder_ = fs::canonical(options.folder.empty() ? "." : options.folder, error);
}

std::optional<io::Descriptor> ImageLoader::open(const std::string& name) const {
    if (!root_ || name.empty() || isAddress(name)) {
        return std::nullopt;
    }
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');
    // Folder::openFile makes sure that neither the name nor links lead out of the root, even if
    // files are replaced at the same time.
    auto file = root_->openFile((folder_ / path).lexically_relative(root_->path()).string());
    auto* const opened = std::get_if<io::Descriptor>(&file);
    return opened == nullptr ? std::nullopt : std::optional(std::move(*opened));
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
    const auto file = open(name);
    auto read = file ? io::readWhole(file->number(), mayStillRead_)
                     : std::make_error_code(std::errc::no_such_file_or_directory);
    if (const auto* const error = std::get_if<std::error_code>(&read)) {
        if (*error == std::errc::file_too_large) {
            // The limit may be exceeded by this file or by all files together.
            mayStillRead_ = 0;
            mayKeep(options_.limits.imageBytes + 1, name);
        } else {
            missing(name, "cannot be read from the folder of the scene");
        }
        return std::nullopt;
    }
    const std::string& text = std::get<std::string>(read);
    mayStillRead_ -= text.size();
    std::vector<std::uint8_t> bytes(text.begin(), text.end());
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
    // Other formats, which few viewers support, are converted to PNG.
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
    // A scene stores the lowest row first, a file the highest.
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
