#include "convert/context.h"

#include "traverse/transforms.h"

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
        // A rotation about no axis turns about the diagonal, rather than being an error.
        const auto component = static_cast<float>(std::sqrt(3.0) / 3.0);
        return {component, component, component};
    }
    const float length = std::sqrt(lengthSquared);
    return {v[0] / length, v[1] / length, v[2] / length};
}

Matrix4 matrixOf(const QvSFRotation& rotation, float sign = 1) {
    const auto& [x, y, z, angle] = rotation.value;
    return rotationMatrix({x, y, z}, sign * angle);
}

void fold(Matrix4& m, const QvMatrixTransform& node) {
    Matrix4 matrix;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            matrix[i][j] = node.matrix.value[4 * i + j];
        }
    }
    multiply(m, matrix);
}

void fold(Matrix4& m, const QvRotation& node) {
    multiply(m, matrixOf(node.rotation));
}

void fold(Matrix4& m, const QvScale& node) {
    multiply(m, scaleMatrix(node.scaleFactor.value));
}

void fold(Matrix4& m, const QvTranslation& node) {
    multiply(m, translationMatrix(node.translation.value));
}

void fold(Matrix4& m, const QvTransform& node) {
    const auto& center = node.center.value;
    multiply(m, translationMatrix({-center[0], -center[1], -center[2]}));
    multiply(m, matrixOf(node.scaleOrientation, -1));
    multiply(m, scaleMatrix(node.scaleFactor.value));
    multiply(m, matrixOf(node.scaleOrientation));
    multiply(m, matrixOf(node.rotation));
    multiply(m, translationMatrix(center));
    multiply(m, translationMatrix(node.translation.value));
}

} // namespace

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

Matrix4 scaleMatrix(const std::array<float, 3>& factors) {
    Matrix4 matrix = kIdentity4;
    for (std::size_t i = 0; i < 3; ++i) {
        matrix[i][i] = factors[i];
    }
    return matrix;
}

Matrix4 translationMatrix(const std::array<float, 3>& offset) {
    Matrix4 matrix = kIdentity4;
    for (std::size_t i = 0; i < 3; ++i) {
        matrix[3][i] = offset[i];
    }
    return matrix;
}

// The transpose of the matrix that the textbooks give for column vectors (Foley et al., "Computer
// Graphics: Principles and Practice", rotation about an arbitrary axis).
Matrix4 rotationMatrix(const std::array<float, 3>& axis, float angle) {
    const auto s = static_cast<float>(std::sin(static_cast<double>(angle)));
    const auto c = static_cast<float>(std::cos(static_cast<double>(angle)));
    const auto [x, y, z] = normalised(axis);
    const float t = 1 - c;
    Matrix4 matrix = kIdentity4;
    matrix[0] = {x * x + (1 - x * x) * c, x * y * t + z * s, x * z * t - y * s, 0};
    matrix[1] = {x * y * t - z * s, y * y + (1 - y * y) * c, y * z * t + x * s, 0};
    matrix[2] = {x * z * t + y * s, y * z * t - x * s, z * z + (1 - z * z) * c, 0};
    return matrix;
}

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
