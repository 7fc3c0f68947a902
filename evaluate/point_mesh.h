#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/properties.h"

#include <cstddef>

namespace meshcast::evaluate {

/// The points of a PointSet that exist, in the space of the shape. Lit when all of
/// them have normals. Materials and normals are bound by the number of a point
/// among those drawn, or, where the binding is indexed, among all of them.
MeshDraft makePoints(const QvPointSet& shape, const Properties& properties);

/// How many points a PointSet draws, the ones without a place counted too.
std::size_t countPoints(const QvPointSet& shape, const Properties& properties);

} // namespace meshcast::evaluate
