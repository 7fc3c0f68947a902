// The record of an object:
//
//   header    magic, hdrsize, data, type (ints); extent (6 floats); has_extent (int);
//             bytecount (64-bit); nvals (int)
//             nvals properties: kind, length, value (ints), then the bytes (opaque)
//             name and second text: two strings (XDR), or both with their NULs (raw)
//   body      counts (64-bit), then arrays without lengths; the header's `data` tells which of the
//             optional ones are present

#include "compat/geom/writer.h"

#include "compat/geom/bytecount.h"
#include "compat/geom/list.h"
#include "compat/geom/parts.h"
#include "compat/geom/prop.h"
#include "compat/geom/settings.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace {

// ---- Trace

std::uint32_t low_word(const void* pointer) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

void trace_writer(const char* kind, GEOMwrite_func func, const GEOMhead* head, const GEOMobj* obj,
                  const GEOMstream* arg, int proto_version) {
    if (!geom::trace_wanted())
        return;
    // Not %p, because C libraries differ in the prefix that they print. Kept: this line shows whole
    // pointers, while the lines around it show their low 32 bits.
    const auto digits = [](auto pointer) { return reinterpret_cast<std::uintptr_t>(pointer); };
    std::printf("      GEOM_write_%s (func=0x%" PRIxPTR ", head=0x%" PRIxPTR ", obj=0x%" PRIxPTR
                ", arg=0x%" PRIxPTR ", proto_version=%d)\n",
                kind, digits(func), digits(head), digits(obj), digits(arg), proto_version);
}

void trace_head(const GEOMhead& head) {
    std::printf("      head.magic = 0x%" PRIx32 "\n", head.magic);
    std::printf("      head.hdrsize = %d\n", static_cast<int>(head.hdrsize));
    std::printf("      head.data = %d\n", static_cast<int>(head.data));
    std::printf("      head.type = %d\n", static_cast<int>(head.type));
    std::printf("      head.has_extent = %d\n", head.has_extent);
    std::printf("      head.bytecount = %" PRId64 "\n", head.bytecount);
    std::printf("      head.nvals = %d\n", static_cast<int>(head.nvals));
}

// ---- Header

void put_word(GEOMstream* stream, std::uint32_t word) {
    geom::put_int(stream, static_cast<std::int32_t>(word));
}

bool is_xdr(const GEOMstream& stream) { return stream.version >= GEOM_FIRST_XDR_VERSION; }

const char* text_or_empty(const char* text) { return text == nullptr ? "" : text; }

std::size_t bytes_with_nul(const char* text) { return std::strlen(text) + 1; }

GEOMhead make_head(const GEOMobj& obj, int flags, const GEOMstream& stream) {
    constexpr int droppable = GEOM_HAS_NORMALS | GEOM_HAS_COLORS;
    GEOMhead head{};
    head.magic = GEOM_MAGIC;
    head.data = obj.flags & ~static_cast<std::uint32_t>(flags & droppable);
    head.type = obj.type;
    std::copy_n(obj.extent, std::size(obj.extent), head.extent);
    head.has_extent = obj.has_extent;
    head.nvals = obj.nvals;
    std::size_t size = geom::property_bytes(obj);
    // Kept: XDR headers do not count their strings, which have lengths of their own.
    if (!is_xdr(stream))
        size +=
            bytes_with_nul(text_or_empty(obj.name)) + bytes_with_nul(text_or_empty(obj.attribute));
    head.hdrsize = static_cast<std::uint32_t>(size);
    return head;
}

void put_text_with_nul(GEOMstream* stream, const char* text) {
    geom::put_opaque(stream, text, static_cast<std::int64_t>(bytes_with_nul(text)));
}

void put_header(GEOMstream* stream, const GEOMhead& head, const GEOMobj& obj) {
    put_word(stream, head.magic);
    put_word(stream, head.hdrsize);
    put_word(stream, head.data);
    put_word(stream, head.type);
    geom::put_floats(stream, head.extent, std::ssize(head.extent));
    geom::put_int(stream, head.has_extent);
    geom::put_int64(stream, head.bytecount);
    put_word(stream, head.nvals);

    const unsigned char* place = obj.vals;
    for (std::uint32_t i = 0; i < head.nvals; ++i) {
        const geom::Property property = geom::property_at(place);
        put_word(stream, property.kind);
        put_word(stream, property.length);
        put_word(stream, property.value);
        geom::put_opaque(stream, place + sizeof property, property.length);
        place += geom::property_bytes(property);
    }
    const auto put_text = is_xdr(*stream) ? geom::put_string : put_text_with_nul;
    put_text(stream, text_or_empty(obj.name));
    put_text(stream, text_or_empty(obj.attribute));
}

// ---- Arrays

void put_values(GEOMstream* stream, const float* values, std::int64_t n) {
    geom::put_floats(stream, values, n);
}

