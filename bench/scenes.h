#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace bench {

enum class SceneResult { Written, BadRequest, CannotWrite };

/// Writes a scene of about `bytes` bytes; `seed` chooses among scenes of the kind. Kinds:
/// - "terrain": one height field, an indexed face set over one long list of points;
/// - "parts": many indexed face sets of 8 to 60 points, each with a material, some with a name;
/// - "primitives": cubes, cones, cylinders and spheres under transforms, half of them by USE;
/// - "coloured": face sets of 1024 points with indexed colours, half of them with indexed normals.
SceneResult writeScene(std::string_view kind, std::size_t bytes, std::uint64_t seed, std::FILE* to);

} // namespace bench
