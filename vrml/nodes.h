#pragma once

#include "vrml/field_info.h"
#include "vrml/fields.h"
#include "vrml/group.h"
#include "vrml/node.h"

#include <array>
#include <cstdint>
#include <string_view>

// The node classes of the scene language: their fields in their order with their defaults, and
// their enumerations. To add a class, declare it here, enter it in the catalogue, and define its
// traverse. The sections say what a class does in the walk: shapes are geometry, properties are in
// force for the shapes after them, groups hold children.

namespace meshcast {

inline constexpr float kQuarterPi = 0.7853982F;
inline constexpr std::array<float, 4> kNoRotation = {0, 0, 1, 0};

// ---- shapes

class QvAsciiText final : public BuiltIn<QvAsciiText> {
public:
    static constexpr std::string_view kClassName = "AsciiText";
    enum Justification : std::int32_t { LEFT = 0, CENTER = 1, RIGHT = 2 };
    static constexpr EnumWord kJustificationWords[] = {
        {"LEFT", LEFT}, {"CENTER", CENTER}, {"RIGHT", RIGHT}};
    static constexpr Enumeration kJustification = {"Justification", kJustificationWords};

    QvSFString string{""};
    QvSFFloat spacing{1};
    QvSFEnum justification{kJustification, LEFT};
    QvSFFloat width{0};
    static constexpr FieldInfo kFields[] = {
        field<&QvAsciiText::string>("string"), field<&QvAsciiText::spacing>("spacing"),
        field<&QvAsciiText::justification>("justification", &kJustification),
        field<&QvAsciiText::width>("width")};

    void traverse(QvState& state) const override;
};

class QvCone final : public BuiltIn<QvCone> {
public:
    static constexpr std::string_view kClassName = "Cone";
    enum Part : std::int32_t { SIDES = 1, BOTTOM = 2, ALL = 3 };
    static constexpr EnumWord kPartWords[] = {{"SIDES", SIDES}, {"BOTTOM", BOTTOM}, {"ALL", ALL}};
    static constexpr Enumeration kPart = {"Part", kPartWords};

    QvSFBitMask parts{kPart, ALL};
    QvSFFloat bottomRadius{1};
    QvSFFloat height{2};
    static constexpr FieldInfo kFields[] = {field<&QvCone::parts>("parts", &kPart),
                                            field<&QvCone::bottomRadius>("bottomRadius"),
                                            field<&QvCone::height>("height")};

    void traverse(QvState& state) const override;
};

class QvCube final : public BuiltIn<QvCube> {
public:
    static constexpr std::string_view kClassName = "Cube";
    QvSFFloat width{2};
    QvSFFloat height{2};
    QvSFFloat depth{2};
    static constexpr FieldInfo kFields[] = {field<&QvCube::width>("width"),
                                            field<&QvCube::height>("height"),
                                            field<&QvCube::depth>("depth")};

    void traverse(QvState& state) const override;
};

class QvCylinder final : public BuiltIn<QvCylinder> {
public:
    static constexpr std::string_view kClassName = "Cylinder";
    enum Part : std::int32_t { SIDES = 1, TOP = 2, BOTTOM = 4, ALL = 7 };
    static constexpr EnumWord kPartWords[] = {
        {"SIDES", SIDES}, {"TOP", TOP}, {"BOTTOM", BOTTOM}, {"ALL", ALL}};
    static constexpr Enumeration kPart = {"Part", kPartWords};

    QvSFBitMask parts{kPart, ALL};
    QvSFFloat radius{1};
    QvSFFloat height{2};
    static constexpr FieldInfo kFields[] = {field<&QvCylinder::parts>("parts", &kPart),
                                            field<&QvCylinder::radius>("radius"),
                                            field<&QvCylinder::height>("height")};

