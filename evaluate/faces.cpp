#include "evaluate/faces.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>

namespace meshcast::evaluate {

namespace {

// A face whose area divided by the square of its extent is smaller counts as having no area.
constexpr double kNoArea = 1e-10;

bool hasThreeDifferent(std::span<const std::int32_t> indices) {
    if (indices.size() < 3) {
        return false;
    }
    const std::int32_t first = indices[0];
    const auto isOther = [first](std::int32_t index) { return index != first; };
    const auto second = std::find_if(indices.begin(), indices.end(), isOther);
    return second != indices.end() &&
           std::any_of(second, indices.end(), [first, second](std::int32_t index) {
               return index != first && index != *second;
           });
}

} // namespace

bool PointList::isFiniteAt(std::int32_t index) const {
    const float* const p = at(index);
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

bool RunReader::next(Face& run) {
    if (at_ >= indices_.size()) {
        return false;
    }
    const auto begin = indices_.begin() + static_cast<std::ptrdiff_t>(at_);
    const auto end = std::find(begin, indices_.end(), kEndOfFace);
    const auto size = static_cast<std::size_t>(end - begin);
    run.points = indices_.subspan(at_, size);
    run.number = runs_++;
    run.firstEntry = static_cast<std::uint32_t>(at_);
    run.firstCorner = corners_;
    corners_ += static_cast<std::uint32_t>(size);
    at_ += size + 1;
    return true;
}

void examine(Face& face, const PointList& points) {
    const auto& indices = face.points;
    face.normal = {};
    if (!std::all_of(indices.begin(), indices.end(),
                     [&points](std::int32_t index) { return points.has(index); })) {
        face.fault = Face::Fault::kNoSuchPoint;
        return;
    }
    face.fault = Face::Fault::kNoArea;
    if (!hasThreeDifferent(indices)) {
        return;
    }
    // Relative to the first corner, so that faces far from the origin do not lose precision.
    const glm::dvec3 origin = points.wide(indices[0]);
    glm::dvec3 doubledArea{};
    double extent = 0;
    glm::dvec3 before = points.wide(indices[1]) - origin;
    for (std::size_t i = 2; i < indices.size(); ++i) {
        const glm::dvec3 after = points.wide(indices[i]) - origin;
        doubledArea += glm::cross(before, after);
        extent = std::max({extent, glm::dot(before, before), glm::dot(after, after)});
        before = after;
    }
    const double length = glm::length(doubledArea);
    if (length > kNoArea * extent) {
        face.normal = doubledArea / length;
        face.fault = Face::Fault::kNone;
    }
}

} // namespace meshcast::evaluate
