#include "evaluate/bounds.h"

#include "evaluate/instance_transform.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace meshcast::evaluate {

std::optional<std::array<Vec3, 2>> boundsOf(const Model& model) {
    std::optional<std::array<Vec3, 2>> bounds;
    for (const Instance& instance : model.instances) {
        const InstanceTransform transform(instance.matrix);
        for (const Primitive& primitive : model.meshes[instance.mesh].primitives) {
            const Geometry& geometry = model.geometries[primitive.geometry];
            const auto first = geometry.indices.begin() + primitive.firstIndex;
            std::for_each(first, first + primitive.indexCount, [&](std::uint32_t index) {
                const Vec3 point = transform.point(geometry.positions[index]);
                if (!bounds) {
                    bounds = {point, point};
                }
                auto& [lowest, highest] = *bounds;
                for (std::size_t i = 0; i < 3; ++i) {
                    lowest[i] = std::min(lowest[i], point[i]);
                    highest[i] = std::max(highest[i], point[i]);
                }
            });
        }
    }
    return bounds;
}

} // namespace meshcast::evaluate