    void traverse(QvState& state) const override;
};

class QvIndexedFaceSet final : public BuiltIn<QvIndexedFaceSet> {
public:
    static constexpr std::string_view kClassName = "IndexedFaceSet";
    QvMFLong coordIndex{{0}};
    QvMFLong materialIndex{{-1}};
    QvMFLong normalIndex{{-1}};
    QvMFLong textureCoordIndex{{-1}};
    static constexpr FieldInfo kFields[] = {
        field<&QvIndexedFaceSet::coordIndex>("coordIndex"),
        field<&QvIndexedFaceSet::materialIndex>("materialIndex"),
        field<&QvIndexedFaceSet::normalIndex>("normalIndex"),
        field<&QvIndexedFaceSet::textureCoordIndex>("textureCoordIndex")};

    void traverse(QvState& state) const override;
};

class QvIndexedLineSet final : public BuiltIn<QvIndexedLineSet> {
public:
    static constexpr std::string_view kClassName = "IndexedLineSet";
    QvMFLong coordIndex{{0}};
    QvMFLong materialIndex{{-1}};
    QvMFLong normalIndex{{-1}};
    QvMFLong textureCoordIndex{{-1}};
    static constexpr FieldInfo kFields[] = {
        field<&QvIndexedLineSet::coordIndex>("coordIndex"),
        field<&QvIndexedLineSet::materialIndex>("materialIndex"),
        field<&QvIndexedLineSet::normalIndex>("normalIndex"),
        field<&QvIndexedLineSet::textureCoordIndex>("textureCoordIndex")};

    void traverse(QvState& state) const override;
};

class QvPointSet final : public BuiltIn<QvPointSet> {
public:
    static constexpr std::string_view kClassName = "PointSet";
    QvSFLong startIndex{0};
    QvSFLong numPoints{-1};
    static constexpr FieldInfo kFields[] = {field<&QvPointSet::startIndex>("startIndex"),
                                            field<&QvPointSet::numPoints>("numPoints")};

    void traverse(QvState& state) const override;
};

class QvSphere final : public BuiltIn<QvSphere> {
public:
    static constexpr std::string_view kClassName = "Sphere";
    QvSFFloat radius{1};
    static constexpr FieldInfo kFields[] = {field<&QvSphere::radius>("radius")};

    void traverse(QvState& state) const override;
};

// ---- properties: geometry

class QvCoordinate3 final : public BuiltIn<QvCoordinate3> {
public:
    static constexpr std::string_view kClassName = "Coordinate3";
    QvMFVec3f point{{0, 0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvCoordinate3::point>("point")};

    void traverse(QvState& state) const override;
};

class QvNormal final : public BuiltIn<QvNormal> {
public:
    static constexpr std::string_view kClassName = "Normal";
    QvMFVec3f vector{{0, 0, 1}};
    static constexpr FieldInfo kFields[] = {field<&QvNormal::vector>("vector")};

    void traverse(QvState& state) const override;
};

/// How the values of a property are spread over a shape.
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
    static constexpr EnumWord kWords[] = {
        {"DEFAULT", DEFAULT},
        {"NONE", NONE},
        {"OVERALL", OVERALL},
        {"PER_PART", PER_PART},
        {"PER_PART_INDEXED", PER_PART_INDEXED},
        {"PER_FACE", PER_FACE},
        {"PER_FACE_INDEXED", PER_FACE_INDEXED},
        {"PER_VERTEX", PER_VERTEX},
        {"PER_VERTEX_INDEXED", PER_VERTEX_INDEXED},
    };
    static constexpr Enumeration kEnumeration = {"Binding", kWords};
};

class QvNormalBinding final : public BuiltIn<QvNormalBinding> {
public:
    static constexpr std::string_view kClassName = "NormalBinding";
    QvSFEnum value{Binding::kEnumeration, Binding::DEFAULT};
    static constexpr FieldInfo kFields[] = {
        field<&QvNormalBinding::value>("value", &Binding::kEnumeration)};

    void traverse(QvState& state) const override;
};

class QvShapeHints final : public BuiltIn<QvShapeHints> {
public:
    static constexpr std::string_view kClassName = "ShapeHints";
    enum VertexOrdering : std::int32_t {
        UNKNOWN_ORDERING = 0,
        CLOCKWISE = 1,
        COUNTERCLOCKWISE = 2
    };
    static constexpr EnumWord kVertexOrderingWords[] = {{"UNKNOWN_ORDERING", UNKNOWN_ORDERING},
                                                        {"CLOCKWISE", CLOCKWISE},
                                                        {"COUNTERCLOCKWISE", COUNTERCLOCKWISE}};
    static constexpr Enumeration kVertexOrdering = {"VertexOrdering", kVertexOrderingWords};

