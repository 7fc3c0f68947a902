#include "render/gl_mesh.h"

#include "render/gl_program.h"

#include <array>
#include <cstddef>
#include <vector>

namespace meshcast::render {

namespace {

GLsizeiptr sizeOf(std::size_t bytes) { return static_cast<GLsizeiptr>(bytes); }

/// Copies a list of a geometry to the bound buffer and sets up the vertex attribute. If the list is
/// empty, the constant value of the attribute is used.
template <std::size_t Width>
void place(Attribute attribute, const std::vector<std::array<float, Width>>& values,
           std::size_t& offset) {
    if (values.empty()) {
        return;
    }
    const std::size_t bytes = values.size() * sizeof(values[0]);
    glBufferSubData(GL_ARRAY_BUFFER, sizeOf(offset), sizeOf(bytes), values.data());
    glEnableVertexAttribArray(attribute);
    // OpenGL takes the offset as a pointer.
    const void* const at =
        reinterpret_cast<const void*>(offset); // NOLINT(performance-no-int-to-ptr)
    glVertexAttribPointer(attribute, GLint(Width), GL_FLOAT, GL_FALSE, 0, at);
    offset += bytes;
}

GLenum modeOf(evaluate::Topology topology) {
    switch (topology) {
    case evaluate::Topology::kLines:
        return GL_LINES;
    case evaluate::Topology::kPoints:
        return GL_POINTS;
    case evaluate::Topology::kTriangles:
        break;
    }
    return GL_TRIANGLES;
}

} // namespace

GlMesh::GlMesh(const evaluate::Geometry& geometry)
    : hasNormals_(!geometry.normals.empty()), topology_(geometry.topology) {
    glBindVertexArray(array_.get());
    glBindBuffer(GL_ARRAY_BUFFER, vertices_.get());
    const std::size_t bytes = geometry.positions.size() * sizeof(evaluate::Vec3) +
                              geometry.normals.size() * sizeof(evaluate::Vec3) +
                              geometry.colors.size() * sizeof(evaluate::Color) +
                              geometry.uvs.size() * sizeof(evaluate::Vec2);
    glBufferData(GL_ARRAY_BUFFER, sizeOf(bytes), nullptr, GL_STATIC_DRAW);
    std::size_t offset = 0;
    place(kPosition, geometry.positions, offset);
    place(kNormal, geometry.normals, offset);
    place(kColor, geometry.colors, offset);
    place(kUv, geometry.uvs, offset);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_.get());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeOf(geometry.indices.size() * sizeof(std::uint32_t)),
                 geometry.indices.data(), GL_STATIC_DRAW);
}

void GlMesh::draw(std::uint32_t firstIndex, std::uint32_t indexCount) const {
    glBindVertexArray(array_.get());
    const std::size_t offset = firstIndex * sizeof(std::uint32_t);
    const void* const at =
        reinterpret_cast<const void*>(offset); // NOLINT(performance-no-int-to-ptr)
    glDrawElements(modeOf(topology_), GLsizei(indexCount), GL_UNSIGNED_INT, at);
}

} // namespace meshcast::render
