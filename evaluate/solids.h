#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <vector>

namespace meshcast::evaluate {

/// A part of a solid that a material of its own may be bound to.
struct SolidPart {
    std::uint32_t number = 0; ///< Among the parts of the shape, whether they are there or not.
    std::uint32_t firstVertex = 0, vertexCount = 0;
    std::uint32_t firstIndex = 0, indexCount = 0;
};

/// A solid with normals and texture coordinates, around the origin.
struct Solid {
    Geometry geometry;
    std::vector<SolidPart> parts;
};

/// From -1 to 1 along each axis. Parts: front (+Z), back, left (-X), right, top (+Y), bottom. Each
/// shows all of the image, upright as seen from its side; top and bottom as seen when they are
/// tilted towards a viewer at +Z.
Solid makeCube();

/// Of radius 1. The image wraps it once, counterclockwise as seen from above, from the back (-Z),
/// and from bottom to top. `segments`, at least 3, go around, half as many from pole to pole.
Solid makeSphere(std::uint32_t segments);

/// Of radius 1, from y = -1 to the tip at y = 1. Parts: sides, which the image wraps as it wraps a
/// sphere, and bottom, which shows the disc that fits into the image.
Solid makeCone(std::uint32_t segments, bool hasSides, bool hasBottom);

/// Of radius 1, from y = -1 to y = 1. Parts: sides, top, bottom; with images as those of a cone.
Solid makeCylinder(std::uint32_t segments, bool hasSides, bool hasTop, bool hasBottom);

} // namespace meshcast::evaluate
