#include "export/assimp_formats.h"

namespace meshcast::exporter {

const std::vector<AssimpFormat>& assimpFormats() {
    // What each format keeps was found by reading files back. Two formats are left out because of
    // faults of their writers: binary FBX cannot be read again, and 3D Studio has the wrong up
    // axis.
    static const std::vector<AssimpFormat> kFormats = {
        {.format = {"obj", "Wavefront OBJ, with its materials and images beside it"},
         .id = "obj",
         .hasLines = true,
         .hasPoints = true,
         .hasColors = true,
         .hasVertexColors = true,
         .hasTextures = true,
         .hasWrapping = true},
        {.format = {"ply", "Stanford PLY, binary: triangles with colours"},
         .id = "plyb",
         .hasPoints = true,
         .hasColors = true,
         .hasVertexColors = true,
         .isMerged = true},
        {.format = {"stl", "STL, binary: triangles only"}, .id = "stlb", .isMerged = true},
        {.format = {"dae", "COLLADA"},
         .id = "collada",
         .hasLines = true,
         .hasColors = true,
         .hasVertexColors = true,
         .hasTextures = true,
         .hasWrapping = true},
        {.format = {"3mf", "3D Manufacturing Format, without colours"},
         .id = "3mf",
         .isWrittenByName = true,
         .unitsPerMetre = 1000},
        {.format = {"x3d", "Extensible 3D (XML), with six decimals"},
         .id = "x3d",
         .hasColors = true,
         .hasVertexColors = true,
         .hasTextures = true,
         .shininessRange = 1},
    };
    return kFormats;
}

} // namespace meshcast::exporter
