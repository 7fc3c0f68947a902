#pragma once

#include "evaluate/model.h"
#include "export/gltf_layout.h"

#include <cstddef>
#include <string>
#include <vector>

namespace meshcast::exporter {

/// Names in the JSON of a glTF file.
struct GltfNames {
    std::string scene;
    std::string bufferUri;              ///< Empty: the buffer is in the same file.
    std::vector<std::string> imageUris; ///< Empty: the images are in the buffer.
};

/// The JSON of a glTF 2.0 file, without its buffer and images. With line breaks if `isForReaders`.
std::string gltfJson(const evaluate::Model& model, const GltfLayout& layout, const GltfNames& names,
                     bool isForReaders);

} // namespace meshcast::exporter
