#include "export/assimp_mesh.h"

#include <algorithm>
#include <limits>

namespace meshcast::exporter {

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Model;
using evaluate::Primitive;
using evaluate::Topology;
using evaluate::Vec2;
using evaluate::Vec3;

namespace {

aiVector3D vectorOf(const Vec3& vector) { return {vector[0], vector[1], vector[2]}; }

template <typename Item>
Item* copied(const std::vector<Item>& items) {
    if (items.empty()) {
        return nullptr;
    }
    auto* const array = new Item[items.size()];
    std::copy(items.begin(), items.end(), array);
    return array;
}

} // namespace

void AssimpMeshDraft::add(const Model& model, const Primitive& primitive,
                          const evaluate::InstanceTransform& transform) {
    constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
    const Geometry& geometry = model.geometries[primitive.geometry];
    const Color& base = model.materials[primitive.material].baseColor;
    vertexOf_.assign(geometry.positions.size(), kNone);
    const auto cornerAt = [&](std::size_t index) {
        const std::uint32_t vertex = geometry.indices[primitive.firstIndex + index];
        if (vertexOf_[vertex] == kNone) {
            vertexOf_[vertex] = static_cast<std::uint32_t>(positions_.size());
            positions_.push_back(vectorOf(transform.point(geometry.positions[vertex])) *
                                 format_.unitsPerMetre);
            if (hasNormals_) {
                normals_.push_back(geometry.normals.empty()
                                       ? aiVector3D(0, 0, 0)
                                       : vectorOf(transform.normal(geometry.normals[vertex])));
            }
            if (hasUvs_) {
                const Vec2 uv = geometry.uvs.empty() ? Vec2{} : geometry.uvs[vertex];
                uvs_.emplace_back(uv[0], uv[1], 0.0F);
            }
            if (hasColors_) {
                Color color = format_.isMerged ? base : Color{1, 1, 1, 1};
                for (std::size_t i = 0; i < 4 && !geometry.colors.empty(); ++i) {
                    color[i] *= geometry.colors[vertex][i];
                }
                colors_.push_back(screenColor(color));
            }
        }
        return vertexOf_[vertex];
    };
    const std::uint8_t size = geometry.topology == Topology::kTriangles ? 3
                              : geometry.topology == Topology::kLines   ? 2
                                                                        : 1;
    for (std::size_t first = 0; first < primitive.indexCount; first += size) {
        for (std::size_t i = 0; i < size; ++i) {
            corners_.push_back(cornerAt(first + (transform.mirrors() ? size - 1 - i : i)));
        }
        // A point of a merged list is a vertex without a face.
        if (size == 1 && format_.isMerged) {
            corners_.pop_back();
        } else {
            faceSizes_.push_back(size);
        }
    }
}

std::unique_ptr<aiMesh> AssimpMeshDraft::finish(unsigned material, const aiString& name) const {
    auto mesh = std::make_unique<aiMesh>();
    mesh->mName = name;
    mesh->mMaterialIndex = material;
    mesh->mNumVertices = static_cast<unsigned>(positions_.size());
    mesh->mVertices = copied(positions_);
    mesh->mNormals = copied(normals_);
    mesh->mTextureCoords[0] = copied(uvs_);
    mesh->mNumUVComponents[0] = hasUvs_ ? 2 : 0;
    mesh->mColors[0] = copied(colors_);
    mesh->mFaces = new aiFace[faceSizes_.size()];
    mesh->mNumFaces = static_cast<unsigned>(faceSizes_.size());
    auto corner = corners_.begin();
    for (std::size_t i = 0; i < faceSizes_.size(); ++i) {
        aiFace& face = mesh->mFaces[i];
        const unsigned size = faceSizes_[i];
        face.mIndices = new unsigned[size];
        face.mNumIndices = size;
        std::copy_n(corner, size, face.mIndices);
        corner += size;
        mesh->mPrimitiveTypes |= size == 3   ? aiPrimitiveType_TRIANGLE
                                 : size == 2 ? aiPrimitiveType_LINE
                                             : aiPrimitiveType_POINT;
    }
    return mesh;
}

} // namespace meshcast::exporter