void put_values(GEOMstream* stream, const std::int32_t* values, std::int64_t n) {
    geom::put_ints(stream, values, n);
}

// Writes the first n elements of a list. Readers expect all of them, so missing ones are written as
// zero.
template <class T, int N>
void put_list(GEOMstream* stream, const GEOMlist<T, N>* list, std::int64_t n) {
    n = std::max<std::int64_t>(n, 0);
    const bool present = list != nullptr && list->data != nullptr;
    const std::int64_t held = present ? std::clamp<std::int64_t>(list->used, 0, n) : 0;
    if (held > 0)
        put_values(stream, list->data, held * N);

    static constexpr std::array<T, 1024> zeros{};
    for (std::int64_t left = geom::multiply_counts(n - held, N); left > 0;) {
        const std::int64_t count = std::min(left, static_cast<std::int64_t>(zeros.size()));
        put_values(stream, zeros.data(), count);
        left -= count;
    }
}

// The optional arrays after the vertices, for n vertices and `primitives` primitives.
void put_attributes(GEOMstream* stream, std::uint32_t flags, const geom::ConstPart& part,
                    std::int64_t n, std::int64_t primitives) {
    if ((flags & GEOM_HAS_NORMALS) != 0)
        put_list(stream, part.normals, n);
    if ((flags & GEOM_HAS_COLORS) != 0)
        put_list(stream, part.colors, n);
    if ((flags & GEOM_HAS_UVS) != 0)
        put_list(stream, part.uvs, geom::multiply_counts(n, 2));
    if ((flags & GEOM_HAS_UVWS) != 0)
        put_list(stream, part.uvs, geom::multiply_counts(n, 3));
    if ((flags & GEOM_HAS_VERTEX_DATA) != 0)
        put_list(stream, part.vertex_data, n);
    if ((flags & GEOM_HAS_PRIMITIVE_DATA) != 0)
        put_list(stream, part.primitive_data, primitives);
    if ((flags & GEOM_HAS_VERTEX_TRANS) != 0)
        put_list(stream, part.vertex_trans, n);
}

void put_part(GEOMstream* stream, std::uint32_t flags, const geom::ConstPart& part, std::int64_t n,
              std::int64_t primitives) {
    put_list(stream, part.vertices, n);
    put_attributes(stream, flags, part, n, primitives);
}

using Writer = int (*)(GEOMwrite_func, GEOMhead*, const GEOMobj*, GEOMstream*, int);

// By type; no object has type 0.
constexpr std::array<Writer, GEOM_LABEL + 1> kWriters = {nullptr,           GEOM_write_mesh,
                                                         GEOM_write_polyh,  GEOM_write_polytri,
                                                         GEOM_write_sphere, GEOM_write_label};

} // namespace

int GEOM_write_mesh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                    int proto_version) {
    trace_writer("mesh", func, head, obj, arg, proto_version);
    const GEOMmesh& mesh = obj->mesh;
    head->bytecount = geom::bytecount(mesh, obj->flags);
    put_header(arg, *head, *obj);
    geom::put_int64(arg, mesh.u);
    geom::put_int64(arg, mesh.v);
    put_part(arg, obj->flags, geom::part_of(*obj), geom::multiply_counts(mesh.u, mesh.v),
             geom::cells_of(mesh));
    return 0;
}

int GEOM_write_polyh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version) {
    trace_writer("polyh", func, head, obj, arg, proto_version);
    const GEOMpolyhedron& solid = obj->polyhedron;
    const GEOMpolygon_list& list = solid.polygons;
    head->bytecount = geom::bytecount(solid, obj->flags);
    put_header(arg, *head, *obj);
    geom::put_int64(arg, list.polygons);
    geom::put_int64(arg, list.indices);
    geom::put_int64(arg, solid.vertices.used);
    if (list.data != nullptr)
        geom::put_int64s(arg, list.data, list.polygons + list.indices + 1);
    else
        geom::put_int64(arg, 0);
    put_part(arg, obj->flags, geom::part_of(*obj), solid.vertices.used, list.polygons);
    return 0;
}

int GEOM_write_polytri(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                       int proto_version) {
    trace_writer("polytri", func, head, obj, arg, proto_version);
    const GEOMpolytriangle& all = obj->polytriangle;
    const std::int64_t segment_vertices = all.segment_vertices.used;
    head->bytecount = geom::bytecount(all, obj->flags);
    put_header(arg, *head, *obj);
    geom::put_int64(arg, all.strips);
    geom::put_int64(arg, all.lines);
    geom::put_int64(arg, segment_vertices > 0 ? 1 : 0);
    for (std::int64_t i = 0; i < all.strips; ++i) {
        const std::int64_t n = all.strip_vertices[i].used;
        geom::put_int64(arg, n);
        put_part(arg, obj->flags, geom::strip_of(all, i), n, n - 2);
    }
    const std::uint32_t line_flags = obj->flags & geom::kLineFlags;
    for (std::int64_t i = 0; i < all.lines; ++i) {
        const std::int64_t n = all.line_vertices[i].used;
        geom::put_int64(arg, n);
        put_part(arg, line_flags, geom::polyline_of(all, i), n, n - 1);
    }
    if (segment_vertices > 0) {
        geom::put_int64(arg, segment_vertices);
        put_part(arg, line_flags, geom::segments_of(all), segment_vertices, segment_vertices / 2);
    }
    return 0;
}

