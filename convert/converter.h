#pragma once

#include "convert/convert.h"
#include "convert/record_cache.h"
#include "convert/texture.h"
#include "traverse/shape_visitor.h"
#include "vrml/diagnostics.h"
#include "vrml/fields.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace meshcast {

struct DestroyObject {
    void operator()(GEOMobj* object) const { GEOMdestroy_obj(object); }
};

/// Owns a GEOM object until it goes out of scope.
using ObjectOwner = std::unique_ptr<GEOMobj, DestroyObject>;

/// Whether and how a polyhedron gets normals.
enum class Normals : std::int8_t { kNone, kSmooth, kFacet };

/// Half a length, computed in double and rounded to float.
inline float half(float length) { return static_cast<float>(static_cast<double>(length) * 0.5); }

/// Passes messages on and counts them.
class CountedDiagnostics final : public Diagnostics {
public:
    explicit CountedDiagnostics(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

    void report(const Diagnostic& diagnostic) override {
        ++count_;
        diagnostics_.report(diagnostic);
    }
    std::uint64_t count() const { return count_; }

private:
    Diagnostics& diagnostics_;
    std::uint64_t count_ = 0;
};

/// The visitor that converts shapes into GEOM objects, one visitor per conversion. Each shape is
/// converted in the file named after it; cubes and inlined scenes are in box.cpp, cones, cylinders
/// and spheres in primitives.cpp.
class Converter final : public ShapeVisitor {
public:
    Converter(ObjectSink& sink, CountedDiagnostics& diagnostics, const ConvertOptions& options);

    void visit(const QvAsciiText& shape, const QvState& state) override;
    void visit(const QvCone& shape, const QvState& state) override;
    void visit(const QvCube& shape, const QvState& state) override;
    void visit(const QvCylinder& shape, const QvState& state) override;
    void visit(const QvIndexedFaceSet& shape, const QvState& state) override;
    void visit(const QvIndexedLineSet& shape, const QvState& state) override;
    void visit(const QvPointSet& shape, const QvState& state) override;
    void visit(const QvSphere& shape, const QvState& state) override;
    void visit(const QvWWWInline& shape, const QvState& state) override;

    /// Prepares the image of a texture as the file that convertedName names. An inline image is
    /// written as a raw file, whose name the texture has from then on; for an image file the
    /// converter is run. An image of an unknown type is reported through the sink's print and turns
    /// textures off.
    void prepareTexture(const QvTexture2& texture) override;

    /// The texture in force; none when textures are off or no Texture2 node names an image.
    std::optional<TextureUse> textureInForce(const QvState& state) const;

private:
    /// Writes the kept records of a shape, if there are any. Otherwise converts the shape, and
    /// keeps its records if it occurred before.
    template <class Shape>
    void convertOrRepeat(const Shape& shape, const QvState& state);
    void convert(const QvCone& shape, const QvState& state);
    void convert(const QvCube& shape, const QvState& state);
    void convert(const QvCylinder& shape, const QvState& state);
    void convert(const QvIndexedFaceSet& shape, const QvState& state);
    void convert(const QvIndexedLineSet& shape, const QvState& state);
    void convert(const QvPointSet& shape, const QvState& state);
    void convert(const QvSphere& shape, const QvState& state);

    /// Passes an object to the sink.
    void write(const GEOMobj& object);
    /// Writes a polyhedron: `vertices` holds 3 floats per vertex, `polygons` the counts and 1-based
    /// indices of a polygon list with its closing 0, `uvs` 2 floats per vertex or nothing.
    void writePolyhedron(std::span<const float> vertices, std::span<const std::int32_t> polygons,
                         Normals normals, std::span<const float> uvs = {});
    void reportBadIndex(const char* shape, std::int32_t index);
    std::vector<std::int32_t> polygonList(std::span<const std::int32_t> coordIndex,
                                          std::int32_t points);
    std::vector<float> textureCoordinates(const QvState& state, const QvIndexedFaceSet& shape,
                                          const QvMFVec3f& points) const;
    std::string_view fileName(const QvTexture2& texture) const;

    ObjectSink& sink_;
    CountedDiagnostics& diagnostics_;
    const ConvertOptions& options_;
    bool textures_;
    /// Whether kept records may be written. Not with textures, verification or the trace, which
    /// print text for each conversion.
    const bool mayRepeat_;
    RecordCache cache_;
    ShapeRecords records_;   ///< Of the current shape, if isKeeping_.
    bool isKeeping_ = false; ///< The records of the current shape are to be kept.
    bool sinesPrinted_ = false;
    std::set<const QvTexture2*> writtenImages_; ///< Textures whose image is a raw file.
};

} // namespace meshcast
