#pragma once

#include <cstddef>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <span>

namespace meshcast::evaluate {

/// Projects the corners of a face to 2D by dropping the coordinate where the normal is largest.
/// Keeps the winding: counterclockwise about the normal stays counterclockwise in 2D.
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

/// Whether a face is convex, so that a fan around any corner covers it: it never turns right and
/// goes around once. Corners may coincide or be collinear.
bool isConvex(std::span<const glm::dvec3> corners, const PlaneView& view);

/// The number of pairs of edges of a face that cross in their interiors, counted up to `limit`.
/// Takes time quadratic in the number of corners.
std::size_t countCrossings(std::span<const glm::dvec3> corners, const PlaneView& view,
                           std::size_t limit);

} // namespace meshcast::evaluate
