#include "tools/geomtool/stream_model.h"

#include "evaluate/color.h"
#include "evaluate/solids.h"
#include "evaluate/utf8.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <glm/geometric.hpp>
#include <glm/vec3.hpp>
#include <utility>
#include <variant>
#include <vector>

namespace geomtool {

namespace evaluate = meshcast::evaluate;

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Material;
using evaluate::Matrix;
using evaluate::Topology;
using evaluate::Vec3;
using geom_stream::VertexArrays;

namespace {

constexpr std::uint32_t kSegments = 32;

bool isFinite(const Vec3& vector) {
    return std::all_of(vector.begin(), vector.end(), [](float x) { return std::isfinite(x); });
}

/// Converts a colour of a stream, which is sRGB and may be out of range, to linear light.
Vec3 linear(const Vec3& color) {
    Vec3 result = color;
    for (float& component : result) {
        component = evaluate::linearFromSrgb(evaluate::clampToUnit(component));
    }
    return result;
}

glm::dvec3 wide(const Vec3& vector) { return {vector[0], vector[1], vector[2]}; }

Vec3 narrow(const glm::dvec3& vector) {
    return {static_cast<float>(vector.x), static_cast<float>(vector.y),
            static_cast<float>(vector.z)};
}

/// The normals scaled to length 1; empty if the normal of some used vertex is zero.
std::vector<Vec3> unitNormals(const std::vector<Vec3>& normals,
                              const std::vector<std::uint32_t>& indices) {
    std::vector<Vec3> units(normals.size(), Vec3{0, 0, 1});
    for (const std::uint32_t index : indices) {
        const glm::dvec3 normal = index < normals.size() ? wide(normals[index]) : glm::dvec3(0);
        const double length = glm::length(normal);
        if (!std::isfinite(length) || length == 0) {
            return {};
        }
        units[index] = narrow(normal / length);
    }
    return units;
}

/// The normal of a face by Newell's method (Sutherland, Sproull and Schumacker, 1974); zero for a
/// face without area.
glm::dvec3 faceNormal(const std::vector<glm::dvec3>& corners) {
    glm::dvec3 sum(0);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        sum += glm::cross(corners[i] - corners[0], corners[(i + 1) % corners.size()] - corners[0]);
    }
    const double length = glm::length(sum);
    return length > 0 && std::isfinite(length) ? sum / length : glm::dvec3(0);
}

/// Adds the vertex at a crossing of edges, as a weighted mean of other vertices. The other lists
/// must be empty or as long as `vertices`.
void addMean(VertexArrays& arrays, const std::vector<std::uint32_t>& corners,
             const evaluate::MixedCorner& mixed) {
    for (std::vector<Vec3>* const list : {&arrays.vertices, &arrays.normals, &arrays.colours}) {
        if (list->empty()) {
            continue;
        }
        glm::dvec3 sum(0);
        for (std::size_t i = 0; i < mixed.corners.size(); ++i) {
            sum += wide((*list)[corners[mixed.corners[i]]]) * static_cast<double>(mixed.weights[i]);
        }
        list->push_back(narrow(sum));
    }
}

} // namespace

StreamModel::StreamModel() = default;

void StreamModel::add(std::uint64_t number, const geom_stream::Object& object) {
    name_ = "object " + std::to_string(number);
    name_.append(" (").append(geom_stream::kindName(object.kind())).append(")");
    std::visit([this](const auto& body) { addBody(body); }, object.body);
}

std::uint32_t StreamModel::materialOf(const std::optional<geom_stream::Vec3>& color, bool isUnlit) {
    // Shapes without a colour are light grey, as most viewers show them.
    const Vec3 base = linear(color.value_or(Vec3{0.8F, 0.8F, 0.8F}));
    Material material;
    material.baseColor = {base[0], base[1], base[2], 1};
    material.isUnlit = isUnlit;
    const auto [found, isNew] =
        materials_.try_emplace(material, static_cast<std::uint32_t>(model_.materials.size()));
    if (isNew) {
        model_.materials.push_back(material);
    }
    return found->second;
}

