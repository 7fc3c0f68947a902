#include "evaluate/placement.h"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <glm/mat3x3.hpp>
#include <glm/matrix.hpp>
#include <utility>

namespace meshcast::evaluate {

namespace {

// Matrices in scenes have about six digits. If the axes are not orthogonal to that accuracy, the
// matrix is baked, which is always exact.
constexpr double kMostShear = 1e-6;
// A relative value below this counts as 0.
constexpr double kFlat = 1e-9;
// Small enough that a float can hold its square.
constexpr double kShortestAxis = 1e-18;

Matrix narrowed(const glm::dmat4& matrix) {
    Matrix result{};
    const double* const from = glm::value_ptr(matrix);
    std::transform(from, from + result.size(), result.begin(),
                   [](double element) { return static_cast<float>(element); });
    return result;
}

bool areFinite(const Matrix& matrix) {
    return std::all_of(matrix.begin(), matrix.end(), [](float x) { return std::isfinite(x); });
}

/// The matrix for normals, up to a positive factor: the inverse transpose.
glm::dmat3 normalMatrix(const glm::dmat3& m) {
    const glm::dmat3 cofactors(glm::cross(m[1], m[2]), glm::cross(m[2], m[0]),
                               glm::cross(m[0], m[1]));
    return glm::determinant(m) < 0 ? -cofactors : cofactors;
}

Vec3 placed(const glm::dmat4& matrix, const Vec3& point) {
    const glm::dvec4 p = matrix * glm::dvec4(wide(point), 1);
    return narrow(glm::dvec3(p) / p.w);
}

/// Gives each triangle three vertices of its own with the normal of its plane.
class Flattener {
public:
    Flattener(Geometry& from, Geometry& to) : from_(from), to_(to) {}

    void add(const std::uint32_t* corners) {
        const Vec3& a = from_.positions[corners[0]];
        const Vec3& b = from_.positions[corners[1]];
        const Vec3& c = from_.positions[corners[2]];
        const glm::dvec3 ab = wide(b) - wide(a);
        const glm::dvec3 ac = wide(c) - wide(a);
        const glm::dvec3 normal = glm::cross(ab, ac);
        const double length = glm::length(normal);
        if (!isFinite(a) || !isFinite(b) || !isFinite(c) ||
            !(length > kFlat * std::max(glm::dot(ab, ab), glm::dot(ac, ac)))) {
            return;
        }
        for (int i = 0; i < 3; ++i) {
            copy(corners[i]);
            to_.normals.push_back(narrow(normal / length));
        }
    }

    /// Lines and points have no flat normals.
    void addElement(const std::uint32_t* corners, std::size_t count) {
        const Vec3& first = from_.positions[corners[0]];
        const Vec3& last = from_.positions[corners[count - 1]];
        if (isFinite(first) && isFinite(last) && (count == 1 || first != last)) {
            std::for_each(corners, corners + count, [this](std::uint32_t i) { copy(i); });
        }
    }

private:
    void copy(std::uint32_t vertex) {
        to_.indices.push_back(static_cast<std::uint32_t>(to_.positions.size()));
        to_.positions.push_back(from_.positions[vertex]);
        if (!from_.colors.empty()) {
            to_.colors.push_back(from_.colors[vertex]);
        }
        if (!from_.uvs.empty()) {
            to_.uvs.push_back(from_.uvs[vertex]);
        }
    }

