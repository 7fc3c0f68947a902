#pragma once

#include <cstddef>
#include <cstdint>
#include <glm/vec3.hpp>
#include <span>

namespace meshcast::evaluate {

/// Points of a shape, three floats each. An index that is out of range, or leads to a coordinate
/// that is no finite number, names no point.
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

/// A face of a list of indices, or a line of one. Numbers count from 0, and count what is dropped
/// too.
struct Face {
    enum class Fault : std::uint8_t {
        kNone,
        kNoSuchPoint, ///< An index names no point.
        kNoArea,      ///< Fewer than three different points, or all of them on a line.
    };

    std::span<const std::int32_t> points; ///< The indices of its corners.
    std::uint32_t number = 0;
    std::uint32_t firstEntry = 0;  ///< Where its first corner is in the list.
    std::uint32_t firstCorner = 0; ///< The number of its first corner, without the -1 between.
    Fault fault = Fault::kNone;
    /// Of length 1, to the side where the corners turn counterclockwise; 0 0 0 with a fault.
    glm::dvec3 normal{};
};

/// Cuts a list of indices at each -1. What comes after the last one is a run too; nothing after
/// it is none.
class RunReader {
public:
    explicit RunReader(std::span<const std::int32_t> indices) : indices_(indices) {}

    /// The next run: its points and numbers. False when there is no more.
    bool next(Face& run);

private:
    std::span<const std::int32_t> indices_;
    std::size_t at_ = 0;
    std::uint32_t runs_ = 0;
    std::uint32_t corners_ = 0;
};

/// Finds the fault of a face, or else its normal: that of the areas of its projections (Newell's
/// method), which is defined for concave faces and for those that are not quite flat.
void examine(Face& face, const PointList& points);

} // namespace meshcast::evaluate
