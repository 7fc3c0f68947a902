#include "render/draw_list.h"

#include <algorithm>
#include <cstddef>
#include <glm/geometric.hpp>
#include <glm/gtc/type_ptr.hpp>

namespace meshcast::render {

using evaluate::Model;

namespace {

glm::dvec3 middleOf(const evaluate::Geometry& geometry) {
    if (geometry.positions.empty()) {
        return {};
    }
    glm::dvec3 lowest(glm::make_vec3(geometry.positions.front().data()));
    glm::dvec3 highest = lowest;
    for (const evaluate::Vec3& position : geometry.positions) {
        const glm::dvec3 point(glm::make_vec3(position.data()));
        lowest = glm::min(lowest, point);
        highest = glm::max(highest, point);
    }
    return (lowest + highest) * 0.5;
}

/// The centres of the geometries that have transparent primitives.
std::vector<glm::dvec3> middlesOf(const Model& model) {
    std::vector<bool> isWanted(model.geometries.size());
    for (const evaluate::Mesh& mesh : model.meshes) {
        for (const evaluate::Primitive& primitive : mesh.primitives) {
            if (model.materials[primitive.material].isBlended) {
                isWanted[primitive.geometry] = true;
            }
        }
    }
    std::vector<glm::dvec3> middles(model.geometries.size());
    for (std::size_t i = 0; i < middles.size(); ++i) {
        if (isWanted[i]) {
            middles[i] = middleOf(model.geometries[i]);
        }
    }
    return middles;
}

} // namespace

std::vector<Draw> drawList(const Model& model, const glm::dmat4& worldToEye) {
    const std::vector<glm::dvec3> middles = middlesOf(model);
    std::vector<Draw> opaque;
    std::vector<Draw> blended;
    for (const evaluate::Instance& instance : model.instances) {
        const glm::dmat4 toEye = worldToEye * glm::dmat4(glm::make_mat4(instance.matrix.data()));
        for (const evaluate::Primitive& primitive : model.meshes[instance.mesh].primitives) {
            if (model.materials[primitive.material].isBlended) {
                const glm::dvec4 middle = toEye * glm::dvec4(middles[primitive.geometry], 1);
                blended.push_back({&instance, &primitive, -middle.z});
            } else {
                opaque.push_back({&instance, &primitive, 0});
            }
        }
    }
    std::stable_sort(blended.begin(), blended.end(),
                     [](const Draw& a, const Draw& b) { return a.distance > b.distance; });
    opaque.insert(opaque.end(), blended.begin(), blended.end());
    return opaque;
}

} // namespace meshcast::render
