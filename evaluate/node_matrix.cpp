#include "evaluate/node_matrix.h"

#include <cmath>
#include <glm/geometric.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

namespace meshcast::evaluate {

namespace {

const glm::dmat4 kNoChange(1.0);

glm::dvec3 vector(const QvSFVec3f& field) {
    return {field.value[0], field.value[1], field.value[2]};
}

glm::dmat4 turned(const std::array<float, 4>& axisAndAngle, double sign) {
    const glm::dvec3 axis(axisAndAngle[0], axisAndAngle[1], axisAndAngle[2]);
    const double length = glm::length(axis);
    if (!(length > 0)) {
        return kNoChange;
    }
    return glm::rotate(kNoChange, sign * static_cast<double>(axisAndAngle[3]), axis / length);
}

} // namespace

glm::dmat4 rotationMatrix(const std::array<float, 4>& axisAndAngle) {
    return turned(axisAndAngle, 1);
}

glm::dmat4 matrixOf(const QvMatrixTransform& node) {
    return glm::dmat4(glm::make_mat4(node.matrix.value.data()));
}

glm::dmat4 matrixOf(const QvRotation& node) { return rotationMatrix(node.rotation.value); }

glm::dmat4 matrixOf(const QvScale& node) { return glm::scale(kNoChange, vector(node.scaleFactor)); }

glm::dmat4 matrixOf(const QvTransform& node) {
    const glm::dvec3 center = vector(node.center);
    const auto& orientation = node.scaleOrientation.value;
    return glm::translate(kNoChange, vector(node.translation) + center) *
           rotationMatrix(node.rotation.value) * rotationMatrix(orientation) *
           glm::scale(kNoChange, vector(node.scaleFactor)) * turned(orientation, -1) *
           glm::translate(kNoChange, -center);
}

glm::dmat4 matrixOf(const QvTranslation& node) {
    return glm::translate(kNoChange, vector(node.translation));
}

glm::dmat3 matrixOf(const QvTexture2Transform& node) {
    const auto moved = [](double s, double t) { return glm::dmat3(1, 0, 0, 0, 1, 0, s, t, 1); };
    const double centerS = node.center.value[0];
    const double centerT = node.center.value[1];
    const double sine = std::sin(static_cast<double>(node.rotation.value));
    const double cosine = std::cos(static_cast<double>(node.rotation.value));
    const glm::dmat3 rotation(cosine, sine, 0, -sine, cosine, 0, 0, 0, 1);
    const glm::dmat3 scale(node.scaleFactor.value[0], 0, 0, 0, node.scaleFactor.value[1], 0, 0, 0,
                           1);
    return moved(static_cast<double>(node.translation.value[0]) + centerS,
                 static_cast<double>(node.translation.value[1]) + centerT) *
           rotation * scale * moved(-centerS, -centerT);
}

} // namespace meshcast::evaluate
