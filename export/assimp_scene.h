#pragma once

#include "evaluate/model.h"
#include "export/assimp_formats.h"

#include <memory>
#include <string>
#include <vector>

struct aiScene;

namespace meshcast::exporter {

/// Placed vertices that a scene for assimp may have: it takes some 150 bytes for each.
inline constexpr std::size_t kMostPlacedVertices = 20'000'000;

struct AssimpScene {
    std::unique_ptr<aiScene> scene; ///< Null when it would have more vertices than it may.
    /// What the format cannot hold.
    std::size_t lines = 0, points = 0, coloredMeshes = 0;
};

/// The model as assimp wants it, with all shapes at their places in the world; `imageNames` are
/// the files of its images.
AssimpScene assimpSceneOf(const evaluate::Model& model, const AssimpFormat& format,
                          const std::vector<std::string>& imageNames);

} // namespace meshcast::exporter
