#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/properties.h"

#include <cstddef>

namespace meshcast::evaluate {

/// Makes a mesh of the existing points of a PointSet, in the space of the shape. It is lit when all
/// of them have normals. Materials and normals are bound by the position among the drawn points or,
/// for indexed bindings, among all points.
MeshDraft makePoints(const QvPointSet& shape, const Properties& properties);

/// How many points a PointSet draws, including points that are not finite.
std::size_t countPoints(const QvPointSet& shape, const Properties& properties);

} // namespace meshcast::evaluate
