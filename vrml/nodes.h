#pragma once

#include "vrml/field_table.h"
#include "vrml/fields.h"
#include "vrml/group.h"
#include "vrml/node.h"

#include <array>
#include <cstdint>

// The catalogue: every node class of the scene language, its fields in their order with their
// defaults, and its enumerations. A class of the name QvCube is read for "Cube". To add a class,
// declare it here, name it in the registry, and define its traverse. What a class does in the walk
// is told by its section: shapes produce geometry, properties are in force for the shapes behind
// them, groups hold children.

namespace meshcast {

inline constexpr float kQuarterPi = 0.7853982F;
inline constexpr std::array<float, 4> kNoRotation = {0, 0, 1, 0};

// ---- shapes

class QvAsciiText final : public BuiltIn<QvAsciiText> {
public:
    enum Justification : std::int32_t { LEFT = 0, CENTER = 1, RIGHT = 2 };
    static constexpr EnumWord kJustificationWords[] = {
        {"LEFT", LEFT}, {"CENTER", CENTER}, {"RIGHT", RIGHT}};
    static constexpr Enumeration kJustification = {"Justification", kJustificationWords};

    QvSFString string{*this, "string", ""};
    QvSFFloat spacing{*this, "spacing", 1};
    QvSFEnum justification{*this, "justification", kJustification, LEFT};
    QvSFFloat width{*this, "width", 0};

    void traverse(QvState& state) override;
};

class QvCone final : public BuiltIn<QvCone> {
public:
    enum Part : std::int32_t { SIDES = 1, BOTTOM = 2, ALL = 3 };
    static constexpr EnumWord kPartWords[] = {{"SIDES", SIDES}, {"BOTTOM", BOTTOM}, {"ALL", ALL}};
    static constexpr Enumeration kPart = {"Part", kPartWords};

    QvSFBitMask parts{*this, "parts", kPart, ALL};
    QvSFFloat bottomRadius{*this, "bottomRadius", 1};
    QvSFFloat height{*this, "height", 2};

    void traverse(QvState& state) override;
};

class QvCube final : public BuiltIn<QvCube> {
public:
    QvSFFloat width{*this, "width", 2};
    QvSFFloat height{*this, "height", 2};
    QvSFFloat depth{*this, "depth", 2};

    void traverse(QvState& state) override;
};

class QvCylinder final : public BuiltIn<QvCylinder> {
public:
    enum Part : std::int32_t { SIDES = 1, TOP = 2, BOTTOM = 4, ALL = 7 };
    static constexpr EnumWord kPartWords[] = {
        {"SIDES", SIDES}, {"TOP", TOP}, {"BOTTOM", BOTTOM}, {"ALL", ALL}};
    static constexpr Enumeration kPart = {"Part", kPartWords};

    QvSFBitMask parts{*this, "parts", kPart, ALL};
    QvSFFloat radius{*this, "radius", 1};
    QvSFFloat height{*this, "height", 2};

    void traverse(QvState& state) override;
};

class QvIndexedFaceSet final : public BuiltIn<QvIndexedFaceSet> {
public:
    QvMFLong coordIndex{*this, "coordIndex", {0}};
    QvMFLong materialIndex{*this, "materialIndex", {-1}};
    QvMFLong normalIndex{*this, "normalIndex", {-1}};
    QvMFLong textureCoordIndex{*this, "textureCoordIndex", {-1}};

    void traverse(QvState& state) override;
};

class QvIndexedLineSet final : public BuiltIn<QvIndexedLineSet> {
public:
    QvMFLong coordIndex{*this, "coordIndex", {0}};
    QvMFLong materialIndex{*this, "materialIndex", {-1}};
    QvMFLong normalIndex{*this, "normalIndex", {-1}};
    QvMFLong textureCoordIndex{*this, "textureCoordIndex", {-1}};

    void traverse(QvState& state) override;
};

class QvPointSet final : public BuiltIn<QvPointSet> {
public:
    QvSFLong startIndex{*this, "startIndex", 0};
    QvSFLong numPoints{*this, "numPoints", -1};

    void traverse(QvState& state) override;
};

class QvSphere final : public BuiltIn<QvSphere> {
public:
    QvSFFloat radius{*this, "radius", 1};

    void traverse(QvState& state) override;
};

// ---- properties: geometry

class QvCoordinate3 final : public BuiltIn<QvCoordinate3> {
public:
    QvMFVec3f point{*this, "point", {0, 0, 0}};

    void traverse(QvState& state) override;
};

class QvNormal final : public BuiltIn<QvNormal> {
public:
    QvMFVec3f vector{*this, "vector", {0, 0, 1}};

    void traverse(QvState& state) override;
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
    QvSFEnum value{*this, "value", Binding::kEnumeration, Binding::DEFAULT};

    void traverse(QvState& state) override;
};

class QvShapeHints final : public BuiltIn<QvShapeHints> {
public:
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

