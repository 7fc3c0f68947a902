#include "render/lighting.h"

#include "render/shaders.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <glm/geometric.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <string>

namespace meshcast::render {

using evaluate::Light;

namespace {

constexpr float kAmbient = 0.15F;

/// A light, as the uniforms of the shaders describe it.
struct ShaderLight {
    glm::vec4 place{0, 0, 1, 0}; ///< Its position or, with w = 0, the direction to it.
    glm::vec3 color{1 - kAmbient};
    glm::vec3 axis{0, 0, 1};   ///< Opposite to the direction in which it shines.
    glm::vec2 cosines{-1, -1}; ///< Of a spot light's inner and outer angle.
};

ShaderLight shaderLight(const Light& light, const glm::dmat4& worldToEye) {
    const glm::dmat4 lightToEye = worldToEye * glm::dmat4(glm::make_mat4(light.matrix.data()));
    ShaderLight result;
    result.color = glm::make_vec3(light.color.data()) * light.intensity;
    result.axis = glm::normalize(glm::dvec3(lightToEye[2]));
    result.place = light.kind == Light::Kind::kDirectional ? glm::vec4(result.axis, 0)
                                                           : glm::vec4(glm::vec3(lightToEye[3]), 1);
    if (light.kind == Light::Kind::kSpot) {
        result.cosines = {std::cos(light.innerAngle), std::cos(light.outerAngle)};
    }
    return result;
}

} // namespace

void setLights(const GlProgram& program, const std::vector<Light>& lights, const View& view) {
    std::vector<ShaderLight> shown;
    const std::size_t count = std::min(lights.size(), std::size_t(kMostLights));
    for (std::size_t i = 0; i < count; ++i) {
        shown.push_back(shaderLight(lights[i], view.worldToEye));
    }
    if (shown.empty()) {
        shown.emplace_back();
    }
    glUniform3f(program.uniform("ambient"), kAmbient, kAmbient, kAmbient);
    glUniform1i(program.uniform("lightCount"), GLint(shown.size()));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto place = [&program, i](std::string list) {
            return program.uniform(list.append("[").append(std::to_string(i)).append("]").c_str());
        };
        glUniform4fv(place("lightPlaces"), 1, glm::value_ptr(shown[i].place));
        glUniform3fv(place("lightColors"), 1, glm::value_ptr(shown[i].color));
        glUniform3fv(place("lightAxes"), 1, glm::value_ptr(shown[i].axis));
        glUniform2fv(place("lightCosines"), 1, glm::value_ptr(shown[i].cosines));
    }
}

} // namespace meshcast::render
