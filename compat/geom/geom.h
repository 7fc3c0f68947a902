#pragma once

#include "compat/geom/format.h"

#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(default)

// The geometry object library. Objects are of five kinds. Add functions fill them, and each is
// written to a descriptor as one self-contained record.
//
// Conventions of every function here
// - Counts are elements, not bytes or floats: n vertices are 3n floats, n texture coordinates are
//   2n floats. A count below 0 adds nothing.
// - The last argument of the add functions is the take-over flag. GEOM_COPY: the caller keeps its
//   array, which is only read. Any other value (GEOM_TAKE): the library owns the array, which must
//   come from std::malloc and not be const; it becomes storage or is freed, also when the request
//   is refused.
// - A request that does not fit the kind of the object is reported through GEOMerror() and leaves
//   the object unchanged. A failed allocation prints its source path, line and size and ends the
//   process through GEOMfatal_error(). No function throws.
// - Objects must not be null unless a function allows it. Threads may work at the same time, each
//   on its own objects and with its own settings (settings.h).

inline constexpr int GEOM_COPY = 0;
inline constexpr int GEOM_TAKE = 1;

inline constexpr std::int64_t GEOM_LENT = -1;

/// A growable array of elements of N components each, in one std::malloc block. All zero is the
/// empty list. `capacity` may be 0 while `data` holds a block (an array added with no elements). It
/// is GEOM_LENT while `data` is an array of the caller's (GEOMlend_vertices).
template <class T, int N>
struct GEOMlist {
    std::int64_t capacity; ///< elements that fit
    std::int64_t used;     ///< elements in use
    T* data;               ///< used * N values
};
using GEOMvector_list = GEOMlist<float, 3>; // vertices, normals, colours, offsets
using GEOMscalar_list = GEOMlist<float, 1>; // texture coordinates, radii, heights, vertex trans
using GEOMint_list = GEOMlist<std::int32_t, 1>;
using GEOMtext_list = GEOMlist<char*, 1>; // owned, NUL-terminated strings

/// Polygons, one after another: for each its vertex count and its 1-based vertex indices. A 0 ends
/// the list.
struct GEOMpolygon_list {
    std::int64_t capacity; ///< entries that fit
    std::int64_t polygons;
    std::int64_t indices;
    std::int64_t* data; ///< polygons + indices + 1 entries
};

struct GEOMmesh {
    std::int64_t u; ///< vertices in a row
    std::int64_t v; ///< rows
    GEOMvector_list vertices;
    GEOMvector_list normals;
    GEOMvector_list colors;
    GEOMscalar_list uvs;
    GEOMint_list vertex_data;
    GEOMint_list primitive_data;
    GEOMscalar_list vertex_trans;
};

struct GEOMpolyhedron {
    GEOMvector_list vertices;
    GEOMvector_list normals;
    GEOMvector_list colors;
    GEOMscalar_list uvs;
    GEOMpolygon_list polygons;
    GEOMint_list vertex_data;
    GEOMint_list primitive_data;
    GEOMscalar_list vertex_trans;
};

/// The strip_ and line_ members are arrays of one list per strip and per polyline; they are null
/// while no strip or polyline carries the data.
struct GEOMpolytriangle {
    std::int64_t strips;
    GEOMvector_list* strip_vertices;
    GEOMvector_list* strip_colors;
    GEOMvector_list* strip_normals;
    GEOMscalar_list* strip_uvs;
    GEOMint_list* strip_vertex_data;
    GEOMint_list* strip_primitive_data;
    GEOMscalar_list* strip_vertex_trans;
    std::int64_t lines;
    GEOMvector_list* line_vertices;
    GEOMvector_list* line_colors;
    GEOMint_list* line_vertex_data;
    GEOMint_list* line_primitive_data;
    GEOMvector_list segment_vertices; ///< disjoint segments: two vertices each
    GEOMvector_list segment_colors;
    GEOMint_list segment_vertex_data;
    GEOMint_list segment_primitive_data;
};

struct GEOMspheres {
    GEOMvector_list centers;
    GEOMscalar_list radii;
    GEOMvector_list colors;
    GEOMvector_list normals;
    GEOMint_list vertex_data;
    GEOMscalar_list vertex_trans;
};

struct GEOMlabels {
    std::uint32_t label_flags; ///< as GEOMlabel_flags() packs them
    GEOMtext_list texts;
    GEOMvector_list positions;
    GEOMvector_list offsets;
    GEOMscalar_list heights;
    GEOMvector_list colors;
    GEOMint_list label_data;
};

