#include "render/gl_texture.h"

#include "evaluate/pixels.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace meshcast::render {

using evaluate::Pixels;

namespace {

/// Converts the image to four components and rows from bottom to top, as OpenGL expects. Takes
/// every `step`th pixel of every `step`th row.
Pixels forDriver(const Pixels& from, std::uint32_t step) {
    Pixels result{(from.width + step - 1) / step, (from.height + step - 1) / step, 4, {}};
    result.bytes.reserve(std::size_t(result.width) * result.height * 4);
    const std::size_t components = from.components;
    const bool isColored = components >= 3;
    const bool hasAlpha = components % 2 == 0;
    for (std::uint32_t row = result.height; row-- > 0;) {
        const std::uint8_t* pixel =
            from.bytes.data() + std::size_t(row) * step * from.width * components;
        for (std::uint32_t column = 0; column < result.width;
             ++column, pixel += step * components) {
            const std::uint8_t red = pixel[0];
            result.bytes.insert(result.bytes.end(),
                                {red, isColored ? pixel[1] : red, isColored ? pixel[2] : red,
                                 hasAlpha ? pixel[components - 1] : std::uint8_t(0xFF)});
        }
    }
    return result;
}

} // namespace

GlTexture::GlTexture(const evaluate::Image& image) {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    std::optional<Pixels> pixels = evaluate::decodeImage(image.bytes);
    if (!pixels) {
        pixels = Pixels{1, 1, 1, {0xFF}};
    }
    std::uint32_t step = 1;
    while ((pixels->width - 1) / step >= std::uint32_t(largest) ||
           (pixels->height - 1) / step >= std::uint32_t(largest)) {
        ++step;
    }
    const Pixels shown = forDriver(*pixels, step);
    pixels.reset();
    glBindTexture(GL_TEXTURE_2D, name_.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, GLsizei(shown.width), GLsizei(shown.height), 0,
                 GL_RGBA, GL_UNSIGNED_BYTE, shown.bytes.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

void GlTexture::bind(bool repeatS, bool repeatT) const {
    glBindTexture(GL_TEXTURE_2D, name_.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, repeatS ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, repeatT ? GL_REPEAT : GL_CLAMP_TO_EDGE);
}

} // namespace meshcast::render
