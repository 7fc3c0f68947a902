#pragma once

#include "evaluate/mesh_draft.h"
#include "evaluate/notes.h"
#include "evaluate/point_numbers.h"
#include "evaluate/properties.h"

namespace meshcast::evaluate {

/// Makes a mesh of the segments of an IndexedLineSet, in the space of the shape. It is lit when all
/// corners have normals. Segments with an invalid index are dropped and noted. `numbers` is a
/// buffer; reusing it for many line sets saves time.
MeshDraft makeLines(const QvIndexedLineSet& shape, const Properties& properties,
                    PointNumbers& numbers, Notes& notes);

} // namespace meshcast::evaluate
