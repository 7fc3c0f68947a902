#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/notes.h"
#include "evaluate/point_numbers.h"
#include "evaluate/properties.h"

namespace meshcast::evaluate {

/// The lines of an IndexedLineSet, each segment by itself, in the space of the shape. Lit when all
/// corners have normals. Segments with an index that names no point are dropped and noted.
/// `numbers` is a buffer: the same for many line sets saves time.
MeshDraft makeLines(const QvIndexedLineSet& shape, const Properties& properties,
                    PointNumbers& numbers, Notes& notes);

} // namespace meshcast::evaluate
