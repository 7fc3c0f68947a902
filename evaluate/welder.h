#pragma once

#include "evaluate/model.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// What a vertex has besides its position.
struct Attributes {
    Vec3 normal{};
    Color color{};
    Vec2 uv{};
};

/// Adds vertices to a geometry. Corners of one point that have the same attributes share a vertex.
class Welder {
public:
    /// The geometry gets those lists of attributes that are asked for.
    Welder(Geometry& geometry, std::size_t points, bool hasNormals, bool hasColors, bool hasUvs);

    /// The vertex of a corner at a point, whose number is below `points`.
    std::uint32_t vertexAt(std::size_t point, const float* position, const Attributes& attributes);
    /// A vertex that is a weighted mean of four others. Normals stay of length 1.
    std::uint32_t mixedVertex(const std::uint32_t* vertices, const float* weights);

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    bool hasAttributes(std::uint32_t vertex, const Attributes& attributes) const;
    std::uint32_t add(const Vec3& position, const Attributes& attributes);

    Geometry& geometry_;
    bool hasNormals_, hasColors_, hasUvs_;
    std::vector<std::uint32_t> firstAt_; ///< By point.
    std::vector<std::uint32_t> next_;    ///< By vertex: another one of the same point.
};

} // namespace meshcast::evaluate
