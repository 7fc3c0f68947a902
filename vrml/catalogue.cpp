#include "vrml/catalogue.h"

#include "vrml/nodes.h"
#include "vrml/scene.h"

#include <array>
#include <type_traits>

namespace meshcast {

namespace {

template <class Node>
QvNode* make(Scene& scene) {
    return scene.make<Node>();
}

template <class Node>
constexpr ClassInfo describe(NodeKind kind, std::string_view name = Node::kClassName) {
    return {name, kind, std::is_base_of_v<QvGroup, Node>, Node::kFields, make<Node>};
}

constexpr auto kClasses = std::to_array<ClassInfo>({
    describe<QvCone>(NodeKind::kShape),
    describe<QvCoordinate3>(NodeKind::kProperty),
    describe<QvCube>(NodeKind::kShape),
    describe<QvCylinder>(NodeKind::kShape),
    describe<QvDirectionalLight>(NodeKind::kProperty),
    describe<QvGroup>(NodeKind::kGroup),
    describe<QvIndexedFaceSet>(NodeKind::kShape),
    describe<QvIndexedLineSet>(NodeKind::kShape),
    describe<QvInfo>(NodeKind::kInfo),
    describe<QvLevelOfDetail>(NodeKind::kGroup),
    describe<QvLevelOfDetail>(NodeKind::kGroup, "LOD"), // The name by which most files know it.
    describe<QvMaterial>(NodeKind::kProperty),
    describe<QvMaterialBinding>(NodeKind::kProperty),
    describe<QvMatrixTransform>(NodeKind::kProperty),
    describe<QvNormal>(NodeKind::kProperty),
    describe<QvNormalBinding>(NodeKind::kProperty),
    describe<QvOrthographicCamera>(NodeKind::kProperty),
    describe<QvPerspectiveCamera>(NodeKind::kProperty),
    describe<QvPointLight>(NodeKind::kProperty),
    describe<QvPointSet>(NodeKind::kShape),
    describe<QvRotation>(NodeKind::kProperty),
    describe<QvScale>(NodeKind::kProperty),
    describe<QvSeparator>(NodeKind::kGroup),
    describe<QvShapeHints>(NodeKind::kProperty),
    describe<QvSphere>(NodeKind::kShape),
    describe<QvSpotLight>(NodeKind::kProperty),
    describe<QvSwitch>(NodeKind::kGroup),
    describe<QvTexture2>(NodeKind::kProperty),
    describe<QvTexture2Transform>(NodeKind::kProperty),
    describe<QvTextureCoordinate2>(NodeKind::kProperty),
    describe<QvTransform>(NodeKind::kProperty),
    describe<QvTransformSeparator>(NodeKind::kGroup),
    describe<QvTranslation>(NodeKind::kProperty),
    describe<QvWWWAnchor>(NodeKind::kGroup),
    describe<QvWWWInline>(NodeKind::kShape), // Its declared bounds are the shape.
    describe<QvAsciiText>(NodeKind::kShape),
    describe<QvFontStyle>(NodeKind::kProperty),
});

} // namespace

std::span<const ClassInfo> nodeClasses() {
    return kClasses;
}

const ClassInfo* findClass(InternedName name) {
    // The names of the classes are the first of the catalogue, in the order of the classes.
    return !name.empty() && name.number() <= kClasses.size() ? &kClasses[name.number() - 1]
                                                             : nullptr;
}

QvNode* createNode(Scene& scene, InternedName className) {
    const ClassInfo* const found = findClass(className);
    return found == nullptr ? nullptr : found->create(scene);
}

} // namespace meshcast
