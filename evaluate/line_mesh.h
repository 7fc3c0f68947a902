#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/notes.h"
#include "evaluate/properties.h"

namespace meshcast::evaluate {

/// The lines of an IndexedLineSet, each segment by itself, in the space of the shape. Lit when all
/// corners have normals. Segments with an index that names no point are dropped and noted.
MeshDraft makeLines(const QvIndexedLineSet& shape, const Properties& properties, Notes& notes);

} // namespace meshcast::evaluate
