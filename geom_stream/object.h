#pragma once

#include "compat/geom/format.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#pragma GCC visibility push(default)

/// The objects of a GEOM stream, as docs/stream-format.md describes them. Values are as in the
/// stream.
namespace geom_stream {

using Vec2 = std::array<float, 2>;
using Vec3 = std::array<float, 3>;

/// The object kinds; the values are the `type` word of the header.
enum class Kind : std::uint32_t {
    kMesh = GEOM_MESH,
    kPolyhedron = GEOM_POLYHEDRON,
    kPolytriangle = GEOM_POLYTRIANGLE,
    kSphere = GEOM_SPHERE,
    kLabel = GEOM_LABEL
};

/// "mesh", "polyhedron", "polytriangle", "sphere" or "label".
std::string_view kindName(Kind kind);

/// Bits of the `data` word: which optional arrays a body holds.
namespace flag {
inline constexpr std::uint32_t kNormals = GEOM_HAS_NORMALS;
inline constexpr std::uint32_t kColours = GEOM_HAS_COLORS;
inline constexpr std::uint32_t kUvs = GEOM_HAS_UVS;
inline constexpr std::uint32_t kUvws = GEOM_HAS_UVWS;
inline constexpr std::uint32_t kLabelData = GEOM_HAS_LABEL_DATA;
inline constexpr std::uint32_t kNoRadii = GEOM_HAS_NO_RADII;
inline constexpr std::uint32_t kPrimitiveData = GEOM_HAS_PRIMITIVE_DATA;
inline constexpr std::uint32_t kVertexData = GEOM_HAS_VERTEX_DATA;
inline constexpr std::uint32_t kVertexTrans = GEOM_HAS_VERTEX_TRANS;
} // namespace flag

struct FlagName {
    std::uint32_t bit;
    std::string_view name;
};

/// Every bit of the `data` word with its name, lowest first.
inline constexpr std::array<FlagName, 9> kFlagNames{{
    {flag::kNormals, "normals"},
    {flag::kColours, "colours"},
    {flag::kUvs, "uvs"},
    {flag::kUvws, "uvws"},
    {flag::kLabelData, "label-data"},
    {flag::kNoRadii, "no-radii"},
    {flag::kPrimitiveData, "primitive-data"},
    {flag::kVertexData, "vertex-data"},
    {flag::kVertexTrans, "vertex-trans"},
}};

/// All of them. Records with other bits cannot be decoded.
inline constexpr std::uint32_t kKnownFlags = [] {
    std::uint32_t bits = 0;
    for (const FlagName& entry : kFlagNames) {
        bits |= entry.bit;
    }
    return bits;
}();

/// One property record of a header.
struct Property {
    std::uint32_t kind = 0;
    std::uint32_t value = 0;
    std::vector<std::byte> bytes;
};

/// The arrays of a set of vertices. An array is empty if its flag is clear or if the object's kind
/// does not have it. All but `primitiveData` have one element per vertex.
struct VertexArrays {
    std::vector<Vec3> vertices;
    std::vector<Vec3> normals;
    std::vector<Vec3> colours;
    std::vector<Vec2> uvs;
    std::vector<Vec3> uvws;
    std::vector<std::int32_t> vertexData;
    std::vector<std::int32_t> primitiveData;
    std::vector<float> vertexTrans;
};

/// A grid of u times v vertices.
struct Mesh : VertexArrays {
    std::int64_t u = 0;
    std::int64_t v = 0;
};

struct Polyhedron : VertexArrays {
    std::int64_t polygonCount = 0;         ///< P, as the stream states it
    std::int64_t indexCount = 0;           ///< I, as the stream states it
    std::vector<std::int64_t> polygonList; ///< the P + I + 1 words

    /// The 1-based vertex numbers of each polygon, up to the first 0 count of the list. If that 0
    /// comes early, these are fewer than `polygonCount` polygons.
    std::vector<std::vector<std::int64_t>> polygons() const;
};

struct Polytriangle {
    std::vector<VertexArrays> strips;
    std::vector<VertexArrays> polylines;
    VertexArrays segments; ///< disjoint line segments, two vertices each; empty when there are none
};

/// A set of spheres: `vertices` are the centres.
struct Sphere : VertexArrays {
    std::vector<float> radii; ///< one per centre, or none
};

/// A set of text labels. Every array has one element per label; `colours` and `data` may also be
/// empty.
struct Label {
    std::uint32_t labelFlags = 0;
    std::vector<std::string> texts; ///< without their NUL
    std::vector<Vec3> positions;
    std::vector<Vec3> offsets;
    std::vector<float> heights;
    std::vector<Vec3> colours;
    std::vector<std::int32_t> data;
};

/// One decoded record.
struct Object {
    std::uint64_t offset = 0;      ///< of the record in the stream, bytes
    std::uint64_t size = 0;        ///< of the record, bytes; the next one begins at offset + size
    int version = 0;               ///< 10 (big-endian) or 7 (little-endian)
    std::uint32_t headerSize = 0;  ///< the `hdrsize` word
    std::uint32_t flags = 0;       ///< the `data` word
    std::array<float, 6> extent{}; ///< minimum x, y, z, maximum x, y, z; not checked
    bool hasExtent = false;
    std::int64_t byteCount = 0; ///< the `bytecount` word
    std::vector<Property> properties;
    std::string name;
    std::string secondText;
    std::variant<Mesh, Polyhedron, Polytriangle, Sphere, Label> body;

    Kind kind() const { return static_cast<Kind>(body.index() + 1); }
    bool has(std::uint32_t flagBit) const { return (flags & flagBit) != 0; }

    /// The body of an object of that kind; throws std::bad_variant_access for other kinds.
    const Mesh& mesh() const { return std::get<Mesh>(body); }
    const Polyhedron& polyhedron() const { return std::get<Polyhedron>(body); }
    const Polytriangle& polytriangle() const { return std::get<Polytriangle>(body); }
    const Sphere& sphere() const { return std::get<Sphere>(body); }
    const Label& label() const { return std::get<Label>(body); }
};

/// The correct `bytecount` of a record of this object, modulo 2^64. The decoder does not compare it
/// with the one in the stream.
std::int64_t expectedByteCount(const Object& object);

} // namespace geom_stream

#pragma GCC visibility pop
