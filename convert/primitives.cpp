#include "convert/context.h"
#include "convert/converter.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

// Cones, cylinders and spheres, each tessellated at a fixed resolution around the origin. A shape
// with a texture has more vertices, since vertices with different texture coordinates cannot be
// shared: caps and sides have rings of their own, and the last point of a ring repeats its first.
//
// Kept, since readers of the stream expect these vertices: the parts fields of cones and cylinders
// are ignored, so all parts are written; and the constants below.

namespace meshcast {

namespace {

constexpr std::int32_t kSegments = 12;
/// Points of a ring whose last point repeats its first.
constexpr std::int32_t kClosedRing = kSegments + 1;

// ---- polygon lists

/// A corner of the polygons around an axis, of which there is one per segment. The corner is either
/// a vertex that all of them share, or the point of a ring at the start or the end of the segment.
struct Corner {
    enum Kind : std::int8_t { kCenter, kStart, kEnd };
    Kind kind;
    std::int32_t vertex; ///< The centre, or the ring's first point.
};

/// A polygon with these corners for each segment. The last segment ends at the first point of a
/// ring of kSegments points, or at the last point of a ring of kClosedRing.
template <std::int32_t Count>
constexpr auto around(std::int32_t ringPoints, const Corner (&corners)[Count]) {
    std::array<std::int32_t, std::size_t{kSegments} * (Count + 1)> list{};
    auto* entry = list.begin();
    for (std::int32_t i = 0; i < kSegments; ++i) {
        *entry++ = Count;
        for (const auto& [kind, vertex] : corners) {
            const std::int32_t point = kind == Corner::kStart ? i : (i + 1) % ringPoints;
            *entry++ = kind == Corner::kCenter ? vertex : vertex + point;
        }
    }
    return list;
}

/// Triangles from a centre to a ring, and the same with opposite winding.
constexpr auto fan(std::int32_t ringPoints, std::int32_t center, std::int32_t ring) {
    return around(ringPoints,
                  {{Corner::kCenter, center}, {Corner::kStart, ring}, {Corner::kEnd, ring}});
}
constexpr auto turnedFan(std::int32_t ringPoints, std::int32_t center, std::int32_t ring) {
    return around(ringPoints,
                  {{Corner::kCenter, center}, {Corner::kEnd, ring}, {Corner::kStart, ring}});
}

/// Quadrilaterals between two rings.
constexpr auto band(std::int32_t ringPoints, std::int32_t lower, std::int32_t upper) {
    return around(ringPoints, {{Corner::kStart, lower},
                               {Corner::kStart, upper},
                               {Corner::kEnd, upper},
                               {Corner::kEnd, lower}});
}

/// Concatenates polygons and adds the final 0.
template <std::size_t... Sizes>
constexpr auto polygonList(const std::array<std::int32_t, Sizes>&... parts) {
    std::array<std::int32_t, (Sizes + ... + 1)> list{};
    auto* end = list.begin();
    ((end = std::copy(parts.begin(), parts.end(), end)), ...);
    return list;
}

constexpr auto kConeBase = polygonList(fan(kSegments, 1, 2));
constexpr auto kConeSide = polygonList(turnedFan(kSegments, 14, 2));
constexpr auto kTexturedCone = polygonList(fan(kClosedRing, 1, 2), turnedFan(kClosedRing, 28, 15));
constexpr auto kCylinderBottom = kConeBase;
constexpr auto kCylinderSide = polygonList(band(kSegments, 2, 14));
constexpr auto kCylinderTop = polygonList(turnedFan(kSegments, 26, 14));
constexpr auto kTexturedCylinder =
    polygonList(fan(kClosedRing, 1, 2), band(kClosedRing, 15, 28), turnedFan(kClosedRing, 54, 41));

// ---- vertices

/// A direction from a ring's centre to one of its points.
struct Direction {
    double sine;
    double cosine;
};

const std::array<Direction, kClosedRing>& ringDirections() {
    static const std::array<Direction, kClosedRing> directions = [] {
        // Kept: not exactly 2 pi, one digit is wrong.
        constexpr double kFullTurn = 6.283185305179586;
        std::array<Direction, kClosedRing> computed{};
        for (std::size_t i = 0; i < computed.size(); ++i) {
            const double angle = static_cast<double>(i) * kFullTurn / 12.0;
            computed[i] = {std::sin(angle), std::cos(angle)};
        }
        return computed;
    }();
    return directions;
}

/// Collects the vertices of a shape around the y axis, and any texture coordinates.
class AxialShape {
public:
    /// `count` vertices will be added.
    AxialShape(float radius, std::size_t count) : radius_(radius) { vertices_.reserve(3 * count); }

    void addCenter(float y) { addVertex(0, y, 0); }
    /// A centre, at the middle of the image's width.
    void addCenter(float y, float v) {
        addCenter(y);
        addUv(0.5, static_cast<double>(v));
    }

    /// A ring of twelve points, from +x towards +z.
    void addRing(float y) {
        for (const auto& [sine, cosine] : std::span(ringDirections()).first<kSegments>()) {
            addVertex(static_cast<float>(cosine) * radius_, y, static_cast<float>(sine) * radius_);
        }
    }

    /// The ring of a cap, mapped to a circle in the image. `turn` is -1 for a cap that is seen from
    /// the other side.
    void addCap(float y, double turn) {
        for (const auto& [sine, cosine] : ringDirections()) {
            addTexturedVertex(sine, y, cosine);
            addUv(0.5 + 0.5 * sine, 0.5 + turn * 0.5 * cosine);
        }
    }

