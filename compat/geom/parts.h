#pragma once

#include "compat/geom/geom.h"
#include "compat/geom/list.h"

#include <cstdint>
#include <type_traits>

// A uniform view of the arrays that the kinds share, so that adding, checking and writing need no
// code per kind.

namespace geom {

/// The arrays of one object, strip, polyline or segment set. A null pointer means that the part has
/// no such list.
template <bool IsConst>
struct BasicPart {
    template <class List>
    using Pointer = std::conditional_t<IsConst, const List*, List*>;

    Pointer<GEOMvector_list> vertices = nullptr; ///< centres of spheres, positions of labels
    Pointer<GEOMvector_list> normals = nullptr;
    Pointer<GEOMvector_list> colors = nullptr;
    Pointer<GEOMscalar_list> uvs = nullptr;
    Pointer<GEOMint_list> vertex_data = nullptr;
    Pointer<GEOMint_list> primitive_data = nullptr;
    Pointer<GEOMscalar_list> vertex_trans = nullptr;
};
using Part = BasicPart<false>;
using ConstPart = BasicPart<true>;

/// The flag bits that apply to parts which have only some of the lists.
inline constexpr std::uint32_t kSphereFlags =
    GEOM_HAS_NORMALS | GEOM_HAS_COLORS | GEOM_HAS_VERTEX_DATA | GEOM_HAS_VERTEX_TRANS;
inline constexpr std::uint32_t kLineFlags =
    GEOM_HAS_COLORS | GEOM_HAS_VERTEX_DATA | GEOM_HAS_PRIMITIVE_DATA;

/// The part of an object, const or not.
template <class Object>
using PartOf = BasicPart<std::is_const_v<Object>>;

/// The lists of the object itself; none for a polytriangle or an unknown type.
template <class Object>
PartOf<Object> partOf(Object& obj) {
    switch (obj.type) {
    case GEOM_MESH: {
        auto& mesh = obj.mesh;
        return {&mesh.vertices,    &mesh.normals,        &mesh.colors,      &mesh.uvs,
                &mesh.vertex_data, &mesh.primitive_data, &mesh.vertex_trans};
    }
    case GEOM_POLYHEDRON: {
        auto& polyhedron = obj.polyhedron;
        return {&polyhedron.vertices,    &polyhedron.normals,     &polyhedron.colors,
                &polyhedron.uvs,         &polyhedron.vertex_data, &polyhedron.primitive_data,
                &polyhedron.vertex_trans};
    }
    case GEOM_SPHERE: {
        auto& sphere = obj.sphere;
        return {.vertices = &sphere.centers,
                .normals = &sphere.normals,
                .colors = &sphere.colors,
                .vertex_data = &sphere.vertex_data,
                .vertex_trans = &sphere.vertex_trans};
    }
    case GEOM_LABEL:
        return {.vertices = &obj.label.positions, .colors = &obj.label.colors};
    default:
        return {};
    }
}

/// The cells between the vertices of a grid: one value of primitive data each. An empty grid (u or
/// v below 1) has none, though its byte count says otherwise.
inline std::int64_t cellsOf(const GEOMmesh& mesh) {
    return mesh.u < 1 || mesh.v < 1 ? 0 : multiplyCounts(mesh.u - 1, mesh.v - 1);
}

template <class List>
List* listAt(List* lists, std::int64_t index) {
    return lists == nullptr ? nullptr : lists + index;
}

/// Strip or polyline number `index` (from 0), and the disjoint segments, of a polytriangle.
template <class Triangles>
PartOf<Triangles> stripOf(Triangles& all, std::int64_t index) {
    return {listAt(all.strip_vertices, index),    listAt(all.strip_normals, index),
            listAt(all.strip_colors, index),      listAt(all.strip_uvs, index),
            listAt(all.strip_vertex_data, index), listAt(all.strip_primitive_data, index),
            listAt(all.strip_vertex_trans, index)};
}

template <class Triangles>
PartOf<Triangles> polylineOf(Triangles& all, std::int64_t index) {
    return {.vertices = listAt(all.line_vertices, index),
            .colors = listAt(all.line_colors, index),
            .vertex_data = listAt(all.line_vertex_data, index),
            .primitive_data = listAt(all.line_primitive_data, index)};
}

template <class Triangles>
PartOf<Triangles> segmentsOf(Triangles& all) {
    return {.vertices = &all.segment_vertices,
            .colors = &all.segment_colors,
            .vertex_data = &all.segment_vertex_data,
            .primitive_data = &all.segment_primitive_data};
}

/// Frees every list of the part.
inline void clearPart(const Part& part) {
    const auto clearList = [](auto* list) {
        if (list != nullptr)
            clear(*list);
    };
    clearList(part.vertices);
    clearList(part.normals);
    clearList(part.colors);
    clearList(part.uvs);
    clearList(part.vertex_data);
    clearList(part.primitive_data);
    clearList(part.vertex_trans);
}

/// The elements in use; 0 for a list that is not there.
template <class T, int N>
std::int64_t usedOf(const GEOMlist<T, N>* list) {
    return list == nullptr ? 0 : list->used;
}

} // namespace geom
