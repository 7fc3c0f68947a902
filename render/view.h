#pragma once

#include "evaluate/model.h"

#include <array>
#include <glm/mat4x4.hpp>
#include <optional>
#include <string>
#include <variant>

namespace meshcast::render {

/// From where a picture is taken.
struct View {
    /// Into the space of the eye, which looks along -Z with +Y up. One unit there is the distance
    /// of what is farthest away.
    glm::dmat4 worldToEye{1.0};
    /// From there to OpenGL's clip coordinates.
    glm::dmat4 projection{1.0};
    bool isPerspective = true;
};

/// The view of that name: "fit" shows all from the front, right and above; "front", "top" and
/// "left" show all from there. Other names are cameras of the scene: their name, its last part
/// after `/`, or their number from 1. A camera sees the angle or height that the scene says along
/// the shorter side of the picture. `aspectRatio` is the picture's width by its height.
///
/// Without a camera of that name, a text says so, and which there are, as the end of a sentence.
std::variant<View, std::string>
chooseView(const std::string& name, const evaluate::Model& model,
           const std::optional<std::array<evaluate::Vec3, 2>>& bounds, double aspectRatio);

} // namespace meshcast::render