    QvSFEnum vertexOrdering{*this, "vertexOrdering", kVertexOrdering, UNKNOWN_ORDERING};
    QvSFEnum shapeType{*this, "shapeType", kShapeType, UNKNOWN_SHAPE_TYPE};
    QvSFEnum faceType{*this, "faceType", kFaceType, CONVEX};
    QvSFFloat creaseAngle{*this, "creaseAngle", 0.5F};

    void traverse(QvState& state) override;
};

// ---- properties: appearance

class QvMaterial final : public BuiltIn<QvMaterial> {
public:
    QvMFColor ambientColor{*this, "ambientColor", {0.2F, 0.2F, 0.2F}};
    // As dark as the ambient colour: kept, scenes are looked at with this default.
    QvMFColor diffuseColor{*this, "diffuseColor", {0.2F, 0.2F, 0.2F}};
    QvMFColor specularColor{*this, "specularColor", {0, 0, 0}};
    QvMFColor emissiveColor{*this, "emissiveColor", {0, 0, 0}};
    QvMFFloat shininess{*this, "shininess", {0.2F}};
    QvMFFloat transparency{*this, "transparency", {0}};

    void traverse(QvState& state) override;
};

class QvMaterialBinding final : public BuiltIn<QvMaterialBinding> {
public:
    QvSFEnum value{*this, "value", Binding::kEnumeration, Binding::DEFAULT};

    void traverse(QvState& state) override;
};

class QvTexture2 final : public BuiltIn<QvTexture2> {
public:
    enum Wrap : std::int32_t { REPEAT = 0, CLAMP = 1 };
    static constexpr EnumWord kWrapWords[] = {{"REPEAT", REPEAT}, {"CLAMP", CLAMP}};
    static constexpr Enumeration kWrap = {"Wrap", kWrapWords};

    QvSFString filename{*this, "filename", ""};
    QvSFImage image{*this, "image"};
    QvSFEnum wrapS{*this, "wrapS", kWrap, REPEAT};
    QvSFEnum wrapT{*this, "wrapT", kWrap, REPEAT};

    void traverse(QvState& state) override;
};

class QvTexture2Transform final : public BuiltIn<QvTexture2Transform> {
public:
    QvSFVec2f translation{*this, "translation", {0, 0}};
    QvSFFloat rotation{*this, "rotation", 0};
    QvSFVec2f scaleFactor{*this, "scaleFactor", {1, 1}};
    QvSFVec2f center{*this, "center", {0, 0}};

    void traverse(QvState& state) override;
};

class QvTextureCoordinate2 final : public BuiltIn<QvTextureCoordinate2> {
public:
    QvMFVec2f point{*this, "point", {0, 0}};

    void traverse(QvState& state) override;
};

class QvFontStyle final : public BuiltIn<QvFontStyle> {
public:
    enum Family : std::int32_t { SERIF = 0, SANS = 1, TYPEWRITER = 2 };
    static constexpr EnumWord kFamilyWords[] = {
        {"SERIF", SERIF}, {"SANS", SANS}, {"TYPEWRITER", TYPEWRITER}};
    static constexpr Enumeration kFamily = {"Fontfamily", kFamilyWords};

    enum Style : std::int32_t { NONE = 0, BOLD = 1, ITALIC = 2 };
    static constexpr EnumWord kStyleWords[] = {{"NONE", NONE}, {"BOLD", BOLD}, {"ITALIC", ITALIC}};
    static constexpr Enumeration kStyle = {"Fontstyle", kStyleWords};

    QvSFFloat size{*this, "size", 10};
    QvSFEnum family{*this, "family", kFamily, SERIF};
    QvSFBitMask style{*this, "style", kStyle, NONE};

    void traverse(QvState& state) override;
};

// ---- properties: lights and cameras

class QvDirectionalLight final : public BuiltIn<QvDirectionalLight> {
public:
    QvSFBool on{*this, "on", true};
    QvSFFloat intensity{*this, "intensity", 1};
    QvSFColor color{*this, "color", {1, 1, 1}};
    QvSFVec3f direction{*this, "direction", {0, 0, -1}};

    void traverse(QvState& state) override;
};

class QvPointLight final : public BuiltIn<QvPointLight> {
public:
    QvSFBool on{*this, "on", true};
    QvSFFloat intensity{*this, "intensity", 1};
    QvSFColor color{*this, "color", {1, 1, 1}};
    QvSFVec3f location{*this, "location", {0, 0, 1}};

    void traverse(QvState& state) override;
};

class QvSpotLight final : public BuiltIn<QvSpotLight> {
public:
    QvSFBool on{*this, "on", true};
    QvSFFloat intensity{*this, "intensity", 1};
    QvSFColor color{*this, "color", {1, 1, 1}};
    QvSFVec3f location{*this, "location", {0, 0, 1}};
    QvSFVec3f direction{*this, "direction", {0, 0, -1}};
    QvSFFloat dropOffRate{*this, "dropOffRate", 0};
    QvSFFloat cutOffAngle{*this, "cutOffAngle", kQuarterPi};

