#include "render/painter.h"

#include "render/lighting.h"

#include <algorithm>
#include <cstdint>
#include <glm/geometric.hpp>
#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <glm/matrix.hpp>

namespace meshcast::render {

using evaluate::Material;
using evaluate::Model;

namespace {

// A software renderer takes triangles faster than it fills them, and gigabytes may wait. So the
// driver has to finish from time to time. What waits is counted in indices; a draw on its own, with
// the values of the shaders, takes as much as so many.
constexpr std::uint64_t kMostPending = 500'000, kIndicesPerDraw = 50;

} // namespace

Painter::Painter(Model& model, const View& view)
    : model_(model),
      view_(view), places_{program_.uniform("modelToEye"), program_.uniform("normalToEye"),
                           program_.uniform("baseColor"),  program_.uniform("emissive"),
                           program_.uniform("specular"),   program_.uniform("exponent"),
                           program_.uniform("isLit"),      program_.uniform("hasNormals"),
                           program_.uniform("hasImage")},
      draws_(drawList(model, view.worldToEye)) {
    program_.use();
    glUniform1i(program_.uniform("isPerspective"), view.isPerspective ? 1 : 0);
    setLights(program_, model.lights, view);
    meshes_.reserve(model.geometries.size());
    for (evaluate::Geometry& geometry : model.geometries) {
        meshes_.emplace_back(geometry);
        geometry = {};
    }
    textures_.reserve(model.images.size());
    for (evaluate::Image& image : model.images) {
        textures_.emplace_back(image);
        image.bytes = {};
    }
    glVertexAttrib4f(kColor, 1, 1, 1, 1);
}

void Painter::draw(const glm::dmat4& window) const {
    const glm::mat4 projection(window * view_.projection);
    glUniformMatrix4fv(program_.uniform("projection"), 1, GL_FALSE, glm::value_ptr(projection));
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    // Alpha of the picture is its coverage, so that it can be composited.
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    const evaluate::Instance* placed = nullptr;
    std::uint64_t pending = 0;
    for (const Draw& draw : draws_) {
        if (draw.instance != placed) {
            placed = draw.instance;
            setPlace(*placed);
        }
        const GlMesh& mesh = meshes_[draw.primitive->geometry];
        setMaterial(model_.materials[draw.primitive->material], mesh);
        mesh.draw(draw.primitive->firstIndex, draw.primitive->indexCount);
        pending += kIndicesPerDraw + draw.primitive->indexCount;
        if (pending > kMostPending) {
            glFinish();
            pending = 0;
        }
    }
    glDepthMask(GL_TRUE); // glClear needs it.
}

void Painter::setPlace(const evaluate::Instance& instance) const {
    const glm::dmat4 toEye = view_.worldToEye * glm::dmat4(glm::make_mat4(instance.matrix.data()));
    const double determinant = glm::determinant(glm::dmat3(toEye));
    // Scaled, since the inverse transpose is tiny for large scenes. Only directions matter.
    glm::dmat3 normals = glm::inverseTranspose(glm::dmat3(toEye));
    normals /=
        std::max({glm::length(normals[0]), glm::length(normals[1]), glm::length(normals[2])});
    const glm::mat4 modelToEye(toEye);
    const glm::mat3 normalToEye(normals);
    glUniformMatrix4fv(places_.modelToEye, 1, GL_FALSE, glm::value_ptr(modelToEye));
    glUniformMatrix3fv(places_.normalToEye, 1, GL_FALSE, glm::value_ptr(normalToEye));
    glFrontFace(determinant < 0 ? GL_CW : GL_CCW);
}

void Painter::setMaterial(const Material& material, const GlMesh& mesh) const {
    const bool isSurface = mesh.topology() == evaluate::Topology::kTriangles;
    glUniform4fv(places_.baseColor, 1, material.baseColor.data());
    glUniform3fv(places_.emissive, 1, material.emissive.data());
    glUniform3fv(places_.specular, 1, material.specular.data());
    glUniform1f(places_.exponent, material.shininess * 128);
    glUniform1i(places_.isLit, isSurface && !material.isUnlit ? 1 : 0);
    glUniform1i(places_.hasNormals, mesh.hasNormals() ? 1 : 0);
    glUniform1i(places_.hasImage, material.texture ? 1 : 0);
    if (material.texture) {
        textures_[material.texture->image].bind(material.texture->repeatS,
                                                material.texture->repeatT);
    }
    (material.isDoubleSided ? glDisable : glEnable)(GL_CULL_FACE);
    (material.isBlended ? glEnable : glDisable)(GL_BLEND);
    glDepthMask(material.isBlended ? GL_FALSE : GL_TRUE);
}

} // namespace meshcast::render
