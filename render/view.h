#pragma once

#include "evaluate/model.h"

#include <array>
#include <glm/mat4x4.hpp>
#include <optional>
#include <string>
#include <variant>

namespace meshcast::render {

/// The camera of a picture.
struct View {
    /// From world to camera space, in which the camera looks along -Z with +Y up. Scaled so that
    /// the farthest point is at distance 1.
    glm::dmat4 worldToEye{1.0};
    /// From camera space to OpenGL's clip coordinates.
    glm::dmat4 projection{1.0};
    bool isPerspective = true;
};

/// The view of that name: "fit" shows all from the front, right and above; "front", "top" and
/// "left" show all from there. Other names are cameras of the scene: their name, its last part
/// after `/`, or their number from 1. The angle or height of a camera applies to the shorter
/// side of the picture. `aspectRatio` is the picture's width divided by its height.
///
/// If there is no such camera, returns a message that lists the cameras, as the end of a sentence.
std::variant<View, std::string>
chooseView(const std::string& name, const evaluate::Model& model,
           const std::optional<std::array<evaluate::Vec3, 2>>& bounds, double aspectRatio);

} // namespace meshcast::render
