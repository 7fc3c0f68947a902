#pragma once

#include "compat/geom/geom.h"
#include "compat/geom/stream.h"

#include <cstdint>

// Writes objects as records. docs/stream-format.md shows the layout with a worked example.

/// The fixed part of a record's header, in the order in which it is written.
struct GEOMhead {
    std::uint32_t magic;
    std::uint32_t hdrsize; ///< bytes of the header after nvals: properties, and raw strings
    std::uint32_t data;    ///< GEOMflag bits
    std::uint32_t type;
    float extent[6];
    std::int32_t has_extent;
    std::int64_t bytecount; ///< size of the body, in the unit of the kind
    std::uint32_t nvals;    ///< property records that follow
};

/// Writes header and body through `func` into the stream `arg`. A `proto_version` below 10 means
/// the raw version 7. `flags` as for GEOMwrite_obj(). An object of unknown type is reported and not
/// written.
void GEOMserialize_obj(GEOMwrite_func func, const GEOMobj* obj, GEOMstream* arg, int flags,
                       int proto_version);

/// One writer per kind: computes `bytecount`, writes the header, then the body in the version of
/// the stream. `func` and `proto_version` are those of the stream, for the trace. Each returns 0.
int GEOM_write_mesh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                    int proto_version);
int GEOM_write_polyh(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version);
int GEOM_write_polytri(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                       int proto_version);
int GEOM_write_sphere(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                      int proto_version);
int GEOM_write_label(GEOMwrite_func func, GEOMhead* head, const GEOMobj* obj, GEOMstream* arg,
                     int proto_version);
