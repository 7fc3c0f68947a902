#pragma once

#include "vrml/field_info.h"
#include "vrml/fields.h"
#include "vrml/group.h"
#include "vrml/node.h"

#include <array>
#include <cstdint>
#include <string_view>

#pragma GCC visibility push(default)

// The node classes of the scene language: their fields, in order, with their defaults, and their
// enumerations. To add a class, declare it here, add it to the catalogue, and define its traverse.
// The sections follow what a class does in the walk: shapes are geometry, properties apply to the
// shapes after them, groups hold children.

namespace meshcast {

inline constexpr float kQuarterPi = 0.7853982F;
inline constexpr std::array<float, 4> kNoRotation = {0, 0, 1, 0};

// ---- shapes

class QvAsciiText final : public BuiltIn<QvAsciiText> {
public:
    enum Justification : std::int32_t { LEFT = 0, CENTER = 1, RIGHT = 2 };
    static constexpr Enumeration kJustification = {
        "Justification", {{"LEFT", LEFT}, {"CENTER", CENTER}, {"RIGHT", RIGHT}}};

    QvSFString string{""};
    QvSFFloat spacing{1};
    QvSFEnum justification{LEFT};
    QvSFFloat width{0};
    static constexpr auto kClass =
        declare("AsciiText", NodeKind::kShape, field<&This::string>("string"),
                field<&This::spacing>("spacing"),
                field<&This::justification>("justification", &kJustification),
                field<&This::width>("width"));

    void traverse(QvState& state) const override;
};

class QvCone final : public BuiltIn<QvCone> {
public:
    enum Part : std::int32_t { SIDES = 1, BOTTOM = 2, ALL = 3 };
    static constexpr Enumeration kPart = {"Part",
                                          {{"SIDES", SIDES}, {"BOTTOM", BOTTOM}, {"ALL", ALL}}};

    QvSFBitMask parts{ALL};
    QvSFFloat bottomRadius{1}, height{2};
    static constexpr auto kClass =
        declare("Cone", NodeKind::kShape, field<&This::parts>("parts", &kPart),
                field<&This::bottomRadius>("bottomRadius"), field<&This::height>("height"));

    void traverse(QvState& state) const override;
};

class QvCube final : public BuiltIn<QvCube> {
public:
    QvSFFloat width{2}, height{2}, depth{2};
    static constexpr auto kClass =
        declare("Cube", NodeKind::kShape, field<&This::width>("width"),
                field<&This::height>("height"), field<&This::depth>("depth"));

    void traverse(QvState& state) const override;
};

class QvCylinder final : public BuiltIn<QvCylinder> {
public:
    enum Part : std::int32_t { SIDES = 1, TOP = 2, BOTTOM = 4, ALL = 7 };
    static constexpr Enumeration kPart = {
        "Part", {{"SIDES", SIDES}, {"TOP", TOP}, {"BOTTOM", BOTTOM}, {"ALL", ALL}}};

    QvSFBitMask parts{ALL};
    QvSFFloat radius{1}, height{2};
    static constexpr auto kClass =
        declare("Cylinder", NodeKind::kShape, field<&This::parts>("parts", &kPart),
                field<&This::radius>("radius"), field<&This::height>("height"));

    void traverse(QvState& state) const override;
};

class QvIndexedFaceSet final : public BuiltIn<QvIndexedFaceSet> {
public:
    QvMFLong coordIndex{{0}}, materialIndex{{-1}}, normalIndex{{-1}}, textureCoordIndex{{-1}};
    static constexpr auto kClass = declare(
        "IndexedFaceSet", NodeKind::kShape, field<&This::coordIndex>("coordIndex"),
        field<&This::materialIndex>("materialIndex"), field<&This::normalIndex>("normalIndex"),
        field<&This::textureCoordIndex>("textureCoordIndex"));

    void traverse(QvState& state) const override;
};

class QvIndexedLineSet final : public BuiltIn<QvIndexedLineSet> {
public:
    QvMFLong coordIndex{{0}}, materialIndex{{-1}}, normalIndex{{-1}}, textureCoordIndex{{-1}};
    static constexpr auto kClass = declare(
        "IndexedLineSet", NodeKind::kShape, field<&This::coordIndex>("coordIndex"),
        field<&This::materialIndex>("materialIndex"), field<&This::normalIndex>("normalIndex"),
        field<&This::textureCoordIndex>("textureCoordIndex"));

