#include "evaluate/mesh_table.h"

#include "vrml/keyed_hash.h"

#include <array>
#include <type_traits>
#include <utility>

namespace meshcast::evaluate {

namespace {

std::uint32_t lastOf(const auto& list) { return static_cast<std::uint32_t>(list.size() - 1); }

template <class Object>
std::size_t hashOfBytes(const Object& object) {
    return static_cast<std::size_t>(
        keyedHash({reinterpret_cast<const char*>(&object), sizeof object}));
}

} // namespace

std::size_t MeshTableHash::operator()(const MeshKey& key) const {
    static_assert(std::has_unique_object_representations_v<MeshKey>);
    return hashOfBytes(key);
}

std::size_t MeshTableHash::operator()(const Material& material) const {
    const auto& [r, g, b, a] = material.baseColor;
    std::array values = {r,
                         g,
                         b,
                         a,
                         material.emissive[0],
                         material.emissive[1],
                         material.emissive[2],
                         material.specular[0],
                         material.specular[1],
                         material.specular[2],
                         material.shininess};
    for (float& value : values) {
        value += 0.0F; // Turns -0 into 0.
    }
    return hashOfBytes(values);
}

MeshKey MeshKey::withoutMaterial() const {
    MeshKey key = *this;
    key.material = 0;
    key.materialBinding = 0;
    key.texture =
        texture == 0 ? 0 : 1; // The geometry only depends on whether there are texture coordinates.
    return key;
}

MeshTable::FirstUse& MeshTable::firstUse(const MeshKey& key) {
    return firstUses_.try_emplace(key.shape, FirstUse{key, {}, {}}).first->second;
}

std::optional<MeshTable::Found>& MeshTable::meshOf(const MeshKey& key) {
    FirstUse& first = firstUse(key);
    return first.key == key ? first.mesh : meshes_[key];
}

std::optional<MeshTable::Found>& MeshTable::geometryOf(const MeshKey& key) {
    FirstUse& first = firstUse(key);
    const MeshKey bare = key.withoutMaterial();
    return first.key.withoutMaterial() == bare ? first.geometry : geometries_[bare];
}

const MeshTable::Found* MeshTable::find(const MeshKey& key) {
    const std::optional<Found>& found = meshOf(key);
    return found ? &*found : nullptr;
}

const MeshTable::Found* MeshTable::findGeometry(const MeshKey& key) {
    const std::optional<Found>& found = geometryOf(key);
    return found ? &*found : nullptr;
}

std::uint32_t MeshTable::numberOf(const Material& material) {
    const auto [known, isNew] = materials_.try_emplace(material, 0);
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
    meshOf(key) = mesh;
    return mesh;
}

MeshTable::Found MeshTable::add(const MeshKey& key, MeshDraft draft) {
    if (draft.parts.size() == 1 && draft.geometry.colors.empty()) {
        std::optional<Found>& geometry = geometryOf(key);
        if (!geometry) {
            geometry.emplace();
            if (!draft.geometry.indices.empty()) {
                model_.geometries.push_back(std::move(draft.geometry));
                *geometry = lastOf(model_.geometries);
            }
        }
        return add(key, *geometry, draft.parts[0].material);
    }
    Mesh mesh;
    for (const DraftPart& part : draft.parts) {
        if (part.indexCount > 0) {
            mesh.primitives.push_back({static_cast<std::uint32_t>(model_.geometries.size()),
                                       part.firstIndex, part.indexCount, numberOf(part.material)});
        }
    }
    Found& found = meshOf(key).emplace();
    if (!mesh.primitives.empty()) {
        model_.geometries.push_back(std::move(draft.geometry));
        model_.meshes.push_back(std::move(mesh));
        found = lastOf(model_.meshes);
    }
    return found;
}

} // namespace meshcast::evaluate
