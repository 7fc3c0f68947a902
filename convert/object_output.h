#pragma once

#include "compat/geom/geom.h"

#include <cstdint>
#include <memory>
#include <span>

namespace meshcast {

struct DestroyObject {
    void operator()(GEOMobj* object) const { GEOMdestroy_obj(object); }
};

/// Owns a GEOM object until it goes out of scope.
using ObjectOwner = std::unique_ptr<GEOMobj, DestroyObject>;

/// Writes an object to standard output, as one record, and destroys it.
void writeObject(ObjectOwner object);

/// Whether and how a polyhedron gets normals.
enum class Normals : std::int8_t { kNone, kSmooth, kFacet };

/// Builds one polyhedron, writes it to standard output and destroys it.
/// `vertices` holds 3 floats per vertex, `polygons` the counts and 1-based indices of a polygon
/// list with its closing 0, `uvs` 2 floats per vertex or nothing.
void writePolyhedron(std::span<const float> vertices, std::span<const std::int32_t> polygons,
                     Normals normals, std::span<const float> uvs = {});

} // namespace meshcast
