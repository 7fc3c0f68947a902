#pragma once

#include "evaluate/model.h"
#include "evaluate/point_numbers.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// Computes the normals of corners from the normals of faces. A corner gets the mean over those
/// faces around its point whose normals differ from that of its own face by less than the crease
/// angle.
class SmoothNormals {
public:
    /// `indices` are faces that end in -1. `faceNormals` has a unit normal for each face, or 0 0 0
    /// for a dropped face. All other faces must use points that have numbers. The crease angle is
    /// in radians; 0 makes flat normals. `faceNormals` and `numbers` must outlive the object.
    SmoothNormals(std::span<const std::int32_t> indices, std::span<const Vec3> faceNormals,
                  const PointNumbers& numbers, float creaseAngle);

    /// The normal of the corner of a face at a point.
    Vec3 at(std::uint32_t face, std::int32_t point) const;

private:
    void addUp(std::span<const std::int32_t> indices);
    template <class Use>
    void forEachCorner(std::span<const std::int32_t> indices, Use use) const;
    bool findCreases(std::span<const std::int32_t> indices);
    void listFaces(std::span<const std::int32_t> indices);

    std::span<const Vec3> faceNormals_;
    const PointNumbers& numbers_;
    double cosine_;     ///< The cosine of the crease angle.
    double halfCosine_; ///< The cosine of half of it.
    bool isFaceted_;
    std::vector<Vec3> pointNormals_; ///< The mean over all faces around a point; 0 0 0 for none.
    std::vector<bool> isCreased_;    ///< By point. Empty when there is no crease.
    /// The faces around a point with a crease are those from firstFace_[point] to
    /// firstFace_[point + 1].
    std::vector<std::uint32_t> firstFace_;
    std::vector<std::uint32_t> faces_;
};

} // namespace meshcast::evaluate