    enum ShapeType : std::int32_t { UNKNOWN_SHAPE_TYPE = 0, SOLID = 1 };
    static constexpr EnumWord kShapeTypeWords[] = {{"UNKNOWN_SHAPE_TYPE", UNKNOWN_SHAPE_TYPE},
                                                   {"SOLID", SOLID}};
    static constexpr Enumeration kShapeType = {"ShapeType", kShapeTypeWords};

    enum FaceType : std::int32_t { UNKNOWN_FACE_TYPE = 0, CONVEX = 1 };
    static constexpr EnumWord kFaceTypeWords[] = {{"UNKNOWN_FACE_TYPE", UNKNOWN_FACE_TYPE},
                                                  {"CONVEX", CONVEX}};
    static constexpr Enumeration kFaceType = {"FaceType", kFaceTypeWords};

    QvSFEnum vertexOrdering{kVertexOrdering, UNKNOWN_ORDERING};
    QvSFEnum shapeType{kShapeType, UNKNOWN_SHAPE_TYPE};
    QvSFEnum faceType{kFaceType, CONVEX};
    QvSFFloat creaseAngle{0.5F};
    static constexpr FieldInfo kFields[] = {
        field<&QvShapeHints::vertexOrdering>("vertexOrdering", &kVertexOrdering),
        field<&QvShapeHints::shapeType>("shapeType", &kShapeType),
        field<&QvShapeHints::faceType>("faceType", &kFaceType),
        field<&QvShapeHints::creaseAngle>("creaseAngle")};

    void traverse(QvState& state) const override;
};

// ---- properties: appearance

class QvMaterial final : public BuiltIn<QvMaterial> {
public:
    static constexpr std::string_view kClassName = "Material";
    QvMFColor ambientColor{{0.2F, 0.2F, 0.2F}};
    // As dark as the ambient colour: kept, scenes are looked at with this default.
    QvMFColor diffuseColor{{0.2F, 0.2F, 0.2F}};
    QvMFColor specularColor{{0, 0, 0}};
    QvMFColor emissiveColor{{0, 0, 0}};
    QvMFFloat shininess{{0.2F}};
    QvMFFloat transparency{{0}};
    static constexpr FieldInfo kFields[] = {field<&QvMaterial::ambientColor>("ambientColor"),
                                            field<&QvMaterial::diffuseColor>("diffuseColor"),
                                            field<&QvMaterial::specularColor>("specularColor"),
                                            field<&QvMaterial::emissiveColor>("emissiveColor"),
                                            field<&QvMaterial::shininess>("shininess"),
                                            field<&QvMaterial::transparency>("transparency")};

    void traverse(QvState& state) const override;
};

class QvMaterialBinding final : public BuiltIn<QvMaterialBinding> {
public:
    static constexpr std::string_view kClassName = "MaterialBinding";
    QvSFEnum value{Binding::kEnumeration, Binding::DEFAULT};
    static constexpr FieldInfo kFields[] = {
        field<&QvMaterialBinding::value>("value", &Binding::kEnumeration)};

    void traverse(QvState& state) const override;
};

class QvTexture2 final : public BuiltIn<QvTexture2> {
public:
    static constexpr std::string_view kClassName = "Texture2";
    enum Wrap : std::int32_t { REPEAT = 0, CLAMP = 1 };
    static constexpr EnumWord kWrapWords[] = {{"REPEAT", REPEAT}, {"CLAMP", CLAMP}};
    static constexpr Enumeration kWrap = {"Wrap", kWrapWords};

    QvSFString filename{""};
    QvSFImage image;
    QvSFEnum wrapS{kWrap, REPEAT};
    QvSFEnum wrapT{kWrap, REPEAT};
    static constexpr FieldInfo kFields[] = {
        field<&QvTexture2::filename>("filename"), field<&QvTexture2::image>("image"),
        field<&QvTexture2::wrapS>("wrapS", &kWrap), field<&QvTexture2::wrapT>("wrapT", &kWrap)};

