#pragma once

#include "evaluate/color.h"
#include "evaluate/instance_transform.h"
#include "evaluate/model.h"
#include "export/assimp_formats.h"

#include <assimp/mesh.h>
#include <assimp/types.h>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace meshcast::exporter {

/// A linear colour in sRGB, as formats with the Phong shading model store it.
inline aiColor4D screenColor(const evaluate::Color& color) {
    return {evaluate::srgbFromLinear(color[0]), evaluate::srgbFromLinear(color[1]),
            evaluate::srgbFromLinear(color[2]), color[3]};
}

inline aiColor3D screenColor(const evaluate::Vec3& color) {
    return {evaluate::srgbFromLinear(color[0]), evaluate::srgbFromLinear(color[1]),
            evaluate::srgbFromLinear(color[2])};
}

/// Collects the vertices and faces of a mesh for assimp.
class AssimpMeshDraft {
public:
    AssimpMeshDraft(const AssimpFormat& format, bool hasColors, bool hasUvs, bool hasNormals)
        : format_(format), hasColors_(hasColors), hasUvs_(hasUvs), hasNormals_(hasNormals) {}

    /// Adds a primitive, with `transform` applied.
    void add(const evaluate::Model& model, const evaluate::Primitive& primitive,
             const evaluate::InstanceTransform& transform);
    std::unique_ptr<aiMesh> finish(unsigned material, const aiString& name) const;
    std::size_t vertexCount() const { return positions_.size(); }

private:
    const AssimpFormat& format_;
    bool hasColors_, hasUvs_, hasNormals_;
    std::vector<aiVector3D> positions_, normals_, uvs_;
    std::vector<aiColor4D> colors_;
    std::vector<unsigned> corners_;
    std::vector<std::uint8_t> faceSizes_;
    std::vector<std::uint32_t> vertexOf_; ///< For each vertex of the geometry, its index here.
};

} // namespace meshcast::exporter
