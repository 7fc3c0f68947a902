#pragma once

#include "evaluate/model.h"
#include "evaluate/pixels.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#pragma GCC visibility push(default)

// Pictures of models, drawn by OpenGL ES 3.0 without a display: by the computer's graphics card
// where its driver can be used, and by Mesa's software renderer elsewhere.

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

/// Draws a model as its viewers show it: with the scene's lights or, where it has none, a
/// headlight. The pixels have four components, and no alpha but 255 unless the background is
/// transparent.
///
/// Returns, as the end of a sentence, why there is no picture otherwise: no driver can be used, its
/// memory does not suffice, or the scene has no such camera. Pictures of different drivers differ
/// in single pixels. Throws std::bad_alloc.
///
/// The model's vertices and images are freed as they go to the driver. Switches the driver's own
/// log on standard error off for the process, by EGL_LOG_LEVEL, unless that variable is set.
std::variant<evaluate::Pixels, std::string> drawPicture(evaluate::Model&& model,
                                                        const PictureOptions& options);

} // namespace meshcast::render

#pragma GCC visibility pop