    void traverse(QvState& state) const override;
};

class QvTexture2Transform final : public BuiltIn<QvTexture2Transform> {
public:
    static constexpr std::string_view kClassName = "Texture2Transform";
    QvSFVec2f translation{{0, 0}};
    QvSFFloat rotation{0};
    QvSFVec2f scaleFactor{{1, 1}};
    QvSFVec2f center{{0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvTexture2Transform::translation>("translation"),
                                            field<&QvTexture2Transform::rotation>("rotation"),
                                            field<&QvTexture2Transform::scaleFactor>("scaleFactor"),
                                            field<&QvTexture2Transform::center>("center")};

    void traverse(QvState& state) const override;
};

class QvTextureCoordinate2 final : public BuiltIn<QvTextureCoordinate2> {
public:
    static constexpr std::string_view kClassName = "TextureCoordinate2";
    QvMFVec2f point{{0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvTextureCoordinate2::point>("point")};

    void traverse(QvState& state) const override;
};

class QvFontStyle final : public BuiltIn<QvFontStyle> {
public:
    static constexpr std::string_view kClassName = "FontStyle";
    enum Family : std::int32_t { SERIF = 0, SANS = 1, TYPEWRITER = 2 };
    static constexpr EnumWord kFamilyWords[] = {
        {"SERIF", SERIF}, {"SANS", SANS}, {"TYPEWRITER", TYPEWRITER}};
    static constexpr Enumeration kFamily = {"Fontfamily", kFamilyWords};

    enum Style : std::int32_t { NONE = 0, BOLD = 1, ITALIC = 2 };
    static constexpr EnumWord kStyleWords[] = {{"NONE", NONE}, {"BOLD", BOLD}, {"ITALIC", ITALIC}};
    static constexpr Enumeration kStyle = {"Fontstyle", kStyleWords};

    QvSFFloat size{10};
    QvSFEnum family{kFamily, SERIF};
    QvSFBitMask style{kStyle, NONE};
    static constexpr FieldInfo kFields[] = {field<&QvFontStyle::size>("size"),
                                            field<&QvFontStyle::family>("family", &kFamily),
                                            field<&QvFontStyle::style>("style", &kStyle)};

    void traverse(QvState& state) const override;
};

// ---- properties: lights and cameras

class QvDirectionalLight final : public BuiltIn<QvDirectionalLight> {
public:
    static constexpr std::string_view kClassName = "DirectionalLight";
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f direction{{0, 0, -1}};
    static constexpr FieldInfo kFields[] = {field<&QvDirectionalLight::on>("on"),
                                            field<&QvDirectionalLight::intensity>("intensity"),
                                            field<&QvDirectionalLight::color>("color"),
                                            field<&QvDirectionalLight::direction>("direction")};

    void traverse(QvState& state) const override;
};

class QvPointLight final : public BuiltIn<QvPointLight> {
public:
    static constexpr std::string_view kClassName = "PointLight";
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f location{{0, 0, 1}};
    static constexpr FieldInfo kFields[] = {
        field<&QvPointLight::on>("on"), field<&QvPointLight::intensity>("intensity"),
        field<&QvPointLight::color>("color"), field<&QvPointLight::location>("location")};

    void traverse(QvState& state) const override;
};

class QvSpotLight final : public BuiltIn<QvSpotLight> {
public:
    static constexpr std::string_view kClassName = "SpotLight";
    QvSFBool on{true};
    QvSFFloat intensity{1};
    QvSFColor color{{1, 1, 1}};
    QvSFVec3f location{{0, 0, 1}};
    QvSFVec3f direction{{0, 0, -1}};
    QvSFFloat dropOffRate{0};
    QvSFFloat cutOffAngle{kQuarterPi};
    static constexpr FieldInfo kFields[] = {field<&QvSpotLight::on>("on"),
                                            field<&QvSpotLight::intensity>("intensity"),
                                            field<&QvSpotLight::color>("color"),
                                            field<&QvSpotLight::location>("location"),
                                            field<&QvSpotLight::direction>("direction"),
                                            field<&QvSpotLight::dropOffRate>("dropOffRate"),
                                            field<&QvSpotLight::cutOffAngle>("cutOffAngle")};