struct GEOMobj {
    std::uint32_t type;  ///< a GEOMtype
    std::uint32_t flags; ///< GEOMflag bits
    float extent[6];     ///< minimum x, y, z, then maximum x, y, z
    std::int32_t has_extent;
    char* name;          ///< owned, may be null
    char* attribute;     ///< a second text, owned, may be null
    std::uint32_t nvals; ///< property records
    unsigned char* vals; ///< the records, packed and owned
    std::int32_t refs;   ///< references; 1 at creation
    union {              // the member of the object's kind
        GEOMmesh mesh;
        GEOMpolyhedron polyhedron;
        GEOMpolytriangle polytriangle;
        GEOMspheres sphere;
        GEOMlabels label;
    };
};
// The message about a failed creation shows the size. Kept: users search logs for 280.
static_assert(sizeof(void*) != 8 || sizeof(GEOMobj) == 280);

/// A colour of one byte per component, as the callers pack them.
struct GEOMpacked_color {
    std::uint8_t unused;
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};
static_assert(sizeof(GEOMpacked_color) == 4);

// ---- Creation and destruction

/// A new object of `type` without data. `extent` (6 floats, copied) may be null.
GEOMobj* GEOMcreate_obj(std::uint32_t type, const float* extent);

/// A mesh of v rows of u vertices, vertex (i, j) at index j * u + i. A null `vertices` is reported
/// and leaves the mesh without vertices.
GEOMobj* GEOMcreate_mesh(const float* extent, const float* vertices, std::int64_t u, std::int64_t v,
                         int flag);

/// n spheres. A null `centers` is reported and leaves the set without centres; `radii`, `normals`
/// and `colors` may be null.
GEOMobj* GEOMcreate_sphere(const float* extent, const float* centers, const float* radii,
                           const float* normals, const GEOMpacked_color* colors, std::int64_t n,
                           int flag);

/// A label object without labels. `label_flags` is a word of GEOMlabel_flags().
GEOMobj* GEOMcreate_label(const float* extent, std::uint32_t label_flags);

/// Drops one reference. If it was the last one, frees the object with all it owns and returns 0.
/// Returns 1 otherwise, or when `obj` is null.
int GEOMdestroy_obj(GEOMobj* obj);

// ---- Per-vertex data

/// Vertices (3 floats each; positions in a label object). On a polytriangle they form one new
/// triangle strip, refused when the object already carries normals or polyline colours.
void GEOMadd_vertices(GEOMobj* obj, const float* vertices, std::int64_t n, int flag);

/// Gives a polyhedron without vertices n of them that stay in the caller's array, which must not
/// change as long as the object exists. For other objects like GEOMadd_vertices with GEOM_COPY.
void GEOMlend_vertices(GEOMobj* obj, const float* vertices, std::int64_t n);

/// Adds vertices, then normals and colours (one per vertex) if not null and if the kind has them.
void GEOMadd_vertices_with_data(GEOMobj* obj, const float* vertices, const float* normals,
                                const GEOMpacked_color* colors, std::int64_t n, int flag);

/// Normals, 3 floats each: mesh, polyhedron, sphere. Null adds nothing; an array given with n = 0
/// still marks the object as having normals.
void GEOMadd_normals(GEOMobj* obj, const float* normals, std::int64_t n, int flag);

/// Colours: every kind but polytriangle. Stored as three floats, each byte divided by 255. Null
/// adds nothing.
void GEOMadd_colors(GEOMobj* obj, const GEOMpacked_color* colors, std::int64_t n, int flag);

/// n texture coordinates of 2 floats: mesh, polyhedron.
void GEOMadd_uvs(GEOMobj* obj, const float* uvs, std::int64_t n, int flag);

/// One radius per sphere: sphere.
void GEOMadd_radii(GEOMobj* obj, const float* radii, std::int64_t n, int flag);

/// One int, or one float in [0, 1], per vertex: mesh, polyhedron, sphere.
void GEOMadd_vertex_data(GEOMobj* obj, const std::int32_t* data, std::int64_t n, int flag);
void GEOMadd_vertex_trans(GEOMobj* obj, const float* trans, std::int64_t n, int flag);

// ---- Primitives, which objects of another kind silently ignore

/// Appends polygons to a polyhedron. `list` holds for each polygon its vertex count and that many
/// 1-based indices, and ends with a count of 0 (or less); the indices themselves may be anything.
/// A call on an object without polygons stores polygon flags (0x2, 0x4), if given, as a property.
void GEOMadd_polygons(GEOMobj* obj, const std::int32_t* list, std::uint32_t polygon_flags,
                      int flag);

