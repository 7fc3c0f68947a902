#include "convert/box.h"
#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <utility>
#include <vector>

// Cubes, cones, cylinders and spheres, each tessellated at a fixed resolution around the origin.
// The polygon lists are tables; the vertices are a table's corners or rings of points. A shape with
// a texture takes other vertices, so that every corner of the image has its own: the caps of a
// cylinder meet its side in rings of their own, and a ring's last point repeats its first.
//
// The parts fields of cones and cylinders are not looked at: all parts are written. Kept, like the
// constants below: the stream's readers know these vertices.

namespace meshcast {

namespace {

constexpr std::size_t kSegments = 12;
/// Points of a ring that ends where it began.
constexpr std::size_t kClosedRing = kSegments + 1;

float half(float value) {
    return static_cast<float>(static_cast<double>(value) * 0.5);
}

// ---- polygon lists

/// Twelve triangles, or quadrilaterals, between rings of points and their centres.
template <std::size_t Corners>
using SegmentPolygons = std::array<std::int32_t, kSegments*(Corners + 1)>;

enum class Ring { kShared, kClosed };
enum class Turn { kForward, kBackward };

/// The point after point `i` of a ring whose points start at `first`.
constexpr std::int32_t after(std::int32_t first, std::size_t i, Ring ring) {
    const std::size_t next = ring == Ring::kShared ? (i + 1) % kSegments : i + 1;
    return first + static_cast<std::int32_t>(next);
}

/// Triangles from a centre over a ring.
constexpr SegmentPolygons<3> fan(std::int32_t center, std::int32_t first, Ring ring, Turn turn) {
    SegmentPolygons<3> list{};
    auto* entry = list.begin();
    for (std::size_t i = 0; i < kSegments; ++i) {
        const std::int32_t here = first + static_cast<std::int32_t>(i);
        const std::int32_t next = after(first, i, ring);
        for (const std::int32_t value : {3, center, turn == Turn::kForward ? here : next,
                                         turn == Turn::kForward ? next : here}) {
            *entry++ = value;
        }
    }
    return list;
}

/// Quadrilaterals between two rings.
constexpr SegmentPolygons<4> band(std::int32_t lower, std::int32_t upper, Ring ring) {
    SegmentPolygons<4> list{};
    auto* entry = list.begin();
    for (std::size_t i = 0; i < kSegments; ++i) {
        const auto offset = static_cast<std::int32_t>(i);
        for (const std::int32_t value :
             {4, lower + offset, upper + offset, after(upper, i, ring), after(lower, i, ring)}) {
            *entry++ = value;
        }
    }
    return list;
}

/// Polygons one after another, with the closing 0.
template <std::size_t... Sizes>
constexpr auto polygonList(const std::array<std::int32_t, Sizes>&... parts) {
    std::array<std::int32_t, (Sizes + ... + 1)> list{};
    auto* end = list.begin();
    const auto append = [&end](const auto& part) {
        for (const std::int32_t entry : part) {
            *end++ = entry;
        }
    };
    (append(parts), ...);
    return list;
}

constexpr auto kConeBase = polygonList(fan(1, 2, Ring::kShared, Turn::kForward));
constexpr auto kConeSide = polygonList(fan(14, 2, Ring::kShared, Turn::kBackward));
constexpr auto kTexturedCone = polygonList(fan(1, 2, Ring::kClosed, Turn::kForward),
                                           fan(28, 15, Ring::kClosed, Turn::kBackward));
constexpr auto kCylinderBottom = polygonList(fan(1, 2, Ring::kShared, Turn::kForward));
constexpr auto kCylinderSide = polygonList(band(2, 14, Ring::kShared));
constexpr auto kCylinderTop = polygonList(fan(26, 14, Ring::kShared, Turn::kBackward));
constexpr auto kTexturedCylinder =
    polygonList(fan(1, 2, Ring::kClosed, Turn::kForward), band(15, 28, Ring::kClosed),
                fan(54, 41, Ring::kClosed, Turn::kBackward));

constexpr std::array<std::array<float, 3>, 24> kTexturedBoxCorners = {{
    {-1, -1, 1},  {1, -1, 1},   {1, 1, 1},   {-1, 1, 1},  //
    {1, -1, 1},   {1, -1, -1},  {1, 1, -1},  {1, 1, 1},   //
    {1, -1, -1},  {-1, -1, -1}, {-1, 1, -1}, {1, 1, -1},  //
    {-1, -1, -1}, {-1, -1, 1},  {-1, 1, 1},  {-1, 1, -1}, //
    {-1, 1, 1},   {1, 1, 1},    {1, 1, -1},  {-1, 1, -1}, //
    {-1, -1, -1}, {1, -1, -1},  {1, -1, 1},  {-1, -1, 1},
}};
constexpr std::array<std::int32_t, 31> kTexturedBoxPolygons = {4, 1,  2,  3,  4,  //
                                                               4, 5,  6,  7,  8,  //
                                                               4, 9,  10, 11, 12, //
                                                               4, 13, 14, 15, 16, //
                                                               4, 17, 18, 19, 20, //
                                                               4, 21, 22, 23, 24, //
                                                               0};
/// Of the four corners of each face.
constexpr std::array<float, 8> kFaceCoordinates = {0, 1, 1, 1, 1, 0, 0, 0};

// ---- vertices

/// Corners of a table, stretched to a box of this size.
template <std::size_t Count>
std::array<float, Count * 3> boxVertices(const std::array<std::array<float, 3>, Count>& corners,
                                         const std::array<float, 3>& size) {
    std::array<float, Count * 3> vertices{};
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        vertices[i] = half(corners[i / 3][i % 3] * size[i % 3]);
    }
    return vertices;
}

/// The directions from a ring's centre to its points.
struct RingDirections {
    std::array<double, kClosedRing> sine;
    std::array<double, kClosedRing> cosine;
};

const RingDirections& ringDirections() {
    static const RingDirections directions = [] {
        // Not 2 pi: a digit is off, and has to stay so.
        constexpr double kFullTurn = 6.283185305179586;
        RingDirections computed{};
        for (std::size_t i = 0; i < kClosedRing; ++i) {
            const double angle = static_cast<double>(i) * kFullTurn / 12.0;
            computed.sine[i] = std::sin(angle);
            computed.cosine[i] = std::cos(angle);
        }
        return computed;
    }();
    return directions;
}

/// Collects the vertices of a shape with an upright axis.
class AxialVertices {
public:
    /// `count` vertices will be added.
    AxialVertices(float radius, std::size_t count) : radius_(radius) {
        vertices_.reserve(3 * count);
    }

