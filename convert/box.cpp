#include "convert/context.h"
#include "convert/converter.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// Cubes, and the boxes that replace inlined scenes.

namespace meshcast {

namespace {

/// The corners of a box of 2 x 2 x 2 around the origin, 3 floats each.
constexpr std::array<float, 24> kCorners = {-1, -1, 1,  //
                                            1,  -1, 1,  //
                                            1,  -1, -1, //
                                            -1, -1, -1, //
                                            -1, 1,  1,  //
                                            1,  1,  1,  //
                                            1,  1,  -1, //
                                            -1, 1,  -1};

/// Its six faces as a polygon list.
constexpr std::array<std::int32_t, 31> kPolygons = {4, 1, 2, 6, 5, //
                                                    4, 3, 4, 8, 7, //
                                                    4, 1, 5, 8, 4, //
                                                    4, 2, 3, 7, 6, //
                                                    4, 2, 1, 4, 3, //
                                                    4, 5, 6, 7, 8, //
                                                    0};

/// With a texture, every face has four vertices of its own, at these corners (counted from 0).
constexpr std::array<std::size_t, 24> kTexturedCorners = {0, 1, 5, 4, //
                                                          1, 2, 6, 5, //
                                                          2, 3, 7, 6, //
                                                          3, 0, 4, 7, //
                                                          4, 5, 6, 7, //
                                                          3, 2, 1, 0};
constexpr std::array<std::int32_t, 31> kTexturedPolygons = {4, 1,  2,  3,  4,  //
                                                            4, 5,  6,  7,  8,  //
                                                            4, 9,  10, 11, 12, //
                                                            4, 13, 14, 15, 16, //
                                                            4, 17, 18, 19, 20, //
                                                            4, 21, 22, 23, 24, //
                                                            0};
/// Texture coordinates of the four vertices of a face.
constexpr std::array<float, 8> kFaceUvs = {0, 1, 1, 1, 1, 0, 0, 0};

} // namespace

void Converter::convert(const QvCube& shape, const QvState& state) {
    const ShapeContext context(state);
    const std::array<float, 3> size = {shape.width.value, shape.height.value, shape.depth.value};
    std::array<float, kCorners.size()> corners{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        corners[i] = half(kCorners[i] * size[i % 3]);
    }
    if (!textureInForce(state)) {
        writePolyhedron(corners, kPolygons, Normals::kFacet);
        return;
    }
    std::array<float, kTexturedCorners.size() * 3> vertices{};
    std::array<float, kTexturedCorners.size() * 2> uvs{};
    for (std::size_t i = 0; i < kTexturedCorners.size(); ++i) {
        std::copy_n(&corners[3 * kTexturedCorners[i]], 3, &vertices[3 * i]);
        std::copy_n(&kFaceUvs[i % 4 * 2], 2, &uvs[2 * i]);
    }
    writePolyhedron(vertices, kTexturedPolygons, Normals::kFacet, uvs);
}

// An inlined scene is not fetched, and the node's children are not visited. A box of the declared
// bounds replaces it. Without bounds, or if they are tiny in every direction, nothing is written.
void Converter::visit(const QvWWWInline& shape, const QvState& state) {
    constexpr double kLeastSize = 0.1;

    const auto& size = shape.bboxSize.value;
    if (std::all_of(size.begin(), size.end(),
                    [](float component) { return static_cast<double>(component) < kLeastSize; })) {
        return;
    }
    const ShapeContext context(state);
    std::array<float, kCorners.size()> vertices{};
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const float scaled = kCorners[i] * size[i % 3];
        vertices[i] = static_cast<float>(static_cast<double>(scaled) * 0.5 +
                                         static_cast<double>(shape.bboxCenter.value[i % 3]));
    }
    writePolyhedron(vertices, kPolygons, Normals::kNone);
}

} // namespace meshcast
