#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

// An indexed face set becomes one polyhedron. All points of the coordinates in force become
// vertices, and each face becomes a polygon. Normals, colours and texture coordinates are per
// vertex. Where the scene binds them to faces or indices, they are copied to the vertices that
// these name; later values overwrite earlier ones. Vertices without a value keep zero. A pair of
// indices is ignored if either is out of range.

namespace meshcast {

namespace {

constexpr std::int32_t kEndOfFace = -1;

std::span<const std::int32_t> entries(const QvMFLong& field) {
    return {field.values, static_cast<std::size_t>(field.num)};
}

/// Whether `index` is in range for a list of `count` values.
bool isInside(std::int32_t index, std::int32_t count) { return index >= 0 && index < count; }

/// `Width` floats per point: for each j, the value number index[j] goes to the point number
/// coordIndex[j].
template <std::size_t Width>
std::vector<float> spreadIndexed(const QvMFieldOf<float, Width>& values,
                                 std::span<const std::int32_t> index,
                                 std::span<const std::int32_t> coordIndex, std::int32_t points) {
    std::vector<float> spread(static_cast<std::size_t>(points) * Width);
    for (std::size_t j = 0; j < std::min(index.size(), coordIndex.size()); ++j) {
        if (isInside(index[j], values.num) && isInside(coordIndex[j], points)) {
            std::copy_n(values.at(index[j]), Width,
                        &spread[static_cast<std::size_t>(coordIndex[j]) * Width]);
        }
    }
    return spread;
}

// ---- colours

std::uint8_t colorByte(float component) {
    const double scaled = std::min(static_cast<double>(component), 1.0) * 255.0;
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    // Kept: negative values are not clamped to 0, so the low byte wraps. Values below the lowest
    // integer are clamped to it; its low byte is 0.
    if (!(scaled > kLowest)) {
        return 0;
    }
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(static_cast<std::int32_t>(scaled)));
}

/// The colours of the vertices. Empty unless there are a material binding and more than one diffuse
/// colour. For a shape without points the array has one entry, so that it is not empty.
std::vector<GEOMpacked_color> vertexColors(const QvState& state, const QvIndexedFaceSet& shape,
                                           std::int32_t points) {
    const auto* const binding = state.materialBinding();
    const auto* const material = state.material();
    if (binding == nullptr || material == nullptr || material->diffuseColor.num <= 1 ||
        binding->value.value < Binding::PER_FACE) {
        return {};
    }
    const QvMFColor& diffuse = material->diffuseColor;
    std::vector<GEOMpacked_color> colors(
        std::max<std::size_t>(static_cast<std::size_t>(points), 1));
    // Gives a vertex the colour of a number modulo the length of the list. Does nothing if the
    // remainder is out of range, as it is for most negative numbers.
    const auto set = [&diffuse, points, packed = colors.data()](std::int32_t vertex,
                                                                std::int32_t color) {
        const std::int32_t wrapped = color % diffuse.num;
        if (isInside(vertex, points) && wrapped >= 0) {
            const float* const rgb = diffuse.at(wrapped);
            packed[vertex] = {0, colorByte(rgb[0]), colorByte(rgb[1]), colorByte(rgb[2])};
        }
    };
    // `colorOf` returns the colour number of an entry, given its position in the list and its face.
    const auto setAll = [set, coordIndex = entries(shape.coordIndex)](auto colorOf) {
        std::size_t face = 0;
        for (std::size_t i = 0; i < coordIndex.size(); ++i) {
            if (coordIndex[i] == kEndOfFace) {
                ++face;
            } else {
                set(coordIndex[i], colorOf(i, face));
            }
        }
    };
    // A single entry, the default of every shape, is not used as an index: all vertices stay black.
    const auto list = entries(shape.materialIndex);
    const auto listed = [list, size = list.size() >= 2 ? list.size() : 0](std::size_t i) {
        return i < size ? list[i] : -1;
    };
    switch (binding->value.value) {
    case Binding::PER_VERTEX:
        for (std::int32_t i = 0; i < points; ++i) {
            set(i, i);
        }
        break;
    case Binding::PER_VERTEX_INDEXED:
        setAll([listed](std::size_t i, std::size_t) { return listed(i); });
        break;
    case Binding::PER_FACE:
        setAll([](std::size_t, std::size_t face) { return static_cast<std::int32_t>(face); });
        break;
    default: // PER_FACE_INDEXED
        setAll([listed](std::size_t, std::size_t face) { return listed(face); });
        break;
    }
    return colors;
}

/// Whether there are faces, none is empty, and all indices are in range.
bool isSound(std::span<const std::int32_t> coordIndex, std::int32_t points) {
    std::int32_t before = kEndOfFace;
    for (const std::int32_t index : coordIndex) {
        if (index == kEndOfFace ? before == kEndOfFace : !isInside(index, points)) {
            return false;
        }
        before = index;
    }
    return !coordIndex.empty();
}

} // namespace

