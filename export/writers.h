#pragma once

#include "export/assimp_formats.h"
#include "export/export.h"

// The writers that exportModel calls.

namespace meshcast::exporter {

/// A file whose bytes are already in memory.
File fileOf(std::string name, std::string bytes);

/// glTF 2.0 (Khronos; ISO/IEC 12113): one binary file, or JSON with its buffer and images in
/// separate files.
Exported writeGltf(evaluate::Model&& model, bool isBinary, const Options& options);

/// A picture, as a PNG file (ISO/IEC 15948).
Exported writePicture(evaluate::Model&& model, const Options& options);

/// An HTML page that shows the scene. It needs no other files.
Exported writePage(evaluate::Model&& model, const Options& options);

/// A format that assimp writes, with all shapes in world coordinates.
Exported writeWithAssimp(evaluate::Model&& model, const AssimpFormat& format,
                         const Options& options);

} // namespace meshcast::exporter