    void addCenter(float y) { add(0, y, 0); }

    /// A ring of twelve points, from +x towards +z.
    void addRing(float y) {
        for (std::size_t i = 0; i < kSegments; ++i) {
            add(static_cast<float>(ringDirections().cosine[i]) * radius_, y,
                static_cast<float>(ringDirections().sine[i]) * radius_);
        }
    }

    /// A ring of thirteen points, from -z towards +x: unlike a ring without texture.
    void addTexturedRing(float y) {
        for (std::size_t i = 0; i < kClosedRing; ++i) {
            add(static_cast<float>(ringDirections().sine[i]) * radius_, y,
                -(static_cast<float>(ringDirections().cosine[i]) * radius_));
        }
    }

    std::span<const float> span() const { return vertices_; }

private:
    void add(float x, float y, float z) { vertices_.insert(vertices_.end(), {x, y, z}); }

    float radius_;
    std::vector<float> vertices_;
};

/// Collects the texture coordinates of such a shape.
class AxialCoordinates {
public:
    void add(double u, double v) {
        uvs_.insert(uvs_.end(), {static_cast<float>(u), static_cast<float>(v)});
    }

    /// A cap's ring: a circle in the image; `turn` is -1 where the cap is seen from the other side.
    void addCap(double turn) {
        for (std::size_t i = 0; i < kClosedRing; ++i) {
            add(0.5 + 0.5 * ringDirections().sine[i],
                0.5 + turn * 0.5 * ringDirections().cosine[i]);
        }
    }

    /// A side's ring: a line across the image.
    void addSide(double v) {
        for (std::size_t i = 0; i < kClosedRing; ++i) {
            add(static_cast<double>(i) / 12.0, v);
        }
    }

    std::span<const float> span() const { return uvs_; }

private:
    std::vector<float> uvs_;
};

// ---- spheres

/// The extent given with spheres: it says nothing, but it is given.
constexpr std::array<float, 6> kNoExtent{};

constexpr std::size_t kSphereColumns = 21;
constexpr std::size_t kSphereRows = 11;

/// What all textured spheres share.
struct SphereTables {
    std::array<double, kSphereColumns> printedSine; ///< Of single precision.
    std::array<float, kSphereColumns> sine;
    std::array<float, kSphereColumns> cosine;
    std::array<float, kSphereColumns * kSphereRows * 2> uvs;
};

const SphereTables& sphereTables() {
    static const SphereTables tables = [] {
        // Not pi / 10: a digit is off, and has to stay so.
        constexpr double kStep = 0.3141592652589793;
        SphereTables filled{};
        for (std::size_t i = 0; i < kSphereColumns; ++i) {
            const auto angle = static_cast<float>(static_cast<double>(i) * kStep);
            filled.printedSine[i] = static_cast<double>(std::sin(angle));
            filled.sine[i] = static_cast<float>(std::sin(static_cast<double>(angle)));
            filled.cosine[i] = static_cast<float>(std::cos(static_cast<double>(angle)));
        }
        for (std::size_t vertex = 0; vertex < kSphereColumns * kSphereRows; ++vertex) {
            const std::size_t column = vertex % kSphereColumns;
            const std::size_t row = vertex / kSphereColumns;
            filled.uvs[2 * vertex] = static_cast<float>(static_cast<double>(column) / 20.0);
            filled.uvs[2 * vertex + 1] = static_cast<float>(static_cast<double>(row) / 10.0);
        }
        return filled;
    }();
    return tables;
}

void printSine(ObjectSink& sink, double sine) {
    std::array<char, 32> line{};
    const int length = std::snprintf(line.data(), line.size(), " sin = %f\n", sine);
    sink.print({line.data(), static_cast<std::size_t>(length)});
}

} // namespace

