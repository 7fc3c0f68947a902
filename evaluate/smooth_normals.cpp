#include "evaluate/smooth_normals.h"

#include "evaluate/faces.h"
#include "evaluate/mesh_draft.h"

#include <cmath>
#include <glm/geometric.hpp>

// Most points are not on a crease. So the normals around each point are added up first. If all of
// them differ from the mean by less than half the crease angle, no two differ by more than the
// crease angle, and the mean is the normal of all corners. Only at the other points are corners
// compared with each other.

namespace meshcast::evaluate {

namespace {

// Each corner is compared with all others of its point, which is quadratic in the number of faces
// around it. At points with more faces than this, a corner gets the mean over all of them, or the
// normal of its face if that differs too much.
constexpr std::uint32_t kMostCompared = 128;

const Vec3 kNone{};
// A sum of normals shorter than this counts as 0.
constexpr double kNoDirection = 1e-6;

} // namespace

/// Calls `use` with the number of each face that is not dropped and of each of its points.
template <class Use>
void SmoothNormals::forEachCorner(std::span<const std::int32_t> indices, Use use) const {
    Face face;
    for (RunReader faces(indices); faces.next(face);) {
        if (faceNormals_[face.number] != kNone) {
            for (const std::int32_t point : face.points) {
                use(face.number, numbers_.of(point));
            }
        }
    }
}

SmoothNormals::SmoothNormals(std::span<const std::int32_t> indices,
                             std::span<const Vec3> faceNormals, const PointNumbers& numbers,
                             float creaseAngle)
    : faceNormals_(faceNormals), numbers_(numbers),
      cosine_(std::cos(static_cast<double>(creaseAngle))),
      halfCosine_(std::cos(static_cast<double>(creaseAngle) / 2)), isFaceted_(!(creaseAngle > 0)) {
    constexpr float kHalfTurn = 3.1415927F;
    if (creaseAngle >= kHalfTurn) {
        cosine_ = halfCosine_ = -2; // No angle is that large.
    }
    if (!isFaceted_) {
        addUp(indices);
        if (findCreases(indices)) {
            listFaces(indices);
        }
    }
}

void SmoothNormals::addUp(std::span<const std::int32_t> indices) {
    pointNormals_.assign(numbers_.count(), kNone);
    forEachCorner(indices, [this](std::uint32_t face, std::size_t point) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            pointNormals_[point][axis] += faceNormals_[face][axis];
        }
    });
    for (Vec3& normal : pointNormals_) {
        const double length = glm::length(wide(normal));
        normal = length > kNoDirection ? narrow(wide(normal) / length) : kNone;
    }
}

bool SmoothNormals::findCreases(std::span<const std::int32_t> indices) {
    forEachCorner(indices, [this](std::uint32_t face, std::size_t point) {
        const Vec3& normal = pointNormals_[point];
        if (normal == kNone || glm::dot(wide(normal), wide(faceNormals_[face])) <= halfCosine_) {
            isCreased_.resize(pointNormals_.size());
            isCreased_[point] = true;
        }
    });
    return !isCreased_.empty();
}

void SmoothNormals::listFaces(std::span<const std::int32_t> indices) {
    firstFace_.assign(pointNormals_.size() + 2, 0);
    forEachCorner(indices, [this](std::uint32_t, std::size_t point) {
        firstFace_[point + 2] += isCreased_[point] ? 1 : 0;
    });
    for (std::size_t i = 2; i < firstFace_.size(); ++i) {
        firstFace_[i] += firstFace_[i - 1];
    }
    faces_.resize(firstFace_.back());
    // After filling, each entry is the end of its range, which is the start of the next point's
    // range.
    forEachCorner(indices, [this](std::uint32_t face, std::size_t point) {
        if (isCreased_[point]) {
            faces_[firstFace_[point + 1]++] = face;
        }
    });
}

Vec3 SmoothNormals::at(std::uint32_t face, std::int32_t point) const {
    const Vec3& own = faceNormals_[face];
    if (isFaceted_) {
        return own;
    }
    const std::size_t place = numbers_.of(point);
    const Vec3& mean = pointNormals_[place];
    if (isCreased_.empty() || !isCreased_[place]) {
        return mean;
    }
    const std::uint32_t first = firstFace_[place];
    const std::uint32_t end = firstFace_[place + 1];
    if (end - first > kMostCompared) {
        return glm::dot(wide(own), wide(mean)) > cosine_ ? mean : own;
    }
    glm::dvec3 sum{};
    for (std::uint32_t i = first; i < end; ++i) {
        const Vec3& other = faceNormals_[faces_[i]];
        // A product instead of a branch, which would be unpredictable.
        const double isNear = glm::dot(wide(own), wide(other)) > cosine_ ? 1 : 0;
        sum += isNear * wide(other);
    }
    // Normals of opposite faces may cancel out.
    const double length = glm::length(sum);
    return length > kNoDirection ? narrow(sum / length) : own;
}

} // namespace meshcast::evaluate
