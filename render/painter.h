#pragma once

#include "evaluate/model.h"
#include "render/draw_list.h"
#include "render/gl_mesh.h"
#include "render/gl_program.h"
#include "render/gl_texture.h"
#include "render/view.h"

#include <glm/mat4x4.hpp>
#include <string>
#include <vector>

namespace meshcast::render {

/// Draws a model into the current framebuffer, as often as asked. Needs a current context.
class Painter {
public:
    /// Uploads vertices and images to the driver, and frees them in the model.
    Painter(evaluate::Model& model, const View& view);

    /// The driver's error message about the shaders; empty if this can draw.
    const std::string& problem() const { return program_.problem(); }
    /// Draws the whole model. `window` maps clip coordinates to the part of the picture to draw.
    void draw(const glm::dmat4& window) const;

private:
    /// The locations of the uniforms that differ between primitives.
    struct Places {
        GLint modelToEye, normalToEye, baseColor, emissive, specular, exponent;
        GLint isLit, hasNormals, hasImage;
    };

    void setPlace(const evaluate::Instance& instance) const;
    void setMaterial(const evaluate::Material& material, const GlMesh& mesh) const;

    const evaluate::Model& model_;
    View view_;
    GlProgram program_;
    Places places_;
    std::vector<Draw> draws_;
    std::vector<GlMesh> meshes_;      ///< One for each geometry.
    std::vector<GlTexture> textures_; ///< One for each image.
};

} // namespace meshcast::render
