#pragma once

#include "export/export.h"

#include <string_view>
#include <vector>

namespace meshcast::exporter {

/// A format that assimp writes, and what its writer keeps of a model.
struct AssimpFormat {
    Format format;
    const char* id; ///< Assimp's name of the format.
    bool hasLines = false, hasPoints = false;
    bool hasColors = false; ///< For materials or vertices.
    bool hasVertexColors = false;
    bool hasTextures = false;
    /// Keeps the wrapping of textures. Otherwise they repeat in both directions.
    bool hasWrapping = false;
    /// All shapes are merged into one list of triangles, without names and materials.
    bool isMerged = false;
    /// Its writer opens a file by name and cannot write into memory.
    bool isWrittenByName = false;
    float unitsPerMetre = 1;
    float colorRange = 1;       ///< The largest diffuse component that its writer expects.
    float shininessRange = 128; ///< The largest shininess that its writer expects.
};

/// All formats that are written with assimp.
const std::vector<AssimpFormat>& assimpFormats();

} // namespace meshcast::exporter
