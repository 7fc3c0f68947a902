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

std::uint32_t lowWord(const void* pointer) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

void traceWriter(const char* kind, GEOMwrite_func func, const GEOMhead* head, const GEOMobj* obj,
                 const GEOMstream* arg, int proto_version) {
    if (!geom::traceWanted())
        return;
    // Not %p, because C libraries differ in the prefix that they print. Kept: this line shows whole
    // pointers, while the lines around it show their low 32 bits.
    const auto digits = [](auto pointer) { return reinterpret_cast<std::uintptr_t>(pointer); };
    std::printf("      GEOM_write_%s (func=0x%" PRIxPTR ", head=0x%" PRIxPTR ", obj=0x%" PRIxPTR
                ", arg=0x%" PRIxPTR ", proto_version=%d)\n",
                kind, digits(func), digits(head), digits(obj), digits(arg), proto_version);
}

void traceHead(const GEOMhead& head) {
    std::printf("      head.magic = 0x%" PRIx32 "\n", head.magic);
    std::printf("      head.hdrsize = %d\n", static_cast<int>(head.hdrsize));
    std::printf("      head.data = %d\n", static_cast<int>(head.data));
    std::printf("      head.type = %d\n", static_cast<int>(head.type));
    std::printf("      head.has_extent = %d\n", head.has_extent);
    std::printf("      head.bytecount = %" PRId64 "\n", head.bytecount);
    std::printf("      head.nvals = %d\n", static_cast<int>(head.nvals));
}

// ---- Header

void putWord(GEOMstream* stream, std::uint32_t word) {
    geom::putInt(stream, static_cast<std::int32_t>(word));
}

bool isXdr(const GEOMstream& stream) { return stream.version >= GEOM_FIRST_XDR_VERSION; }

const char* textOrEmpty(const char* text) { return text == nullptr ? "" : text; }

std::size_t bytesWithNul(const char* text) { return std::strlen(text) + 1; }

GEOMhead makeHead(const GEOMobj& obj, int flags, const GEOMstream& stream) {
    constexpr int droppable = GEOM_HAS_NORMALS | GEOM_HAS_COLORS;
    GEOMhead head{};
    head.magic = GEOM_MAGIC;
    head.data = obj.flags & ~static_cast<std::uint32_t>(flags & droppable);
    head.type = obj.type;
    std::copy_n(obj.extent, std::size(obj.extent), head.extent);
    head.has_extent = obj.has_extent;
    head.nvals = obj.nvals;
    std::size_t size = geom::propertyBytes(obj);
    // Kept: XDR headers do not count their strings, which have lengths of their own.
    if (!isXdr(stream))
        size += bytesWithNul(textOrEmpty(obj.name)) + bytesWithNul(textOrEmpty(obj.attribute));
    head.hdrsize = static_cast<std::uint32_t>(size);
    return head;
}

void putTextWithNul(GEOMstream* stream, const char* text) {
    geom::putOpaque(stream, text, static_cast<std::int64_t>(bytesWithNul(text)));
}

void putHeader(GEOMstream* stream, const GEOMhead& head, const GEOMobj& obj) {
    putWord(stream, head.magic);
    putWord(stream, head.hdrsize);
    putWord(stream, head.data);
    putWord(stream, head.type);
    geom::putFloats(stream, head.extent, std::ssize(head.extent));
    geom::putInt(stream, head.has_extent);
    geom::putInt64(stream, head.bytecount);
    putWord(stream, head.nvals);

    const unsigned char* place = obj.vals;
    for (std::uint32_t i = 0; i < head.nvals; ++i) {
        const geom::Property property = geom::propertyAt(place);
        putWord(stream, property.kind);
        putWord(stream, property.length);
        putWord(stream, property.value);
        geom::putOpaque(stream, place + sizeof property, property.length);
        place += geom::propertyBytes(property);
    }
    const auto putText = isXdr(*stream) ? geom::putString : putTextWithNul;
    putText(stream, textOrEmpty(obj.name));
    putText(stream, textOrEmpty(obj.attribute));
}

// ---- Arrays

void putValues(GEOMstream* stream, const float* values, std::int64_t n) {
    geom::putFloats(stream, values, n);
}

void putValues(GEOMstream* stream, const std::int32_t* values, std::int64_t n) {
    geom::putInts(stream, values, n);
}

