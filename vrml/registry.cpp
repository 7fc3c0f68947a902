#include "vrml/registry.h"

#include "vrml/nodes.h"

#include <algorithm>
#include <array>

namespace meshcast {

namespace {

template <class Class>
QvNode* make(NodePool& nodes) {
    return nodes.make<Class>();
}

constexpr auto kClasses = std::to_array<NodeClass>({
    {"Cone", make<QvCone>},
    {"Coordinate3", make<QvCoordinate3>},
    {"Cube", make<QvCube>},
    {"Cylinder", make<QvCylinder>},
    {"DirectionalLight", make<QvDirectionalLight>},
    {"Group", make<QvGroup>},
    {"IndexedFaceSet", make<QvIndexedFaceSet>},
    {"IndexedLineSet", make<QvIndexedLineSet>},
    {"Info", make<QvInfo>},
    {"LevelOfDetail", make<QvLevelOfDetail>},
    {"LOD", make<QvLevelOfDetail>}, // The name by which most files know it.
    {"Material", make<QvMaterial>},
    {"MaterialBinding", make<QvMaterialBinding>},
    {"MatrixTransform", make<QvMatrixTransform>},
    {"Normal", make<QvNormal>},
    {"NormalBinding", make<QvNormalBinding>},
    {"OrthographicCamera", make<QvOrthographicCamera>},
    {"PerspectiveCamera", make<QvPerspectiveCamera>},
    {"PointLight", make<QvPointLight>},
    {"PointSet", make<QvPointSet>},
    {"Rotation", make<QvRotation>},
    {"Scale", make<QvScale>},
    {"Separator", make<QvSeparator>},
    {"ShapeHints", make<QvShapeHints>},
    {"Sphere", make<QvSphere>},
    {"SpotLight", make<QvSpotLight>},
    {"Switch", make<QvSwitch>},
    {"Texture2", make<QvTexture2>},
    {"Texture2Transform", make<QvTexture2Transform>},
    {"TextureCoordinate2", make<QvTextureCoordinate2>},
    {"Transform", make<QvTransform>},
    {"TransformSeparator", make<QvTransformSeparator>},
    {"Translation", make<QvTranslation>},
    {"WWWAnchor", make<QvWWWAnchor>},
    {"WWWInline", make<QvWWWInline>},
    {"AsciiText", make<QvAsciiText>},
    {"FontStyle", make<QvFontStyle>},
});

/// The names of kClasses as handles, so that a look-up compares pointers.
std::array<InternedName, kClasses.size()> internClassNames() {
    std::array<InternedName, kClasses.size()> names;
    std::transform(kClasses.begin(), kClasses.end(), names.begin(),
                   [](const NodeClass& nodeClass) { return InternedName(nodeClass.name); });
    return names;
}

} // namespace

std::span<const NodeClass> nodeClasses() {
    return kClasses;
}

QvNode* createNode(NodePool& nodes, InternedName className) {
    static const std::array<InternedName, kClasses.size()> names = internClassNames();
    const auto* const found = std::find(names.begin(), names.end(), className);
    if (found == names.end()) {
        return nullptr;
    }
    return kClasses[static_cast<std::size_t>(found - names.begin())].create(nodes);
}

} // namespace meshcast
