#include "evaluate/paint_plan.h"

#include <algorithm>

namespace meshcast::evaluate {

void PaintPlan::see(std::span<const std::int32_t> corners) {
    for (const std::int32_t value : corners) {
        if (firstPaint_ && value == lastValue_) {
            continue;
        }
        const Paint paint = values_.paint(value);
        firstPaint_ = firstPaint_.value_or(paint);
        paintVaries_ |= paint != *firstPaint_;
        isTransparent_ |= paint.transparency > 0;
        lastValue_ = value;
    }
    if (!values_.finishVaries()) {
        return;
    }
    const Paint first = values_.paint(corners[0]);
    cornersVary_ |= std::any_of(corners.begin(), corners.end(), [&](std::int32_t value) {
        return value != corners[0] && values_.paint(value) != first;
    });
    const Look look = lookOf(corners, &isAveraged_);
    if (looks_.size() <= kMostParts) {
        looks_.emplace(look, looks_.size());
    }
    if (finishes_.size() <= kMostParts) {
        finishes_.emplace(look.first, finishes_.size());
    }
}

void PaintPlan::settle() {
    isReduced_ = finishes_.size() > kMostParts;
    hasColors_ = paintVaries_ && (finishes_.size() <= 1 || cornersVary_ ||
                                  looks_.size() > kMostParts || isReduced_);
}

Finish PaintPlan::finishOf(std::span<const std::int32_t> corners, bool* differ) const {
    const Finish first = values_.finish(corners[0]);
    std::array<double, std::tuple_size_v<Finish>> sum{};
    bool isOne = true;
    for (const std::int32_t value : corners) {
        const Finish finish = values_.finish(value);
        isOne &= finish == first;
        for (std::size_t i = 0; i < sum.size(); ++i) {
            sum[i] += static_cast<double>(finish[i]);
        }
    }
    if (isOne) {
        return first;
    }
    if (differ != nullptr) {
        *differ = true;
    }
    Finish mean{};
    for (std::size_t i = 0; i < sum.size(); ++i) {
        mean[i] = static_cast<float>(sum[i] / static_cast<double>(corners.size()));
    }
    return mean;
}

PaintPlan::Look PaintPlan::lookOf(std::span<const std::int32_t> corners, bool* differ) const {
    return {finishOf(corners, differ), values_.paint(corners[0])};
}

std::size_t PaintPlan::partOf(std::span<const std::int32_t> corners) const {
    if (!values_.finishVaries() || isReduced_) {
        return 0;
    }
    return hasColors_ || !paintVaries_ ? finishes_.at(finishOf(corners))
                                       : looks_.at(lookOf(corners));
}

std::vector<Material> PaintPlan::materials() const {
    const Paint paint = hasColors_ ? Paint{{1, 1, 1}, 0} : firstPaint_.value_or(values_.paint(0));
    std::vector<Material> materials;
    if (!values_.finishVaries() || isReduced_) {
        materials.push_back(materialOf(paint, values_.finish(lastValue_), values_.isUnlit()));
    } else if (hasColors_ || !paintVaries_) {
        materials.resize(finishes_.size());
        for (const auto& [finish, number] : finishes_) {
            materials[number] = materialOf(paint, finish, values_.isUnlit());
        }
    } else {
        materials.resize(looks_.size());
        for (const auto& [look, number] : looks_) {
            materials[number] = materialOf(look.second, look.first, values_.isUnlit());
        }
    }
    for (Material& material : materials) {
        material.isBlended |= hasColors_ && isTransparent_;
    }
    return materials;
}

} // namespace meshcast::evaluate
