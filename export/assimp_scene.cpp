#include "export/assimp_scene.h"

#include "evaluate/color.h"
#include "evaluate/instance_transform.h"
#include "export/assimp_mesh.h"

#include <algorithm>
#include <assimp/material.h>
#include <assimp/mesh.h>
#include <assimp/scene.h>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace meshcast::exporter {

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Instance;
using evaluate::Material;
using evaluate::Model;
using evaluate::Primitive;
using evaluate::srgbFromLinear;
using evaluate::Topology;
using evaluate::Vec3;

namespace {

/// Names longer than this are cut: assimp drops those of 1024 bytes.
constexpr std::size_t kLongestName = 1000;

/// A name that every format can hold: without blanks, which end names in some formats, and without
/// special characters of XML, which not all of assimp's writers escape.
aiString nameOf(std::string_view name) {
    if (name.size() > kLongestName) {
        std::size_t end = kLongestName;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80) {
            --end;
        }
        name = name.substr(0, end);
    }
    std::string safe(name);
    const auto isUnsafe = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= ' ' || byte == 0x7F || std::strchr("<>&\"'\\#", c) != nullptr;
    };
    std::replace_if(safe.begin(), safe.end(), isUnsafe, '_');
    return aiString(safe);
}

std::unique_ptr<aiMaterial> materialOf(const Material& material, std::size_t number,
                                       const AssimpFormat& format,
                                       const std::vector<std::string>& imageNames) {
    auto result = std::make_unique<aiMaterial>();
    const auto add = [&result](const auto& value, const char* key, unsigned type, unsigned index) {
        result->AddProperty(&value, 1, key, type, index);
    };
    const aiString name("material" + std::to_string(number + 1));
    result->AddProperty(&name, AI_MATKEY_NAME);
    add(format.hasColors ? screenColor(material.baseColor) : aiColor4D(1, 1, 1, 1),
        AI_MATKEY_COLOR_DIFFUSE);
    add(screenColor(material.ambient), AI_MATKEY_COLOR_AMBIENT);
    add(screenColor(material.specular), AI_MATKEY_COLOR_SPECULAR);
    add(screenColor(material.emissive), AI_MATKEY_COLOR_EMISSIVE);
    add(material.shininess * format.shininessRange, AI_MATKEY_SHININESS);
    add(material.baseColor[3], AI_MATKEY_OPACITY);
    add(material.isDoubleSided ? 1 : 0, AI_MATKEY_TWOSIDED);
    add(static_cast<int>(material.isUnlit              ? aiShadingMode_NoShading
                         : material.specular == Vec3{} ? aiShadingMode_Gouraud
                                                       : aiShadingMode_Phong),
        AI_MATKEY_SHADING_MODEL);
    if (material.texture && format.hasTextures) {
        const aiString file(imageNames[material.texture->image]);
        result->AddProperty(&file, AI_MATKEY_TEXTURE_DIFFUSE(0));
        if (format.hasWrapping) {
            const auto mode = [](bool repeats) {
                return static_cast<int>(repeats ? aiTextureMapMode_Wrap : aiTextureMapMode_Clamp);
            };
            add(mode(material.texture->repeatS), AI_MATKEY_MAPPINGMODE_U_DIFFUSE(0));
            add(mode(material.texture->repeatT), AI_MATKEY_MAPPINGMODE_V_DIFFUSE(0));
        }
    }
    return result;
}

/// An upper bound of the number of vertices of all placed shapes.
std::uint64_t mostVertices(const Model& model) {
    std::uint64_t count = 0;
    for (const Instance& instance : model.instances) {
        for (const Primitive& primitive : model.meshes[instance.mesh].primitives) {
            count += std::min<std::uint64_t>(model.geometries[primitive.geometry].positions.size(),
                                             primitive.indexCount);
        }
    }
    return count;
}

/// Builds the scene, shape by shape.
class SceneBuilder {
public:
    SceneBuilder(const Model& model, const AssimpFormat& format) : model_(model), format_(format) {}

    AssimpScene build(const std::vector<std::string>& imageNames);

private:
    bool isHeld(const Primitive& primitive);
    void addPrimitives();
    void addMerged();
    void addNode(const aiString& name, unsigned meshCount);
    void moveIn(const std::vector<std::string>& imageNames);

    const Model& model_;
    const AssimpFormat& format_;
    AssimpScene result_;
    std::vector<std::unique_ptr<aiMesh>> meshes_;
    std::vector<std::unique_ptr<aiNode>> nodes_;
};

