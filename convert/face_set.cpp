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

// An indexed face set becomes one polyhedron: all points of the coordinates in force are its
// vertices, each face is a polygon. Normals, colours and texture coordinates are per vertex: where
// the scene binds them to faces or lists of indices, they are spread over the vertices that these
// name, later ones over earlier ones. Entries that nothing names stay zero; a pair of indices of
// which either lies outside its list is passed over.

namespace meshcast {

namespace {

constexpr std::int32_t kEndOfFace = -1;

std::span<const std::int32_t> entries(const QvMFLong& field) {
    return {field.values, static_cast<std::size_t>(field.num)};
}

/// Whether `index` lies in a list of `count` values.
bool isInside(std::int32_t index, std::int32_t count) { return index >= 0 && index < count; }

/// `Width` floats per point, spread from the values of a field by pairs of indices: the entry j of
/// `index` names the value of the point that entry j of `coordIndex` names.
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
    // There is no clamp from below: the low byte of a negative integer wraps. That of the lowest,
    // for which everything below it stands, is 0.
    if (!(scaled > kLowest)) {
        return 0;
    }
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(static_cast<std::int32_t>(scaled)));
}

/// The colours of the vertices; none where the shape has none: a binding and more than one diffuse
/// colour make them. An array for no points has one entry, so that it counts as given.
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
    // Gives a vertex the colour of that number, counted round and round the list. What lies outside
    // after that, as most negative numbers do, gives nothing.
    const auto set = [&diffuse, points, packed = colors.data()](std::int32_t vertex,
                                                                std::int32_t color) {
        const std::int32_t wrapped = color % diffuse.num;
        if (isInside(vertex, points) && wrapped >= 0) {
            const float* const rgb = diffuse.at(wrapped);
            packed[vertex] = {0, colorByte(rgb[0]), colorByte(rgb[1]), colorByte(rgb[2])};
        }
    };
    // `colorOf` tells the number of an entry's colour by its place in the list and by its face.
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
    // One entry, as every shape has by default, is no list to index by: all vertices stay black.
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

} // namespace

/// Faces as GEOMadd_polygons takes them: each its count and its vertex numbers, which start at 1;
/// a count of 0 ends the list. Each face stands where it stands in `coordIndex`, its count one
/// entry ahead. Reports the indices that name no point.
std::vector<std::int32_t> Converter::polygonList(std::span<const std::int32_t> coordIndex,
                                                 std::int32_t points) {
    std::vector<std::int32_t> list(coordIndex.size() + 2);
    std::size_t faceStart = 0;
    std::size_t count = 0;
    const auto closeFace = [&] {
        list[faceStart] = static_cast<std::int32_t>(count);
        for (std::size_t i = faceStart; i < faceStart + count; ++i) {
            // Wraps: an index that names no point may be the largest integer.
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
            // Only not counted: the face keeps its first entries, this one among them if it is not
            // the last. Kept, the stream's readers know such faces.
            reportBadIndex("IndexedFaceSet", index);
        }
    }
    if (count != 0) {
        closeFace();
    }
    return list;
}

/// Two floats per point, or nothing where the shape has no texture.
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

void Converter::visit(const QvIndexedFaceSet& shape, const QvState& state) {
    const ShapeContext context(state);
    const auto* const coordinates = state.coordinate3();
    if (coordinates == nullptr) {
        return;
    }
    const QvMFVec3f& points = coordinates->point;
    // The messages about bad indices come before any that building the object may print.
    std::vector<std::int32_t> polygons = polygonList(entries(shape.coordIndex), points.num);

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
        // An array made for no points is still one that was given.
        spreadNormals.reserve(1);
        normals = spreadNormals.data();
    } else {
        // Unlike every other binding that gives no normals, an explicit DEFAULT generates none
        // either: kept, the stream's readers rely on it.
        generate = mode != Binding::DEFAULT;
    }
    const std::vector<GEOMpacked_color> colors = vertexColors(state, shape, points.num);
    const std::vector<float> uvs = textureCoordinates(state, shape, points);

    const ObjectOwner object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
    GEOMadd_vertices_with_data(object.get(), points.values, normals,
                               colors.empty() ? nullptr : colors.data(), points.num, GEOM_COPY);
    GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
    // As large as the index list, and not needed while the normals are made.
    polygons = {};
    if (generate) {
        GEOMgen_normals(object.get(), 0);
    }
    if (!uvs.empty()) {
        GEOMadd_uvs(object.get(), uvs.data(), points.num, GEOM_COPY);
    }
    sink_.write(*object);
}

} // namespace meshcast
