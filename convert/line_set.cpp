#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

// An indexed line set becomes one polytriangle. Each run of indices between entries of -1 becomes a
// polyline. Unlike in face sets, colours are stored as floats.

namespace meshcast {

namespace {

constexpr std::int32_t kEndOfRun = -1;

/// Colours, and a list of indices into them, one for each position of a run.
struct LineColors {
    const QvMFColor* values;
    const QvMFLong* indices;
};

std::optional<LineColors> lineColors(const QvState& state, const QvIndexedLineSet& shape,
                                     std::int32_t points) {
    const auto* const binding = state.materialBinding();
    const auto* const material = state.material();
    if (binding == nullptr || material == nullptr) {
        return std::nullopt;
    }
    const QvMFColor& diffuse = material->diffuseColor;
    if (binding->value.value == Binding::PER_VERTEX && diffuse.num == points) {
        return LineColors{&diffuse, &shape.coordIndex};
    }
    if (binding->value.value == Binding::PER_VERTEX_INDEXED && shape.materialIndex.num >= 2) {
        return LineColors{&diffuse, &shape.materialIndex};
    }
    return std::nullopt;
}

/// Copies the value number indices[position], or zeros if `position` or that number is out of
/// range.
void copyNamed(const QvMFieldOf<float, 3>& values, const QvMFLong& indices, std::int32_t position,
               float* target) {
    const std::int32_t index = position < indices.num ? indices.values[position] : -1;
    if (index >= 0 && index < values.num) {
        std::copy_n(values.at(index), 3, target);
    } else {
        std::fill_n(target, 3, 0.0F);
    }
}

} // namespace

void Converter::convert(const QvIndexedLineSet& shape, const QvState& state) {
    const ShapeContext context(state);
    const auto* const coordinates = state.coordinate3();
    if (coordinates == nullptr) {
        return;
    }
    const QvMFVec3f& points = coordinates->point;
    const std::optional<LineColors> coloring = lineColors(state, shape, points.num);

    const ObjectOwner object(GEOMcreate_obj(GEOM_POLYTRIANGLE, nullptr));
    std::vector<float> vertices;
    std::vector<float> colors;
    std::int32_t runStart = 0;
    std::int32_t length = 0;
    for (std::int32_t i = 0; i < shape.coordIndex.num; ++i) {
        const std::int32_t index = shape.coordIndex.values[i];
        const bool isLast = i == shape.coordIndex.num - 1;
        if (index != kEndOfRun && !isLast) {
            if (index >= 0 && index < points.num) {
                ++length;
            } else {
                // Kept: a bad index is not counted, so the run loses its last entry instead of it.
                reportBadIndex("IndexedLineSet", index);
            }
            continue;
        }
        // Kept: the last entry counts even if it is out of range, unless it is -1 or -2.
        if (index != kEndOfRun && index != -2) {
            ++length;
        }
        vertices.resize(static_cast<std::size_t>(length) * 3);
        colors.resize(coloring ? vertices.size() : 0);
        for (std::int32_t k = 0; k < length; ++k) {
            const std::size_t offset = static_cast<std::size_t>(k) * 3;
            copyNamed(points, shape.coordIndex, runStart + k, &vertices[offset]);
            if (coloring) {
                copyNamed(*coloring->values, *coloring->indices, runStart + k, &colors[offset]);
            }
        }
        GEOMadd_polyline(object.get(), vertices.data(), coloring ? colors.data() : nullptr, length,
                         GEOM_COPY);
        runStart = i + 1;
        length = 0;
    }
    write(*object);
}

} // namespace meshcast
