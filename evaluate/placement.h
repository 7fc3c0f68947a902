#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/model.h"

#include <glm/mat4x4.hpp>
#include <optional>

namespace meshcast::evaluate {

/// How a shape gets to its place: by the matrix of an instance, after perhaps another one has been
/// applied to its vertices.
struct Placement {
    Matrix instance = kIdentity;
    /// What no instance may hold: what shears, flattens, or shows things in perspective.
    std::optional<glm::dmat4> baked;
    /// The baked matrix has no inverse, or makes directions depend on the place.
    bool losesNormals = false;
};

/// Parts a matrix into what an instance may hold and what must be baked. Nothing when some of it is
/// no finite number, or no point would have a place.
std::optional<Placement> placementOf(const glm::dmat4& matrix);

/// Applies the baked matrix of a placement to a mesh. A mirror turns the triangles over, so that
/// they keep their front. Where normals are lost, triangles get those of their planes, and
/// triangles and lines without extent are dropped.
void bake(MeshDraft& mesh, const Placement& placement);

/// Where a matrix moves and turns the axes to, without what it stretches, shears and mirrors: for
/// cameras and lights. Z keeps its direction, Y as far as it can. `scale` receives how much longer
/// lengths get, taken over all directions.
Matrix rigidPart(const glm::dmat4& matrix, double& scale);

} // namespace meshcast::evaluate
