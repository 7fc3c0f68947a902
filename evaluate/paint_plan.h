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

/// Decides how the material values of a shape become materials and vertex colours. First all faces
/// (or lines, or points) are passed to see(); after settle() the results are:
///
/// - one value for all faces: one material;
/// - values that differ in paint only: one white material, and the paint in vertex colours;
/// - values that differ in their finish: a material for each value. If corners of a face differ in
///   paint, a material for each finish, and the paint in vertex colours. A face has one finish, the
///   mean of those of its corners.
class PaintPlan {
public:
    /// If a shape needs more materials than this, only vertex colours vary, and the first finish is
    /// used for all of it.
    static constexpr std::size_t kMostParts = 1000;

    /// `values` must outlive the plan.
    explicit PaintPlan(const MaterialValues& values) : values_(values) {}

    /// Registers a face by the material value of each corner.
    void see(std::span<const std::int32_t> corners);
    /// Must be called once, after all faces were passed to see().
    void settle();

    /// Whether vertices need colours.
    bool hasColors() const { return hasColors_; }
    /// The colour of a vertex by its value.
    Color vertexColor(std::int32_t value) const { return colorOf(values_.paint(value)); }
    /// The number of a face's material.
    std::size_t partOf(std::span<const std::int32_t> corners) const;
    /// The materials, in the order in which the faces first needed them.
    std::vector<Material> materials() const;

    /// Whether some face has corners of different finish.
    bool isAveraged() const { return isAveraged_; }
    /// Whether there were too many materials.
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
