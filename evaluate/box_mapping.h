#pragma once

#include "evaluate/model.h"

#include <array>

namespace meshcast::evaluate {

/// Default texture coordinates, for face sets without their own: s runs from 0 to 1 along the
/// longest side of the bounding box, t from 0 along the second longest at the same scale. Between
/// sides of equal length, X is chosen before Y, and Y before Z.
class BoxMapping {
public:
    BoxMapping(const Vec3& low, const Vec3& high);

    std::array<double, 2> at(const float* point) const;

private:
    std::size_t s_ = 0;
    std::size_t t_ = 1;
    Vec3 low_;
    double length_;
};

} // namespace meshcast::evaluate
