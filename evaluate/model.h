#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

// What a viewer shows of a scene: placed, coloured, textured. Plain records, for any number of
// writers, that say nothing about the language the scene was written in.
//
// Units are metres and radians. Axes are right-handed with +Y up. Front faces turn
// counterclockwise. Colours are linear light, 0 to 1 (evaluate/color.h converts them to the
// screen's sRGB). All numbers are finite, all texts are UTF-8, all indices are in range.

namespace meshcast::evaluate {

using Vec2 = std::array<float, 2>;
using Vec3 = std::array<float, 3>;
/// Red, green, blue, and alpha (1 is opaque).
using Color = std::array<float, 4>;
/// Column by column, for column vectors: the translation is in the elements 12 to 14.
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

/// How a surface is covered with an image. Coordinates outside of 0 to 1 repeat the image or its
/// outermost pixels.
struct Texture {
    std::uint32_t image = 0;
    bool repeatS = true, repeatT = true;

    auto operator<=>(const Texture&) const = default;
};

/// The colours are multiplied with those of the vertices and of the texture, where there are any.
struct Material {
    Color baseColor = {1, 1, 1, 1};
    Vec3 emissive{};
    Vec3 specular{};      ///< Black: no highlight.
    Vec3 ambient{};       ///< For formats of the classical shading model.
    float shininess = 0;  ///< 0 to 1, for the same formats: 128 times this is their exponent.
    float roughness = 1;  ///< For formats of physically based shading; such a surface is no metal.
    bool isUnlit = false; ///< The base colour is shown as it is, whatever the light.
    bool isDoubleSided = true;
    bool isBlended = false; ///< Something of it is not opaque: alpha, vertex colours or image.
    std::optional<Texture> texture;

    auto operator<=>(const Material&) const = default;
};

enum class Topology : std::uint8_t { kTriangles, kLines, kPoints };

/// Vertices and what joins them. Lists of attributes are empty or as long as `positions`.
struct Geometry {
    Topology topology = Topology::kTriangles;
    std::vector<Vec3> positions;
    std::vector<Vec3> normals; ///< Of length 1.
    std::vector<Color> colors;
    /// t runs up: (0, 0) is the lower left corner of the image.
    std::vector<Vec2> uvs;
    /// Three for each triangle, two for each line, one for each point.
    std::vector<std::uint32_t> indices;
};

/// The part of a mesh that has one material: a range of the indices of a geometry. Meshes that
/// differ in their materials only share their geometry.
struct Primitive {
    std::uint32_t geometry = 0;
    std::uint32_t firstIndex = 0, indexCount = 0;
    std::uint32_t material = 0;
};

struct Mesh {
    std::vector<Primitive> primitives;
};

/// A mesh at a place in the world.
struct Instance {
    std::uint32_t mesh = 0;
    /// Always translation x rotation x scale, with no factor 0 and perhaps negative ones: all that
    /// shears or flattens has been applied to the vertices. Where its determinant is negative, the
    /// placed triangles turn clockwise.
    Matrix matrix = kIdentity;
    std::string name;                 ///< The names on the way to the shape, joined by `/`.
    std::optional<std::uint32_t> url; ///< Where a click on it leads: an index of Model::urls.
};

/// Looks along -Z with +Y up, in its own space. The matrix only turns and moves.
struct Camera {
    std::string name;
    Matrix matrix = kIdentity;
    bool isPerspective = true;
    float heightAngle = 0; ///< Of a perspective camera: its vertical field of view.
    float height = 0;      ///< Of an orthographic camera: what it sees from bottom to top.
    float aspectRatio = 0; ///< Width by height; 0 when the scene leaves it to the viewer.
    float nearDistance = 0, farDistance = 0;
};

/// Shines along -Z from the origin, in its own space. The matrix only turns and moves.
struct Light {
    enum class Kind : std::uint8_t { kDirectional, kPoint, kSpot };

    Kind kind = Kind::kDirectional;
    std::string name;
    Matrix matrix = kIdentity;
    Vec3 color = {1, 1, 1};
    float intensity = 1;
    /// Of a spot light, from its axis: full light up to the inner angle, none from the outer one,
    /// which is larger and at most a quarter turn.
    float innerAngle = 0, outerAngle = 0;
};

/// Something that the model does not show as the scene has it.
struct Note {
    enum class Kind : std::uint8_t {
        kDropped,      ///< Faces, lines and points that nothing can be made of.
        kMissing,      ///< A texture, a font or an inlined scene.
        kApproximated, ///< Shown, but not quite as the scene says.
        kUnsupported,  ///< Nodes of an unknown class.
        kLimit,        ///< Left out since the model would grow beyond its limits.
    };

    Kind kind;
    std::string text;  ///< A sentence without its full stop.
    std::string where; ///< The names on the way to it, joined by `/`; perhaps empty.
};

/// A scene as it is shown. Lists are in the order of the scene.
struct Model {
    std::vector<Image> images;
    std::vector<Material> materials;
    std::vector<Geometry> geometries;
    std::vector<Mesh> meshes;
    std::vector<Instance> instances;
    std::vector<Camera> cameras;
    std::vector<Light> lights;
    std::vector<std::string> urls;
    std::vector<std::string> infos; ///< Texts that the scene brings along for its readers.
    std::vector<Note> notes;
};

} // namespace meshcast::evaluate

#pragma GCC visibility pop
