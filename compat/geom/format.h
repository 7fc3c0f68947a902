#pragma once

#include <cstdint>

// The numbers that define the GEOM stream. Nothing else belongs here, so that a reader can include
// this header without the object library.

/// The first word of every record: "GM64" in a big-endian stream, "46MG" in a little-endian one.
inline constexpr std::uint32_t GEOM_MAGIC = 0x474D3634;

/// Protocol versions. A version of GEOM_FIRST_XDR_VERSION or more is XDR (RFC 4506, big-endian,
/// padded to 4 bytes); every older one is raw: little-endian without padding.
inline constexpr int GEOM_VERSION_XDR = 10;
inline constexpr int GEOM_VERSION_RAW = 7;
inline constexpr int GEOM_FIRST_XDR_VERSION = 8;

/// Bytes of the header up to and including `nvals`: the same in both versions.
inline constexpr std::uint32_t GEOM_FIXED_HEADER_BYTES = 56;

/// The longest string, in bytes, that an XDR stream carries.
inline constexpr std::uint32_t GEOM_MAX_STRING_BYTES = 9999999;

/// Object kinds: the header's `type`.
enum GEOMtype : std::uint32_t {
    GEOM_MESH = 1,         ///< a u by v grid of vertices
    GEOM_POLYHEDRON = 2,   ///< shared vertices and a polygon list
    GEOM_POLYTRIANGLE = 3, ///< triangle strips, polylines, disjoint line segments
    GEOM_SPHERE = 4,       ///< a set of centres with radii
    GEOM_LABEL = 5         // text strings at positions
};

/// Which arrays an object carries: the header's `data`.
enum GEOMflag : std::uint32_t {
    GEOM_HAS_NORMALS = 0x1,
    GEOM_HAS_COLORS = 0x2,
    GEOM_HAS_UVS = 0x4,             ///< 2 texture coordinates per vertex
    GEOM_HAS_UVWS = 0x8,            ///< 3 texture coordinates per vertex, from the same list
    GEOM_HAS_LABEL_DATA = 0x10,     ///< one int per label
    GEOM_HAS_NO_RADII = 0x20,       ///< spheres without radii; set in the written header only
    GEOM_HAS_PRIMITIVE_DATA = 0x40, ///< one int per cell, polygon, triangle or segment
    GEOM_HAS_VERTEX_DATA = 0x80,    ///< one int per vertex
    GEOM_HAS_VERTEX_TRANS = 0x100   // one float per vertex
};

/// Property records: three words (kind, length of the bytes that follow, value), then the bytes.
inline constexpr std::uint32_t GEOM_PROPERTY_BYTES = 12;
/// The kind whose value holds polygon flags, and the bits of those flags that it keeps.
inline constexpr std::uint32_t GEOM_PROPERTY_POLYGON_FLAGS = 6;
inline constexpr std::uint32_t GEOM_POLYGON_FLAGS_KEPT = 0x6;

/// The label-flags word. Bits 0 to 7 are the font number of GEOMfont_number().
enum GEOMlabel_flag : std::uint32_t {
    GEOM_LABEL_FONT_MASK = 0xFF,
    GEOM_LABEL_EXTRA = 0x100,
    GEOM_LABEL_STROKE = 0x400,
    GEOM_LABEL_TITLE = 0x800,
    GEOM_LABEL_CENTER = 0x1000,
    GEOM_LABEL_RIGHT = 0x2000,
    GEOM_LABEL_LEFT = 0x4000,
    GEOM_LABEL_DROP_SHADOW = 0x8000
};
