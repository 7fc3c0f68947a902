#pragma once

#include "evaluate/model.h"
#include "evaluate/point_numbers.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// Computes the normals of corners from those of faces. Corners of a point share a normal as far as
/// the angles between the normals of their faces are smaller than the crease angle: a corner gets
/// the mean over the faces around its point that are nearer to its own than that.
class SmoothNormals {
public:
    /// `indices` are faces that end in -1, `faceNormals` has one of length 1 for each of them, or 0
    /// 0 0 for a face that is left out. All others must use points that have numbers. An angle of
    /// 0, in radians, makes facets. The normals must outlive the object, and so must the numbers.
    SmoothNormals(std::span<const std::int32_t> indices, std::span<const Vec3> faceNormals,
                  const PointNumbers& numbers, float creaseAngle);

    /// The normal of the corner that a face has at a point.
    Vec3 at(std::uint32_t face, std::int32_t point) const;

private:
    void addUp(std::span<const std::int32_t> indices);
    template <class Use>
    void forEachCorner(std::span<const std::int32_t> indices, Use use) const;
    bool findCreases(std::span<const std::int32_t> indices);
    void listFaces(std::span<const std::int32_t> indices);

    std::span<const Vec3> faceNormals_;
    const PointNumbers& numbers_;
    double cosine_;     ///< Of the crease angle.
    double halfCosine_; ///< Of half of it.
    bool isFaceted_;
    std::vector<Vec3> pointNormals_; ///< The mean over all faces around a point; 0 0 0 for none.
    std::vector<bool> isCreased_;    ///< By point. Empty when there is no crease.
    /// The faces around a point with a crease are those from firstFace_[point] to
    /// firstFace_[point + 1].
    std::vector<std::uint32_t> firstFace_;
    std::vector<std::uint32_t> faces_;
};

} // namespace meshcast::evaluate
