#pragma once

#include <array>
#include <cstdint>
#include <glm/vec3.hpp>
#include <memory>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// A new corner at a crossing of two edges: a weighted mean of four other corners.
struct MixedCorner {
    std::array<std::uint32_t, 4> corners{};
    std::array<float, 4> weights{};
};

/// The triangles of one face. Its corners are numbered from 0; the numbers after the last one refer
/// to `mixed`. A mixed corner may be a mean of earlier mixed corners.
struct Triangulation {
    std::vector<std::uint32_t> triangles; ///< Three corners each, with the winding of the face.
    std::vector<MixedCorner> mixed;

    void clear() {
        triangles.clear();
        mixed.clear();
    }
};

/// Triangulates faces: convex faces as a fan around the first corner, all others with GLU's
/// tessellator and the nonzero winding rule. Coinciding corners and not quite flat faces are
/// allowed. Buffers are reused from face to face.
class Triangulator {
public:
    Triangulator();
    Triangulator(const Triangulator&) = delete;
    Triangulator& operator=(const Triangulator&) = delete;
    ~Triangulator();

    /// Triangulates a face. All corners must be finite. The normal must have length 1 and be on the
    /// side from which the corners are counterclockwise. Returns false when a face that is not
    /// convex became a fan, because its edges cross too often or the work would be too much (see
    /// kMostWork).
    bool triangulate(std::span<const glm::dvec3> corners, const glm::dvec3& normal,
                     Triangulation& result);

    /// Triangulates an area in the XY plane that is bounded by outlines, counterclockwise as seen
    /// from +Z. `corners` are those of all outlines, `counts` has the number of corners of each
    /// outline.
    bool triangulateOutlines(std::span<const glm::dvec3> corners,
                             std::span<const std::uint32_t> counts, Triangulation& result);

private:
    /// In the worst case the tessellator's time is quadratic in the number of corners. This many
    /// pairs of edges, over all faces, take about ten seconds.
    static constexpr std::uint64_t kMostWork = 2'000'000'000;

    bool mayTessellate(std::span<const glm::dvec3> corners, const glm::dvec3& normal);
    bool tessellate(std::span<const glm::dvec3> corners, std::span<const std::uint32_t> counts,
                    const glm::dvec3& normal, Triangulation& result);

    class Tessellator;
    std::unique_ptr<Tessellator> tessellator_;
    std::uint64_t work_ = 0;
};

} // namespace meshcast::evaluate
