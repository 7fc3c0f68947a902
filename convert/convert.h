#pragma once

#include "compat/geom/format.h"
#include "convert/image_conversion.h"

#include <string>

namespace meshcast {

class ByteSource;
class Diagnostics;
class ObjectSink;
class Scene;

/// What may be chosen of a conversion. The defaults are the filter's.
struct ConvertOptions {
    int version = GEOM_VERSION_XDR; ///< Of the records that a sink writes; below it, version 7.
    bool verify = false;            ///< Objects are checked when they are written and destroyed.
    bool text = false;              ///< Text becomes labels. Nothing turns it on yet.
    bool textures = false;          ///< Shapes carry texture coordinates and images are prepared.
                                    ///< Nothing turns it on yet.
    ImageConversion images;         ///< How images are prepared.
    std::string programTag = "MESHCAST"; ///< The name of an image whose scene gives it none.
};

/// Converts every shape of a scene, in the order of one walk, into GEOM objects. Each is handed to
/// `sink` when it is complete and destroyed after that. Conversions may run at once in several
/// threads, each with a sink and diagnostics of its own.
void convertScene(const Scene& scene, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options = {});

/// Reads a scene and converts it. A scene that cannot be read to its end gives no objects: that has
/// been reported, and the result is false.
bool convertScene(ByteSource& source, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options = {});

} // namespace meshcast