/// Whether the format can hold the primitive. Counts it if not.
bool SceneBuilder::isHeld(const Primitive& primitive) {
    const Geometry& geometry = model_.geometries[primitive.geometry];
    if (geometry.topology == Topology::kLines && !format_.hasLines) {
        result_.lines += primitive.indexCount / 2;
        return false;
    }
    if (geometry.topology == Topology::kPoints && !format_.hasPoints) {
        result_.points += primitive.indexCount;
        return false;
    }
    result_.coloredMeshes += !geometry.colors.empty() && !format_.hasVertexColors ? 1 : 0;
    return true;
}

void SceneBuilder::addNode(const aiString& name, unsigned meshCount) {
    auto node = std::make_unique<aiNode>();
    node->mName = name;
    node->mMeshes = new unsigned[meshCount];
    node->mNumMeshes = meshCount;
    for (unsigned i = 0; i < meshCount; ++i) {
        node->mMeshes[i] = static_cast<unsigned>(meshes_.size()) - meshCount + i;
    }
    nodes_.push_back(std::move(node));
}

void SceneBuilder::addPrimitives() {
    // Some formats merge all vertices into one list, in which vertices without colours would be
    // black.
    const bool hasColors =
        format_.hasVertexColors &&
        std::any_of(model_.geometries.begin(), model_.geometries.end(),
                    [](const Geometry& geometry) { return !geometry.colors.empty(); });
    for (std::size_t number = 0; number < model_.instances.size(); ++number) {
        const Instance& instance = model_.instances[number];
        const aiString name =
            nameOf(instance.name.empty() ? "shape_" + std::to_string(number + 1) : instance.name);
        const evaluate::InstanceTransform transform(instance.matrix);
        unsigned count = 0;
        for (const Primitive& primitive : model_.meshes[instance.mesh].primitives) {
            if (!isHeld(primitive)) {
                continue;
            }
            const Geometry& geometry = model_.geometries[primitive.geometry];
            AssimpMeshDraft draft(format_, hasColors, !geometry.uvs.empty(),
                                  !geometry.normals.empty());
            draft.add(model_, primitive, transform);
            meshes_.push_back(draft.finish(primitive.material, name));
            ++count;
        }
        if (count != 0) {
            addNode(name, count);
        }
    }
}

void SceneBuilder::addMerged() {
    const auto hasNormals = [](const Geometry& geometry) {
        return geometry.topology != Topology::kTriangles || !geometry.normals.empty();
    };
    AssimpMeshDraft draft(
        format_, format_.hasColors, false,
        std::all_of(model_.geometries.begin(), model_.geometries.end(), hasNormals));
    for (const Instance& instance : model_.instances) {
        const evaluate::InstanceTransform transform(instance.matrix);
        for (const Primitive& primitive : model_.meshes[instance.mesh].primitives) {
            if (isHeld(primitive)) {
                draft.add(model_, primitive, transform);
            }
        }
    }
    if (draft.vertexCount() != 0) {
        const aiString name("scene");
        meshes_.push_back(draft.finish(0, name));
        addNode(name, 1);
    }
}

/// Moves pointers into an array whose owner, an assimp structure, deletes it and the objects.
template <typename Item>
Item** released(std::vector<std::unique_ptr<Item>>& items) {
    auto** const array = new Item*[items.size()];
    std::transform(items.begin(), items.end(), array, [](auto& item) { return item.release(); });
    return array;
}

void SceneBuilder::moveIn(const std::vector<std::string>& imageNames) {
    std::vector<std::unique_ptr<aiMaterial>> materials;
    for (std::size_t i = 0; i < model_.materials.size(); ++i) {
        materials.push_back(materialOf(model_.materials[i], i, format_, imageNames));
    }
    if (materials.empty()) {
        materials.push_back(materialOf({}, 0, format_, imageNames));
    }
    result_.scene = std::make_unique<aiScene>();
    aiScene& scene = *result_.scene;
    scene.mMaterials = released(materials);
    scene.mNumMaterials = static_cast<unsigned>(materials.size());
    scene.mMeshes = released(meshes_);
    scene.mNumMeshes = static_cast<unsigned>(meshes_.size());
    scene.mRootNode = new aiNode("scene");
    for (const auto& node : nodes_) {
        node->mParent = scene.mRootNode;
    }
    scene.mRootNode->mChildren = released(nodes_);
    scene.mRootNode->mNumChildren = static_cast<unsigned>(nodes_.size());
}

AssimpScene SceneBuilder::build(const std::vector<std::string>& imageNames) {
    if (mostVertices(model_) > kMostPlacedVertices) {
        return {};
    }
    if (format_.isMerged) {
        addMerged();
    } else {
        addPrimitives();
    }
    moveIn(imageNames);
    return std::move(result_);
}

} // namespace

AssimpScene assimpSceneOf(const Model& model, const AssimpFormat& format,
                          const std::vector<std::string>& imageNames) {
    return SceneBuilder(model, format).build(imageNames);
}

} // namespace meshcast::exporter
