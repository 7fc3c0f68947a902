#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// Numbers the points that a shape uses. Many small shapes may share one list of a million points:
/// what is kept by point should be as long as the points used, and so should the time it takes.
class PointNumbers {
public:
    /// Begins a shape of so many indices into so many points. Where most points are used, points
    /// keep their own numbers.
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

    /// Tells of a point that is used.
    void use(std::int32_t point) {
        const auto place = static_cast<std::size_t>(point);
        if (!isDirect_ && numbers_[place] == kNone) {
            numbers_[place] = static_cast<std::uint32_t>(used_.size());
            used_.push_back(place);
        }
    }

    /// The number of a point that is used, below count().
    std::size_t of(std::int32_t point) const {
        const auto place = static_cast<std::size_t>(point);
        return isDirect_ ? place : numbers_[place];
    }
    std::size_t count() const { return isDirect_ ? points_ : used_.size(); }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    static constexpr std::size_t kMostSpare = 4; // Points for each index.

    std::vector<std::uint32_t> numbers_; ///< By point; kNone for those that are not used.
    std::vector<std::size_t> used_;
    std::size_t points_ = 0;
    bool isDirect_ = true;
};

} // namespace meshcast::evaluate
