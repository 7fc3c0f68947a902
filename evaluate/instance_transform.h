#pragma once

#include "evaluate/model.h"

#include <array>

#pragma GCC visibility push(default)

namespace meshcast::evaluate {

/// Takes points and normals of a mesh to the place of an instance, computing in double.
class InstanceTransform {
public:
    explicit InstanceTransform(const Matrix& matrix);

    Vec3 point(const Vec3& point) const;
    /// By the inverse transpose, at length 1.
    Vec3 normal(const Vec3& normal) const;
    /// Placed triangles turn clockwise: their corners have to be written in the other order.
    bool mirrors() const { return mirrors_; }

private:
    std::array<std::array<double, 3>, 3> columns_, cofactors_;
    std::array<double, 3> translation_;
    bool mirrors_;
};

} // namespace meshcast::evaluate

#pragma GCC visibility pop
