#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/model.h"

#include <glm/mat4x4.hpp>
#include <optional>

namespace meshcast::evaluate {

/// How a shape is placed: by the matrix of its instance and, if necessary, by another matrix that
/// is applied to its vertices first.
struct Placement {
    Matrix instance = kIdentity;
    /// What the matrix of an instance cannot express: shearing, flattening, perspective.
    std::optional<glm::dmat4> baked;
    /// The baked matrix has no inverse or is a perspective, so it cannot transform normals.
    bool losesNormals = false;
};

/// Splits a matrix into the part for an instance and the part to bake. Nothing when the matrix is
/// not finite or maps no point to a finite one.
std::optional<Placement> placementOf(const glm::dmat4& matrix);

/// Applies the baked matrix of a placement to a mesh. If it mirrors, reverses the winding of the
/// triangles, so that they keep their front. If normals are lost, triangles get flat normals, and
/// degenerate triangles and lines are dropped.
void bake(MeshDraft& mesh, const Placement& placement);

/// The rotation and translation of a matrix, without scaling, shearing and mirroring, for cameras
/// and lights. Z keeps its exact direction, Y the nearest one possible. `scale` receives the
/// geometric mean of the scale.
Matrix rigidPart(const glm::dmat4& matrix, double& scale);

} // namespace meshcast::evaluate