    Geometry& from_;
    Geometry& to_;
};

void dropNormals(MeshDraft& mesh) {
    Geometry split;
    split.topology = mesh.geometry.topology;
    Flattener flattener(mesh.geometry, split);
    const std::size_t size = split.topology == Topology::kTriangles ? 3
                             : split.topology == Topology::kLines   ? 2
                                                                    : 1;
    for (DraftPart& part : mesh.parts) {
        // Lines and points without normals are not lit.
        part.material.isUnlit |= size < 3;
        const std::uint32_t* const from = mesh.geometry.indices.data() + part.firstIndex;
        part.firstIndex = static_cast<std::uint32_t>(split.indices.size());
        for (std::size_t i = 0; i < part.indexCount; i += size) {
            if (size == 3) {
                flattener.add(from + i);
            } else {
                flattener.addElement(from + i, size);
            }
        }
        part.indexCount = static_cast<std::uint32_t>(split.indices.size()) - part.firstIndex;
    }
    mesh.geometry = std::move(split);
}

/// The axis with the largest angle to a direction; of equal ones Y before X.
glm::dvec3 axisAcross(const glm::dvec3& direction) {
    const glm::dvec3 size = glm::abs(direction);
    if (size.y <= size.x && size.y <= size.z) {
        return {0, 1, 0};
    }
    return size.x <= size.z ? glm::dvec3(1, 0, 0) : glm::dvec3(0, 0, 1);
}

} // namespace

std::optional<Placement> placementOf(const glm::dmat4& matrix) {
    const bool isAffine = matrix[0].w == 0 && matrix[1].w == 0 && matrix[2].w == 0;
    if (isAffine && matrix[3].w == 0) {
        return std::nullopt;
    }
    const glm::dmat4 m = isAffine ? matrix / matrix[3].w : matrix;
    if (!areFinite(narrowed(m))) {
        return std::nullopt;
    }
    Placement placement;
    if (!isAffine) {
        placement.baked = m;
        placement.losesNormals = true;
        return placement;
    }
    const glm::dmat3 linear(m);
    const double x = glm::length(linear[0]);
    const double y = glm::length(linear[1]);
    const double z = glm::length(linear[2]);
    const bool isSquare = std::abs(glm::dot(linear[0], linear[1])) <= kMostShear * x * y &&
                          std::abs(glm::dot(linear[1], linear[2])) <= kMostShear * y * z &&
                          std::abs(glm::dot(linear[2], linear[0])) <= kMostShear * z * x;
    const bool isFlat = std::min({x, y, z}) < kShortestAxis ||
                        std::abs(glm::determinant(linear)) <= kFlat * x * y * z;
    if (isSquare && !isFlat) {
        placement.instance = narrowed(m);
        return placement;
    }
    // The translation stays in the instance, so that shapes with the same shear share a mesh.
    glm::dmat4 moved(1.0);
    moved[3] = m[3];
    placement.instance = narrowed(moved);
    placement.baked = glm::dmat4(linear);
    placement.losesNormals = isFlat;
    return placement;
}

void bake(MeshDraft& mesh, const Placement& placement) {
    if (!placement.baked) {
        return;
    }
    Geometry& geometry = mesh.geometry;
    for (Vec3& point : geometry.positions) {
        point = placed(*placement.baked, point);
    }
    // A point outside the range of float is dropped with its triangles.
    if (placement.losesNormals ||
        !std::all_of(geometry.positions.begin(), geometry.positions.end(), isFinite)) {
        dropNormals(mesh);
        return;
    }
    const glm::dmat3 linear(*placement.baked);
    const glm::dmat3 forNormals = normalMatrix(linear);
    for (Vec3& normal : geometry.normals) {
        normal = narrow(glm::normalize(forNormals * wide(normal)));
    }
    if (geometry.topology == Topology::kTriangles && glm::determinant(linear) < 0) {
        for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
            std::swap(geometry.indices[i + 1], geometry.indices[i + 2]);
        }
    }
}

Matrix rigidPart(const glm::dmat4& matrix, double& scale) {
    scale = std::cbrt(std::abs(glm::determinant(glm::dmat3(matrix))));
    // Z keeps its direction, because cameras look and lights shine along it.
    glm::dmat4 rigid(1.0);
    const glm::dvec3 z(matrix[2]);
    if (glm::length(z) > kShortestAxis) {
        const glm::dvec3 back = glm::normalize(z);
        const glm::dvec3 y(matrix[1]);
        glm::dvec3 side = glm::cross(y, back);
        if (!(glm::length(side) > kFlat * glm::length(y))) {
            side = glm::cross(axisAcross(back), back);
        }
        side = glm::normalize(side);
        rigid[0] = glm::dvec4(side, 0);
        rigid[1] = glm::dvec4(glm::cross(back, side), 0);
        rigid[2] = glm::dvec4(back, 0);
    }
    const double w = matrix[3].w == 0 ? 1 : matrix[3].w;
    rigid[3] = glm::dvec4(glm::dvec3(matrix[3]) / w, 1);
    const Matrix result = narrowed(rigid);
    if (!areFinite(result) || !std::isfinite(scale)) {
        scale = 1;
        return kIdentity;
    }
    return result;
}

} // namespace meshcast::evaluate
