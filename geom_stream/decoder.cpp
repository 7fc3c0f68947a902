#include "geom_stream/decoder.h"

#include "geom_stream/reader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace geom_stream {
namespace {

// One function per production of docs/stream-format.md, in its order. Each reads through a
// Reader that keeps the first error and from then on yields zeros and empty arrays, so the
// functions read like the grammar; only loops over a count from the stream look whether the reader
// is well.

constexpr std::uint32_t magic = 0x474D3634;
constexpr std::uint32_t reversed_magic = 0x34364D47;
constexpr std::size_t property_words_size = 12;
constexpr std::uint32_t longest_string = 9'999'999;

constexpr std::uint32_t known_flags = [] {
    std::uint32_t bits = 0;
    for (const FlagName& entry : flag_names)
        bits |= entry.bit;
    return bits;
}();

std::vector<Property> read_properties(Reader& in) {
    std::vector<Property> properties;
    const auto count = in.count<std::int32_t>("property count");
    for (std::int32_t i = 0; i < count && in.ok(); ++i) {
        Property property;
        property.kind = in.word("property kind");
        const std::uint32_t length = in.word("property length");
        property.value = in.word("property value");
        property.bytes = in.run<std::vector<std::byte>>(length, "property bytes");
        properties.push_back(std::move(property));
    }
    return properties;
}

std::string read_string(Reader& in, std::string_view what) {
    const std::uint64_t start = in.offset();
    const std::uint32_t length = in.word(what);
    if (length > longest_string) {
        in.fail(start, "expected " + std::string(what) + " of at most " +
                           std::to_string(longest_string) + " bytes, found length " +
                           std::to_string(length));
        return {};
    }
    return in.run<std::string>(length, what);
}

/// Text that ends with the first NUL and takes no more than `limit` bytes with it.
std::string read_terminated(Reader& in, std::uint64_t limit, std::string_view what) {
    std::string text;
    for (std::uint64_t i = 0; i < limit && in.ok(); ++i) {
        const auto byte = in.scalar<std::byte>(what);
        if (byte == std::byte{0})
            return in.ok() ? text : "";
        text.push_back(static_cast<char>(byte));
    }
    in.fail(in.offset(), "expected the NUL of " + std::string(what) + " within hdrsize");
    return {};
}

void read_names(Reader& in, Object& object) {
    constexpr std::string_view name = "name";
    constexpr std::string_view second_text = "second text";
    constexpr std::size_t hdrsize_place = 4;

    std::uint64_t counted = 0;
    for (const Property& property : object.properties)
        counted += property_words_size + property.bytes.size();

    if (in.xdr()) {
        object.name = read_string(in, name);
        object.second_text = read_string(in, second_text);
    } else {
        for (const auto& [text, what] :
             {std::pair{&object.name, name}, std::pair{&object.second_text, second_text}}) {
            const std::uint64_t limit =
                object.header_size > counted ? object.header_size - counted : 0;
            *text = read_terminated(in, limit, what);
            counted += text->size() + 1;
        }
    }
    if (object.header_size != counted) {
        in.fail(object.offset + hdrsize_place, "expected hdrsize " + std::to_string(counted) +
                                                   ", found " + std::to_string(object.header_size));
    }
}

/// What may stand beside the vertices of a kind, and how many primitives they form.
struct ArrayPlan {
    std::uint32_t allowed;
    std::int64_t primitives;
};

/// What stands beside the vertices, in the order that all kinds share.
void read_attributes(Reader& in, std::uint32_t flags, ArrayPlan plan, std::int64_t count,
                     VertexArrays& into) {
    const auto has = [present = flags & plan.allowed](std::uint32_t bit) {
        return (present & bit) != 0;
    };
    into.normals = in.arrayIf<Vec3>(has(flag::normals), count, "normals");
    into.colours = in.arrayIf<Vec3>(has(flag::colours), count, "colours");
    into.uvs = in.arrayIf<Vec2>(has(flag::uvs), count, "uvs");
    into.uvws = in.arrayIf<Vec3>(has(flag::uvws), count, "uvws");
    into.vertex_data = in.arrayIf<std::int32_t>(has(flag::vertex_data), count, "vertex data ints");
    into.primitive_data =
        in.arrayIf<std::int32_t>(has(flag::primitive_data), plan.primitives, "primitive data ints");
    into.vertex_trans = in.arrayIf<float>(has(flag::vertex_trans), count, "vertex trans values");
}

void read_arrays(Reader& in, std::uint32_t flags, ArrayPlan plan, std::int64_t count,
                 VertexArrays& into) {
    into.vertices = in.array<Vec3>(count, "vertices");
    read_attributes(in, flags, plan, count, into);
}

constexpr std::uint32_t surface_flags = known_flags & ~(flag::label_data | flag::no_radii);
constexpr std::uint32_t line_flags = flag::colours | flag::vertex_data | flag::primitive_data;
constexpr std::uint32_t sphere_flags =
    flag::normals | flag::colours | flag::vertex_data | flag::vertex_trans;

Mesh read_mesh(Reader& in, std::uint32_t flags) {
    Mesh mesh;
    mesh.u = in.count("mesh dimension u");
    mesh.v = in.count("mesh dimension v");
    if (mesh.u != 0 && mesh.v > std::numeric_limits<std::int64_t>::max() / mesh.u) {
        in.failShort(std::to_string(mesh.u) + " x " + std::to_string(mesh.v) + " vertices");
        return mesh;
    }
    const std::int64_t vertices = mesh.u * mesh.v;
    const std::int64_t cells = vertices == 0 ? 0 : (mesh.u - 1) * (mesh.v - 1);
    read_arrays(in, flags, {surface_flags, cells}, vertices, mesh);
    return mesh;
}

/// Walks the list and reports the first word that contradicts P or I, by its place in the stream.
void check_polygon_list(Reader& in, const Polyhedron& polyhedron, std::uint64_t start) {
    const std::vector<std::int64_t>& words = polyhedron.polygon_list;
    const auto fail_at = [&](std::size_t word, const std::string& message) {
        in.fail(start + word * sizeof(std::int64_t), message);
    };
    const std::size_t last = words.size() - 1;
    std::size_t place = 0;
    std::int64_t polygons = 0;
    while (place < last && words[place] != 0) {
        const std::int64_t corners = words[place];
        if (corners < 0 || static_cast<std::uint64_t>(corners) >= last - place) {
            fail_at(place, "expected a corner count that fits the polygon list, found " +
                               std::to_string(corners));
            return;
        }
        place += static_cast<std::size_t>(corners) + 1;
        ++polygons;
    }
    if (words[last] != 0) {
        fail_at(last,
                "expected the 0 that ends the polygon list, found " + std::to_string(words[last]));
    }
    // A list that ends early may hold less than P and I state, never more.
    const std::int64_t indices = static_cast<std::int64_t>(place) - polygons;
    const bool agrees =
        place == last ? polygons == polyhedron.polygon_count
                      : polygons <= polyhedron.polygon_count && indices <= polyhedron.index_count;
    if (!agrees) {
        fail_at(place, "expected " + std::to_string(polyhedron.polygon_count) + " polygons with " +
                           std::to_string(polyhedron.index_count) +
                           " indices before the end of the list, found " +
                           std::to_string(polygons) + " with " + std::to_string(indices));
    }
}

Polyhedron read_polyhedron(Reader& in, std::uint32_t flags) {
    Polyhedron polyhedron;
    polyhedron.polygon_count = in.count("polygon count");
    polyhedron.index_count = in.count("index count");
    const std::int64_t vertices = in.count("vertex count");
    const std::uint64_t list = in.offset();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t words = polyhedron.polygon_count >= most - polyhedron.index_count
                                   ? most
                                   : polyhedron.polygon_count + polyhedron.index_count + 1;
    polyhedron.polygon_list = in.array<std::int64_t>(words, "polygon list words");
    if (in.ok())
        check_polygon_list(in, polyhedron, list);
    read_arrays(in, flags, {surface_flags, polyhedron.polygon_count}, vertices, polyhedron);
    return polyhedron;
}

Polytriangle read_polytriangle(Reader& in, std::uint32_t flags) {
    Polytriangle polytriangle;
    const std::int64_t strips = in.count("strip count");
    const std::int64_t polylines = in.count("polyline count");
    const bool has_segments = in.truth<std::int64_t>("segments marker");
    for (std::int64_t i = 0; i < strips && in.ok(); ++i) {
        const std::int64_t vertices = in.count("strip vertex count");
        read_arrays(in, flags, {surface_flags, vertices - 2}, vertices,
                    polytriangle.strips.emplace_back());
    }
    for (std::int64_t i = 0; i < polylines && in.ok(); ++i) {
        const std::int64_t vertices = in.count("polyline vertex count");
        read_arrays(in, flags, {line_flags, vertices - 1}, vertices,
                    polytriangle.polylines.emplace_back());
    }
    if (has_segments) {
        const std::int64_t vertices = in.count<std::int64_t>("segment vertex count", 1);
        read_arrays(in, flags, {line_flags, vertices / 2}, vertices, polytriangle.segments);
    }
    return polytriangle;
}

Sphere read_sphere(Reader& in, std::uint32_t flags) {
    Sphere sphere;
    const std::int64_t count = in.count("sphere count");
    sphere.vertices = in.array<Vec3>(count, "centres");
    sphere.radii = in.arrayIf<float>((flags & flag::no_radii) == 0, count, "radii");
    read_attributes(in, flags, {sphere_flags, 0}, count, sphere);
    return sphere;
}

std::string read_label_text(Reader& in) {
    const auto length = in.count<std::int32_t>("label length", 1);
    const std::uint64_t start = in.offset();
    auto text = in.run<std::string>(static_cast<std::uint64_t>(length), "label text");
    if (!in.ok())
        return {};
    if (text.find('\0') != text.size() - 1)
        in.fail(start, "expected a label text whose only NUL is its last byte");
    text.pop_back();
    return text;
}

Label read_label(Reader& in, std::uint32_t flags) {
    Label label;
    const std::int64_t count = in.count("label count");
    label.label_flags = in.word("label flags");
    for (std::int64_t i = 0; i < count && in.ok(); ++i)
        label.texts.push_back(read_label_text(in));
    label.positions = in.array<Vec3>(count, "positions");
    label.offsets = in.array<Vec3>(count, "offsets");
    label.heights = in.array<float>(count, "heights");
    label.colours = in.arrayIf<Vec3>((flags & flag::colours) != 0, count, "colours");
    label.data =
        in.arrayIf<std::int32_t>((flags & flag::label_data) != 0, count, "label data ints");
    return label;
}

void read_magic(Reader& in, Object& object) {
    const std::uint64_t start = in.offset();
    in.setOrder(std::endian::big);
    const std::uint32_t word = in.word("magic");
    if (word == magic) {
        object.version = 10;
    } else if (word == reversed_magic) {
        object.version = 7;
        in.setOrder(std::endian::little);
    } else {
        in.fail(start, "expected magic \"GM64\" or \"46MG\"");
    }
}

void read_body(Reader& in, Kind kind, Object& object) {
    switch (kind) {
    case Kind::mesh:
        object.body = read_mesh(in, object.flags);
        break;
    case Kind::polyhedron:
        object.body = read_polyhedron(in, object.flags);
        break;
    case Kind::polytriangle:
        object.body = read_polytriangle(in, object.flags);
        break;
    case Kind::sphere:
        object.body = read_sphere(in, object.flags);
        break;
    case Kind::label:
        object.body = read_label(in, object.flags);
        break;
    }
}

std::uint32_t read_flags(Reader& in) {
    const std::uint64_t start = in.offset();
    const std::uint32_t flags = in.word("data");
    // An unknown bit may stand for an array of unknown length: nothing after it could be placed.
    if ((flags & ~known_flags) != 0)
        in.fail(start, "expected data with bits 0x1 to 0x100 only, found " + std::to_string(flags));
    return flags;
}

Kind read_kind(Reader& in) {
    const std::uint64_t start = in.offset();
    const std::uint32_t type = in.word("type");
    if (type < static_cast<std::uint32_t>(Kind::mesh) ||
        type > static_cast<std::uint32_t>(Kind::label))
        in.fail(start, "expected type 1 to 5, found " + std::to_string(type));
    return static_cast<Kind>(type);
}

Object read_record(Reader& in) {
    Object object;
    object.offset = in.offset();
    read_magic(in, object);
    object.header_size = in.word("hdrsize");
    object.flags = read_flags(in);
    const Kind kind = read_kind(in);
    for (float& coordinate : object.extent)
        coordinate = in.scalar<float>("extent");
    object.has_extent = in.truth<std::int32_t>("has_extent");
    object.byte_count = in.scalar<std::int64_t>("bytecount");
    object.properties = read_properties(in);
    read_names(in, object);
    if (in.ok())
        read_body(in, kind, object);
    object.size = in.offset() - object.offset;
    return object;
}

} // namespace

