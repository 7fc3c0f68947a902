#pragma once

#include "geom_stream/object.h"

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace meshcast::fuzz {

/// All values of an object as one list of numbers, for comparisons. Each array has its length
/// before it. Floats are stored as bits, so that NaN equals itself. Offset, size, version and
/// header size are left out, since they depend on the version and the position in the stream.
class ObjectValues {
public:
    explicit ObjectValues(const geom_stream::Object& object) {
        put(object.flags);
        put(object.extent);
        put(object.hasExtent);
        put(object.byteCount);
        put(object.properties);
        put(object.name);
        put(object.secondText);
        put(object.body.index());
        std::visit([this](const auto& body) { put(body); }, object.body);
    }

    bool operator==(const ObjectValues&) const = default;

    const std::vector<std::uint64_t>& numbers() const { return numbers_; }

private:
    void put(std::integral auto number) { numbers_.push_back(static_cast<std::uint64_t>(number)); }
    void put(std::byte byte) { put(std::to_integer<unsigned>(byte)); }
    void put(float number) { put(std::bit_cast<std::uint32_t>(number)); }
    template <class Element, std::size_t N>
    void put(const std::array<Element, N>& elements) {
        for (const Element& element : elements) {
            put(element);
        }
    }
    template <class Element>
    void put(const std::vector<Element>& elements) {
        put(elements.size());
        for (const Element& element : elements) {
            put(element);
        }
    }
    void put(const std::string& text) {
        put(text.size());
        for (const char c : text) {
            put(static_cast<unsigned char>(c));
        }
    }
    void put(const geom_stream::Property& property) {
        put(property.kind);
        put(property.value);
        put(property.bytes);
    }
    void put(const geom_stream::VertexArrays& arrays) {
        put(arrays.vertices);
        put(arrays.normals);
        put(arrays.colours);
        put(arrays.uvs);
        put(arrays.uvws);
        put(arrays.vertexData);
        put(arrays.primitiveData);
        put(arrays.vertexTrans);
    }
    void put(const geom_stream::Mesh& mesh) {
        put(mesh.u);
        put(mesh.v);
        put(static_cast<const geom_stream::VertexArrays&>(mesh));
    }
    void put(const geom_stream::Polyhedron& polyhedron) {
        put(polyhedron.polygonCount);
        put(polyhedron.indexCount);
        put(polyhedron.polygonList);
        put(static_cast<const geom_stream::VertexArrays&>(polyhedron));
    }
    void put(const geom_stream::Polytriangle& polytriangle) {
        put(polytriangle.strips);
        put(polytriangle.polylines);
        put(polytriangle.segments);
    }
    void put(const geom_stream::Sphere& sphere) {
        put(static_cast<const geom_stream::VertexArrays&>(sphere));
        put(sphere.radii);
    }
    void put(const geom_stream::Label& label) {
        put(label.labelFlags);
        put(label.texts);
        put(label.positions);
        put(label.offsets);
        put(label.heights);
        put(label.colours);
        put(label.data);
    }

    std::vector<std::uint64_t> numbers_;
};

} // namespace meshcast::fuzz
