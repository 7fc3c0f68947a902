#pragma once

#include "evaluate/model.h"
#include "evaluate/triangulate.h"
#include "geom_stream/object.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace geomtool {

/// Builds a model from the objects of a stream, each in its own coordinate system. Polyhedra and
/// meshes become triangles, polylines and segments become lines, spheres are tessellated, and
/// labels become points with names.
class StreamModel {
public:
    StreamModel();

    /// Adds an object. `number` counts from 1 and becomes part of its name, "object 17
    /// (polyhedron)".
    void add(std::uint64_t number, const geom_stream::Object& object);

    /// Returns the model of the objects added, with notes about what was left out.
    meshcast::evaluate::Model finish();

private:
    void addBody(const geom_stream::Mesh& mesh);
    void addBody(const geom_stream::Polyhedron& polyhedron);
    void addBody(const geom_stream::Polytriangle& polytriangle);
    void addBody(const geom_stream::Sphere& sphere);
    void addBody(const geom_stream::Label& label);

    void addStrip(const geom_stream::VertexArrays& strip);
    void addPolyline(const geom_stream::VertexArrays& line, bool isDisjoint);
    void addGeometry(meshcast::evaluate::Geometry&& geometry,
                     const geom_stream::VertexArrays& arrays);
    void place(std::uint32_t mesh, const meshcast::evaluate::Matrix& matrix);
    std::uint32_t materialOf(const std::optional<geom_stream::Vec3>& color, bool isUnlit);
    std::uint32_t sharedMesh(std::uint32_t geometry, std::uint32_t material);

    meshcast::evaluate::Model model_;
    meshcast::evaluate::Triangulator triangulator_;
    std::string name_; ///< The name of the object being added.
    std::map<meshcast::evaluate::Material, std::uint32_t> materials_;
    /// Meshes of spheres and points, by geometry and material.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> meshes_;
    std::optional<std::uint32_t> ball_,
        dot_; ///< The geometries shared by all spheres and by all labels.
    std::uint64_t droppedElements_ = 0;
};

} // namespace geomtool
