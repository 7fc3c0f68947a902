#pragma once

#include <array>
#include <cstdint>
#include <glm/vec3.hpp>
#include <memory>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// A corner that lies where edges of a face cross: a weighted mean of four others.
struct MixedCorner {
    std::array<std::uint32_t, 4> corners{};
    std::array<float, 4> weights{};
};

/// Triangles of one face. Corners count from 0 along the face; the numbers after the last one are
/// `mixed`, each of which may be a mean of earlier ones.
struct Triangulation {
    std::vector<std::uint32_t> triangles; ///< Three corners each, turning as the face does.
    std::vector<MixedCorner> mixed;

    void clear() {
        triangles.clear();
        mixed.clear();
    }
};

/// Cuts faces into triangles: convex ones into a fan around the first corner, all others by GLU's
/// tessellator, whose nonzero winding rule fills what a face covers in either direction. Corners
/// that coincide and faces that are not quite flat are fine. Not to be copied: it holds buffers
/// that faces share.
class Triangulator {
public:
    Triangulator();
    Triangulator(const Triangulator&) = delete;
    Triangulator& operator=(const Triangulator&) = delete;
    ~Triangulator();

    /// The triangles of a face whose corners are all finite. The normal must be of length 1, on the
    /// side where the corners turn counterclockwise. False when a fan had to do for a face that is
    /// not convex: its edges cross too often, or the work would be too much (see kMostWork).
    bool triangulate(std::span<const glm::dvec3> corners, const glm::dvec3& normal,
                     Triangulation& result);

    /// The triangles of an area in the XY plane between outlines, counterclockwise as seen from +Z:
    /// corners of the outlines one after another, of each the count.
    bool triangulateOutlines(std::span<const glm::dvec3> corners,
                             std::span<const std::uint32_t> counts, Triangulation& result);

private:
    /// The tessellator's time grows with the square of the corners at worst: this many pairs of
    /// edges, over all faces, are some ten seconds.
    static constexpr std::uint64_t kMostWork = 2'000'000'000;

    bool mayTessellate(std::span<const glm::dvec3> corners, const glm::dvec3& normal);
    bool tessellate(std::span<const glm::dvec3> corners, std::span<const std::uint32_t> counts,
                    const glm::dvec3& normal, Triangulation& result);

    class Tessellator;
    std::unique_ptr<Tessellator> tessellator_;
    std::uint64_t work_ = 0;
};

} // namespace meshcast::evaluate
