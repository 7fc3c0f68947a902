#include "evaluate/model_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <span>

namespace meshcast::evaluate {

namespace {

std::string number(float value) {
    constexpr double kDecimals = 1e5;
    const double rounded = std::round(static_cast<double>(value) * kDecimals) / kDecimals;
    std::array<char, 64> text{};
    const double shown = rounded == 0 ? 0 : rounded; // Drops the sign of -0.
    auto* const end = std::to_chars(text.data(), text.data() + text.size(), shown).ptr;
    return {text.data(), end};
}

std::string numbers(std::span<const float> values) {
    std::string text;
    for (const float value : values) {
        text += ' ' + number(value);
    }
    return text;
}

std::string named(const std::string& name) { return " \"" + name + '"'; }

/// The rows of a matrix except the last, which is always the same.
std::string matrixText(const Matrix& matrix) {
    if (matrix == kIdentity) {
        return "";
    }
    std::string text = " matrix";
    for (std::size_t row = 0; row < 3; ++row) {
        text += row == 0 ? "" : ",";
        text +=
            numbers(std::array{matrix[row], matrix[4 + row], matrix[8 + row], matrix[12 + row]});
    }
    return text;
}

std::string cameraText(const Camera& camera) {
    return "camera" + named(camera.name) +
           (camera.isPerspective ? " perspective " + number(camera.heightAngle)
                                 : " orthographic " + number(camera.height)) +
           " aspect " + number(camera.aspectRatio) + " from " + number(camera.nearDistance) +
           " to " + number(camera.farDistance) + matrixText(camera.matrix) + '\n';
}

std::string lightText(const Light& light) {
    constexpr std::array kKinds = {" directional", " point", " spot"};
    std::string text = "light" + named(light.name) + kKinds[static_cast<std::size_t>(light.kind)] +
                       " color" + numbers(light.color) + " intensity " + number(light.intensity);
    if (light.kind == Light::Kind::kSpot) {
        text += " angles " + number(light.innerAngle) + ' ' + number(light.outerAngle);
    }
    return text + matrixText(light.matrix) + '\n';
}

std::string noteText(const Note& note) {
    constexpr std::array kKinds = {"dropped", "missing", "approximated", "unsupported", "limit"};
    return std::string("note ") + kKinds[static_cast<std::size_t>(note.kind)] + named(note.where) +
           ": " + note.text + '\n';
}

} // namespace

std::string materialText(const Material& material) {
    std::string text = "color" + numbers(material.baseColor);
    if (material.emissive != Vec3{}) {
        text += " emissive" + numbers(material.emissive);
    }
    if (material.specular != Vec3{}) {
        text += " specular" + numbers(material.specular);
    }
    text += material.isUnlit ? " unlit" : " roughness " + number(material.roughness);
    text += material.isDoubleSided ? "" : " one-sided";
    text += material.isBlended ? " blended" : "";
    if (material.texture) {
        text += " image " + std::to_string(material.texture->image) +
                (material.texture->repeatS ? " repeat" : " clamp") +
                (material.texture->repeatT ? " repeat" : " clamp");
    }
    return text;
}

std::string geometryText(const Geometry& geometry) {
    constexpr std::array<std::size_t, 3> kCorners = {3, 2, 1};
    constexpr std::array kTopologies = {"triangles", "lines", "points"};
    std::string text = kTopologies[static_cast<std::size_t>(geometry.topology)];
    text += '\n';
    for (std::size_t i = 0; i < geometry.positions.size(); ++i) {
        text += "  " + std::to_string(i) + ':' + numbers(geometry.positions[i]);
        text += geometry.normals.empty() ? "" : " normal" + numbers(geometry.normals[i]);
        text += geometry.colors.empty() ? "" : " color" + numbers(geometry.colors[i]);
        text += geometry.uvs.empty() ? "" : " uv" + numbers(geometry.uvs[i]);
        text += '\n';
    }
    const std::size_t corners = kCorners[static_cast<std::size_t>(geometry.topology)];
    for (std::size_t i = 0; i < geometry.indices.size(); ++i) {
        text += i % corners == 0 ? "  " : " ";
        text += std::to_string(geometry.indices[i]);
        text += i % corners == corners - 1 ? "\n" : "";
    }
    return text;
}

std::string modelText(const Model& model) {
    std::string text;
    const auto numbered = [](const char* what, std::size_t i) {
        return std::string(what) + ' ' + std::to_string(i) + ": ";
    };
    for (std::size_t i = 0; i < model.images.size(); ++i) {
        const Image& image = model.images[i];
        text += numbered("image", i) + (image.type == Image::Type::kPng ? "png" : "jpeg") +
                named(image.name) + ' ' + std::to_string(image.width) + 'x' +
                std::to_string(image.height) + (image.hasAlpha ? " alpha" : "") + '\n';
    }
    for (std::size_t i = 0; i < model.materials.size(); ++i) {
        text += numbered("material", i) + materialText(model.materials[i]) + '\n';
    }
    for (std::size_t i = 0; i < model.geometries.size(); ++i) {
        text += numbered("geometry", i) + geometryText(model.geometries[i]);
    }
    for (std::size_t i = 0; i < model.meshes.size(); ++i) {
        for (const Primitive& primitive : model.meshes[i].primitives) {
            text += numbered("mesh", i) + "geometry " + std::to_string(primitive.geometry) +
                    " from " + std::to_string(primitive.firstIndex) + " count " +
                    std::to_string(primitive.indexCount) + " material " +
                    std::to_string(primitive.material) + '\n';
        }
    }
    for (const Instance& instance : model.instances) {
        text += "instance" + named(instance.name) + " mesh " + std::to_string(instance.mesh) +
                matrixText(instance.matrix) +
                (instance.url ? " url" + named(model.urls[*instance.url]) : "") + '\n';
    }
    for (const Camera& camera : model.cameras) {
        text += cameraText(camera);
    }
    for (const Light& light : model.lights) {
        text += lightText(light);
    }
    for (const std::string& info : model.infos) {
        text += "info" + named(info) + '\n';
    }
    for (const Note& note : model.notes) {
        text += noteText(note);
    }
    return text;
}

} // namespace meshcast::evaluate