    /// The ring of a side, mapped to a line across the image.
    void addSide(float y, double v) {
        for (double column = 0; const auto& [sine, cosine] : ringDirections()) {
            addTexturedVertex(sine, y, cosine);
            addUv(column / 12.0, v);
            ++column;
        }
    }

    std::span<const float> vertices() const { return vertices_; }
    std::span<const float> uvs() const { return uvs_; }

private:
    void addVertex(float x, float y, float z) { vertices_.insert(vertices_.end(), {x, y, z}); }
    /// Rings with a texture run from -z towards +x, unlike those without.
    void addTexturedVertex(double sine, float y, double cosine) {
        addVertex(static_cast<float>(sine) * radius_, y, -(static_cast<float>(cosine) * radius_));
    }
    void addUv(double u, double v) {
        uvs_.insert(uvs_.end(), {static_cast<float>(u), static_cast<float>(v)});
    }

    float radius_;
    std::vector<float> vertices_;
    std::vector<float> uvs_;
};

void printSine(ObjectSink& sink, double sine) {
    std::array<char, 32> line{};
    const int length = std::snprintf(line.data(), line.size(), " sin = %f\n", sine);
    sink.print({line.data(), static_cast<std::size_t>(length)});
}

} // namespace

void Converter::convert(const QvCone& shape, const QvState& state) {
    const ShapeContext context(state);
    const float top = half(shape.height.value);
    if (textureInForce(state)) {
        printSine(sink_, std::sin(1.0)); // Kept: the text goes to standard output.
        AxialShape cone(shape.bottomRadius.value, 28);
        cone.addCenter(-top, 0.5F);
        cone.addCap(-top, 1);
        cone.addSide(-top, 1);
        cone.addCenter(top, 0);
        writePolyhedron(cone.vertices(), kTexturedCone, Normals::kSmooth, cone.uvs());
        return;
    }
    AxialShape cone(shape.bottomRadius.value, 14);
    cone.addCenter(-top);
    cone.addRing(-top);
    cone.addCenter(top);
    writePolyhedron(cone.vertices(), kConeBase, Normals::kFacet);
    writePolyhedron(cone.vertices(), kConeSide, Normals::kSmooth);
}

void Converter::convert(const QvCylinder& shape, const QvState& state) {
    const ShapeContext context(state);
    const float top = half(shape.height.value);
    if (textureInForce(state)) {
        AxialShape cylinder(shape.radius.value, 54);
        cylinder.addCenter(-top, 0.5F);
        cylinder.addCap(-top, 1);
        cylinder.addSide(-top, 1);
        cylinder.addSide(top, 0);
        cylinder.addCap(top, -1);
        cylinder.addCenter(top, 0.5F);
        writePolyhedron(cylinder.vertices(), kTexturedCylinder, Normals::kSmooth, cylinder.uvs());
        return;
    }
    AxialShape cylinder(shape.radius.value, 26);
    cylinder.addCenter(-top);
    cylinder.addRing(-top);
    cylinder.addRing(top);
    cylinder.addCenter(top);
    writePolyhedron(cylinder.vertices(), kCylinderBottom, Normals::kFacet);
    writePolyhedron(cylinder.vertices(), kCylinderSide, Normals::kSmooth);
    writePolyhedron(cylinder.vertices(), kCylinderTop, Normals::kFacet);
}

void Converter::convert(const QvSphere& shape, const QvState& state) {
    constexpr std::size_t kColumns = 21;
    constexpr std::size_t kRows = 11;
    // Kept: not exactly pi / 10, one digit is wrong.
    constexpr double kStep = 0.3141592652589793;
    // Kept: an extent of zeros, which still marks the object as having an extent.
    constexpr std::array<float, 6> kExtent{};

    const ShapeContext context(state);
    const float radius = shape.radius.value;
    if (!textureInForce(state)) {
        constexpr std::array<float, 3> kCenter{};
        const ObjectOwner object(GEOMcreate_sphere(kExtent.data(), kCenter.data(), &radius, nullptr,
                                                   nullptr, 1, GEOM_COPY));
        write(*object);
        return;
    }
    std::array<float, kColumns> sine{};
    std::array<float, kColumns> cosine{};
    for (std::size_t i = 0; i < kColumns; ++i) {
        const auto angle = static_cast<float>(static_cast<double>(i) * kStep);
        sine[i] = static_cast<float>(std::sin(static_cast<double>(angle)));
        cosine[i] = static_cast<float>(std::cos(static_cast<double>(angle)));
        // Kept: the text goes to standard output, only for the first sphere, in single precision.
        if (!sinesPrinted_) {
            printSine(sink_, static_cast<double>(std::sin(angle)));
        }
    }
    sinesPrinted_ = true;
    std::vector<float> vertices;
    std::vector<float> uvs;
    for (std::size_t j = 0; j < kRows; ++j) {
        for (std::size_t i = 0; i < kColumns; ++i) {
            vertices.insert(vertices.end(), {-(radius * sine[j]) * sine[i], radius * cosine[j],
                                             -(radius * sine[j]) * cosine[i]});
            uvs.insert(uvs.end(), {static_cast<float>(static_cast<double>(i) / 20.0),
                                   static_cast<float>(static_cast<double>(j) / 10.0)});
        }
    }
    const ObjectOwner object(
        GEOMcreate_mesh(kExtent.data(), vertices.data(), kColumns, kRows, GEOM_COPY));
    GEOMadd_uvs(object.get(), uvs.data(), kColumns * kRows, GEOM_COPY);
    write(*object);
}

} // namespace meshcast
