#include "evaluate/welder.h"

#include "evaluate/mesh_draft.h"

#include <glm/geometric.hpp>

namespace meshcast::evaluate {

Welder::Welder(Geometry& geometry, std::size_t points, bool hasNormals, bool hasColors, bool hasUvs)
    : geometry_(geometry), hasNormals_(hasNormals), hasColors_(hasColors), hasUvs_(hasUvs),
      firstAt_(points, kNone) {}

bool Welder::hasAttributes(std::uint32_t vertex, const Attributes& attributes) const {
    return (!hasNormals_ || geometry_.normals[vertex] == attributes.normal) &&
           (!hasColors_ || geometry_.colors[vertex] == attributes.color) &&
           (!hasUvs_ || geometry_.uvs[vertex] == attributes.uv);
}

std::uint32_t Welder::add(const Vec3& position, const Attributes& attributes) {
    const auto vertex = static_cast<std::uint32_t>(geometry_.positions.size());
    geometry_.positions.push_back(position);
    if (hasNormals_) {
        geometry_.normals.push_back(attributes.normal);
    }
    if (hasColors_) {
        geometry_.colors.push_back(attributes.color);
    }
    if (hasUvs_) {
        geometry_.uvs.push_back(attributes.uv);
    }
    next_.push_back(kNone);
    return vertex;
}

std::uint32_t Welder::vertexAt(std::size_t point, const float* position,
                               const Attributes& attributes) {
    // All corners of a shape may be at one point. Searching all vertices of a point would then be
    // quadratic.
    constexpr int kMostCompared = 32;
    std::uint32_t vertex = firstAt_[point];
    for (int i = 0; i < kMostCompared && vertex != kNone; ++i, vertex = next_[vertex]) {
        if (hasAttributes(vertex, attributes)) {
            return vertex;
        }
    }
    vertex = add({position[0], position[1], position[2]}, attributes);
    next_[vertex] = firstAt_[point];
    firstAt_[point] = vertex;
    return vertex;
}

std::uint32_t Welder::mixedVertex(const std::uint32_t* vertices, const float* weights) {
    glm::dvec3 position{};
    glm::dvec3 normal{};
    Attributes mean;
    for (std::size_t i = 0; i < 4; ++i) {
        const double weight = weights[i];
        position += weight * wide(geometry_.positions[vertices[i]]);
        normal += hasNormals_ ? weight * wide(geometry_.normals[vertices[i]]) : normal;
        for (std::size_t j = 0; hasColors_ && j < 4; ++j) {
            mean.color[j] += weights[i] * geometry_.colors[vertices[i]][j];
        }
        for (std::size_t j = 0; hasUvs_ && j < 2; ++j) {
            mean.uv[j] += weights[i] * geometry_.uvs[vertices[i]][j];
        }
    }
    for (float& component : mean.color) {
        component =
            component < 1 ? component : 1; // The weights may add up to slightly more than 1.
    }
    const double length = glm::length(normal);
    if (hasNormals_) {
        mean.normal = length > 0 ? narrow(normal / length) : geometry_.normals[vertices[0]];
    }
    return add(narrow(position), mean);
}

} // namespace meshcast::evaluate