    void traverse(QvState& state) const override;
};

class QvPointSet final : public BuiltIn<QvPointSet> {
public:
    QvSFLong startIndex{0}, numPoints{-1};
    static constexpr auto kClass =
        declare("PointSet", NodeKind::kShape, field<&This::startIndex>("startIndex"),
                field<&This::numPoints>("numPoints"));

    void traverse(QvState& state) const override;
};

class QvSphere final : public BuiltIn<QvSphere> {
public:
    QvSFFloat radius{1};
    static constexpr auto kClass =
        declare("Sphere", NodeKind::kShape, field<&This::radius>("radius"));

    void traverse(QvState& state) const override;
};

// ---- properties: geometry

class QvCoordinate3 final : public BuiltIn<QvCoordinate3> {
public:
    QvMFVec3f point{{0, 0, 0}};
    static constexpr auto kClass =
        declare("Coordinate3", NodeKind::kProperty, field<&This::point>("point"));

    void traverse(QvState& state) const override;
};

class QvNormal final : public BuiltIn<QvNormal> {
public:
    QvMFVec3f vector{{0, 0, 1}};
    static constexpr auto kClass =
        declare("Normal", NodeKind::kProperty, field<&This::vector>("vector"));

    void traverse(QvState& state) const override;
};

/// How the values of a property are assigned to the parts of a shape.
struct Binding {
    enum Value : std::int32_t {
        DEFAULT = 0,
        NONE = 1,
        OVERALL = 2,
        PER_PART = 3,
        PER_PART_INDEXED = 4,
        PER_FACE = 5,
        PER_FACE_INDEXED = 6,
        PER_VERTEX = 7,
        PER_VERTEX_INDEXED = 8,
    };
    static constexpr Enumeration kEnumeration = {"Binding",
                                                 {{"DEFAULT", DEFAULT},
                                                  {"NONE", NONE},
                                                  {"OVERALL", OVERALL},
                                                  {"PER_PART", PER_PART},
                                                  {"PER_PART_INDEXED", PER_PART_INDEXED},
                                                  {"PER_FACE", PER_FACE},
                                                  {"PER_FACE_INDEXED", PER_FACE_INDEXED},
                                                  {"PER_VERTEX", PER_VERTEX},
                                                  {"PER_VERTEX_INDEXED", PER_VERTEX_INDEXED}}};
};

class QvNormalBinding final : public BuiltIn<QvNormalBinding> {
public:
    QvSFEnum value{Binding::DEFAULT};
    static constexpr auto kClass = declare("NormalBinding", NodeKind::kProperty,
                                           field<&This::value>("value", &Binding::kEnumeration));

    void traverse(QvState& state) const override;
};

class QvShapeHints final : public BuiltIn<QvShapeHints> {
public:
    enum VertexOrdering : std::int32_t {
        UNKNOWN_ORDERING = 0,
        CLOCKWISE = 1,
        COUNTERCLOCKWISE = 2
    };
    static constexpr Enumeration kVertexOrdering = {"VertexOrdering",
                                                    {{"UNKNOWN_ORDERING", UNKNOWN_ORDERING},
                                                     {"CLOCKWISE", CLOCKWISE},
                                                     {"COUNTERCLOCKWISE", COUNTERCLOCKWISE}}};

    enum ShapeType : std::int32_t { UNKNOWN_SHAPE_TYPE = 0, SOLID = 1 };
    static constexpr Enumeration kShapeType = {
        "ShapeType", {{"UNKNOWN_SHAPE_TYPE", UNKNOWN_SHAPE_TYPE}, {"SOLID", SOLID}}};

    enum FaceType : std::int32_t { UNKNOWN_FACE_TYPE = 0, CONVEX = 1 };
    static constexpr Enumeration kFaceType = {
        "FaceType", {{"UNKNOWN_FACE_TYPE", UNKNOWN_FACE_TYPE}, {"CONVEX", CONVEX}}};

