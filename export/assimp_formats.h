#pragma once

#include "export/export.h"

#include <string_view>
#include <vector>

namespace meshcast::exporter {

/// A format that assimp writes, and what of a model its writer of that format keeps.
struct AssimpFormat {
    Format format;
    const char* id; ///< By which assimp knows it.
    bool hasLines = false, hasPoints = false;
    bool hasColors = false; ///< Of materials or vertices.
    bool hasVertexColors = false;
    bool hasTextures = false;
    /// It keeps how textures repeat. Without, they repeat both ways.
    bool hasWrapping = false;
    /// All shapes are one list of triangles, without names and materials.
    bool isMerged = false;
    /// Its writer cannot write into memory.
    bool isWrittenByName = false;
    float unitsPerMetre = 1;
    float colorRange = 1;       ///< The value of a full diffuse component, for its writer.
    float shininessRange = 128; ///< The value of the greatest shininess.
};

const std::vector<AssimpFormat>& assimpFormats();

} // namespace meshcast::exporter
