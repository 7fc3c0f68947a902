#include "evaluate/instance_transform.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace meshcast::evaluate {

namespace {

using Vector = std::array<double, 3>;

Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector combined(const std::array<Vector, 3>& columns, const Vec3& factors) {
    Vector sum{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t row = 0; row < 3; ++row) {
            sum[row] += columns[i][row] * static_cast<double>(factors[i]);
        }
    }
    return sum;
}

/// As floats, the largest of them where a component is too large.
Vec3 narrowed(const Vector& vector) {
    constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());
    Vec3 result;
    std::transform(vector.begin(), vector.end(), result.begin(), [kLargest](double component) {
        return static_cast<float>(std::clamp(component, -kLargest, kLargest));
    });
    return result;
}

} // namespace

InstanceTransform::InstanceTransform(const Matrix& matrix) {
    const auto column = [&matrix](std::size_t i) {
        return Vector{static_cast<double>(matrix[4 * i]), static_cast<double>(matrix[4 * i + 1]),
                      static_cast<double>(matrix[4 * i + 2])};
    };
    columns_ = {column(0), column(1), column(2)};
    translation_ = column(3);
    // The matrix of cofactors is the inverse transpose but for a factor, the determinant.
    cofactors_ = {cross(columns_[1], columns_[2]), cross(columns_[2], columns_[0]),
                  cross(columns_[0], columns_[1])};
    mirrors_ = dot(columns_[0], cofactors_[0]) < 0;
}

Vec3 InstanceTransform::point(const Vec3& point) const {
    Vector placed = combined(columns_, point);
    for (std::size_t i = 0; i < 3; ++i) {
        placed[i] += translation_[i];
    }
    return narrowed(placed);
}

Vec3 InstanceTransform::normal(const Vec3& normal) const {
    Vector placed = combined(cofactors_, normal);
    const double length = std::sqrt(dot(placed, placed)) * (mirrors_ ? -1 : 1);
    if (length == 0) {
        return normal;
    }
    for (double& component : placed) {
        component /= length;
    }
    return narrowed(placed);
}

} // namespace meshcast::evaluate
