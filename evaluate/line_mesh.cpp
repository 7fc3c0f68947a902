#include "evaluate/line_mesh.h"

#include "evaluate/faces.h"
#include "evaluate/material_values.h"
#include "evaluate/paint_plan.h"
#include "evaluate/spread.h"
#include "evaluate/unit_normal.h"
#include "evaluate/welder.h"

#include <algorithm>
#include <array>
#include <optional>

namespace meshcast::evaluate {

namespace {

/// The segments of all lines, with the material values of both ends.
class LineMesh {
public:
    LineMesh(const QvIndexedLineSet& shape, const Properties& properties, PointNumbers& numbers)
        : properties_(properties), numbers_(numbers), indices_(scalarsOf(shape.coordIndex)),
          points_(properties.coordinates == nullptr ? std::span<const float>()
                                                    : scalarsOf(properties.coordinates->point)) {
        const auto separators = std::count(indices_.begin(), indices_.end(), kEndOfFace);
        over_ = {indices_, points_.count(), indices_.size() - static_cast<std::size_t>(separators)};
        if (properties.normals != nullptr) {
            const bool isDefault = properties.normalBinding == Binding::DEFAULT;
            normalSpread_ = Spread(
                isDefault ? Binding::PER_VERTEX_INDEXED : properties.normalBinding,
                shape.normalIndex, static_cast<std::size_t>(properties.normals->vector.num), over_);
            hasNormals_ = true;
            forEachSegment([this](const Segment& segment) {
                hasNormals_ = hasNormals_ && normalAt(segment, 0) && normalAt(segment, 1);
            });
        }
        values_.emplace(properties.material, hasNormals_ ? MaterialValues::Shading::kLit
                                                         : MaterialValues::Shading::kUnlit);
        plan_.emplace(*values_);
        spread_ = Spread(properties.materialBinding, shape.materialIndex,
                         static_cast<std::size_t>(values_->count()), over_);
    }

    MeshDraft make() {
        numbers_.begin(points_.count(), indices_.size());
        forEachSegment([this](const Segment& segment) {
            plan_->see(valuesOf(segment));
            numbers_.use(segment.points[0]);
            numbers_.use(segment.points[1]);
        });
        plan_->settle();
        const std::vector<Material> materials = plan_->materials();
        std::vector<std::vector<std::uint32_t>> parts(materials.size());
        MeshDraft draft;
        draft.geometry.topology = Topology::kLines;
        Welder welder(draft.geometry, numbers_.count(), hasNormals_, plan_->hasColors(), false);
        forEachSegment([&](const Segment& segment) {
            const auto values = valuesOf(segment);
            auto& part = parts[plan_->partOf(values)];
            for (std::size_t end = 0; end < 2; ++end) {
                Attributes attributes;
                attributes.normal = normalAt(segment, end).value_or(Vec3{});
                attributes.color = plan_->vertexColor(values[end]);
                const std::int32_t point = segment.points[end];
                part.push_back(welder.vertexAt(numbers_.of(point), points_.at(point), attributes));
            }
        });
        addParts(draft, parts, materials);
        return draft;
    }

    std::uint64_t dropped() const { return dropped_; }

private:
    struct Segment {
        std::array<std::int32_t, 2> points{};
        std::array<PlaceOnShape, 2> places{};
    };

    /// Calls `use` for each segment with valid ends, and counts the others as dropped.
    template <class Use>
    void forEachSegment(Use use) {
        dropped_ = 0;
        std::uint32_t number = 0;
        Face line;
        for (RunReader lines(indices_); lines.next(line);) {
            for (std::uint32_t i = 1; i < line.points.size(); ++i, ++number) {
                Segment segment{{line.points[i - 1], line.points[i]}, {}};
                for (std::uint32_t end = 0; end < 2; ++end) {
                    segment.places[end] = {number, line.number, line.firstEntry + i - 1 + end,
                                           line.firstCorner + i - 1 + end};
                }
                if (points_.has(segment.points[0]) && points_.has(segment.points[1])) {
                    use(segment);
                } else {
                    ++dropped_;
                }
            }
        }
    }

    std::optional<Vec3> normalAt(const Segment& segment, std::size_t end) const {
        return properties_.normals == nullptr
                   ? std::nullopt
                   : unitNormal(*properties_.normals, normalSpread_.at(segment.places[end]));
    }

    std::array<std::int32_t, 2> valuesOf(const Segment& segment) const {
        return {spread_.at(segment.places[0]), spread_.at(segment.places[1])};
    }

    const Properties& properties_;
    PointNumbers& numbers_;
    std::span<const std::int32_t> indices_;
    PointList points_;
    SpreadOver over_;
    std::optional<MaterialValues> values_;
    std::optional<PaintPlan> plan_;
    Spread spread_, normalSpread_;
    bool hasNormals_ = false;
    std::uint64_t dropped_ = 0;
};

} // namespace

MeshDraft makeLines(const QvIndexedLineSet& shape, const Properties& properties,
                    PointNumbers& numbers, Notes& notes) {
    LineMesh lines(shape, properties, numbers);
    MeshDraft draft = lines.make();
    notes.addCount(Note::Kind::kDropped, lines.dropped(), "line segment",
                   "dropped: an index is invalid");
    return draft;
}

} // namespace meshcast::evaluate
