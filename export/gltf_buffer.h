#pragma once

#include "evaluate/model.h"
#include "export/gltf_layout.h"

#include <string>

namespace meshcast::exporter {

/// Appends the buffer of a glTF file: little-endian, `layout.size` bytes. The lists of the model
/// are freed one after the other as they are written.
void appendBuffer(std::string& bytes, evaluate::Model& model, const GltfLayout& layout);

} // namespace meshcast::exporter