    QvSFEnum vertexOrdering{UNKNOWN_ORDERING};
    QvSFEnum shapeType{UNKNOWN_SHAPE_TYPE}, faceType{CONVEX};
    QvSFFloat creaseAngle{0.5F};
    static constexpr auto kClass = declare(
        "ShapeHints", NodeKind::kProperty,
        field<&This::vertexOrdering>("vertexOrdering", &kVertexOrdering),
        field<&This::shapeType>("shapeType", &kShapeType),
        field<&This::faceType>("faceType", &kFaceType), field<&This::creaseAngle>("creaseAngle"));

    void traverse(QvState& state) const override;
};

// ---- properties: appearance

class QvMaterial final : public BuiltIn<QvMaterial> {
public:
    QvMFColor ambientColor{{0.2F, 0.2F, 0.2F}};
    // Kept: as dark as the ambient colour. Scenes are made with this default.
    QvMFColor diffuseColor{{0.2F, 0.2F, 0.2F}}, specularColor{{0, 0, 0}}, emissiveColor{{0, 0, 0}};
    QvMFFloat shininess{{0.2F}}, transparency{{0}};
    static constexpr auto kClass = declare(
        "Material", NodeKind::kProperty, field<&This::ambientColor>("ambientColor"),
        field<&This::diffuseColor>("diffuseColor"), field<&This::specularColor>("specularColor"),
        field<&This::emissiveColor>("emissiveColor"), field<&This::shininess>("shininess"),
        field<&This::transparency>("transparency"));

    void traverse(QvState& state) const override;
};

class QvMaterialBinding final : public BuiltIn<QvMaterialBinding> {
public:
    QvSFEnum value{Binding::DEFAULT};
    static constexpr auto kClass = declare("MaterialBinding", NodeKind::kProperty,
                                           field<&This::value>("value", &Binding::kEnumeration));

    void traverse(QvState& state) const override;
};

class QvTexture2 final : public BuiltIn<QvTexture2> {
public:
    enum Wrap : std::int32_t { REPEAT = 0, CLAMP = 1 };
    static constexpr Enumeration kWrap = {"Wrap", {{"REPEAT", REPEAT}, {"CLAMP", CLAMP}}};

    QvSFString filename{""};
    QvSFImage image;
    QvSFEnum wrapS{REPEAT}, wrapT{REPEAT};
    static constexpr auto kClass =
        declare("Texture2", NodeKind::kProperty, field<&This::filename>("filename"),
                field<&This::image>("image"), field<&This::wrapS>("wrapS", &kWrap),
                field<&This::wrapT>("wrapT", &kWrap));

    void traverse(QvState& state) const override;
};

class QvTexture2Transform final : public BuiltIn<QvTexture2Transform> {
public:
    QvSFVec2f translation{{0, 0}};
    QvSFFloat rotation{0};
    QvSFVec2f scaleFactor{{1, 1}}, center{{0, 0}};
    static constexpr auto kClass =
        declare("Texture2Transform", NodeKind::kProperty, field<&This::translation>("translation"),
                field<&This::rotation>("rotation"), field<&This::scaleFactor>("scaleFactor"),
                field<&This::center>("center"));

    void traverse(QvState& state) const override;
};

class QvTextureCoordinate2 final : public BuiltIn<QvTextureCoordinate2> {
public:
    QvMFVec2f point{{0, 0}};
    static constexpr auto kClass =
        declare("TextureCoordinate2", NodeKind::kProperty, field<&This::point>("point"));

    void traverse(QvState& state) const override;
};

class QvFontStyle final : public BuiltIn<QvFontStyle> {
public:
    enum Family : std::int32_t { SERIF = 0, SANS = 1, TYPEWRITER = 2 };
    static constexpr Enumeration kFamily = {
        "Fontfamily", {{"SERIF", SERIF}, {"SANS", SANS}, {"TYPEWRITER", TYPEWRITER}}};

    enum Style : std::int32_t { NONE = 0, BOLD = 1, ITALIC = 2 };
    static constexpr Enumeration kStyle = {"Fontstyle",
                                           {{"NONE", NONE}, {"BOLD", BOLD}, {"ITALIC", ITALIC}}};

