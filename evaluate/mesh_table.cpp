#include "evaluate/mesh_table.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace meshcast::evaluate {

namespace {

const MeshTable::Found* lookUp(const std::map<MeshKey, MeshTable::Found>& table,
                               const MeshKey& key) {
    const auto found = table.find(key);
    return found == table.end() ? nullptr : &found->second;
}

std::uint64_t hashOf(const Material& material) {
    constexpr std::uint64_t kPrime = 0x100000001B3; // Of the FNV-1a hash.
    std::uint64_t hash = 0xCBF29CE484222325;
    const auto add = [&hash](float value) {
        hash = (hash ^ std::bit_cast<std::uint32_t>(value + 0.0F)) * kPrime;
    };
    std::for_each(material.baseColor.begin(), material.baseColor.end(), add);
    std::for_each(material.emissive.begin(), material.emissive.end(), add);
    std::for_each(material.specular.begin(), material.specular.end(), add);
    add(material.shininess);
    return hash;
}

std::uint32_t lastOf(const auto& list) { return static_cast<std::uint32_t>(list.size() - 1); }

} // namespace

MeshKey MeshKey::withoutMaterial() const {
    MeshKey key = *this;
    key.material = 0;
    key.materialBinding = 0;
    key.texture = texture == 0 ? 0 : 1; // All that matters is whether there are coordinates.
    return key;
}

const MeshTable::Found* MeshTable::find(const MeshKey& key) const { return lookUp(meshes_, key); }

const MeshTable::Found* MeshTable::findGeometry(const MeshKey& key) const {
    return lookUp(geometries_, key.withoutMaterial());
}

std::uint32_t MeshTable::numberOf(const Material& material) {
    const auto [known, isNew] = materials_.try_emplace({hashOf(material), material}, 0);
    if (isNew) {
        model_.materials.push_back(material);
        known->second = lastOf(model_.materials);
    }
    return known->second;
}

MeshTable::Found MeshTable::add(const MeshKey& key, const Found& geometry,
                                const Material& material) {
    Found mesh;
    if (geometry) {
        const std::size_t count = model_.geometries[*geometry].indices.size();
        model_.meshes.push_back(
            {{{*geometry, 0, static_cast<std::uint32_t>(count), numberOf(material)}}});
        mesh = lastOf(model_.meshes);
    }
    meshes_[key] = mesh;
    return mesh;
}

MeshTable::Found MeshTable::add(const MeshKey& key, MeshDraft draft) {
    if (draft.parts.size() == 1 && draft.geometry.colors.empty()) {
        const auto [known, isNew] = geometries_.try_emplace(key.withoutMaterial());
        if (isNew && !draft.geometry.indices.empty()) {
            model_.geometries.push_back(std::move(draft.geometry));
            known->second = lastOf(model_.geometries);
        }
        return add(key, known->second, draft.parts[0].material);
    }
    Mesh mesh;
    for (const DraftPart& part : draft.parts) {
        if (part.indexCount > 0) {
            mesh.primitives.push_back({static_cast<std::uint32_t>(model_.geometries.size()),
                                       part.firstIndex, part.indexCount, numberOf(part.material)});
        }
    }
    Found& found = meshes_[key];
    if (!mesh.primitives.empty()) {
        model_.geometries.push_back(std::move(draft.geometry));
        model_.meshes.push_back(std::move(mesh));
        found = lastOf(model_.meshes);
    }
    return found;
}

} // namespace meshcast::evaluate
