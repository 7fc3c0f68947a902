#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// Image files and their pixels, by stb_image and stb_image_write.

namespace meshcast::evaluate {

struct ImageSize {
    std::uint32_t width = 0, height = 0;
};

/// Rows from top to bottom, pixels from left to right.
struct Pixels {
    std::uint32_t width = 0, height = 0;
    std::uint32_t components = 0; ///< 1: grey, 2: and alpha, 3: red, green, blue, 4: and alpha.
    std::vector<std::uint8_t> bytes;
};

bool isPng(std::span<const std::uint8_t> file);
bool isJpeg(std::span<const std::uint8_t> file);

/// What the header of an image file says; nothing when it is of no kind that can be decoded.
std::optional<ImageSize> sizeOfImage(std::span<const std::uint8_t> file);

/// The pixels of an image file, the first one of a moving image; nothing when it is damaged.
std::optional<Pixels> decodeImage(std::span<const std::uint8_t> file);

/// Whether some pixel is not opaque.
bool hasAlpha(const Pixels& pixels);

/// A PNG file of an image that is not empty. Throws std::bad_alloc.
std::vector<std::uint8_t> encodePng(const Pixels& pixels);

} // namespace meshcast::evaluate
