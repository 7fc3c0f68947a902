#pragma once

#include "compat/geom/geom.h"

#include <array>
#include <string>
#include <string_view>

namespace meshcast {

class ByteSource;
class Diagnostics;
class Scene;

/// Receives the objects of a conversion, one by one.
class ObjectSink {
public:
    virtual ~ObjectSink() = default;

    /// Takes an object, which is destroyed after the call. While it runs, GEOMwrite_obj() writes
    /// records as the conversion's options ask for.
    virtual void write(const GEOMobj& object) = 0;

    /// Takes text that is meant for standard output: textures bring some along.
    virtual void print(std::string_view text) = 0;
};

/// Writes every object to a descriptor, as one record, and text to the buffered standard output of
/// the C library: it lands after the records that are being written. Kept, readers of such streams
/// know it there.
class DescriptorSink final : public ObjectSink {
public:
    explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}
    void write(const GEOMobj& object) override;
    void print(std::string_view text) override;

private:
    int descriptor_;
};

/// How the images of textures are converted, by programs of their own.
struct ImageConversion {
    std::string folder = "/tmp"; ///< Where the converted copies go.
    /// The commands that convert RGB, GIF and JPEG images.
    std::array<std::string, 3> converters = {"rgb2kra", "gif2kra", "jpg2kra"};
};

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

/// The options that the environment asks for: version and verification as
/// GEOMenvironment_settings() says, RGBTMP for the folder of the images, and RGBCONV, GIFCONV and
/// JPGCONV for the converters. Of these four, an empty value counts as not set: no folder and no
/// command has an empty name.
ConvertOptions environmentOptions();

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
