#include "geom_stream/record_body.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace geom_stream {
namespace {

// One function per production of docs/stream-format.md, in the same order. The reader keeps the
// first error and then returns zeros and empty arrays, so these functions need no error handling,
// except in loops over a count from the stream and where a message is built.

/// The optional arrays of a kind, and how many primitives its vertices form.
struct ArrayPlan {
    std::uint32_t allowed;
    std::int64_t primitives;
};

/// Reads the optional arrays, in the order that all kinds share.
void readAttributes(ItemReader& in, std::uint32_t flags, ArrayPlan plan, std::int64_t count,
                    VertexArrays& into) {
    const auto has = [present = flags & plan.allowed](std::uint32_t bit) {
        return (present & bit) != 0;
    };
    into.normals = in.arrayIf<Vec3>(has(flag::kNormals), count, "normals");
    into.colours = in.arrayIf<Vec3>(has(flag::kColours), count, "colours");
    into.uvs = in.arrayIf<Vec2>(has(flag::kUvs), count, "uvs");
    into.uvws = in.arrayIf<Vec3>(has(flag::kUvws), count, "uvws");
    into.vertexData = in.arrayIf<std::int32_t>(has(flag::kVertexData), count, "vertex data ints");
    into.primitiveData =
        in.arrayIf<std::int32_t>(has(flag::kPrimitiveData), plan.primitives, "primitive data ints");
    into.vertexTrans = in.arrayIf<float>(has(flag::kVertexTrans), count, "vertex trans values");
}

void readArrays(ItemReader& in, std::uint32_t flags, ArrayPlan plan, std::int64_t count,
                VertexArrays& into) {
    into.vertices = in.array<Vec3>(count, "vertices");
    readAttributes(in, flags, plan, count, into);
}

constexpr std::uint32_t kSurfaceFlags = kKnownFlags & ~(flag::kLabelData | flag::kNoRadii);
constexpr std::uint32_t kLineFlags = flag::kColours | flag::kVertexData | flag::kPrimitiveData;
constexpr std::uint32_t kSphereFlags =
    flag::kNormals | flag::kColours | flag::kVertexData | flag::kVertexTrans;

Mesh readMesh(ItemReader& in, std::uint32_t flags) {
    Mesh mesh;
    mesh.u = in.count("mesh dimension u");
    mesh.v = in.count("mesh dimension v");
    if (mesh.u != 0 && mesh.v > std::numeric_limits<std::int64_t>::max() / mesh.u) {
        const std::uint64_t start = in.offset();
        in.fail(start, "expected " + std::to_string(mesh.u) + " x " + std::to_string(mesh.v) +
                           " vertices, " + std::to_string(in.leftFrom(start)) + " bytes left");
        return mesh;
    }
    const std::int64_t vertices = mesh.u * mesh.v;
    const std::int64_t cells = vertices == 0 ? 0 : (mesh.u - 1) * (mesh.v - 1);
    readArrays(in, flags, {kSurfaceFlags, cells}, vertices, mesh);
    return mesh;
}

/// Checks the list and reports the first word that contradicts P or I, with its offset.
void checkPolygonList(ItemReader& in, const Polyhedron& polyhedron, std::uint64_t start) {
    const std::vector<std::int64_t>& words = polyhedron.polygonList;
    const auto failAt = [&](std::size_t word, const std::string& message) {
        in.fail(start + word * sizeof(std::int64_t), message);
    };
    const std::size_t last = words.size() - 1;
    std::size_t place = 0;
    std::int64_t polygons = 0;
    while (place < last && words[place] != 0) {
        const std::int64_t corners = words[place];
        if (corners < 0 || static_cast<std::uint64_t>(corners) >= last - place) {
            failAt(place, "expected a corner count that fits the polygon list, found " +
                              std::to_string(corners));
            return;
        }
        place += static_cast<std::size_t>(corners) + 1;
        ++polygons;
    }
    if (words[last] != 0) {
        failAt(last,
               "expected the 0 that ends the polygon list, found " + std::to_string(words[last]));
    }
    // A list may end early and hold less than P and I say, but not more.
    const std::int64_t indices = static_cast<std::int64_t>(place) - polygons;
    const bool agrees =
        place == last ? polygons == polyhedron.polygonCount
                      : polygons <= polyhedron.polygonCount && indices <= polyhedron.indexCount;
    if (!agrees) {
        failAt(place, "expected " + std::to_string(polyhedron.polygonCount) + " polygons with " +
                          std::to_string(polyhedron.indexCount) +
                          " indices before the end of the list, found " + std::to_string(polygons) +
                          " with " + std::to_string(indices));
    }
}

void readPolygonList(ItemReader& in, Polyhedron& polyhedron) {
    if (!in.ok()) {
        return;
    }
    const std::uint64_t start = in.offset();
    // Two numbers below 2^63: the sum fits.
    const auto polygons = static_cast<std::uint64_t>(polyhedron.polygonCount);
    const auto indices = static_cast<std::uint64_t>(polyhedron.indexCount);
    const std::uint64_t words = polygons + indices + 1;
    if (in.fill(polyhedron.polygonList, words)) {
        checkPolygonList(in, polyhedron, start);
        return;
    }
    // The message shows the sum only if each count is possible by itself.
    constexpr std::uint64_t kTooMany = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t most = in.leftFrom(start) / sizeof(std::int64_t);
    in.failArray(start, std::max(polygons, indices) > most ? kTooMany : words, "polygon list words",
                 sizeof(std::int64_t));
}

Polyhedron readPolyhedron(ItemReader& in, std::uint32_t flags) {
    Polyhedron polyhedron;
    polyhedron.polygonCount = in.count("polygon count");
    polyhedron.indexCount = in.count("index count");
    const std::int64_t vertices = in.count("vertex count");
    readPolygonList(in, polyhedron);
    readArrays(in, flags, {kSurfaceFlags, polyhedron.polygonCount}, vertices, polyhedron);
    return polyhedron;
}

Polytriangle readPolytriangle(ItemReader& in, std::uint32_t flags) {
    Polytriangle polytriangle;
    const std::int64_t strips = in.count("strip count");
    const std::int64_t polylines = in.count("polyline count");
    const bool hasSegments = in.truth<std::int64_t>("segments marker");
    for (std::int64_t i = 0; i < strips && in.ok(); ++i) {
        const std::int64_t vertices = in.count("strip vertex count");
        readArrays(in, flags, {kSurfaceFlags, vertices - 2}, vertices,
                   polytriangle.strips.emplace_back());
    }
    for (std::int64_t i = 0; i < polylines && in.ok(); ++i) {
        const std::int64_t vertices = in.count("polyline vertex count");
        readArrays(in, flags, {kLineFlags, vertices - 1}, vertices,
                   polytriangle.polylines.emplace_back());
    }
    if (hasSegments) {
        const std::int64_t vertices = in.count<std::int64_t>("segment vertex count", 1);
        readArrays(in, flags, {kLineFlags, vertices / 2}, vertices, polytriangle.segments);
    }
    return polytriangle;
}

Sphere readSphere(ItemReader& in, std::uint32_t flags) {
    Sphere sphere;
    const std::int64_t count = in.count("sphere count");
    sphere.vertices = in.array<Vec3>(count, "centres");
    sphere.radii = in.arrayIf<float>((flags & flag::kNoRadii) == 0, count, "radii");
    readAttributes(in, flags, {kSphereFlags, 0}, count, sphere);
    return sphere;
}

std::string readLabelText(ItemReader& in) {
    const auto length = static_cast<std::uint32_t>(in.count<std::int32_t>("label length", 1));
    const std::uint64_t start = in.offset();
    auto text = in.run<std::string>(length, "label text");
    if (!in.ok()) {
        return {};
    }
    if (text.find('\0') != text.size() - 1) {
        in.fail(start, "expected a label text whose only NUL is its last byte");
    }
    text.pop_back();
    return text;
}

Label readLabel(ItemReader& in, std::uint32_t flags) {
    Label label;
    const std::int64_t count = in.count("label count");
    label.labelFlags = in.word("label flags");
    for (std::int64_t i = 0; i < count && in.ok(); ++i) {
        label.texts.push_back(readLabelText(in));
    }
    label.positions = in.array<Vec3>(count, "positions");
    label.offsets = in.array<Vec3>(count, "offsets");
    label.heights = in.array<float>(count, "heights");
    label.colours = in.arrayIf<Vec3>((flags & flag::kColours) != 0, count, "colours");
    label.data =
        in.arrayIf<std::int32_t>((flags & flag::kLabelData) != 0, count, "label data ints");
    return label;
}

} // namespace

void readBody(ItemReader& in, Kind kind, Object& object) {
    switch (kind) {
    case Kind::kMesh:
        object.body = readMesh(in, object.flags);
        break;
    case Kind::kPolyhedron:
        object.body = readPolyhedron(in, object.flags);
        break;
    case Kind::kPolytriangle:
        object.body = readPolytriangle(in, object.flags);
        break;
    case Kind::kSphere:
        object.body = readSphere(in, object.flags);
        break;
    case Kind::kLabel:
        object.body = readLabel(in, object.flags);
        break;
    }
}

} // namespace geom_stream
