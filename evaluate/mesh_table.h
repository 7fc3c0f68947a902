#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/model.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <vector>

namespace meshcast::evaluate {

/// A number that identifies an object or an array of doubles, so that keys stay small. 0 means
/// none.
using KeyPart = std::uintptr_t;

inline KeyPart keyOf(const void* object) { return reinterpret_cast<KeyPart>(object); }

/// Everything that a mesh depends on.
struct MeshKey {
    /// A node, or the kind and parts of a solid: all solids of a kind share a mesh.
    KeyPart shape = 0;
    KeyPart coordinates = 0, normals = 0, hints = 0, textureCoordinates = 0, fontStyle = 0;
    KeyPart material = 0, texture = 0, textureMatrix = 0, baked = 0;
    std::int32_t materialBinding = 0, normalBinding = 0;

    /// The part of the key that the geometry depends on, if it has no colours and only one part.
    MeshKey withoutMaterial() const;

    bool operator==(const MeshKey&) const = default;
};

/// Hashes with a random secret, so that no scene can be made to cause collisions.
struct MeshTableHash {
    std::size_t operator()(const MeshKey& key) const;
    std::size_t operator()(const Material& material) const;
};

/// Numbers arrays of doubles from 1. Arrays with equal bits get equal numbers; comparing bits also
/// works for NaN.
template <std::size_t Count>
class ArrayNumbers {
public:
    KeyPart numberOf(const std::array<double, Count>& array) {
        const auto bits = std::bit_cast<std::array<std::uint64_t, Count>>(array);
        return numbers_.try_emplace(bits, numbers_.size() + 1).first->second;
    }

private:
    std::map<std::array<std::uint64_t, Count>, KeyPart> numbers_;
};

/// Adds meshes, geometries and materials to a model, without duplicates.
class MeshTable {
public:
    /// The index of a mesh or geometry; nothing for a mesh that would be empty.
    using Found = std::optional<std::uint32_t>;

    explicit MeshTable(Model& model) : model_(model) {}

    /// The mesh of a key; null when it was not added yet.
    const Found* find(const MeshKey& key);
    /// The geometry of a key without material, which has one part; null when there is none yet.
    const Found* findGeometry(const MeshKey& key);

    /// Adds a mesh of one part with a geometry returned by findGeometry.
    Found add(const MeshKey& key, const Found& geometry, const Material& material);
    /// Adds a mesh. Parts without triangles, lines or points are left out.
    Found add(const MeshKey& key, MeshDraft draft);

private:
    std::uint32_t numberOf(const Material& material);

    /// The result of the first use of a shape. Most shapes are used only once, and one small table
    /// for these is faster than two large ones.
    struct FirstUse {
        MeshKey key;
        std::optional<Found> mesh, geometry;
    };
    FirstUse& firstUse(const MeshKey& key);
    std::optional<Found>& meshOf(const MeshKey& key);
    std::optional<Found>& geometryOf(const MeshKey& key);

    Model& model_;
    /// Memory of the tables. They only grow, so entries are allocated contiguously and freed at
    /// once.
    std::pmr::monotonic_buffer_resource memory_;
    std::pmr::unordered_map<KeyPart, FirstUse> firstUses_{&memory_};
    std::pmr::unordered_map<MeshKey, std::optional<Found>, MeshTableHash> meshes_{&memory_};
    std::pmr::unordered_map<MeshKey, std::optional<Found>, MeshTableHash> geometries_{&memory_};
    std::pmr::unordered_map<Material, std::uint32_t, MeshTableHash> materials_{&memory_};
};

} // namespace meshcast::evaluate
