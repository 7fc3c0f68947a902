#pragma once

#include "evaluate/faces.h"
#include "evaluate/model.h"

#include <cstdint>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// Computes the normals of corners from those of faces. Corners of a point share a normal as far as
/// the angles between the normals of their faces are smaller than the crease angle: a corner gets
/// the mean over the faces around its point that are nearer to its own than that.
class SmoothNormals {
public:
    /// Of all faces without fault in a list of indices. An angle of 0, in radians, makes facets.
    SmoothNormals(std::span<const std::int32_t> indices, const PointList& points, float creaseAngle,
                  bool isClockwise);

    /// The normal of the corner at a point of a face. Faces without fault count from 0.
    Vec3 at(std::uint32_t face, std::int32_t point) const;

private:
    void addCorners(std::span<const std::int32_t> indices, const PointList& points);

    double cosine_;
    bool isFaceted_;
    std::vector<Vec3> faceNormals_;
    // The faces around a point are those from firstFace_[point] to firstFace_[point + 1].
    std::vector<std::uint32_t> firstFace_;
    std::vector<std::uint32_t> faces_;
};

} // namespace meshcast::evaluate
