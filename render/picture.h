#pragma once

#include "evaluate/model.h"
#include "evaluate/pixels.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#pragma GCC visibility push(default)

// Pictures of models, drawn with OpenGL ES 3.0 without a display: by the graphics card if its
// driver can be used, otherwise by Mesa's software renderer.

namespace meshcast::render {

inline constexpr std::uint32_t kLargestSide = 8192;

struct PictureOptions {
    std::uint32_t width = 1280, height = 720; ///< In pixels, 1 to kLargestSide each.
    /// "fit", "front", "top", "left", or a camera of the scene; see chooseView in view.h.
    std::string view = "fit";
    /// sRGB, from 0 to 255; transparent when absent.
    std::optional<std::array<std::uint8_t, 3>> background =
        std::array<std::uint8_t, 3>{255, 255, 255};
};

/// Draws a model with the scene's lights or, if it has none, a headlight. The pixels have four
/// components; alpha is 255 unless the background is transparent.
///
/// On failure, returns the reason as the end of a sentence: no driver can be used, its memory is
/// too small, or the scene has no such camera. Pictures of different drivers may differ in a few
/// pixels. Throws std::bad_alloc.
///
/// Frees the model's vertices and images once they are uploaded. Turns off the driver's log on
/// standard error for the process, by setting EGL_LOG_LEVEL unless it is set.
std::variant<evaluate::Pixels, std::string> drawPicture(evaluate::Model&& model,
                                                        const PictureOptions& options);

} // namespace meshcast::render

#pragma GCC visibility pop
