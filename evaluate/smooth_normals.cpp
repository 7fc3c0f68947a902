#include "evaluate/smooth_normals.h"

#include "evaluate/mesh_draft.h"

#include <cmath>
#include <glm/geometric.hpp>

namespace meshcast::evaluate {

namespace {

// A corner is compared with all others of its point, so that a million faces around one point
// would take a million times a million steps. Around a point of more faces than this, a corner gets
// the mean over all of them or else the normal of its face.
constexpr std::uint32_t kMostCompared = 128;

} // namespace

SmoothNormals::SmoothNormals(std::span<const std::int32_t> indices, const PointList& points,
                             float creaseAngle, bool isClockwise)
    : cosine_(std::cos(static_cast<double>(creaseAngle))), isFaceted_(!(creaseAngle > 0)) {
    constexpr float kHalfTurn = 3.1415927F;
    if (creaseAngle >= kHalfTurn) {
        cosine_ = -2; // No two normals are that far apart.
    }
    Face face;
    for (RunReader faces(indices); faces.next(face);) {
        examine(face, points);
        if (face.fault == Face::Fault::kNone) {
            faceNormals_.push_back(narrow(isClockwise ? -face.normal : face.normal));
        }
    }
    if (!isFaceted_) {
        addCorners(indices, points);
    }
}

void SmoothNormals::addCorners(std::span<const std::int32_t> indices, const PointList& points) {
    const auto forEachCorner = [&](auto use) {
        Face face;
        std::uint32_t number = 0;
        for (RunReader faces(indices); faces.next(face);) {
            examine(face, points);
            if (face.fault == Face::Fault::kNone) {
                for (const std::int32_t point : face.points) {
                    use(static_cast<std::size_t>(point), number);
                }
                ++number;
            }
        }
    };
    firstFace_.assign(points.count() + 2, 0);
    forEachCorner([this](std::size_t point, std::uint32_t) { ++firstFace_[point + 2]; });
    for (std::size_t i = 2; i < firstFace_.size(); ++i) {
        firstFace_[i] += firstFace_[i - 1];
    }
    faces_.resize(firstFace_.back());
    // Filling moves each start to its end, which is the start of the next point.
    forEachCorner(
        [this](std::size_t point, std::uint32_t face) { faces_[firstFace_[point + 1]++] = face; });
}

Vec3 SmoothNormals::at(std::uint32_t face, std::int32_t point) const {
    const Vec3& own = faceNormals_[face];
    if (isFaceted_) {
        return own;
    }
    const std::uint32_t first = firstFace_[static_cast<std::size_t>(point)];
    const std::uint32_t end = firstFace_[static_cast<std::size_t>(point) + 1];
    const bool isCompared = end - first <= kMostCompared;
    glm::dvec3 sum{};
    for (std::uint32_t i = first; i < end; ++i) {
        const Vec3& other = faceNormals_[faces_[i]];
        if (!isCompared || glm::dot(wide(own), wide(other)) > cosine_) {
            sum += wide(other);
        }
    }
    const double length = glm::length(sum);
    // Opposite faces may cancel out.
    if (!(length > 1e-6) || (!isCompared && glm::dot(wide(own), sum) <= cosine_ * length)) {
        return own;
    }
    return narrow(sum / length);
}

} // namespace meshcast::evaluate
