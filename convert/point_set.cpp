#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace meshcast {

// A point set becomes a set of small spheres. Kept: the default number of points, -1, writes
// nothing instead of all points.
void Converter::convert(const QvPointSet& shape, const QvState& state) {
    constexpr float kPointRadius = 0.01F;

    const ShapeContext context(state);
    const auto* const coordinates = state.coordinate3();
    if (coordinates == nullptr || shape.numPoints.value < 0) {
        return;
    }
    const QvMFVec3f& points = coordinates->point;
    // The part of [first, last) that is in range.
    const std::int64_t first = shape.startIndex.value;
    const std::int64_t last = first + shape.numPoints.value;
    const std::int64_t begin = std::clamp<std::int64_t>(first, 0, points.num);
    const std::int64_t end = std::clamp<std::int64_t>(last, begin, points.num);
    const std::int64_t count = end - begin;
    if (count < shape.numPoints.value) {
        const std::int64_t missing = first == begin && count > 0 ? end : first;
        reportBadIndex("PointSet", static_cast<std::int32_t>(missing));
    }

    const std::vector<float> radii(static_cast<std::size_t>(count), kPointRadius);
    const ObjectOwner object(GEOMcreate_obj(GEOM_SPHERE, nullptr));
    if (count > 0) {
        GEOMadd_vertices(object.get(), points.at(static_cast<std::int32_t>(begin)), count,
                         GEOM_COPY);
        GEOMadd_radii(object.get(), radii.data(), count, GEOM_COPY);
    }
    write(*object);
}

} // namespace meshcast
