#pragma once

#include "evaluate/model.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// The attributes of a vertex other than its position.
struct Attributes {
    Vec3 normal{};
    Color color{};
    Vec2 uv{};
};

/// Adds vertices to a geometry. Corners of a point with equal attributes share a vertex.
class Welder {
public:
    /// Only the requested attribute lists are filled.
    Welder(Geometry& geometry, std::size_t points, bool hasNormals, bool hasColors, bool hasUvs);

    /// The vertex for a corner at a point. The point's number must be below `points`.
    std::uint32_t vertexAt(std::size_t point, const float* position, const Attributes& attributes);
    /// Adds a vertex that is a weighted mean of four others. Its normal is normalised.
    std::uint32_t mixedVertex(const std::uint32_t* vertices, const float* weights);

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    bool hasAttributes(std::uint32_t vertex, const Attributes& attributes) const;
    std::uint32_t add(const Vec3& position, const Attributes& attributes);

    Geometry& geometry_;
    bool hasNormals_, hasColors_, hasUvs_;
    std::vector<std::uint32_t> firstAt_; ///< By point.
    std::vector<std::uint32_t> next_;    ///< By vertex: the next vertex of the same point.
};

} // namespace meshcast::evaluate
