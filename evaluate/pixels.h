#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#pragma GCC visibility push(default)

// Decoding and encoding of image files with stb_image and stb_image_write.

namespace meshcast::evaluate {

struct ImageSize {
    std::uint32_t width = 0, height = 0;
};

/// Rows from top to bottom, pixels from left to right.
struct Pixels {
    std::uint32_t width = 0, height = 0;
    std::uint32_t components = 0; ///< 1: grey, 2: grey and alpha, 3: RGB, 4: RGBA.
    std::vector<std::uint8_t> bytes;
};

bool isPng(std::span<const std::uint8_t> file);
bool isJpeg(std::span<const std::uint8_t> file);

/// The size given in the header of an image file; nothing when the format is not supported.
std::optional<ImageSize> sizeOfImage(std::span<const std::uint8_t> file);

/// Decodes an image file, or the first frame of an animation; nothing when it is damaged.
std::optional<Pixels> decodeImage(std::span<const std::uint8_t> file);

/// Whether any pixel is not opaque.
bool hasAlpha(const Pixels& pixels);

/// Encodes an image as a PNG file. It must not be empty. Throws std::bad_alloc.
std::vector<std::uint8_t> encodePng(const Pixels& pixels);

} // namespace meshcast::evaluate

#pragma GCC visibility pop