int GEOM_write_sphere(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                      int proto_version) {
    trace_writer("sphere", func, head, obj, arg, proto_version);
    const GEOMspheres& spheres = obj->sphere;
    const std::int64_t n = spheres.centers.used;
    const bool radii = spheres.radii.used > 0;
    if (!radii)
        head->data |= GEOM_HAS_NO_RADII;
    head->bytecount = geom::bytecount(spheres, obj->flags);
    put_header(arg, *head, *obj);
    geom::put_int64(arg, n);
    put_list(arg, &spheres.centers, n);
    if (radii)
        put_list(arg, &spheres.radii, n);
    put_attributes(arg, obj->flags & geom::kSphereFlags, geom::part_of(*obj), n, 0);
    return 0;
}

int GEOM_write_label(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version) {
    trace_writer("label", func, head, obj, arg, proto_version);
    const GEOMlabels& labels = obj->label;
    const std::int64_t n = labels.texts.used;
    head->bytecount = geom::bytecount(labels, obj->flags);
    put_header(arg, *head, *obj);
    geom::put_int64(arg, n);
    put_word(arg, labels.label_flags);
    for (std::int64_t i = 0; i < n; ++i) {
        const char* text = labels.texts.data[i];
        geom::put_int(arg, static_cast<std::int32_t>(bytes_with_nul(text)));
        put_text_with_nul(arg, text);
    }
    put_list(arg, &labels.positions, n);
    put_list(arg, &labels.offsets, n);
    put_list(arg, &labels.heights, n);
    if ((obj->flags & GEOM_HAS_COLORS) != 0)
        put_list(arg, &labels.colors, n);
    if ((obj->flags & GEOM_HAS_LABEL_DATA) != 0)
        put_list(arg, &labels.label_data, n);
    return 0;
}

void GEOMserialize_obj(GEOMwrite_func func, const GEOMobj* obj, GEOMstream* arg, int flags,
                       int proto_version) {
    const bool trace = geom::trace_wanted();
    if (trace)
        std::printf("   GEOMserialize_obj (func=0x%" PRIx32 ", obj=0x%" PRIx32 ", arg=0x%" PRIx32
                    ", flags=%d, proto_version=%d)\n",
                    low_word(reinterpret_cast<const void*>(func)), low_word(obj), low_word(arg),
                    flags, proto_version);
    if (geom::verify_wanted())
        GEOMcheck_obj(obj, 0, nullptr);

    const int version = proto_version < GEOM_VERSION_XDR ? GEOM_VERSION_RAW : proto_version;
    arg->version = version;
    arg->sink = func;
    GEOMhead head = make_head(*obj, flags, *arg);
    if (trace)
        trace_head(head);
    const Writer writer = obj->type < kWriters.size() ? kWriters[obj->type] : nullptr;
    if (writer != nullptr)
        writer(func, &head, obj, arg, version);
    else
        GEOMerror("GEOMserialize_obj: unable to write out object type");
    if (trace)
        std::printf("   return from GEOMserialize_obj\n");
}

void GEOMwrite_obj(const GEOMobj* obj, int fd, int flags) {
    const bool trace = geom::trace_wanted();
    if (trace) {
        std::printf("\nWriting geometry to a file ...\n");
        std::printf("GEOMwrite_obj (obj=0x%" PRIx32 ", fd=%d, flags=%d)\n", low_word(obj), fd,
                    flags);
    }
    // Kept: an object for which there is no stream is left out, and the program goes on.
    if (GEOMstream* const stream = geom::create_stream(fd)) {
        GEOMserialize_obj(GEOMstream_write, obj, stream, flags, geom::record_version());
        geom::close_stream(stream);
    }
    if (trace)
        std::printf("return from GEOMwrite_obj\n\n");
}

std::size_t GEOMwrite_obj_and_copy(const GEOMobj* obj, int fd, unsigned char* copy) {
    GEOMstream* const stream = geom::create_stream(fd);
    if (stream == nullptr)
        return 0; // nothing is written, as by GEOMwrite_obj()
    GEOMserialize_obj(GEOMstream_write, obj, stream, 0, geom::record_version());
    const std::size_t size = stream->has_written ? 0 : stream->write_fill;
    std::copy_n(stream->write_buffer.data(), size, copy);
    geom::close_stream(stream);
    return size;
}

void GEOMwrite_copy(const unsigned char* record, std::size_t size, int fd) {
    geom::write_piece(fd, record, size);
}