    QvSFFloat size{10};
    QvSFEnum family{SERIF};
    QvSFBitMask style{NONE};
    static constexpr auto kClass =
        declare("FontStyle", NodeKind::kProperty, field<&This::size>("size"),
                field<&This::family>("family", &kFamily), field<&This::style>("style", &kStyle));

    void traverse(QvState& state) const override;
};

// ---- properties: lights and cameras

class QvDirectionalLight final : public BuiltIn<QvDirectionalLight> {
public:
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f direction{{0, 0, -1}};
    static constexpr auto kClass =
        declare("DirectionalLight", NodeKind::kProperty, field<&This::on>("on"),
                field<&This::intensity>("intensity"), field<&This::color>("color"),
                field<&This::direction>("direction"));

    void traverse(QvState& state) const override;
};

class QvPointLight final : public BuiltIn<QvPointLight> {
public:
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f location{{0, 0, 1}};
    static constexpr auto kClass =
        declare("PointLight", NodeKind::kProperty, field<&This::on>("on"),
                field<&This::intensity>("intensity"), field<&This::color>("color"),
                field<&This::location>("location"));

    void traverse(QvState& state) const override;
};

class QvSpotLight final : public BuiltIn<QvSpotLight> {
public:
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f location{{0, 0, 1}}, direction{{0, 0, -1}};
    QvSFFloat dropOffRate{0}, cutOffAngle{kQuarterPi};
    static constexpr auto kClass =
        declare("SpotLight", NodeKind::kProperty, field<&This::on>("on"),
                field<&This::intensity>("intensity"), field<&This::color>("color"),
                field<&This::location>("location"), field<&This::direction>("direction"),
                field<&This::dropOffRate>("dropOffRate"), field<&This::cutOffAngle>("cutOffAngle"));

    void traverse(QvState& state) const override;
};

class QvOrthographicCamera final : public BuiltIn<QvOrthographicCamera> {
public:
    QvSFVec3f position{{0, 0, 1}};
    QvSFRotation orientation{kNoRotation};
    QvSFFloat focalDistance{5}, height{2}, aspectRatio{1}, nearDistance{1}, farDistance{10};
    static constexpr auto kClass = declare(
        "OrthographicCamera", NodeKind::kProperty, field<&This::position>("position"),
        field<&This::orientation>("orientation"), field<&This::focalDistance>("focalDistance"),
        field<&This::height>("height"), field<&This::aspectRatio>("aspectRatio"),
        field<&This::nearDistance>("nearDistance"), field<&This::farDistance>("farDistance"));

    void traverse(QvState& state) const override;
};

class QvPerspectiveCamera final : public BuiltIn<QvPerspectiveCamera> {
public:
    QvSFVec3f position{{0, 0, 1}};
    QvSFRotation orientation{kNoRotation};
    QvSFFloat focalDistance{5}, heightAngle{kQuarterPi}, aspectRatio{1}, nearDistance{1};
    QvSFFloat farDistance{10};
    static constexpr auto kClass = declare(
        "PerspectiveCamera", NodeKind::kProperty, field<&This::position>("position"),
        field<&This::orientation>("orientation"), field<&This::focalDistance>("focalDistance"),
        field<&This::heightAngle>("heightAngle"), field<&This::aspectRatio>("aspectRatio"),
        field<&This::nearDistance>("nearDistance"), field<&This::farDistance>("farDistance"));

    void traverse(QvState& state) const override;
};

// ---- properties: transforms

class QvMatrixTransform final : public BuiltIn<QvMatrixTransform> {
public:
    QvSFMatrix matrix{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    static constexpr auto kClass =
        declare("MatrixTransform", NodeKind::kProperty, field<&This::matrix>("matrix"));

    void traverse(QvState& state) const override;
};

class QvRotation final : public BuiltIn<QvRotation> {
public:
    QvSFRotation rotation{kNoRotation};
    static constexpr auto kClass =
        declare("Rotation", NodeKind::kProperty, field<&This::rotation>("rotation"));

    void traverse(QvState& state) const override;
};

class QvScale final : public BuiltIn<QvScale> {
public:
    QvSFVec3f scaleFactor{{1, 1, 1}};
    static constexpr auto kClass =
        declare("Scale", NodeKind::kProperty, field<&This::scaleFactor>("scaleFactor"));

