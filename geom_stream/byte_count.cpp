#include "geom_stream/decoder.h"

#include <cstdint>
#include <string>
#include <variant>

namespace geom_stream {
namespace {

/// The arithmetic of `bytecount`, in unsigned numbers because a grid of no vertices may have any
/// width.
class ByteCount {
public:
    explicit ByteCount(std::uint32_t flags) : flags_(flags) {}

    std::uint64_t operator()(const Mesh& mesh) const {
        const auto u = static_cast<std::uint64_t>(mesh.u);
        const auto v = static_cast<std::uint64_t>(mesh.v);
        return 4 * u * v * surface_values() + if_set(flag::primitive_data, (4 * u - 4) * (v - 1));
    }

    std::uint64_t operator()(const Polyhedron& polyhedron) const {
        const auto polygons = static_cast<std::uint64_t>(polyhedron.polygon_count);
        const auto indices = static_cast<std::uint64_t>(polyhedron.index_count);
        return 4 * (indices + polygons + polyhedron.vertices.size() * surface_values()) + 4 +
               if_set(flag::primitive_data, 4 * polygons);
    }

    std::uint64_t operator()(const Polytriangle& polytriangle) const {
        std::uint64_t sum = 4 * (polytriangle.strips.size() + polytriangle.polylines.size());
        for (const VertexArrays& strip : polytriangle.strips) {
            const std::uint64_t k = strip.vertices.size();
            sum += 4 * k * surface_values() + if_set(flag::primitive_data, 4 * k - 8);
        }
        for (const VertexArrays& polyline : polytriangle.polylines) {
            const std::uint64_t m = polyline.vertices.size();
            sum += 4 * m * line_values() + if_set(flag::primitive_data, 4 * m - 1);
        }
        const std::uint64_t d = polytriangle.segments.vertices.size();
        return sum + 4 * d * line_values() + if_set(flag::primitive_data, 4 * (d / 2));
    }

    std::uint64_t operator()(const Sphere& sphere) const {
        return sphere.vertices.size() * (4 + if_set(flag::normals, 3) + if_set(flag::colours, 3));
    }

    std::uint64_t operator()(const Label& label) const {
        std::uint64_t sum =
            label.texts.size() * (11 + if_set(flag::colours, 3) + if_set(flag::label_data, 1));
        for (const std::string& text : label.texts)
            sum += text.size() + 1;
        return sum;
    }

private:
    std::uint64_t if_set(std::uint32_t bit, std::uint64_t value) const {
        return (flags_ & bit) != 0 ? value : 0;
    }

    std::uint64_t line_values() const {
        return 3 + if_set(flag::colours, 3) + if_set(flag::vertex_data, 1);
    }

    std::uint64_t surface_values() const {
        return line_values() + if_set(flag::normals, 3) + if_set(flag::uvs, 2) +
               if_set(flag::uvws, 3) + if_set(flag::vertex_trans, 1);
    }

    std::uint32_t flags_;
};

} // namespace

std::int64_t expected_byte_count(const Object& object) {
    return static_cast<std::int64_t>(std::visit(ByteCount(object.flags), object.body));
}

} // namespace geom_stream
