#pragma once

#include "evaluate/model.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <glm/vec3.hpp>
#include <utility>
#include <vector>

namespace meshcast::evaluate {

/// A range of indices with one material.
struct DraftPart {
    std::uint32_t firstIndex = 0, indexCount = 0;
    Material material;
};

/// A mesh that is not part of a model yet: a geometry with its indices grouped by material.
struct MeshDraft {
    Geometry geometry;
    std::vector<DraftPart> parts;
};

/// Adds a range of indices for each part. Moves the indices out of `parts`.
inline void addParts(MeshDraft& draft, std::vector<std::vector<std::uint32_t>>& parts,
                     const std::vector<Material>& materials) {
    auto& all = draft.geometry.indices;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        draft.parts.push_back({static_cast<std::uint32_t>(all.size()),
                               static_cast<std::uint32_t>(parts[i].size()), materials[i]});
        if (all.empty()) {
            all = std::move(
                parts[i]); // Moved, not copied: most shapes have a single part, which may be large.
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