std::uint32_t StreamModel::sharedMesh(std::uint32_t geometry, std::uint32_t material) {
    const auto [found, isNew] =
        meshes_.try_emplace({geometry, material}, static_cast<std::uint32_t>(model_.meshes.size()));
    if (isNew) {
        const auto count = static_cast<std::uint32_t>(model_.geometries[geometry].indices.size());
        model_.meshes.push_back({{{geometry, 0, count, material}}});
    }
    return found->second;
}

void StreamModel::place(std::uint32_t mesh, const Matrix& matrix) {
    model_.instances.push_back({mesh, matrix, name_, std::nullopt});
}

/// Adds the vertices and attributes of a stream object to a geometry that already has its indices,
/// then adds an instance of it.
void StreamModel::addGeometry(Geometry&& geometry, const VertexArrays& arrays) {
    if (geometry.indices.empty()) {
        return;
    }
    geometry.positions = arrays.vertices;
    for (Vec3& position : geometry.positions) {
        position = isFinite(position) ? position : Vec3{}; // Not used by any element.
    }
    if (geometry.topology == Topology::kTriangles && !arrays.normals.empty()) {
        geometry.normals = unitNormals(arrays.normals, geometry.indices);
    }
    for (const Vec3& color : arrays.colours) {
        const Vec3 light = linear(color);
        geometry.colors.push_back({light[0], light[1], light[2], 1});
    }
    const std::optional<Vec3> white =
        geometry.colors.empty() ? std::nullopt : std::optional(Vec3{1, 1, 1});
    const std::uint32_t material = materialOf(white, geometry.topology != Topology::kTriangles);
    const auto number = static_cast<std::uint32_t>(model_.geometries.size());
    const auto count = static_cast<std::uint32_t>(geometry.indices.size());
    model_.geometries.push_back(std::move(geometry));
    model_.meshes.push_back({{{number, 0, count, material}}});
    place(static_cast<std::uint32_t>(model_.meshes.size() - 1), evaluate::kIdentity);
}

void StreamModel::addBody(const geom_stream::Polyhedron& polyhedron) {
    VertexArrays arrays = polyhedron;
    Geometry geometry;
    evaluate::Triangulation pieces;
    std::vector<glm::dvec3> corners;
    std::vector<std::uint32_t> numbers;
    for (const std::vector<std::int64_t>& polygon : polyhedron.polygons()) {
        corners.clear();
        numbers.clear();
        for (const std::int64_t number : polygon) {
            if (number >= 1 && number <= static_cast<std::int64_t>(polyhedron.vertices.size()) &&
                isFinite(polyhedron.vertices[static_cast<std::size_t>(number - 1)])) {
                numbers.push_back(static_cast<std::uint32_t>(number - 1));
                corners.push_back(wide(polyhedron.vertices[numbers.back()]));
            }
        }
        const glm::dvec3 normal = faceNormal(corners);
        if (numbers.size() != polygon.size() || numbers.size() < 3 || normal == glm::dvec3(0)) {
            ++droppedElements_;
            continue;
        }
        triangulator_.triangulate(corners, normal, pieces);
        for (const evaluate::MixedCorner& mixed : pieces.mixed) {
            addMean(arrays, numbers, mixed);
            numbers.push_back(static_cast<std::uint32_t>(arrays.vertices.size() - 1));
        }
        for (const std::uint32_t corner : pieces.triangles) {
            geometry.indices.push_back(numbers[corner]);
        }
    }
    addGeometry(std::move(geometry), arrays);
}

void StreamModel::addBody(const geom_stream::Mesh& mesh) {
    Geometry geometry;
    const auto isUsable = [&mesh](std::uint32_t vertex) { return isFinite(mesh.vertices[vertex]); };
    for (std::int64_t j = 0; j + 1 < mesh.v; ++j) {
        for (std::int64_t i = 0; i + 1 < mesh.u; ++i) {
            const auto first = static_cast<std::uint32_t>(j * mesh.u + i);
            const auto row = static_cast<std::uint32_t>(mesh.u);
            const std::array corners = {first, first + 1, first + row + 1, first + row};
            if (!std::all_of(corners.begin(), corners.end(), isUsable)) {
                ++droppedElements_;
                continue;
            }
            for (const std::size_t corner : {0U, 1U, 2U, 0U, 2U, 3U}) {
                geometry.indices.push_back(corners[corner]);
            }
        }
    }
    addGeometry(std::move(geometry), mesh);
}