// Writes the first n elements of a list. Readers expect all of them, so missing ones are written as
// zero.
template <class T, int N>
void putList(GEOMstream* stream, const GEOMlist<T, N>* list, std::int64_t n) {
    n = std::max<std::int64_t>(n, 0);
    const bool present = list != nullptr && list->data != nullptr;
    const std::int64_t held = present ? std::clamp<std::int64_t>(list->used, 0, n) : 0;
    if (held > 0)
        putValues(stream, list->data, held * N);

    static constexpr std::array<T, 1024> zeros{};
    for (std::int64_t left = geom::multiplyCounts(n - held, N); left > 0;) {
        const std::int64_t count = std::min(left, static_cast<std::int64_t>(zeros.size()));
        putValues(stream, zeros.data(), count);
        left -= count;
    }
}

// The optional arrays after the vertices, for n vertices and `primitives` primitives.
void putAttributes(GEOMstream* stream, std::uint32_t flags, const geom::ConstPart& part,
                   std::int64_t n, std::int64_t primitives) {
    if ((flags & GEOM_HAS_NORMALS) != 0)
        putList(stream, part.normals, n);
    if ((flags & GEOM_HAS_COLORS) != 0)
        putList(stream, part.colors, n);
    if ((flags & GEOM_HAS_UVS) != 0)
        putList(stream, part.uvs, geom::multiplyCounts(n, 2));
    if ((flags & GEOM_HAS_UVWS) != 0)
        putList(stream, part.uvs, geom::multiplyCounts(n, 3));
    if ((flags & GEOM_HAS_VERTEX_DATA) != 0)
        putList(stream, part.vertex_data, n);
    if ((flags & GEOM_HAS_PRIMITIVE_DATA) != 0)
        putList(stream, part.primitive_data, primitives);
    if ((flags & GEOM_HAS_VERTEX_TRANS) != 0)
        putList(stream, part.vertex_trans, n);
}

void putPart(GEOMstream* stream, std::uint32_t flags, const geom::ConstPart& part, std::int64_t n,
             std::int64_t primitives) {
    putList(stream, part.vertices, n);
    putAttributes(stream, flags, part, n, primitives);
}

using Writer = int (*)(GEOMwrite_func, GEOMhead*, const GEOMobj*, GEOMstream*, int);

// By type; no object has type 0.
constexpr std::array<Writer, GEOM_LABEL + 1> kWriters = {nullptr,           GEOM_write_mesh,
                                                         GEOM_write_polyh,  GEOM_write_polytri,
                                                         GEOM_write_sphere, GEOM_write_label};

} // namespace

int GEOM_write_mesh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                    int proto_version) {
    traceWriter("mesh", func, head, obj, arg, proto_version);
    const GEOMmesh& mesh = obj->mesh;
    head->bytecount = geom::bytecount(mesh, obj->flags);
    putHeader(arg, *head, *obj);
    geom::putInt64(arg, mesh.u);
    geom::putInt64(arg, mesh.v);
    putPart(arg, obj->flags, geom::partOf(*obj), geom::multiplyCounts(mesh.u, mesh.v),
            geom::cellsOf(mesh));
    return 0;
}

int GEOM_write_polyh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version) {
    traceWriter("polyh", func, head, obj, arg, proto_version);
    const GEOMpolyhedron& solid = obj->polyhedron;
    const GEOMpolygon_list& list = solid.polygons;
    head->bytecount = geom::bytecount(solid, obj->flags);
    putHeader(arg, *head, *obj);
    geom::putInt64(arg, list.polygons);
    geom::putInt64(arg, list.indices);
    geom::putInt64(arg, solid.vertices.used);
    if (list.data != nullptr)
        geom::putInt64s(arg, list.data, list.polygons + list.indices + 1);
    else
        geom::putInt64(arg, 0);
    putPart(arg, obj->flags, geom::partOf(*obj), solid.vertices.used, list.polygons);
    return 0;
}

int GEOM_write_polytri(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                       int proto_version) {
    traceWriter("polytri", func, head, obj, arg, proto_version);
    const GEOMpolytriangle& all = obj->polytriangle;
    const std::int64_t segment_vertices = all.segment_vertices.used;
    head->bytecount = geom::bytecount(all, obj->flags);
    putHeader(arg, *head, *obj);
    geom::putInt64(arg, all.strips);
    geom::putInt64(arg, all.lines);
    geom::putInt64(arg, segment_vertices > 0 ? 1 : 0);
    for (std::int64_t i = 0; i < all.strips; ++i) {
        const std::int64_t n = all.strip_vertices[i].used;
        geom::putInt64(arg, n);
        putPart(arg, obj->flags, geom::stripOf(all, i), n, n - 2);
    }
    const std::uint32_t lineFlags = obj->flags & geom::kLineFlags;
    for (std::int64_t i = 0; i < all.lines; ++i) {
        const std::int64_t n = all.line_vertices[i].used;
        geom::putInt64(arg, n);
        putPart(arg, lineFlags, geom::polylineOf(all, i), n, n - 1);
    }
    if (segment_vertices > 0) {
        geom::putInt64(arg, segment_vertices);
        putPart(arg, lineFlags, geom::segmentsOf(all), segment_vertices, segment_vertices / 2);
    }
    return 0;
}