    void traverse(QvState& state) const override;
};

class QvTransform final : public BuiltIn<QvTransform> {
public:
    QvSFVec3f translation{{0, 0, 0}};
    QvSFRotation rotation{kNoRotation};
    QvSFVec3f scaleFactor{{1, 1, 1}};
    QvSFRotation scaleOrientation{kNoRotation};
    QvSFVec3f center{{0, 0, 0}};
    static constexpr auto kClass =
        declare("Transform", NodeKind::kProperty, field<&This::translation>("translation"),
                field<&This::rotation>("rotation"), field<&This::scaleFactor>("scaleFactor"),
                field<&This::scaleOrientation>("scaleOrientation"), field<&This::center>("center"));

    void traverse(QvState& state) const override;
};

class QvTranslation final : public BuiltIn<QvTranslation> {
public:
    QvSFVec3f translation{{0, 0, 0}};
    static constexpr auto kClass =
        declare("Translation", NodeKind::kProperty, field<&This::translation>("translation"));

    void traverse(QvState& state) const override;
};

// ---- groups (besides QvGroup and QvUnknownNode)

class QvLevelOfDetail final : public BuiltIn<QvLevelOfDetail, QvGroup> {
public:
    QvMFFloat range{{0}};
    QvSFVec3f center{{0, 0, 0}};
    static constexpr auto kClass =
        declare("LevelOfDetail", NodeKind::kGroup, field<&This::range>("range"),
                field<&This::center>("center"));

    void traverse(QvState& state) const override;
};

class QvSeparator final : public BuiltIn<QvSeparator, QvGroup> {
public:
    enum CullEnabled : std::int32_t { OFF = 0, ON = 1, AUTO = 2 };
    static constexpr Enumeration kCullEnabled = {"CullEnabled",
                                                 {{"ON", ON}, {"OFF", OFF}, {"AUTO", AUTO}}};

    QvSFEnum renderCulling{AUTO};
    static constexpr auto kClass = declare(
        "Separator", NodeKind::kGroup, field<&This::renderCulling>("renderCulling", &kCullEnabled));

    void traverse(QvState& state) const override;
};

class QvSwitch final : public BuiltIn<QvSwitch, QvGroup> {
public:
    QvSFLong whichChild{-1};
    static constexpr auto kClass =
        declare("Switch", NodeKind::kGroup, field<&This::whichChild>("whichChild"));

    void traverse(QvState& state) const override;
};

class QvTransformSeparator final : public BuiltIn<QvTransformSeparator, QvGroup> {
public:
    static constexpr auto kClass = declare("TransformSeparator", NodeKind::kGroup);

    void traverse(QvState& state) const override;
};

class QvWWWAnchor final : public BuiltIn<QvWWWAnchor, QvGroup> {
public:
    enum Map : std::int32_t { NONE = 0, POINT = 1 };
    static constexpr Enumeration kMap = {"Map", {{"NONE", NONE}, {"POINT", POINT}}};

    QvSFString name{""}, description{""};
    QvSFEnum map{NONE};
    static constexpr auto kClass =
        declare("WWWAnchor", NodeKind::kGroup, field<&This::name>("name"),
                field<&This::description>("description"), field<&This::map>("map", &kMap));

    void traverse(QvState& state) const override;
};

class QvWWWInline final : public BuiltIn<QvWWWInline, QvGroup> {
public:
    QvSFString name{""};
    QvSFVec3f bboxSize{{0, 0, 0}}, bboxCenter{{0, 0, 0}};
    static constexpr auto kClass =
        declare("WWWInline", NodeKind::kShape, field<&This::name>("name"),
                field<&This::bboxSize>("bboxSize"), field<&This::bboxCenter>("bboxCenter"));

    void traverse(QvState& state) const override;
};

// ---- others

/// Text for people who read the file; the walk ignores it.
class QvInfo final : public BuiltIn<QvInfo> {
public:
    QvSFString string{"<Undefined info>"};
    static constexpr auto kClass = declare("Info", NodeKind::kInfo, field<&This::string>("string"));

    void traverse(QvState& state) const override;
};

} // namespace meshcast

#pragma GCC visibility pop
