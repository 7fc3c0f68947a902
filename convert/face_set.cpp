#include "convert/context.h"
#include "convert/converter.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <utility>
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
bool isInside(std::int32_t index, std::int32_t count) {
    return index >= 0 && index < count;
}

// ---- normals

enum class NormalMode : std::uint8_t {
    kGenerate,
    kPerVertex,
    kIndexed,
    kNone,
};

NormalMode normalMode(const QvNormalBinding* binding, const QvNormal* normal,
                      const QvIndexedFaceSet& shape, std::int32_t points) {
    const std::int32_t value = binding == nullptr ? Binding::NONE : binding->value.value;
    if (value == Binding::PER_VERTEX && normal != nullptr && normal->vector.num == points) {
        return NormalMode::kPerVertex;
    }
    if (value == Binding::PER_VERTEX_INDEXED && normal != nullptr && shape.normalIndex.num >= 2) {
        return NormalMode::kIndexed;
    }
    // Unlike every other binding that gives no normals, an explicit DEFAULT generates none either:
    // kept, the stream's readers rely on it.
    return value >= Binding::NONE && value <= Binding::PER_VERTEX_INDEXED ? NormalMode::kGenerate
                                                                          : NormalMode::kNone;
}

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

/// Packs the diffuse colours onto the vertices that a binding gives them to.
class VertexColors {
public:
    VertexColors(const QvMFColor& diffuse, std::int32_t points)
        : diffuse_(diffuse), points_(points),
          packed_(std::max<std::size_t>(static_cast<std::size_t>(points), 1)) {}

    /// Gives a vertex the colour of that number, counted round and round the list. What lies
    /// outside after that, as most negative numbers do, gives nothing.
    void set(std::int32_t vertex, std::int32_t color) {
        const std::int32_t wrapped = color % diffuse_.num;
        if (!isInside(vertex, points_) || wrapped < 0) {
            return;
        }
        const float* const rgb = diffuse_.at(wrapped);
        packed_[static_cast<std::size_t>(vertex)] = {0, colorByte(rgb[0]), colorByte(rgb[1]),
                                                     colorByte(rgb[2])};
    }

    const GEOMpacked_color* data() const { return packed_.data(); }

private:
    const QvMFColor& diffuse_;
    std::int32_t points_;
    std::vector<GEOMpacked_color> packed_;
};

void colorVertices(VertexColors& colors, std::span<const std::int32_t> coordIndex,
                   std::span<const std::int32_t> materialIndex) {
    for (std::size_t j = 0; j < std::min(materialIndex.size(), coordIndex.size()); ++j) {
        if (materialIndex[j] != -1) {
            colors.set(coordIndex[j], materialIndex[j]);
        }
    }
}

/// `colorOfFace` tells the number of a face's colour, or -1 for none.
template <class ColorOfFace>
void colorFaces(VertexColors& colors, std::span<const std::int32_t> coordIndex,
                ColorOfFace colorOfFace) {
    std::size_t face = 0;
    for (const std::int32_t index : coordIndex) {
        if (index == kEndOfFace) {
            ++face;
        } else {
            colors.set(index, colorOfFace(face));
        }
    }
}

/// The colours of the vertices, where the shape has any: a binding and more than one
/// diffuse colour make them.
std::optional<VertexColors> vertexColors(const QvState& state, const QvIndexedFaceSet& shape,
                                         std::int32_t points) {
    const auto* const binding = state.materialBinding();
    const auto* const material = state.material();
    if (binding == nullptr || material == nullptr || material->diffuseColor.num <= 1 ||
        binding->value.value < Binding::PER_FACE ||
        binding->value.value > Binding::PER_VERTEX_INDEXED) {
        return std::nullopt;
    }
    const auto coordIndex = entries(shape.coordIndex);
    // One entry, as every shape has by default, is no list to index by: all vertices stay black.
    const auto materialIndex = shape.materialIndex.num >= 2 ? entries(shape.materialIndex)
                                                            : std::span<const std::int32_t>();
    VertexColors colors(material->diffuseColor, points);
    switch (binding->value.value) {
    case Binding::PER_VERTEX:
        for (std::int32_t i = 0; i < points; ++i) {
            colors.set(i, i);
        }
        break;
    case Binding::PER_VERTEX_INDEXED:
        colorVertices(colors, coordIndex, materialIndex);
        break;
    case Binding::PER_FACE:
        colorFaces(colors, coordIndex,
                   [](std::size_t face) { return static_cast<std::int32_t>(face); });
        break;
    default: // PER_FACE_INDEXED
        colorFaces(colors, coordIndex, [materialIndex](std::size_t face) {
            return face < materialIndex.size() ? materialIndex[face] : -1;
        });
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
    const auto* const binding = state.normalBinding();
    const auto* const normal = state.normal();
    const NormalMode mode = normalMode(binding, normal, shape, points.num);
    // The messages about bad indices come before any that building the object may print.
    std::vector<std::int32_t> polygons = polygonList(entries(shape.coordIndex), points.num);

    std::vector<float> spreadNormals;
    const float* normals = nullptr;
    if (mode == NormalMode::kPerVertex) {
        normals = normal->vector.values;
    } else if (mode == NormalMode::kIndexed) {
        spreadNormals = spreadIndexed(normal->vector, entries(shape.normalIndex),
                                      entries(shape.coordIndex), points.num);
        // An array made for no points is still one that was given.
        spreadNormals.reserve(1);
        normals = spreadNormals.data();
    }
    const std::optional<VertexColors> colors = vertexColors(state, shape, points.num);
    const std::vector<float> uvs = textureCoordinates(state, shape, points);

    ObjectOwner object(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
    GEOMadd_vertices_with_data(object.get(), points.values, normals,
                               colors ? colors->data() : nullptr, points.num, GEOM_COPY);
    GEOMadd_polygons(object.get(), polygons.data(), 0, GEOM_COPY);
    // As large as the index list, and not needed while the normals are made.
    polygons = {};
    if (mode == NormalMode::kGenerate) {
        GEOMgen_normals(object.get(), 0);
    }
    if (!uvs.empty()) {
        GEOMadd_uvs(object.get(), uvs.data(), points.num, GEOM_COPY);
    }
    write(std::move(object));
}

} // namespace meshcast