void StreamModel::addStrip(const VertexArrays& strip) {
    Geometry geometry;
    for (std::uint32_t i = 2; i < strip.vertices.size(); ++i) {
        // Every second triangle of a strip has the opposite winding.
        const std::array corners = {i - 2, i % 2 == 0 ? i - 1 : i, i % 2 == 0 ? i : i - 1};
        if (std::all_of(corners.begin(), corners.end(), [&strip](std::uint32_t corner) {
                return isFinite(strip.vertices[corner]);
            })) {
            geometry.indices.insert(geometry.indices.end(), corners.begin(), corners.end());
        } else {
            ++droppedElements_;
        }
    }
    addGeometry(std::move(geometry), strip);
}

void StreamModel::addPolyline(const VertexArrays& line, bool isDisjoint) {
    Geometry geometry;
    geometry.topology = Topology::kLines;
    for (std::uint32_t i = 1; i < line.vertices.size(); i += isDisjoint ? 2 : 1) {
        if (isFinite(line.vertices[i - 1]) && isFinite(line.vertices[i])) {
            geometry.indices.insert(geometry.indices.end(), {i - 1, i});
        } else {
            ++droppedElements_;
        }
    }
    addGeometry(std::move(geometry), line);
}

void StreamModel::addBody(const geom_stream::Polytriangle& polytriangle) {
    for (const VertexArrays& strip : polytriangle.strips) {
        addStrip(strip);
    }
    for (const VertexArrays& line : polytriangle.polylines) {
        addPolyline(line, false);
    }
    addPolyline(polytriangle.segments, true);
}

void StreamModel::addBody(const geom_stream::Sphere& sphere) {
    for (std::size_t i = 0; i < sphere.vertices.size(); ++i) {
        const Vec3& center = sphere.vertices[i];
        // A sphere without a radius is the unit sphere.
        const float radius = sphere.radii.empty() ? 1 : std::abs(sphere.radii[i]);
        if (!isFinite(center) || !std::isfinite(radius) || radius == 0) {
            ++droppedElements_;
            continue;
        }
        if (!ball_) {
            ball_ = static_cast<std::uint32_t>(model_.geometries.size());
            model_.geometries.push_back(evaluate::makeSphere(kSegments).geometry);
            model_.geometries.back().uvs.clear();
        }
        const auto color = sphere.colours.empty() ? std::nullopt : std::optional(sphere.colours[i]);
        place(sharedMesh(*ball_, materialOf(color, false)),
              {radius, 0, 0, 0, 0, radius, 0, 0, 0, 0, radius, 0, center[0], center[1], center[2],
               1});
    }
}

void StreamModel::addBody(const geom_stream::Label& label) {
    const std::string object = name_;
    for (std::size_t i = 0; i < label.positions.size(); ++i) {
        const Vec3& position = label.positions[i];
        if (!isFinite(position)) {
            ++droppedElements_;
            continue;
        }
        if (!dot_) {
            dot_ = static_cast<std::uint32_t>(model_.geometries.size());
            Geometry point;
            point.topology = Topology::kPoints;
            point.positions = {Vec3{}};
            point.indices = {0};
            model_.geometries.push_back(std::move(point));
        }
        name_ = object;
        if (!label.texts[i].empty()) {
            name_.append(" ").append(evaluate::toUtf8(label.texts[i]));
        }
        const auto color = label.colours.empty() ? std::nullopt : std::optional(label.colours[i]);
        place(sharedMesh(*dot_, materialOf(color, true)),
              {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, position[0], position[1], position[2], 1});
    }
}

evaluate::Model StreamModel::finish() {
    if (droppedElements_ != 0) {
        std::string text = std::to_string(droppedElements_);
        text.append(droppedElements_ == 1 ? " element is" : " elements are");
        text.append(" left out: no area, no size, or a vertex that is not there or not finite");
        model_.notes.push_back({evaluate::Note::Kind::kDropped, std::move(text), ""});
    }
    return std::move(model_);
}

} // namespace geomtool