std::string_view kind_name(Kind kind) {
    constexpr std::array<std::string_view, 5> names{"mesh", "polyhedron", "polytriangle", "sphere",
                                                    "label"};
    return names.at(static_cast<std::size_t>(kind) - 1);
}

std::vector<std::vector<std::int64_t>> Polyhedron::polygons() const {
    std::vector<std::vector<std::int64_t>> polygons;
    // A decoded list has been checked: corner counts are positive and fit, and the last word is 0.
    auto word = polygon_list.begin();
    while (word != polygon_list.end() && *word != 0) {
        const auto first = word + 1;
        const auto past = first + static_cast<std::ptrdiff_t>(*word);
        polygons.emplace_back(first, past);
        word = past;
    }
    return polygons;
}

RecordReader::RecordReader(ReadBytes read, std::optional<std::uint64_t> streamSize)
    : reader_(std::make_unique<Reader>(std::move(read), streamSize)) {}

RecordReader::~RecordReader() = default;

std::optional<Object> RecordReader::next() {
    if (!reader_->ok() || reader_->atEnd())
        return std::nullopt;
    Object object = read_record(*reader_);
    return reader_->ok() ? std::optional(std::move(object)) : std::nullopt;
}

const std::optional<Error>& RecordReader::error() const { return reader_->error(); }

std::uint64_t RecordReader::skipRest() { return reader_->skipRest(); }

DecodeResult decode(std::span<const std::byte> stream) {
    std::span<const std::byte> rest = stream;
    RecordReader reader(
        [&rest](std::byte* into, std::size_t capacity) {
            const std::size_t count = std::min(capacity, rest.size());
            std::copy_n(rest.begin(), count, into);
            rest = rest.subspan(count);
            return count;
        },
        stream.size());
    DecodeResult result;
    while (std::optional<Object> object = reader.next())
        result.objects.push_back(std::move(*object));
    result.error = reader.error();
    return result;
}

} // namespace geom_stream
