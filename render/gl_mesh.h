#pragma once

#include "evaluate/model.h"
#include "render/gl_name.h"

#include <cstdint>

namespace meshcast::render {

/// The vertices and indices of a geometry, uploaded to the driver.
class GlMesh {
public:
    explicit GlMesh(const evaluate::Geometry& geometry);

    bool hasNormals() const { return hasNormals_; }
    evaluate::Topology topology() const { return topology_; }
    /// Draws a range of the indices, with the program that is in use.
    void draw(std::uint32_t firstIndex, std::uint32_t indexCount) const;

private:
    GlVertexArray array_;
    GlBuffer vertices_, indices_;
    bool hasNormals_;
    evaluate::Topology topology_;
};

} // namespace meshcast::render
