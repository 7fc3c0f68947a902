#include "fuzz/evaluated_model.h"
#include "fuzz/finding.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

// Evaluates any bytes as a scene and checks that the model is valid, as its writers expect.

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
          "the lists of vertex attributes have different lengths");
    check(areFinite(geometry.positions) && areFinite(geometry.uvs),
          "a position or texture coordinate is not finite");
    for (const Vec3& normal : geometry.normals) {
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        check(std::abs(length - 1) < 1e-4, "the length of a normal is not 1");
    }
    check(std::all_of(geometry.colors.begin(), geometry.colors.end(), areUnits<Color>),
          "a vertex colour is not between 0 and 1");
    const std::size_t corners = geometry.topology == Topology::kTriangles ? 3
                                : geometry.topology == Topology::kLines   ? 2
                                                                          : 1;
    check(!geometry.indices.empty() && geometry.indices.size() % corners == 0,
          "the indices do not make complete elements");
    check(std::all_of(geometry.indices.begin(), geometry.indices.end(),
                      [count](std::uint32_t index) { return index < count; }),
          "an index is not below the number of vertices");
}

/// Matrices may have translation, rotation and scale only.
void checkMatrix(const Matrix& m) {
    check(areFinite(std::array<Matrix, 1>{m}) && m[3] == 0 && m[7] == 0 && m[11] == 0 && m[15] == 1,
          "a matrix is not finite or not affine");
    const auto product = [&m](std::size_t a, std::size_t b) {
        double sum = 0;
        for (std::size_t row = 0; row < 3; ++row) {
            sum += static_cast<double>(m[4 * a + row]) * static_cast<double>(m[4 * b + row]);
        }
        return sum;
    };
    for (std::size_t a = 0; a < 3; ++a) {
        check(product(a, a) > 0, "a matrix has an axis of length 0");
        const std::size_t b = (a + 1) % 3;
        check(std::abs(product(a, b)) <= 1e-5 * std::sqrt(product(a, a) * product(b, b)),
              "a matrix has shear");
    }
}

void checkModel(const Model& model) {
    std::for_each(model.geometries.begin(), model.geometries.end(), checkGeometry);
    for (const Material& material : model.materials) {
        check(areUnits(material.baseColor) && areUnits(material.emissive) &&
                  areUnits(material.specular) && areUnits(material.ambient) &&
                  areUnits(std::array{material.shininess, material.roughness}),
              "a value of a material is not between 0 and 1");
        check(!material.texture || material.texture->image < model.images.size(),
              "a texture has an invalid image");
    }
    for (const Mesh& mesh : model.meshes) {
        check(!mesh.primitives.empty(), "a mesh has no primitives");
        for (const Primitive& primitive : mesh.primitives) {
            check(primitive.geometry < model.geometries.size() &&
                      primitive.material < model.materials.size(),
                  "a primitive has an invalid geometry or material");
            const std::size_t count = model.geometries[primitive.geometry].indices.size();
            check(primitive.firstIndex < count && primitive.indexCount > 0 &&
                      primitive.indexCount <= count - primitive.firstIndex,
                  "a primitive has an invalid range of indices");
        }
    }
    for (const Instance& instance : model.instances) {
        check(instance.mesh < model.meshes.size(), "an instance has an invalid mesh");
        check(!instance.url || *instance.url < model.urls.size(), "an instance has an invalid URL");
        checkMatrix(instance.matrix);
    }
    for (const Camera& camera : model.cameras) {
        checkMatrix(camera.matrix);
        check(camera.nearDistance > 0 && camera.farDistance > camera.nearDistance &&
                  std::isfinite(camera.farDistance),
              "a camera has invalid near and far distances");
        check(camera.isPerspective ? camera.heightAngle > 0 : camera.height > 0,
              "the angle or height of a camera is not positive");
    }
    for (const Light& light : model.lights) {
        checkMatrix(light.matrix);
        check(areUnits(light.color) && light.intensity >= 0 && light.innerAngle <= light.outerAngle,
              "a light has invalid values");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkModel(fuzz::modelOf(data, size));
    return 0;
}
