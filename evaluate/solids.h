#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// A part of a solid that can have its own material.
struct SolidPart {
    std::uint32_t number = 0; ///< Its number among all parts of the shape, including absent ones.
    std::uint32_t firstVertex = 0, vertexCount = 0;
    std::uint32_t firstIndex = 0, indexCount = 0;
};

/// A solid with normals and texture coordinates, centred at the origin.
struct Solid {
    Geometry geometry;
    std::vector<SolidPart> parts;
};

/// A cube from -1 to 1 along each axis. Parts: front (+Z), back, left (-X), right, top (+Y),
/// bottom. Each shows the whole image, upright when seen from its side. Top and bottom are upright
/// when tilted towards a viewer at +Z.
Solid makeCube();

/// A sphere of radius 1. The image wraps around once, counterclockwise seen from above, starting at
/// the back (-Z), and from bottom to top. There are `segments` (at least 3) around the axis, and
/// half as many from pole to pole.
Solid makeSphere(std::uint32_t segments);

/// A cone of radius 1, from y = -1 to the tip at y = 1. Parts: sides, with the image wrapped as on
/// a sphere, and bottom, which shows the largest disc of the image.
Solid makeCone(std::uint32_t segments, bool hasSides, bool hasBottom);

/// A cylinder of radius 1, from y = -1 to y = 1. Parts: sides, top, bottom, with images as on a
/// cone.
Solid makeCylinder(std::uint32_t segments, bool hasSides, bool hasTop, bool hasBottom);

} // namespace meshcast::evaluate
