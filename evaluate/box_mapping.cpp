#include "evaluate/box_mapping.h"

#include <algorithm>

namespace meshcast::evaluate {

BoxMapping::BoxMapping(const Vec3& low, const Vec3& high) : low_(low) {
    const auto side = [&](std::size_t axis) {
        return static_cast<double>(high[axis]) - static_cast<double>(low[axis]);
    };
    std::array<std::size_t, 3> axes = {0, 1, 2};
    std::stable_sort(axes.begin(), axes.end(),
                     [&side](std::size_t a, std::size_t b) { return side(a) > side(b); });
    s_ = axes[0];
    t_ = axes[1];
    length_ = side(s_);
}

std::array<double, 2> BoxMapping::at(const float* point) const {
    if (!(length_ > 0)) {
        return {0, 0};
    }
    return {(static_cast<double>(point[s_]) - static_cast<double>(low_[s_])) / length_,
            (static_cast<double>(point[t_]) - static_cast<double>(low_[t_])) / length_};
}

} // namespace meshcast::evaluate
