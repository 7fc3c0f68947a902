#include "render/view.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <glm/geometric.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <string_view>
#include <vector>

namespace meshcast::render {

using evaluate::Camera;
using evaluate::Model;
using evaluate::Vec3;

namespace {

using Bounds = std::array<Vec3, 2>;

constexpr double kFitAngle = 0.7853981633974483; // 45 degrees, vertically.
constexpr double kFitMargin = 1.05;
constexpr std::size_t kMostListed = 20;

/// The direction from the centre of the scene to the camera of a view that shows all.
struct Stand {
    std::string_view name;
    glm::dvec3 direction, up;
};

const std::array<Stand, 4> kStands = {{
    {"fit", {1, 1, 1.5}, {0, 1, 0}},
    {"front", {0, 0, 1}, {0, 1, 0}},
    {"top", {0, 1, 0}, {0, 0, -1}},
    {"left", {-1, 0, 0}, {0, 1, 0}},
}};

std::array<glm::dvec3, 8> cornersOf(const Bounds& bounds) {
    std::array<glm::dvec3, 8> corners;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        corners[i] = {double(bounds[i & 1U][0]), double(bounds[i >> 1U & 1U][1]),
                      double(bounds[i >> 2U & 1U][2])};
    }
    return corners;
}

/// The tangents of half the angles seen along x and y, for an angle along the shorter side.
glm::dvec2 tangents(double angle, double aspectRatio) {
    const double tangent = std::tan(angle / 2);
    return aspectRatio < 1 ? glm::dvec2(tangent, tangent / aspectRatio)
                           : glm::dvec2(tangent * aspectRatio, tangent);
}

glm::dmat4 perspective(const glm::dvec2& tangents, double nearest, double farthest) {
    return glm::frustum(-tangents.x * nearest, tangents.x * nearest, -tangents.y * nearest,
                        tangents.y * nearest, nearest, farthest);
}

/// Scales camera space so that the farthest point is at distance 1, since the driver computes in
/// float and scenes may be of any size.
glm::dmat4 inUnitsOf(double length) { return glm::scale(glm::dmat4(1.0), glm::dvec3(1 / length)); }

/// Shows the box around the scene with a margin, whatever its shape and that of the picture.
View fittedView(const Stand& stand, const Bounds& bounds, double aspectRatio) {
    const auto corners = cornersOf(bounds);
    const glm::dvec3 middle = (corners[0] + corners[7]) * 0.5;
    const double size = glm::distance(corners[0], corners[7]);
    const glm::dvec3 back = glm::normalize(stand.direction);
    const glm::dvec3 right = glm::normalize(glm::cross(stand.up, back));
    const glm::dvec3 up = glm::cross(back, right);
    const glm::dvec2 seen = tangents(kFitAngle, aspectRatio) / kFitMargin;
    // Each corner has to be inside the four side planes of the view. For each plane, the corner
    // that is farthest out decides.
    glm::dvec2 least(0);
    glm::dvec2 most(0);
    double nearest = 0;
    for (const glm::dvec3& corner : corners) {
        const glm::dvec3 from = corner - middle;
        const double depth = glm::dot(from, back);
        const glm::dvec2 place(glm::dot(from, right), glm::dot(from, up));
        least = glm::min(least, place - depth * seen);
        most = glm::max(most, place + depth * seen);
        nearest = std::max(nearest, depth);
    }
    const glm::dvec2 needed = (most - least) * 0.5 / seen;
    // A flat scene seen from its edge may extend to the camera.
    const double distance = size > 0 ? std::max({needed.x, needed.y, nearest + size * 0.01}) : 1;
    const glm::dvec2 shift = (most + least) * 0.5;
    const glm::dvec3 target = middle + right * shift.x + up * shift.y;
    View view;
    const double farthest = (distance + nearest) * 1.1;
    view.worldToEye = inUnitsOf(farthest) * glm::lookAt(target + back * distance, target, up);
    view.projection = perspective(seen * kFitMargin, (distance - nearest) * 0.9 / farthest, 1);
    return view;
}

View cameraView(const Camera& camera, double aspectRatio) {
    View view;
    const auto farthest = double(camera.farDistance);
    const double nearest = double(camera.nearDistance) / farthest;
    view.worldToEye =
        inUnitsOf(farthest) * glm::inverse(glm::dmat4(glm::make_mat4(camera.matrix.data())));
    view.isPerspective = camera.isPerspective;
    if (camera.isPerspective) {
        view.projection =
            perspective(tangents(double(camera.heightAngle), aspectRatio), nearest, 1);
    } else {
        const double half = double(camera.height) / 2 / farthest;
        const double x = half * std::max(aspectRatio, 1.0);
        const double y = half / std::min(aspectRatio, 1.0);
        view.projection = glm::ortho(-x, x, -y, y, nearest, 1.0);
    }
    return view;
}

const Camera* findCamera(const std::string& name, const std::vector<Camera>& cameras) {
    const auto isCalled = [&name](const Camera& camera) {
        return !name.empty() && (camera.name == name || camera.name.ends_with("/" + name));
    };
    const auto found = std::find_if(cameras.begin(), cameras.end(), isCalled);
    if (found != cameras.end()) {
        return &*found;
    }
    std::size_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end;
    return isNumber && number >= 1 && number <= cameras.size() ? &cameras[number - 1] : nullptr;
}

/// The cameras, for a message.
std::string listed(const std::vector<Camera>& cameras) {
    std::string text;
    for (std::size_t i = 0; i < std::min(cameras.size(), kMostListed); ++i) {
        const std::string& name = cameras[i].name;
        text.append(text.empty() ? "" : ", ").append(std::to_string(i + 1));
        text.append(name.empty() ? "" : " (").append(name).append(name.empty() ? "" : ")");
    }
    return cameras.size() > kMostListed ? text + ", ..." : text;
}

} // namespace

std::variant<View, std::string> chooseView(const std::string& name, const Model& model,
                                           const std::optional<Bounds>& bounds,
                                           double aspectRatio) {
    for (const Stand& stand : kStands) {
        if (name == stand.name) {
            constexpr Bounds kUnit = {{{-1, -1, -1}, {1, 1, 1}}};
            return fittedView(stand, bounds.value_or(kUnit), aspectRatio);
        }
    }
    if (const Camera* const camera = findCamera(name, model.cameras)) {
        return cameraView(*camera, aspectRatio);
    }
    std::string text = "there is no view \"" + name + "\": it can be fit, front, top, left";
    return model.cameras.empty() ? text + "; the scene has no cameras"
                                 : text + ", or a camera of the scene: " + listed(model.cameras);
}

} // namespace meshcast::render