/// Adds the faces of an index list to a polyhedron without polygons: for each its vertex indices
/// from 0, none below, and -1 after it, which may be missing at the end. No face is empty.
void GEOMadd_faces(GEOMobj* obj, const std::int32_t* indices, std::int64_t n);

/// Appends one polyline of n vertices to a polytriangle; nothing when n is 0. `colors` (3 floats
/// per vertex) may be null unless an earlier polyline had colours.
void GEOMadd_polyline(GEOMobj* obj, const float* vertices, const float* colors, std::int64_t n,
                      int flag);

/// Appends one label: its text, position (3 floats), offset (3 floats or null), text height, colour
/// (3 floats or null), and an int of the caller's (-1 for none). Everything is copied.
void GEOMadd_label(GEOMobj* obj, const char* text, const float* position, const float* offset,
                   float height, const float* color, int label);

/// Packs a label-flags word: a font number, truth values, an alignment (GEOM_LABEL_LEFT, _CENTER or
/// _RIGHT), and a truth value whose bit (GEOM_LABEL_EXTRA) is passed on to the reader.
std::uint32_t GEOMlabel_flags(int font, int title, int drop_shadow, int stroke,
                              std::uint32_t alignment, int extra);

// ---- Normals

/// Computes normals for an object that has none. Mode 0: one per vertex, the mean direction of the
/// polygons around it. Mode 1: one per polygon; the polyhedron's corners become vertices of their
/// own, numbered in list order. Meshes always use mode 0, and get no normals if they hold fewer
/// than u * v vertices. Other kinds are left unchanged. A polygon with an index out of range
/// contributes to no normal; in mode 1 such a corner becomes a vertex of zeros.
void GEOMgen_normals(GEOMobj* obj, int mode);

// ---- Properties, fonts, messages

/// Stores the value of the object's first property of that kind and returns 1; returns 0, storing
/// nothing, when there is none.
int GEOMget_property(const GEOMobj* obj, std::uint32_t kind, std::uint32_t* value);

/// Appends a property {kind, no bytes, value}; returns the object's packed records.
unsigned char* GEOMadd_property(GEOMobj* obj, std::uint32_t kind, std::uint32_t value);

/// The number of a font: 128 + 4 * family + 2 (bold) + 1 (upright). An unknown family is reported
/// and taken as "Courier".
int GEOMfont_number(const char* family, int bold, int italic);

/// Print "GEOM error: ...\n" and "GEOM fatal error: ...\n" to standard error with a text formatted
/// as by printf, of any length. If a GEOMscope has a receiver, the first goes there instead. The
/// second ends the process with status 1 and does not flush a record that is being written.
[[gnu::format(printf, 1, 2)]] void GEOMerror(const char* format, ...);
[[noreturn, gnu::format(printf, 1, 2)]] void GEOMfatal_error(const char* format, ...);

// ---- Verification and output

/// Receives the text of one finding.
using GEOMreporter = void (*)(const char* text);

/// Checks counts, flags, NaN and ranges; returns 1 when the object passes, 0 at the first failure.
/// Values out of range are reported but pass. Findings go to `reporter`. If that is null, they go
/// where messages of GEOMerror() go, as "GEOMcheck_obj error: ...\n". `obj` may be null, which is a
/// finding. `options` is ignored and should be 0.
int GEOMcheck_obj(const GEOMobj* obj, int options, GEOMreporter reporter);

/// Writes the object as one record to `fd`. Bits 0x1 and 0x2 of `flags` drop the normals and
/// colours bits from the record's header, not the arrays from its body. Write errors cut the record
/// short and are not reported. settings.h describes the version, the check before writing, and the
/// trace; findings do not stop the write. If there is no memory for the stream, nothing is written
/// and nothing is reported.
void GEOMwrite_obj(const GEOMobj* obj, int fd, int flags);

/// Records that are shorter than this go to the descriptor in one write.
inline constexpr std::size_t GEOM_COPY_BYTES = 8192;

/// Writes the object as GEOMwrite_obj() does, without flags. If its record is shorter than
/// GEOM_COPY_BYTES, copies it to `copy`, which has room for so many, and returns its size; 0
/// otherwise.
std::size_t GEOMwrite_obj_and_copy(const GEOMobj* obj, int fd, unsigned char* copy);

/// Writes such a copy, in the same way as the record was written.
void GEOMwrite_copy(const unsigned char* record, std::size_t size, int fd);

#pragma GCC visibility pop
