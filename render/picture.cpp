#include "render/picture.h"

#include "evaluate/bounds.h"
#include "render/gl_context.h"
#include "render/gl_name.h"
#include "render/painter.h"
#include "render/view.h"

#include <algorithm>
#include <cstddef>
#include <glm/gtc/matrix_transform.hpp>
#include <memory>
#include <utility>
#include <vector>

namespace meshcast::render {

using evaluate::Model;
using evaluate::Pixels;

namespace {

constexpr GLsizei kSamples = 4;
// A large picture is drawn in parts, since drawing needs about forty bytes for each pixel.
constexpr std::uint32_t kLargestPart = 2048;

/// A part of a picture, in pixels from its lower left corner.
struct Part {
    std::uint32_t x, y, width, height;
};

/// Maps clip coordinates of the picture to those of a part.
glm::dmat4 windowOf(const Part& part, const PictureOptions& options) {
    const glm::dvec3 scale(double(options.width) / part.width, double(options.height) / part.height,
                           1);
    const glm::dvec3 middle((2.0 * part.x + part.width) / options.width - 1,
                            (2.0 * part.y + part.height) / options.height - 1, 0);
    return glm::translate(glm::scale(glm::dmat4(1.0), scale), -middle);
}

/// A framebuffer with its own memory.
class Canvas {
public:
    Canvas(GLsizei width, GLsizei height, GLsizei samples, bool hasDepth) {
        glBindFramebuffer(GL_FRAMEBUFFER, frame_.get());
        attach(color_, GL_COLOR_ATTACHMENT0, GL_RGBA8, width, height, samples);
        if (hasDepth) {
            attach(depth_, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, width, height, samples);
        }
    }
    GLuint name() const { return frame_.get(); }

private:
    static void attach(const GlRenderbuffer& buffer, GLenum attachment, GLenum format,
                       GLsizei width, GLsizei height, GLsizei samples) {
        glBindRenderbuffer(GL_RENDERBUFFER, buffer.get());
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer.get());
    }

    GlFramebuffer frame_;
    GlRenderbuffer color_, depth_;
};

/// Draws a part and copies it into the picture, whose rows run from top to bottom.
void drawPart(const Painter& painter, const Part& part, const PictureOptions& options,
              Pixels& picture) {
    const auto width = GLsizei(part.width);
    const auto height = GLsizei(part.height);
    const Canvas samples(width, height, kSamples, true);
    glViewport(0, 0, width, height);
    if (options.background) {
        const auto& color = *options.background;
        glClearColor(float(color[0]) / 255, float(color[1]) / 255, float(color[2]) / 255, 1);
    } else {
        glClearColor(0, 0, 0, 0);
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    painter.draw(windowOf(part, options));

    const Canvas average(width, height, 0, false);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, samples.name());
    glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, average.name());
    const std::size_t rowSize = std::size_t(part.width) * 4;
    std::vector<std::uint8_t> bytes(rowSize * part.height);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    for (std::size_t row = 0; row < part.height; ++row) {
        const std::size_t line = picture.height - 1 - (part.y + row);
        const std::uint8_t* from = bytes.data() + row * rowSize;
        std::uint8_t* to = &picture.bytes[(line * picture.width + part.x) * picture.components];
        for (std::size_t column = 0; column < part.width; ++column) {
            std::copy_n(from, picture.components, to);
            from += 4;
            to += picture.components;
        }
    }
}

/// Divides colours by alpha: drawing on a transparent background gives premultiplied colours, which
/// PNG files do not have.
void divideByAlpha(Pixels& picture) {
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
        const unsigned alpha = picture.bytes[i + 3];
        for (std::size_t c = i; alpha != 0 && c < i + 3; ++c) {
            const unsigned color = (picture.bytes[c] * 255U + alpha / 2) / alpha;
            picture.bytes[c] = static_cast<std::uint8_t>(std::min(color, 255U));
        }
    }
}

} // namespace

std::variant<Pixels, std::string> drawPicture(Model&& model, const PictureOptions& options) {
    auto view = chooseView(options.view, model, evaluate::boundsOf(model),
                           double(options.width) / options.height);
    if (auto* const problem = std::get_if<std::string>(&view)) {
        return std::move(*problem);
    }
    const std::unique_ptr<GlContext> context = GlContext::create();
    if (context == nullptr) {
        return "no driver for OpenGL ES 3.0 can be used; Mesa's software renderer, in the package "
               "libgl1-mesa-dri, needs no graphics card";
    }
    Model shown = std::move(model);
    const Painter painter(shown, std::get<View>(view));
    if (!painter.problem().empty()) {
        return "the graphics driver refuses the shaders: " + painter.problem();
    }
    Pixels picture{options.width, options.height, options.background ? 3U : 4U, {}};
    picture.bytes.resize(std::size_t(options.width) * options.height * picture.components);
    for (std::uint32_t y = 0; y < options.height; y += kLargestPart) {
        for (std::uint32_t x = 0; x < options.width; x += kLargestPart) {
            const Part part = {x, y, std::min(kLargestPart, options.width - x),
                               std::min(kLargestPart, options.height - y)};
            drawPart(painter, part, options, picture);
        }
    }
    const GLenum error = glGetError();
    if (error == GL_OUT_OF_MEMORY) {
        return "the graphics driver is out of memory";
    }
    if (error != GL_NO_ERROR) {
        return "the graphics driver reports error " + std::to_string(error);
    }
    if (!options.background) {
        divideByAlpha(picture);
    }
    return picture;
}

} // namespace meshcast::render
