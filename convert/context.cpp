#include "convert/context.h"

#include "traverse/transforms.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

namespace meshcast {

namespace {

std::array<float, 3> normalised(const std::array<float, 3>& v) {
    constexpr double kTooShort = 1e-10;
    const float lengthSquared = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
    if (static_cast<double>(lengthSquared) < kTooShort) {
        // Kept: a rotation without an axis turns about the diagonal instead of being an error.
        const auto component = static_cast<float>(std::sqrt(3.0) / 3.0);
        return {component, component, component};
    }
    const float length = std::sqrt(lengthSquared);
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// M := M B. Every element is a sum from 0 over k = 0 to 3, in float.
void multiply(Matrix4& m, const Matrix4& b) {
    const Matrix4 a = m;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            float sum = 0;
            for (std::size_t k = 0; k < 4; ++k) {
                sum += a[i][k] * b[k][j];
            }
            m[i][j] = sum;
        }
    }
}

Matrix4 scaling(const QvSFVec3f& factors) {
    const auto [x, y, z] = factors.value;
    return {{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}, {0, 0, 0, 1}}};
}

Matrix4 translation(const QvSFVec3f& offset, float sign = 1) {
    const auto [x, y, z] = offset.value;
    return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {sign * x, sign * y, sign * z, 1}}};
}

// The transpose of the usual matrix for column vectors (Foley et al., "Computer Graphics:
// Principles and Practice", rotation about an arbitrary axis).
Matrix4 rotation(const QvSFRotation& field, float sign = 1) {
    const auto& value = field.value;
    const auto angle = static_cast<double>(sign * value[3]);
    const auto s = static_cast<float>(std::sin(angle));
    const auto c = static_cast<float>(std::cos(angle));
    const auto [x, y, z] = normalised({value[0], value[1], value[2]});
    const float t = 1 - c;
    return {{{x * x + (1 - x * x) * c, x * y * t + z * s, x * z * t - y * s, 0},
             {x * y * t - z * s, y * y + (1 - y * y) * c, y * z * t + x * s, 0},
             {x * z * t + y * s, y * z * t - x * s, z * z + (1 - z * z) * c, 0},
             {0, 0, 0, 1}}};
}

void fold(Matrix4& m, const QvMatrixTransform& node) {
    multiply(m, std::bit_cast<Matrix4>(node.matrix.value));
}

void fold(Matrix4& m, const QvRotation& node) { multiply(m, rotation(node.rotation)); }

void fold(Matrix4& m, const QvScale& node) { multiply(m, scaling(node.scaleFactor)); }

void fold(Matrix4& m, const QvTranslation& node) { multiply(m, translation(node.translation)); }

void fold(Matrix4& m, const QvTransform& node) {
    multiply(m, translation(node.center, -1));
    multiply(m, rotation(node.scaleOrientation, -1));
    multiply(m, scaling(node.scaleFactor));
    multiply(m, rotation(node.scaleOrientation));
    multiply(m, rotation(node.rotation));
    multiply(m, translation(node.center));
    multiply(m, translation(node.translation));
}

} // namespace

ShapeContext::~ShapeContext() {
    while (TransformStack != nullptr) {
        delete std::exchange(TransformStack, TransformStack->next);
    }
}

TransformRecord* ShapeContext::top() {
    if (TransformStack == nullptr) {
        TransformStack = new (std::nothrow) TransformRecord;
        if (TransformStack == nullptr) {
            return nullptr;
        }
        Matrix4& matrix = TransformStack->matrix;
        forEachTransform(state_, [&matrix](const auto& node) { fold(matrix, node); });
    }
    TransformRecord* record = TransformStack;
    while (record->next != nullptr) {
        record = record->next;
    }
    return record;
}

} // namespace meshcast