int GEOM_write_sphere(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                      int proto_version) {
    traceWriter("sphere", func, head, obj, arg, proto_version);
    const GEOMspheres& spheres = obj->sphere;
    const std::int64_t n = spheres.centers.used;
    const bool radii = spheres.radii.used > 0;
    if (!radii)
        head->data |= GEOM_HAS_NO_RADII;
    head->bytecount = geom::bytecount(spheres, obj->flags);
    putHeader(arg, *head, *obj);
    geom::putInt64(arg, n);
    putList(arg, &spheres.centers, n);
    if (radii)
        putList(arg, &spheres.radii, n);
    putAttributes(arg, obj->flags & geom::kSphereFlags, geom::partOf(*obj), n, 0);
    return 0;
}

int GEOM_write_label(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version) {
    traceWriter("label", func, head, obj, arg, proto_version);
    const GEOMlabels& labels = obj->label;
    const std::int64_t n = labels.texts.used;
    head->bytecount = geom::bytecount(labels, obj->flags);
    putHeader(arg, *head, *obj);
    geom::putInt64(arg, n);
    putWord(arg, labels.label_flags);
    for (std::int64_t i = 0; i < n; ++i) {
        const char* text = labels.texts.data[i];
        geom::putInt(arg, static_cast<std::int32_t>(bytesWithNul(text)));
        putTextWithNul(arg, text);
    }
    putList(arg, &labels.positions, n);
    putList(arg, &labels.offsets, n);
    putList(arg, &labels.heights, n);
    if ((obj->flags & GEOM_HAS_COLORS) != 0)
        putList(arg, &labels.colors, n);
    if ((obj->flags & GEOM_HAS_LABEL_DATA) != 0)
        putList(arg, &labels.label_data, n);
    return 0;
}

void GEOMserialize_obj(GEOMwrite_func func, const GEOMobj* obj, GEOMstream* arg, int flags,
                       int proto_version) {
    const bool trace = geom::traceWanted();
    if (trace)
        std::printf("   GEOMserialize_obj (func=0x%" PRIx32 ", obj=0x%" PRIx32 ", arg=0x%" PRIx32
                    ", flags=%d, proto_version=%d)\n",
                    lowWord(reinterpret_cast<const void*>(func)), lowWord(obj), lowWord(arg), flags,
                    proto_version);
    if (geom::verifyWanted())
        GEOMcheck_obj(obj, 0, nullptr);

    const int version = proto_version < GEOM_VERSION_XDR ? GEOM_VERSION_RAW : proto_version;
    arg->version = version;
    arg->sink = func;
    GEOMhead head = makeHead(*obj, flags, *arg);
    if (trace)
        traceHead(head);
    const Writer writer = obj->type < kWriters.size() ? kWriters[obj->type] : nullptr;
    if (writer != nullptr)
        writer(func, &head, obj, arg, version);
    else
        GEOMerror("GEOMserialize_obj: unable to write out object type");
    if (trace)
        std::printf("   return from GEOMserialize_obj\n");
}

void GEOMwrite_obj(const GEOMobj* obj, int fd, int flags) {
    const bool trace = geom::traceWanted();
    if (trace) {
        std::printf("\nWriting geometry to a file ...\n");
        std::printf("GEOMwrite_obj (obj=0x%" PRIx32 ", fd=%d, flags=%d)\n", lowWord(obj), fd,
                    flags);
    }
    // Kept: an object for which there is no stream is left out, and the program goes on.
    if (GEOMstream* const stream = geom::createStream(fd)) {
        GEOMserialize_obj(GEOMstream_write, obj, stream, flags, geom::recordVersion());
        geom::closeStream(stream);
    }
    if (trace)
        std::printf("return from GEOMwrite_obj\n\n");
}

std::size_t GEOMwrite_obj_and_copy(const GEOMobj* obj, int fd, unsigned char* copy) {
    GEOMstream* const stream = geom::createStream(fd);
    if (stream == nullptr)
        return 0; // nothing is written, as by GEOMwrite_obj()
    GEOMserialize_obj(GEOMstream_write, obj, stream, 0, geom::recordVersion());
    const std::size_t size = stream->hasWritten ? 0 : stream->writeFill;
    std::copy_n(stream->writeBuffer.data(), size, copy);
    geom::closeStream(stream);
    return size;
}

void GEOMwrite_copy(const unsigned char* record, std::size_t size, int fd) {
    geom::writePiece(fd, record, size);
}