    void traverse(QvState& state) const override;
};

class QvOrthographicCamera final : public BuiltIn<QvOrthographicCamera> {
public:
    static constexpr std::string_view kClassName = "OrthographicCamera";
    QvSFVec3f position{{0, 0, 1}};
    QvSFRotation orientation{kNoRotation};
    QvSFFloat focalDistance{5};
    QvSFFloat height{2};
    QvSFFloat aspectRatio{1};
    QvSFFloat nearDistance{1};
    QvSFFloat farDistance{10};
    static constexpr FieldInfo kFields[] = {
        field<&QvOrthographicCamera::position>("position"),
        field<&QvOrthographicCamera::orientation>("orientation"),
        field<&QvOrthographicCamera::focalDistance>("focalDistance"),
        field<&QvOrthographicCamera::height>("height"),
        field<&QvOrthographicCamera::aspectRatio>("aspectRatio"),
        field<&QvOrthographicCamera::nearDistance>("nearDistance"),
        field<&QvOrthographicCamera::farDistance>("farDistance")};

    void traverse(QvState& state) const override;
};

class QvPerspectiveCamera final : public BuiltIn<QvPerspectiveCamera> {
public:
    static constexpr std::string_view kClassName = "PerspectiveCamera";
    QvSFVec3f position{{0, 0, 1}};
    QvSFRotation orientation{kNoRotation};
    QvSFFloat focalDistance{5};
    QvSFFloat heightAngle{kQuarterPi};
    QvSFFloat aspectRatio{1};
    QvSFFloat nearDistance{1};
    QvSFFloat farDistance{10};
    static constexpr FieldInfo kFields[] = {
        field<&QvPerspectiveCamera::position>("position"),
        field<&QvPerspectiveCamera::orientation>("orientation"),
        field<&QvPerspectiveCamera::focalDistance>("focalDistance"),
        field<&QvPerspectiveCamera::heightAngle>("heightAngle"),
        field<&QvPerspectiveCamera::aspectRatio>("aspectRatio"),
        field<&QvPerspectiveCamera::nearDistance>("nearDistance"),
        field<&QvPerspectiveCamera::farDistance>("farDistance")};

    void traverse(QvState& state) const override;
};

// ---- properties: transforms

class QvMatrixTransform final : public BuiltIn<QvMatrixTransform> {
public:
    static constexpr std::string_view kClassName = "MatrixTransform";
    QvSFMatrix matrix{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    static constexpr FieldInfo kFields[] = {field<&QvMatrixTransform::matrix>("matrix")};

    void traverse(QvState& state) const override;
};

class QvRotation final : public BuiltIn<QvRotation> {
public:
    static constexpr std::string_view kClassName = "Rotation";
    QvSFRotation rotation{kNoRotation};
    static constexpr FieldInfo kFields[] = {field<&QvRotation::rotation>("rotation")};

    void traverse(QvState& state) const override;
};

class QvScale final : public BuiltIn<QvScale> {
public:
    static constexpr std::string_view kClassName = "Scale";
    QvSFVec3f scaleFactor{{1, 1, 1}};
    static constexpr FieldInfo kFields[] = {field<&QvScale::scaleFactor>("scaleFactor")};

    void traverse(QvState& state) const override;
};

class QvTransform final : public BuiltIn<QvTransform> {
public:
    static constexpr std::string_view kClassName = "Transform";
    QvSFVec3f translation{{0, 0, 0}};
    QvSFRotation rotation{kNoRotation};
    QvSFVec3f scaleFactor{{1, 1, 1}};
    QvSFRotation scaleOrientation{kNoRotation};
    QvSFVec3f center{{0, 0, 0}};
    static constexpr FieldInfo kFields[] = {
        field<&QvTransform::translation>("translation"), field<&QvTransform::rotation>("rotation"),
        field<&QvTransform::scaleFactor>("scaleFactor"),
        field<&QvTransform::scaleOrientation>("scaleOrientation"),
        field<&QvTransform::center>("center")};

