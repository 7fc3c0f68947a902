#include "evaluate/point_mesh.h"

#include "evaluate/faces.h"
#include "evaluate/material_values.h"
#include "evaluate/paint_plan.h"
#include "evaluate/unit_normal.h"
#include "evaluate/welder.h"

#include <algorithm>
#include <array>
#include <utility>

namespace meshcast::evaluate {

namespace {

/// The range of points that a PointSet draws, limited to existing ones.
std::pair<std::int32_t, std::int32_t> rangeOf(const QvPointSet& shape,
                                              const Properties& properties) {
    if (properties.coordinates == nullptr) {
        return {0, 0};
    }
    const std::int32_t count = properties.coordinates->point.num;
    const std::int32_t first = std::clamp(shape.startIndex.value, 0, count);
    const std::int32_t wanted = shape.numPoints.value;
    return {first, wanted < 0 || wanted > count - first ? count : first + wanted};
}

} // namespace

std::size_t countPoints(const QvPointSet& shape, const Properties& properties) {
    const auto [first, end] = rangeOf(shape, properties);
    return static_cast<std::size_t>(end - first);
}

MeshDraft makePoints(const QvPointSet& shape, const Properties& properties) {
    const auto [begin, end] = rangeOf(shape, properties);
    if (begin == end) {
        return {};
    }
    const PointList points(scalarsOf(properties.coordinates->point));
    const auto first = begin;
    const auto numberBy = [first](Binding::Value binding, std::int32_t point) {
        switch (binding) {
        case Binding::PER_VERTEX:
            return point - first;
        case Binding::PER_VERTEX_INDEXED:
            return point;
        default:
            return 0;
        }
    };
    const auto normalOf = [&](std::int32_t point) {
        const Binding::Value binding = properties.normalBinding == Binding::DEFAULT
                                           ? Binding::PER_VERTEX_INDEXED
                                           : properties.normalBinding;
        return unitNormal(*properties.normals, numberBy(binding, point));
    };
    bool hasNormals = properties.normals != nullptr;
    for (std::int32_t point = begin; point < end && hasNormals; ++point) {
        hasNormals = normalOf(point).has_value();
    }
    const MaterialValues values(properties.material, hasNormals ? MaterialValues::Shading::kLit
                                                                : MaterialValues::Shading::kUnlit);
    PaintPlan plan(values);
    const auto valueOf = [&](std::int32_t point) {
        return std::array{numberBy(properties.materialBinding, point)};
    };
    for (std::int32_t point = begin; point < end; ++point) {
        plan.see(valueOf(point));
    }
    plan.settle();
    MeshDraft draft;
    draft.geometry.topology = Topology::kPoints;
    const std::vector<Material> materials = plan.materials();
    std::vector<std::vector<std::uint32_t>> parts(materials.size());
    Welder welder(draft.geometry, static_cast<std::size_t>(end - begin), hasNormals,
                  plan.hasColors(), false);
    for (std::int32_t point = begin; point < end; ++point) {
        if (points.has(point)) {
            const auto value = valueOf(point);
            const Attributes attributes{
                hasNormals ? *normalOf(point) : Vec3{}, plan.vertexColor(value[0]), {}};
            parts[plan.partOf(value)].push_back(welder.vertexAt(
                static_cast<std::size_t>(point - first), points.at(point), attributes));
        }
    }
    addParts(draft, parts, materials);
    return draft;
}

} // namespace meshcast::evaluate
