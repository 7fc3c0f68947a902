#include "evaluate/pixels.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <memory>
#include <new>
#include <stb_image.h>
#include <stb_image_write.h>

namespace meshcast::evaluate {

namespace {

struct FreePixels {
    void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

template <std::size_t Count>
bool startsWith(std::span<const std::uint8_t> file, const std::array<std::uint8_t, Count>& start) {
    return file.size() >= Count && std::equal(start.begin(), start.end(), file.begin());
}

} // namespace

bool isPng(std::span<const std::uint8_t> file) {
    return startsWith<8>(file, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'});
}

bool isJpeg(std::span<const std::uint8_t> file) { return startsWith<3>(file, {0xFF, 0xD8, 0xFF}); }

std::optional<ImageSize> sizeOfImage(std::span<const std::uint8_t> file) {
    int width = 0;
    int height = 0;
    int components = 0;
    if (file.size() > INT_MAX ||
        stbi_info_from_memory(file.data(), static_cast<int>(file.size()), &width, &height,
                              &components) == 0 ||
        width <= 0 || height <= 0) {
        return std::nullopt;
    }
    return ImageSize{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
}

std::optional<Pixels> decodeImage(std::span<const std::uint8_t> file) {
    int width = 0;
    int height = 0;
    int components = 0;
    const std::unique_ptr<stbi_uc, FreePixels> decoded(stbi_load_from_memory(
        file.data(), static_cast<int>(file.size()), &width, &height, &components, 0));
    if (decoded == nullptr || width <= 0 || height <= 0) {
        return std::nullopt;
    }
    Pixels pixels{static_cast<std::uint32_t>(width),
                  static_cast<std::uint32_t>(height),
                  static_cast<std::uint32_t>(components),
                  {}};
    const std::size_t size = std::size_t(pixels.width) * pixels.height * pixels.components;
    pixels.bytes.assign(decoded.get(), decoded.get() + size);
    return pixels;
}

bool hasAlpha(const Pixels& pixels) {
    if (pixels.components % 2 != 0) {
        return false;
    }
    for (std::size_t i = pixels.components - 1; i < pixels.bytes.size(); i += pixels.components) {
        if (pixels.bytes[i] != 0xFF) {
            return true;
        }
    }
    return false;
}

std::vector<std::uint8_t> encodePng(const Pixels& pixels) {
    struct Sink {
        std::vector<std::uint8_t> bytes;
        bool isOutOfMemory = false;
    };
    const auto append = [](void* context, void* data, int size) {
        auto& sink = *static_cast<Sink*>(context);
        const auto* const from = static_cast<const std::uint8_t*>(data);
        try { // No exception may pass through the C caller.
            sink.bytes.insert(sink.bytes.end(), from, from + size);
        } catch (const std::bad_alloc&) {
            sink.isOutOfMemory = true;
        }
    };
    Sink sink;
    const int isWritten = stbi_write_png_to_func(
        append, &sink, static_cast<int>(pixels.width), static_cast<int>(pixels.height),
        static_cast<int>(pixels.components), pixels.bytes.data(),
        static_cast<int>(pixels.width * pixels.components));
    if (isWritten == 0 || sink.isOutOfMemory) {
        throw std::bad_alloc();
    }
    return std::move(sink.bytes);
}

} // namespace meshcast::evaluate
