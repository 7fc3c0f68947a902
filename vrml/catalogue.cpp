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

template <class... Nodes>
constexpr std::array<ClassInfo, sizeof...(Nodes)> describe() {
    return {{{Nodes::kClass.name, Nodes::kClass.kind, std::is_base_of_v<QvGroup, Nodes>,
              Nodes::kClass.fields, make<Nodes>}...}};
}

constexpr auto kClasses = [] {
    auto classes =
        describe<QvCone, QvCoordinate3, QvCube, QvCylinder, QvDirectionalLight, QvGroup,
                 QvIndexedFaceSet, QvIndexedLineSet, QvInfo, QvLevelOfDetail, QvLevelOfDetail,
                 QvMaterial, QvMaterialBinding, QvMatrixTransform, QvNormal, QvNormalBinding,
                 QvOrthographicCamera, QvPerspectiveCamera, QvPointLight, QvPointSet, QvRotation,
                 QvScale, QvSeparator, QvShapeHints, QvSphere, QvSpotLight, QvSwitch, QvTexture2,
                 QvTexture2Transform, QvTextureCoordinate2, QvTransform, QvTransformSeparator,
                 QvTranslation, QvWWWAnchor, QvWWWInline, QvAsciiText, QvFontStyle>();
    constexpr std::size_t kSecondLevelOfDetail = 10;
    classes[kSecondLevelOfDetail].name = "LOD"; // The name by which most files know it.
    return classes;
}();

/// Words with a meaning of their own in a scene.
constexpr std::string_view kGrammar[] = {"DEF", "USE", "NULL", "fields"};

const NameTable& internNames() {
    NameTable& names = *new NameTable;
    // Classes come first, so that number i + 1 is the name of class i.
    for (const ClassInfo& nodeClass : kClasses) {
        names.intern(nodeClass.name);
    }
    for (const std::string_view word : kGrammar) {
        names.intern(word);
    }
    for (const ClassInfo& nodeClass : kClasses) {
        for (const FieldInfo& field : nodeClass.fields) {
            names.intern(field.name);
        }
    }
    return names;
}

} // namespace

std::span<const ClassInfo> nodeClasses() { return kClasses; }

const ClassInfo* findClass(InternedName name) {
    return !name.empty() && name.number() <= kClasses.size() ? &kClasses[name.number() - 1]
                                                             : nullptr;
}

const NameTable& catalogueNames() {
    static const NameTable& names = internNames();
    return names;
}

InternedName catalogueName(std::string_view text) { return catalogueNames().at(text); }

} // namespace meshcast
