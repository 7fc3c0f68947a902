#pragma once

#include "export/assimp_formats.h"
#include "export/export.h"

// The writers behind exportModel, one for each library that knows formats.

namespace meshcast::exporter {

/// A file whose bytes are in memory already.
File fileOf(std::string name, std::string bytes);

/// glTF 2.0 (Khronos; ISO/IEC 12113): one binary file, or text with its buffer and images beside.
Exported writeGltf(evaluate::Model&& model, bool isBinary, const Options& options);

/// A picture, as a PNG file (ISO/IEC 15948).
Exported writePicture(evaluate::Model&& model, const Options& options);

/// A page that shows the scene, with everything that it needs.
Exported writePage(evaluate::Model&& model, const Options& options);

/// A format of assimp's, with everything at its place in the world.
Exported writeWithAssimp(evaluate::Model&& model, const AssimpFormat& format,
                         const Options& options);

} // namespace meshcast::exporter
