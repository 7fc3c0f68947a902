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
    /// Hands vertices and images to the driver, and frees them.
    Painter(evaluate::Model& model, const View& view);

    /// What the driver says is wrong with the shaders; empty when this can draw.
    const std::string& problem() const { return program_.problem(); }
    /// Draws all of it. `window` takes clip coordinates to a part of the picture that is drawn now.
    void draw(const glm::dmat4& window) const;

private:
    /// Where the variables of the shaders are that change from one primitive to the next.
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
