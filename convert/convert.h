#pragma once

#include "compat/geom/geom.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

class ByteSource;
class Diagnostics;
class Scene;

/// Receives the objects of a conversion one by one.
class ObjectSink {
public:
    virtual ~ObjectSink() = default;

    /// Takes an object, which is destroyed after the call. During the call, GEOMwrite_obj() uses
    /// the version and verification of the conversion's options.
    virtual void write(const GEOMobj& object) = 0;

    /// Takes an object as write() does. A sink that can write the record again copies it to `room`,
    /// which has GEOM_COPY_BYTES, and returns its size; 0 if it cannot, or the record is not
    /// shorter.
    virtual std::size_t writeAndCopy(const GEOMobj& object, std::span<unsigned char> room);
    /// Writes such a copy.
    virtual void writeCopy(std::span<const unsigned char> record);

    /// Takes text that is meant for standard output. Only textures produce such text.
    virtual void print(std::string_view text) = 0;
};

/// Writes every object to a descriptor as one record, and text to the standard output of the C
/// library. That is buffered, so the text usually appears after the records. Kept: readers of such
/// streams expect it there.
class DescriptorSink final : public ObjectSink {
public:
    explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}
    void write(const GEOMobj& object) override;
    std::size_t writeAndCopy(const GEOMobj& object, std::span<unsigned char> room) override;
    void writeCopy(std::span<const unsigned char> record) override;
    void print(std::string_view text) override;

private:
    int descriptor_;
};

/// How external programs convert the images of textures.
struct ImageConversion {
    std::string folder = "/tmp"; ///< Where the converted copies go.
    /// The commands that convert RGB, GIF and JPEG images.
    std::array<std::string, 3> converters = {"rgb2kra", "gif2kra", "jpg2kra"};
};

/// The options of a conversion. The defaults are those of the filter.
struct ConvertOptions {
    int version = GEOM_VERSION_XDR; ///< Of the records; any lower version means 7.
    bool verify = false;            ///< Objects are checked when they are written and destroyed.
    bool text = false;              ///< Text becomes labels. Nothing turns it on yet.
    bool textures = false;          ///< Shapes carry texture coordinates and images are prepared.
                                    ///< Nothing turns it on yet.
    ImageConversion images;         ///< How images are prepared.
    std::string programTag = "MESHCAST"; ///< The name of an image whose scene gives it none.
};

/// The options that the environment sets: version and verification as in
/// GEOMenvironment_settings(), RGBTMP for the folder of the images, and RGBCONV, GIFCONV and
/// JPGCONV for the converters. Each of these four counts as not set when it is empty.
ConvertOptions environmentOptions();

/// Converts every shape of a scene, in the order of one walk, into GEOM objects. Each object is
/// passed to `sink` and then destroyed. Several threads may convert at the same time, each with its
/// own sink and diagnostics.
void convertScene(const Scene& scene, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options = {});

/// Reads a scene and converts it. If the scene cannot be read, reports that, writes no objects and
/// returns false.
bool convertScene(ByteSource& source, ObjectSink& sink, Diagnostics& diagnostics,
                  const ConvertOptions& options = {});

} // namespace meshcast

#pragma GCC visibility pop
