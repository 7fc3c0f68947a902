#include "convert/texture.h"
#include "traverse/transforms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace meshcast {

namespace {

/// For row vectors: (u, v, 1) maps to (u, v, 1) M.
using Matrix3 = std::array<std::array<float, 3>, 3>;

Matrix3 product(const Matrix3& a, const Matrix3& b) {
    Matrix3 result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) {
                result[i][j] += a[i][k] * b[k][j];
            }
        }
    }
    return result;
}

Matrix3 translation(float x, float y) { return {{{1, 0, 0}, {0, 1, 0}, {x, y, 1}}}; }

Matrix3 rotation(float angle) {
    const auto s = static_cast<float>(std::sin(static_cast<double>(angle)));
    const auto c = static_cast<float>(std::cos(static_cast<double>(angle)));
    return {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
}

/// The product of the texture transforms in force, the newest first.
Matrix3 gather(const QvState& state) {
    Matrix3 matrix = translation(0, 0);
    forEachTextureTransform(state, [&matrix](const QvTexture2Transform& node) {
        const auto [cx, cy] = node.center.value;
        const auto [sx, sy] = node.scaleFactor.value;
        const auto [tx, ty] = node.translation.value;
        // Kept: the scale is not about the centre. Readers of the stream expect it so.
        for (const Matrix3& factor :
             {translation(-cx, -cy), rotation(node.rotation.value), translation(cx, cy),
              Matrix3{{{sx, 0, 0}, {0, sy, 0}, {0, 0, 1}}}, translation(tx, ty)}) {
            matrix = product(matrix, factor);
        }
    });
    return matrix;
}

float wrapped(float value, bool clamp) {
    if (value >= 0 && value <= 1) {
        return value;
    }
    if (clamp) {
        return value > 1 ? 1.0F : 0.0F;
    }
    const float period = std::floor(value);
    const float rest = value - period;
    return std::fmod(period, 2.0F) != 0 ? 1 - rest : rest;
}

/// The axes of S and T for the size of a bounding box.
std::pair<std::size_t, std::size_t> projectionAxes(const std::array<float, 3>& size) {
    const auto [dx, dy, dz] = size;
    std::size_t s = 2;
    if (std::max(dx, dy) > dz) {
        s = dx > dy ? 0 : 1;
    }
    std::size_t t = 0;
    if ((dx > dy && dy > dz) || (dz > dy && dy > dx)) {
        t = 1;
    } else if ((dx > dz && dz > dy) || (dy > dz && dz > dx)) {
        t = 2;
    }
    // A square in the XY plane takes S = X and T = Y, as does a box for which S and T are the same.
    const bool isFlatSquare = dx == dy && dx > dz;
    return s == t || isFlatSquare ? std::pair<std::size_t, std::size_t>(0, 1) : std::pair(s, t);
}

} // namespace

std::vector<float> projectedCoordinates(std::span<const float> points) {
    std::vector<float> uvs;
    if (points.empty()) {
        return uvs;
    }
    std::array<float, 3> minimum = {points[0], points[1], points[2]};
    std::array<float, 3> maximum = minimum;
    for (std::size_t i = 0; i < points.size(); ++i) {
        minimum[i % 3] = std::min(minimum[i % 3], points[i]);
        maximum[i % 3] = std::max(maximum[i % 3], points[i]);
    }
    const std::array<float, 3> size = {maximum[0] - minimum[0], maximum[1] - minimum[1],
                                       maximum[2] - minimum[2]};
    const auto [s, t] = projectionAxes(size);
    uvs.reserve(points.size() / 3 * 2);
    for (std::size_t i = 0; i < points.size(); i += 3) {
        // When all points coincide, the coordinates are NaN.
        uvs.push_back((points[i + s] - minimum[s]) / size[s]);
        uvs.push_back((points[i + t] - minimum[t]) / size[s]);
    }
    return uvs;
}

void transformTextureCoordinates(const QvState& state, const TextureUse& texture,
                                 std::span<float> uvs) {
    const Matrix3 m = gather(state);
    for (std::size_t i = 0; i + 1 < uvs.size(); i += 2) {
        const float u = uvs[i];
        const float v = uvs[i + 1];
        uvs[i] = wrapped(m[0][0] * u + m[1][0] * v + m[2][0], texture.clampS);
        uvs[i + 1] = wrapped(m[0][1] * u + m[1][1] * v + m[2][1], texture.clampT);
    }
}

} // namespace meshcast
