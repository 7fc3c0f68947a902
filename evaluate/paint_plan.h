#pragma once

#include "evaluate/material_values.h"
#include "evaluate/model.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace meshcast::evaluate {

/// How the material values of a shape become materials and vertex colours. It is shown every face
/// (or line, or point) first, and asked after that:
///
/// - one value for all faces: one material;
/// - values that differ in paint only: one white material, and the paint in vertex colours;
/// - values that differ in their finish: a material for each value, or, where the corners of a face
///   differ in paint, for each finish, and the paint in vertex colours. A face has one finish, the
///   mean of those of its corners.
class PaintPlan {
public:
    /// More materials than this on one shape give way to vertex colours, or to the first finish.
    static constexpr std::size_t kMostParts = 1000;

    /// `values` must outlive the plan.
    explicit PaintPlan(const MaterialValues& values) : values_(values) {}

    /// Shows the plan a face, by the value of each corner.
    void see(std::span<const std::int32_t> corners);
    /// All faces have been seen.
    void settle();

    /// Whether vertices need colours.
    bool hasColors() const { return hasColors_; }
    /// The colour of a vertex by its value.
    Color vertexColor(std::int32_t value) const { return colorOf(values_.paint(value)); }
    /// The number of a face's material.
    std::size_t partOf(std::span<const std::int32_t> corners) const;
    /// The materials, in the order in which the faces first needed them.
    std::vector<Material> materials() const;

    /// Some face has corners of different finish.
    bool isAveraged() const { return isAveraged_; }
    /// There were too many materials.
    bool isReduced() const { return isReduced_; }

private:
    using Look = std::pair<Finish, Paint>;

    Finish finishOf(std::span<const std::int32_t> corners, bool* differ = nullptr) const;
    Look lookOf(std::span<const std::int32_t> corners, bool* differ = nullptr) const;

    const MaterialValues& values_;
    std::optional<Paint> firstPaint_;
    std::int32_t lastValue_ = 0;
    bool paintVaries_ = false;
    bool cornersVary_ = false;
    bool isTransparent_ = false;
    bool isAveraged_ = false;
    bool isReduced_ = false;
    bool hasColors_ = false;
    std::map<Look, std::size_t> looks_;
    std::map<Finish, std::size_t> finishes_;
};

} // namespace meshcast::evaluate
