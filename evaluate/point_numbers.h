#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// Numbers the points that a shape uses. Many small shapes may share one list of a million points,
/// so memory and time must depend on the points used, not on the list.
class PointNumbers {
public:
    /// Begins a shape with a number of indices into a number of points. If most points are probably
    /// used, points keep their own numbers.
    void begin(std::size_t points, std::size_t indices) {
        for (const std::size_t point : used_) {
            numbers_[point] = kNone;
        }
        used_.clear();
        points_ = points;
        isDirect_ = points / kMostSpare <= indices;
        if (!isDirect_ && numbers_.size() < points) {
            numbers_.resize(points, kNone);
        }
    }

    /// Registers a point as used.
    void use(std::int32_t point) {
        const auto place = static_cast<std::size_t>(point);
        if (!isDirect_ && numbers_[place] == kNone) {
            numbers_[place] = static_cast<std::uint32_t>(used_.size());
            used_.push_back(place);
        }
    }

    /// The number of a used point, below count().
    std::size_t of(std::int32_t point) const {
        const auto place = static_cast<std::size_t>(point);
        return isDirect_ ? place : numbers_[place];
    }
    std::size_t count() const { return isDirect_ ? points_ : used_.size(); }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    static constexpr std::size_t kMostSpare = 4; // Points per index.

    std::vector<std::uint32_t> numbers_; ///< By point; kNone for unused points.
    std::vector<std::size_t> used_;
    std::size_t points_ = 0;
    bool isDirect_ = true;
};

} // namespace meshcast::evaluate
