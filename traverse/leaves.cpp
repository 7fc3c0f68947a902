#include "traverse/shape_visitor.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <memory>

// Nodes without children. A property puts an element that refers to it on the stack of its kind,
// through which shapes read its fields. A shape passes itself to the visitor of the walk, which
// decides what to do with it.

namespace meshcast {

namespace {

void add(QvState& state, QvElementKind kind, const QvNode& node,
         QvElementType type = QvElementType::Unknown) {
    state.addElement(kind, std::make_unique<QvElement>(&node, type));
    state.shapes().addProperty(node, kind, type);
}

} // namespace

using Kind = QvElementKind;
using Type = QvElementType;

void QvOrthographicCamera::traverse(QvState& state) const {
    add(state, Kind::Camera, *this, Type::OrthographicCamera);
}
void QvPerspectiveCamera::traverse(QvState& state) const {
    add(state, Kind::Camera, *this, Type::PerspectiveCamera);
}

void QvDirectionalLight::traverse(QvState& state) const {
    add(state, Kind::Light, *this, Type::DirectionalLight);
}
void QvPointLight::traverse(QvState& state) const {
    add(state, Kind::Light, *this, Type::PointLight);
}
void QvSpotLight::traverse(QvState& state) const {
    add(state, Kind::Light, *this, Type::SpotLight);
}

void QvMatrixTransform::traverse(QvState& state) const {
    add(state, Kind::Transformation, *this, Type::MatrixTransform);
}
void QvRotation::traverse(QvState& state) const {
    add(state, Kind::Transformation, *this, Type::Rotation);
}
void QvScale::traverse(QvState& state) const {
    add(state, Kind::Transformation, *this, Type::Scale);
}
void QvTransform::traverse(QvState& state) const {
    add(state, Kind::Transformation, *this, Type::Transform);
}
void QvTranslation::traverse(QvState& state) const {
    add(state, Kind::Transformation, *this, Type::Translation);
}

void QvCoordinate3::traverse(QvState& state) const { add(state, Kind::Coordinate3, *this); }
void QvMaterialBinding::traverse(QvState& state) const { add(state, Kind::MaterialBinding, *this); }
void QvMaterial::traverse(QvState& state) const { add(state, Kind::Material, *this); }
void QvNormalBinding::traverse(QvState& state) const { add(state, Kind::NormalBinding, *this); }
void QvNormal::traverse(QvState& state) const { add(state, Kind::Normal, *this); }
void QvShapeHints::traverse(QvState& state) const { add(state, Kind::ShapeHints, *this); }
void QvTexture2::traverse(QvState& state) const {
    add(state, Kind::Texture2, *this);
    state.shapes().prepareTexture(*this);
}
void QvTexture2Transform::traverse(QvState& state) const {
    add(state, Kind::Texture2Transformation, *this);
}
void QvTextureCoordinate2::traverse(QvState& state) const {
    add(state, Kind::TextureCoordinate2, *this);
}
void QvFontStyle::traverse(QvState& state) const { add(state, Kind::FontStyle, *this); }

void QvAsciiText::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCone::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCube::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvCylinder::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvIndexedFaceSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvIndexedLineSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvPointSet::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvSphere::traverse(QvState& state) const { state.shapes().visit(*this, state); }
void QvWWWInline::traverse(QvState& state) const { state.shapes().visit(*this, state); }

void QvInfo::traverse(QvState& state) const { state.shapes().passInfo(*this); }

} // namespace meshcast
