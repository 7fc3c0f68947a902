#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

// What a viewer shows of a scene: placed, coloured and textured meshes. Plain records for all
// exporters, independent of the language of the scene.
//
// Units are metres and radians. Axes are right-handed with +Y up. Front faces turn
// counterclockwise. Colours are linear light, 0 to 1 (evaluate/color.h converts them to the
// screen's sRGB). All numbers are finite, all texts are UTF-8, all indices are in range.

namespace meshcast::evaluate {

using Vec2 = std::array<float, 2>;
using Vec3 = std::array<float, 3>;
/// Red, green, blue, and alpha (1 is opaque).
using Color = std::array<float, 4>;
/// Column-major, for column vectors: elements 12 to 14 are the translation.
using Matrix = std::array<float, 16>;

inline constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// An image as a file in memory.
struct Image {
    enum class Type : std::uint8_t { kPng, kJpeg };

    std::string name; ///< The name in the scene; empty for an image that the scene itself holds.
    Type type = Type::kPng;
    std::vector<std::uint8_t> bytes;
    std::uint32_t width = 0, height = 0;
    bool hasAlpha = false; ///< Some pixel is not opaque.
};

/// How an image is mapped to a surface. Outside of 0 to 1, the image or its edge pixels repeat.
struct Texture {
    std::uint32_t image = 0;
    bool repeatS = true, repeatT = true;

    auto operator<=>(const Texture&) const = default;
};

/// The colours are multiplied by vertex colours and texture, if present.
struct Material {
    Color baseColor = {1, 1, 1, 1};
    Vec3 emissive{};
    Vec3 specular{};      ///< Black: no highlight.
    Vec3 ambient{};       ///< For formats with the Phong shading model.
    float shininess = 0;  ///< 0 to 1, for the same formats: the Phong exponent divided by 128.
    float roughness = 1;  ///< For formats with physically based shading, with metalness 0.
    bool isUnlit = false; ///< The base colour is shown as it is, without lighting.
    bool isDoubleSided = true;
    bool isBlended = false; ///< Not fully opaque: in its alpha, vertex colours or image.
    std::optional<Texture> texture;

    auto operator<=>(const Material&) const = default;
};

enum class Topology : std::uint8_t { kTriangles, kLines, kPoints };

/// Vertices and indices. Lists of attributes are empty or as long as `positions`.
struct Geometry {
    Topology topology = Topology::kTriangles;
    std::vector<Vec3> positions;
    std::vector<Vec3> normals; ///< Of length 1.
    std::vector<Color> colors;
    /// (0, 0) is the lower left corner of the image.
    std::vector<Vec2> uvs;
    /// Three for each triangle, two for each line, one for each point.
    std::vector<std::uint32_t> indices;
};

/// The part of a mesh with one material: a range of the indices of a geometry. Meshes that differ
/// only in their materials share geometries.
struct Primitive {
    std::uint32_t geometry = 0;
    std::uint32_t firstIndex = 0, indexCount = 0;
    std::uint32_t material = 0;
};

struct Mesh {
    std::vector<Primitive> primitives;
};

/// A mesh placed in the world.
struct Instance {
    std::uint32_t mesh = 0;
    /// Always translation x rotation x scale. Factors of the scale may be negative but not 0:
    /// shearing and flattening has been applied to the vertices. When the determinant is negative,
    /// the front faces of the placed triangles are clockwise.
    Matrix matrix = kIdentity;
    std::string name; ///< The names of the groups around the shape and of the shape, joined by `/`.
    std::optional<std::uint32_t>
        url; ///< The link of the anchor around it: an index into Model::urls.
};

/// A camera looks along -Z with +Y up, in its own space. The matrix only rotates and translates.
struct Camera {
    std::string name;
    Matrix matrix = kIdentity;
    bool isPerspective = true;
    float heightAngle = 0; ///< The vertical field of view of a perspective camera.
    float height = 0;      ///< The height of the view of an orthographic camera.
    float aspectRatio = 0; ///< Width by height; 0 when the scene leaves it to the viewer.
    float nearDistance = 0, farDistance = 0;
};

/// A light shines along -Z from the origin, in its own space. The matrix only rotates and
/// translates.
struct Light {
    enum class Kind : std::uint8_t { kDirectional, kPoint, kSpot };

    Kind kind = Kind::kDirectional;
    std::string name;
    Matrix matrix = kIdentity;
    Vec3 color = {1, 1, 1};
    float intensity = 1;
    /// For a spot light, angles from its axis: full intensity up to the inner angle, none beyond
    /// the outer one, which is larger and at most a quarter turn.
    float innerAngle = 0, outerAngle = 0;
};

/// A difference between the model and the scene.
struct Note {
    enum class Kind : std::uint8_t {
        kDropped,      ///< Invalid faces, lines and points.
        kMissing,      ///< A texture, a font or an inlined scene.
        kApproximated, ///< Shown, but not quite as the scene says.
        kUnsupported,  ///< Nodes of an unknown class.
        kLimit,        ///< Left out because of a limit.
    };

    Kind kind;
    std::string text;  ///< A sentence without its full stop.
    std::string where; ///< The names of the groups around it, joined by `/`; may be empty.
};

/// An evaluated scene. Lists are in the order of the scene.
struct Model {
    std::vector<Image> images;
    std::vector<Material> materials;
    std::vector<Geometry> geometries;
    std::vector<Mesh> meshes;
    std::vector<Instance> instances;
    std::vector<Camera> cameras;
    std::vector<Light> lights;
    std::vector<std::string> urls;
    std::vector<std::string> infos; ///< Texts of Info nodes.
    std::vector<Note> notes;
};

} // namespace meshcast::evaluate

#pragma GCC visibility pop
