#pragma once

#include "evaluate/model.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <glm/vec3.hpp>
#include <utility>
#include <vector>

namespace meshcast::evaluate {

/// A range of indices that are painted alike.
struct DraftPart {
    std::uint32_t firstIndex = 0, indexCount = 0;
    Material material;
};

/// A mesh before it is part of a model: one geometry, whose indices are parted by material.
struct MeshDraft {
    Geometry geometry;
    std::vector<DraftPart> parts;
};

/// Adds a range of indices for each part. Takes the indices out of `parts`.
inline void addParts(MeshDraft& draft, std::vector<std::vector<std::uint32_t>>& parts,
                     const std::vector<Material>& materials) {
    auto& all = draft.geometry.indices;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        draft.parts.push_back({static_cast<std::uint32_t>(all.size()),
                               static_cast<std::uint32_t>(parts[i].size()), materials[i]});
        if (all.empty()) {
            all = std::move(parts[i]); // Most shapes have one part, perhaps a large one.
        } else {
            all.insert(all.end(), parts[i].begin(), parts[i].end());
        }
    }
}

inline glm::dvec3 wide(const Vec3& v) { return {v[0], v[1], v[2]}; }

inline Vec3 narrow(const glm::dvec3& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

inline bool isFinite(const Vec3& v) {
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

} // namespace meshcast::evaluate
