#include "convert/box.h"
#include "convert/context.h"
#include "convert/converter.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <array>

namespace meshcast {

// An inlined scene is never fetched, nor are the node's children visited: a box of its declared
// bounds stands in for it. Bounds that are small in every direction say nothing, and give nothing.
void Converter::visit(const QvWWWInline& shape, const QvState& state) {
    constexpr double kLeastSize = 0.1;

    const auto& size = shape.bboxSize.value;
    if (std::all_of(size.begin(), size.end(),
                    [](float component) { return static_cast<double>(component) < kLeastSize; })) {
        return;
    }
    const ShapeContext context(state);
    std::array<float, kBoxCorners.size() * 3> vertices{};
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const std::size_t axis = i % 3;
        const float scaled = kBoxCorners[i / 3][axis] * size[axis];
        vertices[i] = static_cast<float>(static_cast<double>(scaled) * 0.5 +
                                         static_cast<double>(shape.bboxCenter.value[axis]));
    }
    writePolyhedron(vertices, kBoxPolygons, Normals::kNone);
}

} // namespace meshcast
