#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Decoder of GEOM streams, written from docs/stream-format.md alone. It shares nothing with the
/// writer, so that each checks the other.
///
/// It accepts any bytes. Arrays are read in steps, so memory follows the largest record that is
/// there, not the stream and not a count that a stream claims. A departure from the format is an
/// error with its offset; vertex numbers and `bytecount` are handed on as they stand.
namespace geom_stream {

using Vec2 = std::array<float, 2>;
using Vec3 = std::array<float, 3>;

/// The object kinds; the values are the `type` word of the header.
enum class Kind : std::uint32_t { mesh = 1, polyhedron, polytriangle, sphere, label };

/// "mesh", "polyhedron", "polytriangle", "sphere" or "label".
std::string_view kind_name(Kind kind);

/// Bits of the `data` word: which optional arrays a body holds.
namespace flag {
inline constexpr std::uint32_t normals = 0x1;
inline constexpr std::uint32_t colours = 0x2;
inline constexpr std::uint32_t uvs = 0x4;
inline constexpr std::uint32_t uvws = 0x8;
inline constexpr std::uint32_t label_data = 0x10;
inline constexpr std::uint32_t no_radii = 0x20;
inline constexpr std::uint32_t primitive_data = 0x40;
inline constexpr std::uint32_t vertex_data = 0x80;
inline constexpr std::uint32_t vertex_trans = 0x100;
} // namespace flag

struct FlagName {
    std::uint32_t bit;
    std::string_view name;
};

/// Every bit of the `data` word with its name, lowest first.
inline constexpr std::array<FlagName, 9> flag_names{{
    {flag::normals, "normals"},
    {flag::colours, "colours"},
    {flag::uvs, "uvs"},
    {flag::uvws, "uvws"},
    {flag::label_data, "label-data"},
    {flag::no_radii, "no-radii"},
    {flag::primitive_data, "primitive-data"},
    {flag::vertex_data, "vertex-data"},
    {flag::vertex_trans, "vertex-trans"},
}};

/// One property record of a header.
struct Property {
    std::uint32_t kind = 0;
    std::uint32_t value = 0;
    std::vector<std::byte> bytes;
};

/// The arrays that a set of vertices may carry. Those whose flag is clear, and those that the
/// object's kind does not have, are empty. All but `primitive_data` have one element per vertex.
struct VertexArrays {
    std::vector<Vec3> vertices;
    std::vector<Vec3> normals;
    std::vector<Vec3> colours;
    std::vector<Vec2> uvs;
    std::vector<Vec3> uvws;
    std::vector<std::int32_t> vertex_data;
    std::vector<std::int32_t> primitive_data;
    std::vector<float> vertex_trans;
};

/// A grid of u times v vertices.
struct Mesh : VertexArrays {
    std::int64_t u = 0;
    std::int64_t v = 0;
};

struct Polyhedron : VertexArrays {
    std::int64_t polygon_count = 0;         ///< P, as the stream states it
    std::int64_t index_count = 0;           ///< I, as the stream states it
    std::vector<std::int64_t> polygon_list; ///< the P + I + 1 words as they stand

    /// The 1-based vertex numbers of each polygon, up to the first 0 count of the list; fewer than
    /// `polygon_count` when that 0 comes early.
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

/// A set of text labels; every array has one element per label but `colours` and `data`, which may
/// be empty.
struct Label {
    std::uint32_t label_flags = 0;
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
    std::uint32_t header_size = 0; ///< the `hdrsize` word
    std::uint32_t flags = 0;       ///< the `data` word
    std::array<float, 6> extent{}; ///< minimum x, y, z, maximum x, y, z; as written, valid or not
    bool has_extent = false;
    std::int64_t byte_count = 0; ///< the `bytecount` word
    std::vector<Property> properties;
    std::string name;
    std::string second_text;
    std::variant<Mesh, Polyhedron, Polytriangle, Sphere, Label> body;

    Kind kind() const { return static_cast<Kind>(body.index() + 1); }
    bool has(std::uint32_t flag_bit) const { return (flags & flag_bit) != 0; }

    /// The body of an object that is known to be of that kind; throws std::bad_variant_access for
    /// another.
    const Mesh& mesh() const { return std::get<Mesh>(body); }
    const Polyhedron& polyhedron() const { return std::get<Polyhedron>(body); }
    const Polytriangle& polytriangle() const { return std::get<Polytriangle>(body); }
    const Sphere& sphere() const { return std::get<Sphere>(body); }
    const Label& label() const { return std::get<Label>(body); }
};

/// The value that `bytecount` has in a faithful record of this object, modulo 2^64. The decoder
/// itself needs no `bytecount` and does not compare it.
std::int64_t expected_byte_count(const Object& object);

struct Error {
    std::uint64_t offset = 0; ///< in the stream, of the item that is missing or wrong
    std::string message;      ///< what was expected there and what was found
};

/// Stores at most `capacity` bytes of a stream, in order, and returns how many; 0 at its end, for
/// good.
using ReadBytes = std::function<std::size_t(std::byte* into, std::size_t capacity)>;

class Reader;

/// Reads a stream record by record.
class RecordReader {
public:
    /// With the size of the stream, where it is known, counts that it cannot hold are told before
    /// anything is read for them.
    explicit RecordReader(ReadBytes read, std::optional<std::uint64_t> streamSize = std::nullopt);
    ~RecordReader();
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    /// The next object; none at the end of the stream and from the first error on.
    std::optional<Object> next();
    const std::optional<Error>& error() const;
    /// Reads what is left of the stream, and returns the size of all of it.
    std::uint64_t skipRest();

private:
    std::unique_ptr<Reader> reader_;
};

struct DecodeResult {
    std::vector<Object> objects; ///< in stream order; those before the error, if there is one
    std::optional<Error> error;
};

/// Decodes a whole stream in memory; an empty one holds zero objects.
DecodeResult decode(std::span<const std::byte> stream);

} // namespace geom_stream
