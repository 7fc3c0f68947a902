#pragma once

#include "evaluate/model.h"
#include "export/assimp_formats.h"

#include <memory>
#include <string>
#include <vector>

struct aiScene;

namespace meshcast::exporter {

/// The most vertices that a scene for assimp may have, since it needs about 150 bytes for each.
inline constexpr std::size_t kMostPlacedVertices = 20'000'000;

struct AssimpScene {
    std::unique_ptr<aiScene> scene; ///< Null if it would have more than kMostPlacedVertices.
    /// The numbers of primitives that the format cannot hold.
    std::size_t lines = 0, points = 0, coloredMeshes = 0;
};

/// Converts a model to assimp's structures, with all shapes in world coordinates. `imageNames` has
/// the file name of each image.
AssimpScene assimpSceneOf(const evaluate::Model& model, const AssimpFormat& format,
                          const std::vector<std::string>& imageNames);

} // namespace meshcast::exporter
