#include "fuzz/held_values.h"

#include "compat/geom/parts.h"
#include "compat/geom/prop.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace meshcast::fuzz {

namespace {

using geom_stream::VertexArrays;

constexpr std::uint32_t kAllFlags = 0x1FF;

template <class T>
T& component(T& element, std::size_t /*index*/) {
    return element;
}
template <class T, std::size_t Width>
T& component(std::array<T, Width>& element, std::size_t index) {
    return element[index];
}

/// The first `count` elements of a list, each of `Width` values, with zeros after the end of the
/// list.
template <class Element, std::size_t Width = std::size(Element{}), class T, int N>
std::vector<Element> elements(const GEOMlist<T, N>* list, std::int64_t count) {
    std::vector<Element> result(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
    const std::int64_t held = list == nullptr || list->data == nullptr ? 0 : list->used * N;
    for (std::size_t i = 0; i < result.size() * Width && std::cmp_less(i, held); ++i) {
        component(result[i / Width], i % Width) = list->data[i];
    }
    return result;
}

void fill(VertexArrays& arrays, const geom::ConstPart& part, std::uint32_t flags,
          std::int64_t count, std::int64_t primitives) {
    const auto countIf = [flags](std::uint32_t bit, std::int64_t n) {
        return (flags & bit) != 0 ? n : 0;
    };
    using geom_stream::Vec2;
    using geom_stream::Vec3;
    arrays.vertices = elements<Vec3>(part.vertices, count);
    arrays.normals = elements<Vec3>(part.normals, countIf(GEOM_HAS_NORMALS, count));
    arrays.colours = elements<Vec3>(part.colors, countIf(GEOM_HAS_COLORS, count));
    arrays.uvs = elements<Vec2>(part.uvs, countIf(GEOM_HAS_UVS, count));
    arrays.uvws = elements<Vec3>(part.uvs, countIf(GEOM_HAS_UVWS, count));
    arrays.vertexData =
        elements<std::int32_t, 1>(part.vertex_data, countIf(GEOM_HAS_VERTEX_DATA, count));
    arrays.primitiveData = elements<std::int32_t, 1>(part.primitive_data,
                                                     countIf(GEOM_HAS_PRIMITIVE_DATA, primitives));
    arrays.vertexTrans =
        elements<float, 1>(part.vertex_trans, countIf(GEOM_HAS_VERTEX_TRANS, count));
}

geom_stream::Mesh meshOf(const GEOMobj& object) {
    geom_stream::Mesh mesh;
    mesh.u = object.mesh.u;
    mesh.v = object.mesh.v;
    const bool isEmpty = mesh.u == 0 || mesh.v == 0;
    fill(mesh, geom::partOf(object), object.flags, mesh.u * mesh.v,
         isEmpty ? 0 : (mesh.u - 1) * (mesh.v - 1));
    return mesh;
}

geom_stream::Polyhedron polyhedronOf(const GEOMobj& object) {
    const GEOMpolygon_list& list = object.polyhedron.polygons;
    geom_stream::Polyhedron polyhedron;
    polyhedron.polygonCount = list.polygons;
    polyhedron.indexCount = list.indices;
    polyhedron.polygonList.assign(list.data, list.data + list.polygons + list.indices);
    polyhedron.polygonList.push_back(0);
    fill(polyhedron, geom::partOf(object), object.flags, object.polyhedron.vertices.used,
         list.polygons);
    return polyhedron;
}

geom_stream::Polytriangle polytriangleOf(const GEOMobj& object) {
    const GEOMpolytriangle& all = object.polytriangle;
    const std::uint32_t lineFlags = object.flags & geom::kLineFlags;
    geom_stream::Polytriangle polytriangle;
    for (std::int64_t i = 0; i < all.strips; ++i) {
        const std::int64_t n = all.strip_vertices[i].used;
        fill(polytriangle.strips.emplace_back(), geom::stripOf(all, i), object.flags, n, n - 2);
    }
    for (std::int64_t i = 0; i < all.lines; ++i) {
        const std::int64_t n = all.line_vertices[i].used;
        fill(polytriangle.polylines.emplace_back(), geom::polylineOf(all, i), lineFlags, n, n - 1);
    }
    const std::int64_t n = all.segment_vertices.used;
    fill(polytriangle.segments, geom::segmentsOf(all), lineFlags, n, n / 2);
    return polytriangle;
}

geom_stream::Sphere spheresOf(const GEOMobj& object) {
    const std::int64_t n = object.sphere.centers.used;
    geom_stream::Sphere sphere;
    fill(sphere, geom::partOf(object), object.flags & geom::kSphereFlags, n, 0);
    sphere.radii = elements<float, 1>(&object.sphere.radii, object.sphere.radii.used > 0 ? n : 0);
    return sphere;
}

geom_stream::Label labelsOf(const GEOMobj& object) {
    const GEOMlabels& labels = object.label;
    const std::int64_t n = labels.texts.used;
    const auto countIf = [&](std::uint32_t bit) { return (object.flags & bit) != 0 ? n : 0; };
    using geom_stream::Vec3;
    geom_stream::Label label;
    label.labelFlags = labels.label_flags;
    label.texts.assign(labels.texts.data, labels.texts.data + n);
    label.positions = elements<Vec3>(&labels.positions, n);
    label.offsets = elements<Vec3>(&labels.offsets, n);
    label.heights = elements<float, 1>(&labels.heights, n);
    label.colours = elements<Vec3>(&labels.colors, countIf(GEOM_HAS_COLORS));
    label.data = elements<std::int32_t, 1>(&labels.label_data, countIf(GEOM_HAS_LABEL_DATA));
    return label;
}

} // namespace

geom_stream::Object heldValues(const GEOMobj& object) {
    geom_stream::Object values;
    values.flags = object.flags & kAllFlags;
    std::copy(std::begin(object.extent), std::end(object.extent), values.extent.begin());
    values.hasExtent = object.has_extent != 0;
    const unsigned char* place = object.vals;
    for (std::uint32_t i = 0; i < object.nvals; ++i) {
        const geom::Property property = geom::propertyAt(place);
        values.properties.push_back({property.kind, property.value, {}});
        place += geom::propertyBytes(property);
    }
    values.name = object.name == nullptr ? "" : object.name;
    values.secondText = object.attribute == nullptr ? "" : object.attribute;
    switch (object.type) {
    case GEOM_MESH:
        values.body = meshOf(object);
        break;
    case GEOM_POLYHEDRON:
        values.body = polyhedronOf(object);
        break;
    case GEOM_POLYTRIANGLE:
        values.body = polytriangleOf(object);
        break;
    case GEOM_SPHERE:
        values.body = spheresOf(object);
        if (object.sphere.radii.used <= 0) {
            values.flags |= GEOM_HAS_NO_RADII;
        }
        break;
    default:
        values.body = labelsOf(object);
        break;
    }
    values.byteCount = geom_stream::expectedByteCount(values);
    return values;
}

} // namespace meshcast::fuzz
