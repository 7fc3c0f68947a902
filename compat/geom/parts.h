#pragma once

#include "compat/geom/geom.h"
#include "compat/geom/list.h"

#include <cstdint>
#include <type_traits>

// A uniform view of the arrays that the kinds share, so that adding, checking and writing need no
// code per kind.

namespace geom {

// The arrays of one object, strip, polyline or segment set. A null pointer means that the part has
// no such list.
template <bool IsConst>
struct BasicPart {
    template <class List>
    using Pointer = std::conditional_t<IsConst, const List*, List*>;

    Pointer<GEOMvector_list> vertices = nullptr; // centres of spheres, positions of labels
    Pointer<GEOMvector_list> normals = nullptr;
    Pointer<GEOMvector_list> colors = nullptr;
    Pointer<GEOMscalar_list> uvs = nullptr;
    Pointer<GEOMint_list> vertex_data = nullptr;
    Pointer<GEOMint_list> primitive_data = nullptr;
    Pointer<GEOMscalar_list> vertex_trans = nullptr;
};
using Part = BasicPart<false>;
using ConstPart = BasicPart<true>;

// The flag bits that apply to parts which have only some of the lists.
inline constexpr std::uint32_t kSphereFlags =
    GEOM_HAS_NORMALS | GEOM_HAS_COLORS | GEOM_HAS_VERTEX_DATA | GEOM_HAS_VERTEX_TRANS;
inline constexpr std::uint32_t kLineFlags =
    GEOM_HAS_COLORS | GEOM_HAS_VERTEX_DATA | GEOM_HAS_PRIMITIVE_DATA;

// The part of an object, const or not.
template <class Object>
using PartOf = BasicPart<std::is_const_v<Object>>;

// The lists of the object itself; none for a polytriangle or an unknown type.
template <class Object>
PartOf<Object> part_of(Object& obj) {
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

// The cells between the vertices of a grid: one value of primitive data each. An empty grid (u or v
// below 1) has none, though its byte count says otherwise.
inline std::int64_t cells_of(const GEOMmesh& mesh) {
    return mesh.u < 1 || mesh.v < 1 ? 0 : multiply_counts(mesh.u - 1, mesh.v - 1);
}

template <class List>
List* list_at(List* lists, std::int64_t index) {
    return lists == nullptr ? nullptr : lists + index;
}

// Strip or polyline number `index` (from 0), and the disjoint segments, of a polytriangle.
template <class Triangles>
PartOf<Triangles> strip_of(Triangles& all, std::int64_t index) {
    return {list_at(all.strip_vertices, index),    list_at(all.strip_normals, index),
            list_at(all.strip_colors, index),      list_at(all.strip_uvs, index),
            list_at(all.strip_vertex_data, index), list_at(all.strip_primitive_data, index),
            list_at(all.strip_vertex_trans, index)};
}

template <class Triangles>
PartOf<Triangles> polyline_of(Triangles& all, std::int64_t index) {
    return {.vertices = list_at(all.line_vertices, index),
            .colors = list_at(all.line_colors, index),
            .vertex_data = list_at(all.line_vertex_data, index),
            .primitive_data = list_at(all.line_primitive_data, index)};
}

template <class Triangles>
PartOf<Triangles> segments_of(Triangles& all) {
    return {.vertices = &all.segment_vertices,
            .colors = &all.segment_colors,
            .vertex_data = &all.segment_vertex_data,
            .primitive_data = &all.segment_primitive_data};
}

// Frees every list of the part.
inline void clear_part(const Part& part) {
    const auto clear_list = [](auto* list) {
        if (list != nullptr)
            clear(*list);
    };
    clear_list(part.vertices);
    clear_list(part.normals);
    clear_list(part.colors);
    clear_list(part.uvs);
    clear_list(part.vertex_data);
    clear_list(part.primitive_data);
    clear_list(part.vertex_trans);
}

// The elements in use; 0 for a list that is not there.
template <class T, int N>
std::int64_t used_of(const GEOMlist<T, N>* list) {
    return list == nullptr ? 0 : list->used;
}

} // namespace geom
