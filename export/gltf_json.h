#pragma once

#include "evaluate/model.h"
#include "export/gltf_layout.h"

#include <cstddef>
#include <string>
#include <vector>

namespace meshcast::exporter {

/// How the JSON of a glTF file names its parts.
struct GltfNames {
    std::string scene;
    std::string bufferUri;              ///< Empty: the buffer is in the same file.
    std::vector<std::string> imageUris; ///< Empty: the images are in the buffer.
};

/// The JSON of a glTF 2.0 file: all but its buffer and images. Broken into lines for readers when
/// `isForReaders`.
std::string gltfJson(const evaluate::Model& model, const GltfLayout& layout, const GltfNames& names,
                     bool isForReaders);

} // namespace meshcast::exporter
