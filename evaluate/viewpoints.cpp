#include "evaluate/viewpoints.h"

#include "evaluate/color.h"
#include "evaluate/mesh_draft.h"
#include "evaluate/node_matrix.h"
#include "evaluate/placement.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <limits>

namespace meshcast::evaluate {

namespace {

constexpr float kHalfTurn = 3.1415927F;

glm::dvec3 vector(const QvSFVec3f& field) {
    return {field.value[0], field.value[1], field.value[2]};
}

// Limits lengths so that a thousandth of a length, too, is a float.
constexpr double kShortest = 1e-30;

bool isUseful(double length) {
    return length >= kShortest && length <= std::numeric_limits<float>::max();
}

/// Converts a length of a scene to world units; 0 when it is invalid.
float scaled(float length, double scale) {
    const double result = static_cast<double>(length) * scale;
    return isUseful(result) ? static_cast<float>(result) : 0;
}

/// Sets the values that both kinds of camera share.
template <class Node>
Camera placedCamera(const Node& node, const glm::dmat4& place, double& scale) {
    Camera camera;
    camera.matrix = rigidPart(place * glm::translate(glm::dmat4(1.0), vector(node.position)) *
                                  rotationMatrix(node.orientation.value),
                              scale);
    scale = scale > 0 ? scale : 1;
    if (!node.aspectRatio.isDefault() && isUseful(node.aspectRatio.value)) {
        camera.aspectRatio = node.aspectRatio.value;
    }
    if (!node.nearDistance.isDefault()) {
        camera.nearDistance = scaled(node.nearDistance.value, scale);
    }
    if (!node.farDistance.isDefault()) {
        camera.farDistance = scaled(node.farDistance.value, scale);
    }
    return camera;
}

struct Box {
    glm::dvec3 low{std::numeric_limits<double>::max()};
    glm::dvec3 high{std::numeric_limits<double>::lowest()};

    bool isEmpty() const { return low.x > high.x; }
    glm::dvec3 corner(unsigned number) const {
        return {(number & 1U) != 0 ? high.x : low.x, (number & 2U) != 0 ? high.y : low.y,
                (number & 4U) != 0 ? high.z : low.z};
    }
    void add(const glm::dvec3& point) {
        low = glm::min(low, point);
        high = glm::max(high, point);
    }
};

/// The bounding box of all instances, from the boxes of their geometries.
Box worldOf(const Model& model) {
    std::vector<Box> boxes(model.geometries.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (const Vec3& position : model.geometries[i].positions) {
            boxes[i].add(wide(position));
        }
    }
    Box world;
    for (const Instance& instance : model.instances) {
        const glm::dmat4 matrix(glm::make_mat4(instance.matrix.data()));
        for (const Primitive& primitive : model.meshes[instance.mesh].primitives) {
            const Box& box = boxes[primitive.geometry];
            for (unsigned i = 0; i < 8 && !box.isEmpty(); ++i) {
                world.add(glm::dvec3(matrix * glm::dvec4(box.corner(i), 1)));
            }
        }
    }
    return world;
}

void setDistances(Camera& camera, const Box& world) {
    const glm::dvec3 from(camera.matrix[12], camera.matrix[13], camera.matrix[14]);
    double farthest = 0;
    for (unsigned i = 0; i < 8 && !world.isEmpty(); ++i) {
        farthest = std::max(farthest, glm::distance(from, world.corner(i)));
    }
    constexpr double kMargin = 1.1;
    constexpr double kUsual = 10;  // For an empty scene.
    constexpr double kDepth = 1e3; // A depth buffer of 24 bits handles this ratio well.
    if (camera.farDistance <= camera.nearDistance) {
        const double distance = std::max(farthest > 0 ? farthest * kMargin : kUsual,
                                         2 * static_cast<double>(camera.nearDistance));
        camera.farDistance = static_cast<float>(std::clamp(
            distance, kShortest, static_cast<double>(std::numeric_limits<float>::max())));
    }
    if (camera.nearDistance == 0) {
        camera.nearDistance = static_cast<float>(static_cast<double>(camera.farDistance) / kDepth);
    }
}

/// A matrix that moves the origin to a position and rotates -Z to a direction.
Matrix lookingAlong(const glm::dmat4& place, const glm::dvec3& at, const glm::dvec3& direction) {
    glm::dmat4 matrix(0.0);
    matrix[2] = glm::dvec4(-(glm::dmat3(place) * direction), 0);
    matrix[3] = place * glm::dvec4(at, 1);
    double scale = 1;
    return rigidPart(matrix, scale);
}

template <class Node>
std::optional<Light> lightWithoutPlace(const Node& node, Light::Kind kind) {
    if (node.on.value == 0) {
        return std::nullopt;
    }
    Light light;
    light.kind = kind;
    const auto& color = node.color.value;
    light.color =
        linearFromSrgb(Vec3{clampToUnit(color[0]), clampToUnit(color[1]), clampToUnit(color[2])});
    light.intensity = isUseful(node.intensity.value) ? node.intensity.value : 0;
    return light;
}

} // namespace

Camera cameraOf(const QvPerspectiveCamera& node, const glm::dmat4& place) {
    double scale = 1;
    Camera camera = placedCamera(node, place, scale);
    const float angle = node.heightAngle.value;
    camera.heightAngle = angle > 0 && angle < kHalfTurn ? angle : kQuarterPi;
    return camera;
}

Camera cameraOf(const QvOrthographicCamera& node, const glm::dmat4& place) {
    double scale = 1;
    Camera camera = placedCamera(node, place, scale);
    camera.isPerspective = false;
    constexpr float kUsualHeight = 2;
    const float height = scaled(node.height.value, scale);
    camera.height = height > 0 ? height : kUsualHeight;
    return camera;
}

void setDistances(Model& model) {
    if (!model.cameras.empty()) {
        const Box world = worldOf(model);
        for (Camera& camera : model.cameras) {
            setDistances(camera, world);
        }
    }
}

std::optional<Light> lightOf(const QvDirectionalLight& node, const glm::dmat4& place) {
    std::optional<Light> light = lightWithoutPlace(node, Light::Kind::kDirectional);
    if (light) {
        light->matrix = lookingAlong(place, {}, vector(node.direction));
    }
    return light;
}

std::optional<Light> lightOf(const QvPointLight& node, const glm::dmat4& place) {
    std::optional<Light> light = lightWithoutPlace(node, Light::Kind::kPoint);
    if (light) {
        light->matrix = lookingAlong(place, vector(node.location), {});
    }
    return light;
}

std::optional<Light> lightOf(const QvSpotLight& node, const glm::dmat4& place) {
    std::optional<Light> light = lightWithoutPlace(node, Light::Kind::kSpot);
    if (light) {
        light->matrix = lookingAlong(place, vector(node.location), vector(node.direction));
        constexpr float kNarrowest = 0.001F;
        constexpr float kSharpest = 0.99F; // Keeps the inner angle smaller than the outer one.
        light->outerAngle = std::clamp(node.cutOffAngle.value, kNarrowest, kHalfTurn / 2);
        light->innerAngle =
            light->outerAngle * std::min(1 - clampToUnit(node.dropOffRate.value), kSharpest);
    }
    return light;
}

} // namespace meshcast::evaluate
