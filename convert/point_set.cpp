#include "compat/geom/geom.h"
#include "convert/context.h"
#include "convert/object_output.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

namespace meshcast {

// A point set becomes a set of small spheres. The default number of points, -1, gives nothing
// rather than all points: kept.
void QvPointSet::traverse(QvState& state) {
    constexpr float kPointRadius = 0.01F;

    const ShapeContext context(state);
    const auto* const coordinates = topNode<QvCoordinate3>(state, QvElementKind::Coordinate3);
    if (coordinates == nullptr || numPoints.value < 0) {
        return;
    }
    const QvMFVec3f& points = coordinates->point;
    // The part of [first, last) for which there are points.
    const std::int64_t first = startIndex.value;
    const std::int64_t last = first + numPoints.value;
    const std::int64_t begin = std::clamp<std::int64_t>(first, 0, points.num);
    const std::int64_t end = std::clamp<std::int64_t>(last, begin, points.num);
    const std::int64_t count = end - begin;
    if (count < numPoints.value) {
        const std::int64_t missing = first == begin && count > 0 ? end : first;
        std::fprintf(stderr, "Error: PointSet: Out of Index: %d\n",
                     static_cast<std::int32_t>(missing));
    }

    const std::vector<float> radii(static_cast<std::size_t>(count), kPointRadius);
    ObjectOwner object(GEOMcreate_obj(GEOM_SPHERE, nullptr));
    if (count > 0) {
        GEOMadd_vertices(object.get(), points.at(static_cast<std::int32_t>(begin)), count,
                         GEOM_COPY);
        GEOMadd_radii(object.get(), radii.data(), count, GEOM_COPY);
    }
    writeObject(std::move(object));
}

} // namespace meshcast
