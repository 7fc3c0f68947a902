#pragma once

#include <cstddef>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <span>

namespace meshcast::evaluate {

/// Shows corners as the plane of a face has them: the axis that the normal is nearest to is left
/// out, and what turns counterclockwise about the normal does so in the plane.
class PlaneView {
public:
    explicit PlaneView(const glm::dvec3& normal);

    glm::dvec2 of(const glm::dvec3& corner) const {
        return {sign_ * corner[first_], corner[second_]};
    }

private:
    int first_ = 0;
    int second_ = 1;
    double sign_ = 1;
};

/// Whether a fan around any corner covers the face: it turns left at each corner, once around.
/// Corners may coincide and may lie on an edge.
bool isConvex(std::span<const glm::dvec3> corners, const PlaneView& view);

/// The number of pairs of edges of a face that cross inside both of them, counted up to `limit`.
/// Takes time with the square of the number of corners.
std::size_t countCrossings(std::span<const glm::dvec3> corners, const PlaneView& view,
                           std::size_t limit);

} // namespace meshcast::evaluate
