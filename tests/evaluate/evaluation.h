#pragma once

#include "evaluate/evaluate.h"
#include "evaluate/model_text.h"
#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <string_view>

namespace meshcast::evaluate {

/// Adds the commas that the tests leave out in lists of indices.
inline std::string withCommas(std::string_view body) {
    std::string text;
    bool isInList = false;
    for (const char c : body) {
        isInList = c != ']' && (isInList || text.ends_with("Index ["));
        if (isInList && c == ' ' && text.back() != '[' && text.back() != ',') {
            text += ',';
        } else if (!isInList || c != ' ') {
            text += c;
        }
    }
    return text;
}

/// Evaluates a scene text, to which the header line is added.
inline Model evaluated(std::string_view body, const EvaluateOptions& options = {}) {
    const ReadScene scene(withCommas(body));
    EXPECT_TRUE(scene.ok) << scene.messages;
    MessageText messages;
    return evaluateScene(scene.scene, options, messages);
}

/// The lines of a listing that begin with one of the given words.
inline std::string linesOf(const Model& model, std::initializer_list<std::string_view> words) {
    std::string found;
    std::string_view text;
    const std::string all = modelText(model);
    for (text = all; !text.empty();) {
        const std::string_view line = text.substr(0, text.find('\n') + 1);
        for (const std::string_view word : words) {
            found += line.starts_with(word) ? line : "";
        }
        text.remove_prefix(line.size());
    }
    return found;
}

inline std::string linesOf(std::string_view body, std::initializer_list<std::string_view> words) {
    return linesOf(evaluated(body), words);
}

/// The letter of a colour whose components are 0 or 1; ? for others.
inline char letterOf(float red, float green, float blue) {
    const auto isBit = [](float x) { return x == 0 || x == 1; };
    if (!isBit(red) || !isBit(green) || !isBit(blue)) {
        return '?';
    }
    return "KRGYBMCW"[static_cast<int>(red) + 2 * static_cast<int>(green) +
                      4 * static_cast<int>(blue)];
}

/// A Material with the diffuse colours of these letters.
inline std::string diffuse(std::string_view letters) {
    std::string text = " diffuseColor [";
    for (const char letter : letters) {
        const auto bits = std::string_view("KRGYBMCW").find(letter);
        text += std::string(bits & 1U ? " 1" : " 0") + (bits & 2U ? " 1" : " 0") +
                (bits & 4U ? " 1," : " 0,");
    }
    text.back() = ']';
    return text;
}

/// The colour at each index of the model's meshes, as letters, with a space between primitives.
inline std::string colorsOf(const Model& model) {
    std::string letters;
    for (const Mesh& mesh : model.meshes) {
        for (const Primitive& primitive : mesh.primitives) {
            const Geometry& geometry = model.geometries[primitive.geometry];
            const Color& base = model.materials[primitive.material].baseColor;
            letters += letters.empty() ? "" : " ";
            for (std::uint32_t i = 0; i < primitive.indexCount; ++i) {
                const std::uint32_t vertex = geometry.indices[primitive.firstIndex + i];
                const Color color =
                    geometry.colors.empty() ? Color{1, 1, 1, 1} : geometry.colors[vertex];
                letters += letterOf(base[0] * color[0], base[1] * color[1], base[2] * color[2]);
            }
        }
    }
    return letters;
}

/// Twice the area of the triangles of a geometry as seen from +Z. Clockwise triangles count as
/// negative.
inline double doubledArea(const Geometry& geometry) {
    double area = 0;
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        const Vec3& a = geometry.positions[geometry.indices[i]];
        const Vec3& b = geometry.positions[geometry.indices[i + 1]];
        const Vec3& c = geometry.positions[geometry.indices[i + 2]];
        area += static_cast<double>((b[0] - a[0]) * (c[1] - a[1]) - (c[0] - a[0]) * (b[1] - a[1]));
    }
    return area;
}

/// Whether all triangles of a convex solid around the origin face outwards, with matching normals.
inline bool facesOutward(const Geometry& geometry) {
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        std::array<Vec3, 3> p{};
        for (std::size_t j = 0; j < 3; ++j) {
            p[j] = geometry.positions[geometry.indices[i + j]];
        }
        const auto edge = [&](std::size_t j, std::size_t axis) { return p[j][axis] - p[0][axis]; };
        const Vec3 normal = {edge(1, 1) * edge(2, 2) - edge(1, 2) * edge(2, 1),
                             edge(1, 2) * edge(2, 0) - edge(1, 0) * edge(2, 2),
                             edge(1, 0) * edge(2, 1) - edge(1, 1) * edge(2, 0)};
        float outward = 0;
        float agreement = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            outward += normal[axis] * (p[0][axis] + p[1][axis] + p[2][axis]);
            agreement += normal[axis] * geometry.normals[geometry.indices[i]][axis];
        }
        if (!(outward > 0) || !(agreement > 0)) {
            return false;
        }
    }
    return true;
}

} // namespace meshcast::evaluate