    void traverse(QvState& state) const override;
};

class QvTranslation final : public BuiltIn<QvTranslation> {
public:
    static constexpr std::string_view kClassName = "Translation";
    QvSFVec3f translation{{0, 0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvTranslation::translation>("translation")};

    void traverse(QvState& state) const override;
};

// ---- groups (besides QvGroup and QvUnknownNode)

class QvLevelOfDetail final : public BuiltIn<QvLevelOfDetail, QvGroup> {
public:
    static constexpr std::string_view kClassName = "LevelOfDetail";
    QvMFFloat range{{0}};
    QvSFVec3f center{{0, 0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvLevelOfDetail::range>("range"),
                                            field<&QvLevelOfDetail::center>("center")};

    void traverse(QvState& state) const override;
};

class QvSeparator final : public BuiltIn<QvSeparator, QvGroup> {
public:
    static constexpr std::string_view kClassName = "Separator";
    enum CullEnabled : std::int32_t { OFF = 0, ON = 1, AUTO = 2 };
    static constexpr EnumWord kCullEnabledWords[] = {{"ON", ON}, {"OFF", OFF}, {"AUTO", AUTO}};
    static constexpr Enumeration kCullEnabled = {"CullEnabled", kCullEnabledWords};

    QvSFEnum renderCulling{kCullEnabled, AUTO};
    static constexpr FieldInfo kFields[] = {
        field<&QvSeparator::renderCulling>("renderCulling", &kCullEnabled)};

    void traverse(QvState& state) const override;
};

class QvSwitch final : public BuiltIn<QvSwitch, QvGroup> {
public:
    static constexpr std::string_view kClassName = "Switch";
    QvSFLong whichChild{-1};
    static constexpr FieldInfo kFields[] = {field<&QvSwitch::whichChild>("whichChild")};

    void traverse(QvState& state) const override;
};

class QvTransformSeparator final : public BuiltIn<QvTransformSeparator, QvGroup> {
public:
    static constexpr std::string_view kClassName = "TransformSeparator";
    static constexpr std::array<FieldInfo, 0> kFields{};

    void traverse(QvState& state) const override;
};

class QvWWWAnchor final : public BuiltIn<QvWWWAnchor, QvGroup> {
public:
    static constexpr std::string_view kClassName = "WWWAnchor";
    enum Map : std::int32_t { NONE = 0, POINT = 1 };
    static constexpr EnumWord kMapWords[] = {{"NONE", NONE}, {"POINT", POINT}};
    static constexpr Enumeration kMap = {"Map", kMapWords};

    QvSFString name{""};
    QvSFString description{""};
    QvSFEnum map{kMap, NONE};
    static constexpr FieldInfo kFields[] = {field<&QvWWWAnchor::name>("name"),
                                            field<&QvWWWAnchor::description>("description"),
                                            field<&QvWWWAnchor::map>("map", &kMap)};

    void traverse(QvState& state) const override;
};

class QvWWWInline final : public BuiltIn<QvWWWInline, QvGroup> {
public:
    static constexpr std::string_view kClassName = "WWWInline";
    QvSFString name{""};
    QvSFVec3f bboxSize{{0, 0, 0}};
    QvSFVec3f bboxCenter{{0, 0, 0}};
    static constexpr FieldInfo kFields[] = {field<&QvWWWInline::name>("name"),
                                            field<&QvWWWInline::bboxSize>("bboxSize"),
                                            field<&QvWWWInline::bboxCenter>("bboxCenter")};

    void traverse(QvState& state) const override;
};

// ---- others

/// Text for readers of the file; nothing to the walk.
class QvInfo final : public BuiltIn<QvInfo> {
public:
    static constexpr std::string_view kClassName = "Info";
    QvSFString string{"<Undefined info>"};
    static constexpr FieldInfo kFields[] = {field<&QvInfo::string>("string")};

    void traverse(QvState& state) const override;
};

} // namespace meshcast