void Converter::writeTexturedSphere(float radius) {
    const SphereTables& tables = sphereTables();
    // In the stream, among the objects, and once: kept.
    if (!std::exchange(sinesPrinted_, true)) {
        for (const double sine : tables.printedSine) {
            printSine(sink_, sine);
        }
    }
    std::array<float, kSphereColumns * kSphereRows * 3> vertices{};
    auto* next = vertices.begin();
    for (std::size_t j = 0; j < kSphereRows; ++j) {
        for (std::size_t i = 0; i < kSphereColumns; ++i) {
            *next++ = -(radius * tables.sine[j]) * tables.sine[i];
            *next++ = radius * tables.cosine[j];
            *next++ = -(radius * tables.sine[j]) * tables.cosine[i];
        }
    }
    ObjectOwner object(
        GEOMcreate_mesh(kNoExtent.data(), vertices.data(), kSphereColumns, kSphereRows, GEOM_COPY));
    GEOMadd_uvs(object.get(), tables.uvs.data(), kSphereColumns * kSphereRows, GEOM_COPY);
    write(std::move(object));
}

void Converter::visit(const QvCube& shape, const QvState& state) {
    const ShapeContext context(state);
    const std::array<float, 3> size = {shape.width.value, shape.height.value, shape.depth.value};
    if (!textureInForce(state)) {
        writePolyhedron(boxVertices(kBoxCorners, size), kBoxPolygons, Normals::kFacet);
        return;
    }
    std::array<float, kTexturedBoxCorners.size() * 2> uvs{};
    for (std::size_t i = 0; i < uvs.size(); ++i) {
        uvs[i] = kFaceCoordinates[i % kFaceCoordinates.size()];
    }
    writePolyhedron(boxVertices(kTexturedBoxCorners, size), kTexturedBoxPolygons, Normals::kFacet,
                    uvs);
}

void Converter::visit(const QvCone& shape, const QvState& state) {
    const ShapeContext context(state);
    const float top = half(shape.height.value);
    const bool textured = textureInForce(state).has_value();
    AxialVertices vertices(shape.bottomRadius.value, textured ? 28 : 14);
    vertices.addCenter(-top);
    if (!textured) {
        vertices.addRing(-top);
        vertices.addCenter(top);
        writePolyhedron(vertices.span(), kConeBase, Normals::kFacet);
        writePolyhedron(vertices.span(), kConeSide, Normals::kSmooth);
        return;
    }
    printSine(sink_, std::sin(1.0)); // In the stream, among the objects: kept.
    vertices.addTexturedRing(-top);
    vertices.addTexturedRing(-top);
    vertices.addCenter(top);
    AxialCoordinates uvs;
    uvs.add(0.5, 0.5);
    uvs.addCap(1);
    uvs.addSide(1);
    uvs.add(0.5, 0);
    writePolyhedron(vertices.span(), kTexturedCone, Normals::kSmooth, uvs.span());
}

void Converter::visit(const QvCylinder& shape, const QvState& state) {
    const ShapeContext context(state);
    const float top = half(shape.height.value);
    const bool textured = textureInForce(state).has_value();
    AxialVertices vertices(shape.radius.value, textured ? 54 : 26);
    vertices.addCenter(-top);
    if (!textured) {
        vertices.addRing(-top);
        vertices.addRing(top);
        vertices.addCenter(top);
        writePolyhedron(vertices.span(), kCylinderBottom, Normals::kFacet);
        writePolyhedron(vertices.span(), kCylinderSide, Normals::kSmooth);
        writePolyhedron(vertices.span(), kCylinderTop, Normals::kFacet);
        return;
    }
    vertices.addTexturedRing(-top);
    vertices.addTexturedRing(-top);
    vertices.addTexturedRing(top);
    vertices.addTexturedRing(top);
    vertices.addCenter(top);
    AxialCoordinates uvs;
    uvs.add(0.5, 0.5);
    uvs.addCap(1);
    uvs.addSide(1);
    uvs.addSide(0);
    uvs.addCap(-1);
    uvs.add(0.5, 0.5);
    writePolyhedron(vertices.span(), kTexturedCylinder, Normals::kSmooth, uvs.span());
}

void Converter::visit(const QvSphere& shape, const QvState& state) {
    const ShapeContext context(state);
    if (textureInForce(state)) {
        writeTexturedSphere(shape.radius.value);
        return;
    }
    constexpr std::array<float, 3> kCenter = {0, 0, 0};
    write(ObjectOwner(GEOMcreate_sphere(kNoExtent.data(), kCenter.data(), &shape.radius.value,
                                        nullptr, nullptr, 1, GEOM_COPY)));
}

} // namespace meshcast