    void traverse(QvState& state) override;
};

class QvOrthographicCamera final : public BuiltIn<QvOrthographicCamera> {
public:
    QvSFVec3f position{*this, "position", {0, 0, 1}};
    QvSFRotation orientation{*this, "orientation", kNoRotation};
    QvSFFloat focalDistance{*this, "focalDistance", 5};
    QvSFFloat height{*this, "height", 2};
    QvSFFloat aspectRatio{*this, "aspectRatio", 1};
    QvSFFloat nearDistance{*this, "nearDistance", 1};
    QvSFFloat farDistance{*this, "farDistance", 10};

    void traverse(QvState& state) override;
};

class QvPerspectiveCamera final : public BuiltIn<QvPerspectiveCamera> {
public:
    QvSFVec3f position{*this, "position", {0, 0, 1}};
    QvSFRotation orientation{*this, "orientation", kNoRotation};
    QvSFFloat focalDistance{*this, "focalDistance", 5};
    QvSFFloat heightAngle{*this, "heightAngle", kQuarterPi};
    QvSFFloat aspectRatio{*this, "aspectRatio", 1};
    QvSFFloat nearDistance{*this, "nearDistance", 1};
    QvSFFloat farDistance{*this, "farDistance", 10};

    void traverse(QvState& state) override;
};

// ---- properties: transforms

class QvMatrixTransform final : public BuiltIn<QvMatrixTransform> {
public:
    QvSFMatrix matrix{*this, "matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};

    void traverse(QvState& state) override;
};

class QvRotation final : public BuiltIn<QvRotation> {
public:
    QvSFRotation rotation{*this, "rotation", kNoRotation};

    void traverse(QvState& state) override;
};

class QvScale final : public BuiltIn<QvScale> {
public:
    QvSFVec3f scaleFactor{*this, "scaleFactor", {1, 1, 1}};

    void traverse(QvState& state) override;
};

class QvTransform final : public BuiltIn<QvTransform> {
public:
    QvSFVec3f translation{*this, "translation", {0, 0, 0}};
    QvSFRotation rotation{*this, "rotation", kNoRotation};
    QvSFVec3f scaleFactor{*this, "scaleFactor", {1, 1, 1}};
    QvSFRotation scaleOrientation{*this, "scaleOrientation", kNoRotation};
    QvSFVec3f center{*this, "center", {0, 0, 0}};

    void traverse(QvState& state) override;
};

class QvTranslation final : public BuiltIn<QvTranslation> {
public:
    QvSFVec3f translation{*this, "translation", {0, 0, 0}};

    void traverse(QvState& state) override;
};

// ---- groups (besides QvGroup and QvUnknownNode)

class QvLevelOfDetail final : public BuiltIn<QvLevelOfDetail, QvGroup> {
public:
    QvMFFloat range{*this, "range", {0}};
    QvSFVec3f center{*this, "center", {0, 0, 0}};

    void traverse(QvState& state) override;
};

class QvSeparator final : public BuiltIn<QvSeparator, QvGroup> {
public:
    enum CullEnabled : std::int32_t { OFF = 0, ON = 1, AUTO = 2 };
    static constexpr EnumWord kCullEnabledWords[] = {{"ON", ON}, {"OFF", OFF}, {"AUTO", AUTO}};
    static constexpr Enumeration kCullEnabled = {"CullEnabled", kCullEnabledWords};

    QvSFEnum renderCulling{*this, "renderCulling", kCullEnabled, AUTO};

    void traverse(QvState& state) override;
};

class QvSwitch final : public BuiltIn<QvSwitch, QvGroup> {
public:
    QvSFLong whichChild{*this, "whichChild", -1};

    void traverse(QvState& state) override;
};

class QvTransformSeparator final : public BuiltIn<QvTransformSeparator, QvGroup> {
public:
    void traverse(QvState& state) override;
};

class QvWWWAnchor final : public BuiltIn<QvWWWAnchor, QvGroup> {
public:
    enum Map : std::int32_t { NONE = 0, POINT = 1 };
    static constexpr EnumWord kMapWords[] = {{"NONE", NONE}, {"POINT", POINT}};
    static constexpr Enumeration kMap = {"Map", kMapWords};

    QvSFString name{*this, "name", ""};
    QvSFString description{*this, "description", ""};
    QvSFEnum map{*this, "map", kMap, NONE};

    void traverse(QvState& state) override;
};

class QvWWWInline final : public BuiltIn<QvWWWInline, QvGroup> {
public:
    QvSFString name{*this, "name", ""};
    QvSFVec3f bboxSize{*this, "bboxSize", {0, 0, 0}};
    QvSFVec3f bboxCenter{*this, "bboxCenter", {0, 0, 0}};

    void traverse(QvState& state) override;
};

// ---- others

/// Text for readers of the file; nothing to the walk.
class QvInfo final : public BuiltIn<QvInfo> {
public:
    QvSFString string{*this, "string", "<Undefined info>"};

    void traverse(QvState& state) override;
};

} // namespace meshcast
