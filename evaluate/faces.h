#pragma once

#include <cstddef>
#include <cstdint>
#include <glm/vec3.hpp>
#include <span>

namespace meshcast::evaluate {

/// Points of a shape, three floats each. An index is invalid if it is out of range or a coordinate
/// of its point is not finite.
class PointList {
public:
    explicit PointList(std::span<const float> coordinates) : coordinates_(coordinates) {}

    std::size_t count() const { return coordinates_.size() / 3; }
    bool has(std::int32_t index) const {
        return index >= 0 && static_cast<std::size_t>(index) < count() && isFiniteAt(index);
    }
    const float* at(std::int32_t index) const {
        return coordinates_.data() + 3 * static_cast<std::size_t>(index);
    }
    glm::dvec3 wide(std::int32_t index) const {
        const float* const p = at(index);
        return {p[0], p[1], p[2]};
    }

private:
    bool isFiniteAt(std::int32_t index) const;

    std::span<const float> coordinates_;
};

inline constexpr std::int32_t kEndOfFace = -1;

/// A face or polyline in a list of indices. Numbers count from 0 and include dropped faces.
struct Face {
    enum class Fault : std::uint8_t {
        kNone,
        kNoSuchPoint, ///< An index is invalid.
        kNoArea,      ///< Fewer than three different points, or all of them on a line.
    };

    std::span<const std::int32_t> points; ///< The indices of its corners.
    std::uint32_t number = 0;
    std::uint32_t firstEntry = 0;  ///< The position of its first corner in the list.
    std::uint32_t firstCorner = 0; ///< The same, not counting the -1 entries.
    Fault fault = Fault::kNone;
    /// The unit normal, on the side from which the corners are counterclockwise; 0 0 0 with a
    /// fault.
    glm::dvec3 normal{};
};

/// Splits a list of indices into runs that end in -1. The last run may lack its -1.
class RunReader {
public:
    explicit RunReader(std::span<const std::int32_t> indices) : indices_(indices) {}

    /// Reads the next run: its points and numbers. False at the end.
    bool next(Face& run);

private:
    std::span<const std::int32_t> indices_;
    std::size_t at_ = 0;
    std::uint32_t runs_ = 0;
    std::uint32_t corners_ = 0;
};

/// Sets the fault of a face, or else its normal by Newell's method (Sutherland, Sproull and
/// Schumacker, 1974), which also works for concave and not quite flat faces.
void examine(Face& face, const PointList& points);

} // namespace meshcast::evaluate
