#include "fuzz/evaluated_model.h"
#include "fuzz/finding.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

// What a model promises to those who write it to files holds for any scene.

using namespace meshcast;
using namespace meshcast::evaluate;
using fuzz::check;

namespace {

template <class List>
bool areFinite(const List& list) {
    return std::all_of(list.begin(), list.end(), [](const auto& vector) {
        return std::all_of(vector.begin(), vector.end(), [](float x) { return std::isfinite(x); });
    });
}

template <class Array>
bool areUnits(const Array& values) {
    return std::all_of(values.begin(), values.end(), [](float x) { return x >= 0 && x <= 1; });
}

void checkGeometry(const Geometry& geometry) {
    const std::size_t count = geometry.positions.size();
    const auto isListOf = [count](const auto& list) {
        return list.empty() || list.size() == count;
    };
    check(isListOf(geometry.normals) && isListOf(geometry.colors) && isListOf(geometry.uvs),
          "an attribute for each vertex or none");
    check(areFinite(geometry.positions) && areFinite(geometry.uvs), "finite numbers");
    for (const Vec3& normal : geometry.normals) {
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        check(std::abs(length - 1) < 1e-4, "normals of length 1");
    }
    check(std::all_of(geometry.colors.begin(), geometry.colors.end(), areUnits<Color>),
          "colours from 0 to 1");
    const std::size_t corners = geometry.topology == Topology::kTriangles ? 3
                                : geometry.topology == Topology::kLines   ? 2
                                                                          : 1;
    check(!geometry.indices.empty() && geometry.indices.size() % corners == 0, "whole elements");
    check(std::all_of(geometry.indices.begin(), geometry.indices.end(),
                      [count](std::uint32_t index) { return index < count; }),
          "indices of vertices");
}

/// An instance may hold translation, rotation and scale only.
void checkMatrix(const Matrix& m) {
    check(areFinite(std::array<Matrix, 1>{m}) && m[3] == 0 && m[7] == 0 && m[11] == 0 && m[15] == 1,
          "an affine matrix");
    const auto product = [&m](std::size_t a, std::size_t b) {
        double sum = 0;
        for (std::size_t row = 0; row < 3; ++row) {
            sum += static_cast<double>(m[4 * a + row]) * static_cast<double>(m[4 * b + row]);
        }
        return sum;
    };
    for (std::size_t a = 0; a < 3; ++a) {
        check(product(a, a) > 0, "no axis without length");
        const std::size_t b = (a + 1) % 3;
        check(std::abs(product(a, b)) <= 1e-5 * std::sqrt(product(a, a) * product(b, b)),
              "no shear");
    }
}

void checkModel(const Model& model) {
    std::for_each(model.geometries.begin(), model.geometries.end(), checkGeometry);
    for (const Material& material : model.materials) {
        check(areUnits(material.baseColor) && areUnits(material.emissive) &&
                  areUnits(material.specular) && areUnits(material.ambient) &&
                  areUnits(std::array{material.shininess, material.roughness}),
              "a material from 0 to 1");
        check(!material.texture || material.texture->image < model.images.size(), "an image");
    }
    for (const Mesh& mesh : model.meshes) {
        check(!mesh.primitives.empty(), "a mesh of something");
        for (const Primitive& primitive : mesh.primitives) {
            check(primitive.geometry < model.geometries.size() &&
                      primitive.material < model.materials.size(),
                  "a geometry and a material");
            const std::size_t count = model.geometries[primitive.geometry].indices.size();
            check(primitive.firstIndex < count && primitive.indexCount > 0 &&
                      primitive.indexCount <= count - primitive.firstIndex,
                  "a range of indices");
        }
    }
    for (const Instance& instance : model.instances) {
        check(instance.mesh < model.meshes.size(), "a mesh");
        check(!instance.url || *instance.url < model.urls.size(), "an address");
        checkMatrix(instance.matrix);
    }
    for (const Camera& camera : model.cameras) {
        checkMatrix(camera.matrix);
        check(camera.nearDistance > 0 && camera.farDistance > camera.nearDistance &&
                  std::isfinite(camera.farDistance),
              "a camera that sees something");
        check(camera.isPerspective ? camera.heightAngle > 0 : camera.height > 0, "a camera's size");
    }
    for (const Light& light : model.lights) {
        checkMatrix(light.matrix);
        check(areUnits(light.color) && light.intensity >= 0 && light.innerAngle <= light.outerAngle,
              "a light");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkModel(fuzz::modelOf(data, size));
    return 0;
}
