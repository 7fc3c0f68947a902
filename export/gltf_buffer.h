#pragma once

#include "evaluate/model.h"
#include "export/export.h"
#include "export/gltf_layout.h"

namespace meshcast::exporter {

/// Writes the buffer of a glTF file: little-endian, `layout.size` bytes. The lists of the model
/// are freed one after the other as they are written.
void writeBuffer(ByteSink& sink, evaluate::Model& model, const GltfLayout& layout);

} // namespace meshcast::exporter
