#include "export/gltf_parts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace meshcast::exporter {

using evaluate::Mesh;
using evaluate::Model;
using evaluate::Primitive;
using evaluate::Topology;
using evaluate::Vec3;

namespace {

// Constants of the format, equal to those of OpenGL.
constexpr std::uint32_t kUnsignedShort = 5123, kUnsignedInt = 5125, kFloat = 5126;
constexpr std::uint32_t kVertexBuffer = 34962, kIndexBuffer = 34963;

bool holdsIndices(ListView view) {
    return view == ListView::kIndices || view == ListView::kShortIndices;
}

void writePrimitive(JsonWriter& json, const Primitive& primitive, const Model& model,
                    const GltfLayout& layout) {
    const GeometryAccessors& accessors = layout.geometries[primitive.geometry];
    json.beginObject().key("attributes").beginObject();
    json.member("POSITION", accessors.positions);
    const auto attribute = [&json](std::string_view name, const std::optional<std::size_t>& list) {
        if (list) {
            json.member(name, *list);
        }
    };
    attribute("NORMAL", accessors.normals);
    attribute("COLOR_0", accessors.colors);
    attribute("TEXCOORD_0", accessors.uvs);
    json.endObject();
    json.member("indices", layout.indexAccessor(primitive));
    json.member("material", primitive.material);
    // 0 means points, 1 lines. Triangles are the default.
    const Topology topology = model.geometries[primitive.geometry].topology;
    if (topology != Topology::kTriangles) {
        json.member("mode", topology == Topology::kLines ? 1U : 0U);
    }
    json.endObject();
}

void writeAccessor(JsonWriter& json, const GltfAccessor& accessor, const Model& model,
                   const GltfLayout& layout) {
    constexpr std::array<std::string_view, kListViewCount> kTypes = {
        "VEC3", "VEC3", "VEC4", "VEC3", "VEC2", "SCALAR", "SCALAR"};
    json.beginObject().member("bufferView", layout.viewNumber(accessor.view));
    json.member("byteOffset", accessor.offset);
    json.member("componentType", accessor.view == ListView::kShortIndices ? kUnsignedShort
                                 : accessor.view == ListView::kIndices    ? kUnsignedInt
                                                                          : kFloat);
    json.member("count", accessor.count);
    json.member("type", kTypes[static_cast<std::size_t>(accessor.view)]);
    if (accessor.view == ListView::kPositions) {
        const std::vector<Vec3>& positions = model.geometries[accessor.geometry].positions;
        Vec3 lowest = positions.front(), highest = lowest;
        for (const Vec3& position : positions) {
            for (std::size_t i = 0; i < 3; ++i) {
                lowest[i] = std::min(lowest[i], position[i]);
                highest[i] = std::max(highest[i], position[i]);
            }
        }
        json.list("min", lowest).list("max", highest);
    }
    json.endObject();
}

void writeBufferViews(JsonWriter& json, const GltfLayout& layout) {
    json.key("bufferViews").beginArray();
    const auto beginView = [&json](const Span& span) {
        json.beginObject().member("buffer", 0U);
        json.member("byteOffset", span.offset).member("byteLength", span.length);
    };
    for (std::size_t i = 0; i < kListViewCount; ++i) {
        if (layout.views[i].length == 0) {
            continue;
        }
        beginView(layout.views[i]);
        if (holdsIndices(static_cast<ListView>(i))) {
            json.member("target", kIndexBuffer);
        } else {
            json.member("byteStride", kElementSizes[i]).member("target", kVertexBuffer);
        }
        json.endObject();
    }
    for (const Span& image : layout.images) {
        beginView(image);
        json.endObject();
    }
    json.endArray();
}

} // namespace

void writeGeometryParts(JsonWriter& json, const Model& model, const GltfLayout& layout,
                        const std::string& bufferUri) {
    writeList(json, "meshes", model.meshes, [&](const Mesh& mesh) {
        json.beginObject();
        writeList(json, "primitives", mesh.primitives, [&](const Primitive& primitive) {
            writePrimitive(json, primitive, model, layout);
        });
        json.endObject();
    });
    writeList(json, "accessors", layout.accessors,
              [&](const GltfAccessor& accessor) { writeAccessor(json, accessor, model, layout); });
    if (layout.size == 0) {
        return;
    }
    writeBufferViews(json, layout);
    json.key("buffers").beginArray().beginObject().member("byteLength", layout.size);
    if (!bufferUri.empty()) {
        json.member("uri", std::string_view(bufferUri));
    }
    json.endObject().endArray();
}

} // namespace meshcast::exporter
