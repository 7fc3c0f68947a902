#include "evaluate/convex.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <vector>

namespace meshcast::evaluate {

namespace {

/// Twice the area of the triangle between two edges: positive when the second turns left.
double turn(const glm::dvec2& a, const glm::dvec2& b) { return a.x * b.y - a.y * b.x; }

// A right turn whose angle has a smaller sine counts as straight: coordinates with six digits are
// no more accurate.
constexpr double kStraight = 1e-6;

struct Edge {
    glm::dvec2 from, to, low, high;
};

bool cross(const Edge& a, const Edge& b) {
    if (a.high.x < b.low.x || b.high.x < a.low.x || a.high.y < b.low.y || b.high.y < a.low.y) {
        return false;
    }
    const glm::dvec2 alongA = a.to - a.from;
    const glm::dvec2 alongB = b.to - b.from;
    const bool partsB = turn(alongA, b.from - a.from) * turn(alongA, b.to - a.from) < 0;
    return partsB && turn(alongB, a.from - b.from) * turn(alongB, a.to - b.from) < 0;
}

} // namespace

PlaneView::PlaneView(const glm::dvec3& normal) {
    const glm::dvec3 size = glm::abs(normal);
    const int leftOut = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
    first_ = (leftOut + 1) % 3;
    second_ = (leftOut + 2) % 3;
    sign_ = normal[leftOut] < 0 ? -1 : 1;
}

bool isConvex(std::span<const glm::dvec3> corners, const PlaneView& view) {
    const std::size_t count = corners.size();
    glm::dvec2 at = view.of(corners[count - 1]);
    glm::dvec2 edge{};
    for (std::size_t i = count - 1; i > 0 && edge == glm::dvec2{}; --i) {
        edge = at - view.of(corners[i - 1]);
    }
    // A closed path that only turns left, once around, changes its horizontal direction exactly
    // twice.
    int changes = 0;
    bool goesRight = edge.x > 0 || (edge.x == 0 && edge.y < 0);
    for (const glm::dvec3& corner : corners) {
        const glm::dvec2 to = view.of(corner);
        const glm::dvec2 next = to - at;
        if (next == glm::dvec2{}) {
            continue;
        }
        const double turned = turn(edge, next);
        const double along = glm::dot(edge, next);
        if (turned < -kStraight * std::abs(along) || (turned <= 0 && along < 0)) {
            return false;
        }
        const bool nextGoesRight = next.x > 0 || (next.x == 0 && next.y < 0);
        changes += nextGoesRight != goesRight ? 1 : 0;
        goesRight = nextGoesRight;
        edge = next;
        at = to;
    }
    return changes <= 2;
}

std::size_t countCrossings(std::span<const glm::dvec3> corners, const PlaneView& view,
                           std::size_t limit) {
    std::vector<Edge> edges;
    edges.reserve(corners.size());
    glm::dvec2 at = view.of(corners.back());
    for (const glm::dvec3& corner : corners) {
        const glm::dvec2 to = view.of(corner);
        edges.push_back({at, to, glm::min(at, to), glm::max(at, to)});
        at = to;
    }
    std::size_t crossings = 0;
    for (std::size_t i = 0; i < edges.size() && crossings < limit; ++i) {
        for (std::size_t j = i + 1; j < edges.size() && crossings < limit; ++j) {
            crossings += cross(edges[i], edges[j]) ? 1 : 0;
        }
    }
    return crossings;
}

} // namespace meshcast::evaluate