/// Faces in the format of GEOMadd_polygons: for each its count and its vertex numbers from 1, and a
/// count of 0 at the end. The count of a face is at the position where the face begins in
/// `coordIndex`, and its vertices follow. Reports indices out of range.
std::vector<std::int32_t> Converter::polygonList(std::span<const std::int32_t> coordIndex,
                                                 std::int32_t points) {
    std::vector<std::int32_t> list(coordIndex.size() + 2);
    std::size_t faceStart = 0;
    std::size_t count = 0;
    const auto closeFace = [&] {
        list[faceStart] = static_cast<std::int32_t>(count);
        for (std::size_t i = faceStart; i < faceStart + count; ++i) {
            // Unsigned, since an index out of range may be the largest integer.
            list[i + 1] = static_cast<std::int32_t>(static_cast<std::uint32_t>(coordIndex[i]) + 1U);
        }
    };
    for (std::size_t i = 0; i < coordIndex.size(); ++i) {
        const std::int32_t index = coordIndex[i];
        if (index == kEndOfFace) {
            closeFace();
            faceStart = i + 1;
            count = 0;
        } else if (isInside(index, points)) {
            ++count;
        } else {
            // Kept: a bad index is not counted but stays in place, so the face loses its last entry
            // instead of this one. Readers of the stream know such faces.
            reportBadIndex("IndexedFaceSet", index);
        }
    }
    if (count != 0) {
        closeFace();
    }
    return list;
}

/// Two floats per point, or nothing if the shape has no texture.
std::vector<float> Converter::textureCoordinates(const QvState& state,
                                                 const QvIndexedFaceSet& shape,
                                                 const QvMFVec3f& points) const {
    const std::optional<TextureUse> texture = textureInForce(state);
    if (!texture) {
        return {};
    }
    const auto* const given = state.textureCoordinate2();
    std::vector<float> uvs =
        shape.textureCoordIndex.num > 1 && given != nullptr
            ? spreadIndexed(given->point, entries(shape.textureCoordIndex),
                            entries(shape.coordIndex), points.num)
            : projectedCoordinates({points.values, static_cast<std::size_t>(points.num) * 3});
    transformTextureCoordinates(state, *texture, uvs);
    return uvs;
}

void Converter::convert(const QvIndexedFaceSet& shape, const QvState& state) {
    const ShapeContext context(state);
    const auto* const coordinates = state.coordinate3();
    if (coordinates == nullptr) {
        return;
    }
    const QvMFVec3f& points = coordinates->point;
    // First, so that messages about bad indices come before any from building the object.
    const bool hasSoundFaces = isSound(entries(shape.coordIndex), points.num);
    std::vector<std::int32_t> polygons;
    if (!hasSoundFaces) {
        polygons = polygonList(entries(shape.coordIndex), points.num);
    }

    const auto* const normal = state.normal();
    const auto* const binding = state.normalBinding();
    const std::int32_t mode = binding == nullptr ? Binding::NONE : binding->value.value;
    std::vector<float> spreadNormals;
    const float* normals = nullptr;
    bool generate = false;
    if (mode == Binding::PER_VERTEX && normal != nullptr && normal->vector.num == points.num) {
        normals = normal->vector.values;
    } else if (mode == Binding::PER_VERTEX_INDEXED && normal != nullptr &&
               shape.normalIndex.num >= 2) {
        spreadNormals = spreadIndexed(normal->vector, entries(shape.normalIndex),
                                      entries(shape.coordIndex), points.num);
        // Even without points, normals count as given.
        spreadNormals.reserve(1);
        normals = spreadNormals.data();
    } else {
        // Kept: with an explicit DEFAULT no normals are generated, unlike with the other bindings.
        // Readers of the stream rely on it.
        generate = mode != Binding::DEFAULT;
    }
    const std::vector<GEOMpacked_color> colors = vertexColors(state, shape, points.num);
    const std::vector<float> uvs = textureCoordinates(state, shape, points);

    const ObjectOwner object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
    GEOMlend_vertices(object.get(), points.values, points.num);
    GEOMadd_normals(object.get(), normals, points.num, GEOM_COPY);
    GEOMadd_colors(object.get(), colors.empty() ? nullptr : colors.data(), points.num, GEOM_COPY);
    if (hasSoundFaces) {
        GEOMadd_faces(object.get(), shape.coordIndex.values, shape.coordIndex.num);
    } else {
        GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
        // Freed early: it is as large as the index list.
        polygons = {};
    }
    if (generate) {
        GEOMgen_normals(object.get(), 0);
    }
    if (!uvs.empty()) {
        GEOMadd_uvs(object.get(), uvs.data(), points.num, GEOM_COPY);
    }
    write(*object);
}

} // namespace meshcast
