#include "geom_stream/object.h"

#include <cstdint>
#include <string>
#include <variant>

namespace geom_stream {
namespace {

/// The arithmetic of `bytecount`. Unsigned, because a grid without vertices may have any width, so
/// that results may overflow.
class ByteCount {
public:
    explicit ByteCount(std::uint32_t flags) : flags_(flags) {}

    std::uint64_t operator()(const Mesh& mesh) const {
        const auto u = static_cast<std::uint64_t>(mesh.u);
        const auto v = static_cast<std::uint64_t>(mesh.v);
        return 4 * u * v * surfaceValues() + ifSet(flag::kPrimitiveData, (4 * u - 4) * (v - 1));
    }

    std::uint64_t operator()(const Polyhedron& polyhedron) const {
        const auto polygons = static_cast<std::uint64_t>(polyhedron.polygonCount);
        const auto indices = static_cast<std::uint64_t>(polyhedron.indexCount);
        return 4 * (indices + polygons + polyhedron.vertices.size() * surfaceValues()) + 4 +
               ifSet(flag::kPrimitiveData, 4 * polygons);
    }

    std::uint64_t operator()(const Polytriangle& polytriangle) const {
        std::uint64_t sum = 4 * (polytriangle.strips.size() + polytriangle.polylines.size());
        for (const VertexArrays& strip : polytriangle.strips) {
            const std::uint64_t k = strip.vertices.size();
            sum += 4 * k * surfaceValues() + ifSet(flag::kPrimitiveData, 4 * k - 8);
        }
        for (const VertexArrays& polyline : polytriangle.polylines) {
            const std::uint64_t m = polyline.vertices.size();
            sum += 4 * m * lineValues() + ifSet(flag::kPrimitiveData, 4 * m - 1);
        }
        const std::uint64_t d = polytriangle.segments.vertices.size();
        return sum + 4 * d * lineValues() + ifSet(flag::kPrimitiveData, 4 * (d / 2));
    }

    std::uint64_t operator()(const Sphere& sphere) const {
        return sphere.vertices.size() * (4 + ifSet(flag::kNormals, 3) + ifSet(flag::kColours, 3));
    }

    std::uint64_t operator()(const Label& label) const {
        std::uint64_t sum =
            label.texts.size() * (11 + ifSet(flag::kColours, 3) + ifSet(flag::kLabelData, 1));
        for (const std::string& text : label.texts)
            sum += text.size() + 1;
        return sum;
    }

private:
    std::uint64_t ifSet(std::uint32_t bit, std::uint64_t value) const {
        return (flags_ & bit) != 0 ? value : 0;
    }

    std::uint64_t lineValues() const {
        return 3 + ifSet(flag::kColours, 3) + ifSet(flag::kVertexData, 1);
    }

    std::uint64_t surfaceValues() const {
        return lineValues() + ifSet(flag::kNormals, 3) + ifSet(flag::kUvs, 2) +
               ifSet(flag::kUvws, 3) + ifSet(flag::kVertexTrans, 1);
    }

    std::uint32_t flags_;
};

} // namespace

std::int64_t expectedByteCount(const Object& object) {
    return static_cast<std::int64_t>(std::visit(ByteCount(object.flags), object.body));
}

} // namespace geom_stream
