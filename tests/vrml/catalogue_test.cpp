#include "tests/support/conversion.h"
#include "tools/scene_dump/scene_dump.h"
#include "vrml/catalogue.h"

#include <gtest/gtest.h>

#include <string>

// The classes of nodes, written by hand: the fields of each with their types and default values.
namespace meshcast {
namespace {

constexpr const char* kCatalogue = R"(
Cone: parts SFBitMask(Part) ALL; bottomRadius SFFloat 1; height SFFloat 2
Coordinate3: point MFVec3f [ 0 0 0 ]
Cube: width SFFloat 2; height SFFloat 2; depth SFFloat 2
Cylinder: parts SFBitMask(Part) ALL; radius SFFloat 1; height SFFloat 2
DirectionalLight: on SFBool TRUE; intensity SFFloat 1; color SFColor 1 1 1; direction SFVec3f 0 0 -1
Group:
IndexedFaceSet: coordIndex MFLong [ 0 ]; materialIndex MFLong [ -1 ]; normalIndex MFLong [ -1 ]; textureCoordIndex MFLong [ -1 ]
IndexedLineSet: coordIndex MFLong [ 0 ]; materialIndex MFLong [ -1 ]; normalIndex MFLong [ -1 ]; textureCoordIndex MFLong [ -1 ]
Info: string SFString "<Undefined info>"
LevelOfDetail: range MFFloat [ 0 ]; center SFVec3f 0 0 0
LOD: range MFFloat [ 0 ]; center SFVec3f 0 0 0
Material: ambientColor MFColor [ 0.2 0.2 0.2 ]; diffuseColor MFColor [ 0.2 0.2 0.2 ]; specularColor MFColor [ 0 0 0 ]; emissiveColor MFColor [ 0 0 0 ]; shininess MFFloat [ 0.2 ]; transparency MFFloat [ 0 ]
MaterialBinding: value SFEnum(Binding) DEFAULT
MatrixTransform: matrix SFMatrix 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1
Normal: vector MFVec3f [ 0 0 1 ]
NormalBinding: value SFEnum(Binding) DEFAULT
OrthographicCamera: position SFVec3f 0 0 1; orientation SFRotation 0 0 1 0; focalDistance SFFloat 5; height SFFloat 2; aspectRatio SFFloat 1; nearDistance SFFloat 1; farDistance SFFloat 10
PerspectiveCamera: position SFVec3f 0 0 1; orientation SFRotation 0 0 1 0; focalDistance SFFloat 5; heightAngle SFFloat 0.7853982; aspectRatio SFFloat 1; nearDistance SFFloat 1; farDistance SFFloat 10
PointLight: on SFBool TRUE; intensity SFFloat 1; color SFColor 1 1 1; location SFVec3f 0 0 1
PointSet: startIndex SFLong 0; numPoints SFLong -1
Rotation: rotation SFRotation 0 0 1 0
Scale: scaleFactor SFVec3f 1 1 1
Separator: renderCulling SFEnum(CullEnabled) AUTO
ShapeHints: vertexOrdering SFEnum(VertexOrdering) UNKNOWN_ORDERING; shapeType SFEnum(ShapeType) UNKNOWN_SHAPE_TYPE; faceType SFEnum(FaceType) CONVEX; creaseAngle SFFloat 0.5
Sphere: radius SFFloat 1
SpotLight: on SFBool TRUE; intensity SFFloat 1; color SFColor 1 1 1; location SFVec3f 0 0 1; direction SFVec3f 0 0 -1; dropOffRate SFFloat 0; cutOffAngle SFFloat 0.7853982
Switch: whichChild SFLong -1
Texture2: filename SFString ""; image SFImage 0 0 0; wrapS SFEnum(Wrap) REPEAT; wrapT SFEnum(Wrap) REPEAT
Texture2Transform: translation SFVec2f 0 0; rotation SFFloat 0; scaleFactor SFVec2f 1 1; center SFVec2f 0 0
TextureCoordinate2: point MFVec2f [ 0 0 ]
Transform: translation SFVec3f 0 0 0; rotation SFRotation 0 0 1 0; scaleFactor SFVec3f 1 1 1; scaleOrientation SFRotation 0 0 1 0; center SFVec3f 0 0 0
TransformSeparator:
Translation: translation SFVec3f 0 0 0
WWWAnchor: name SFString ""; description SFString ""; map SFEnum(Map) NONE
WWWInline: name SFString ""; bboxSize SFVec3f 0 0 0; bboxCenter SFVec3f 0 0 0
AsciiText: string SFString ""; spacing SFFloat 1; justification SFEnum(Justification) LEFT; width SFFloat 0
FontStyle: size SFFloat 10; family SFEnum(Fontfamily) SERIF; style SFBitMask(Fontstyle) NONE
)";

/// Class and enumeration, then the words with their values in the order of the table.
constexpr const char* kEnumerations = R"(
Cone.Part: SIDES 1, BOTTOM 2, ALL 3
Cylinder.Part: SIDES 1, TOP 2, BOTTOM 4, ALL 7
MaterialBinding.Binding: DEFAULT 0, NONE 1, OVERALL 2, PER_PART 3, PER_PART_INDEXED 4, PER_FACE 5, PER_FACE_INDEXED 6, PER_VERTEX 7, PER_VERTEX_INDEXED 8
NormalBinding.Binding: DEFAULT 0, NONE 1, OVERALL 2, PER_PART 3, PER_PART_INDEXED 4, PER_FACE 5, PER_FACE_INDEXED 6, PER_VERTEX 7, PER_VERTEX_INDEXED 8
Separator.CullEnabled: ON 1, OFF 0, AUTO 2
ShapeHints.VertexOrdering: UNKNOWN_ORDERING 0, CLOCKWISE 1, COUNTERCLOCKWISE 2
ShapeHints.ShapeType: UNKNOWN_SHAPE_TYPE 0, SOLID 1
ShapeHints.FaceType: UNKNOWN_FACE_TYPE 0, CONVEX 1
Texture2.Wrap: REPEAT 0, CLAMP 1
WWWAnchor.Map: NONE 0, POINT 1
AsciiText.Justification: LEFT 0, CENTER 1, RIGHT 2
FontStyle.Fontfamily: SERIF 0, SANS 1, TYPEWRITER 2
FontStyle.Fontstyle: NONE 0, BOLD 1, ITALIC 2
)";

std::string describe(const ClassInfo& nodeClass) {
    Scene scene;
    QvNode* const node = nodeClass.create(scene);
    std::string text(nodeClass.name);
    std::string separator = ": ";
    for (const FieldInfo& info : nodeClass.fields) {
        const QvField& field = info.of(*node);
        EXPECT_TRUE(field.isDefault() && !field.ignored());
        text.append(separator).append(info.name).append(" ").append(fieldTypeName(info.type));
        if (info.words != nullptr) {
            text.append("(").append(info.words->typeName).append(")");
        }
        text.append(" ").append(fieldText(field, info.words));
        separator = "; ";
    }
    return text + (nodeClass.fields.empty() ? ":" : "") + "\n";
}

TEST(Catalogue, ClassesFieldsAndDefaults) {
    std::string found = "\n";
    for (const ClassInfo& nodeClass : nodeClasses()) {
        found += describe(nodeClass);
    }
    EXPECT_EQ(found, kCatalogue);
}

TEST(Catalogue, Enumerations) {
    std::string found = "\n";
    for (const ClassInfo& nodeClass : nodeClasses()) {
        const Enumeration* last = nullptr;
        for (const FieldInfo& info : nodeClass.fields) {
            if (info.words == nullptr || info.words == last) {
                continue;
            }
            last = info.words;
            found.append(nodeClass.name).append(".").append(last->typeName).append(":");
            for (const EnumWord& word : last->words()) {
                found.append(&word == last->words().data() ? " " : ", ").append(word.word);
                found.append(" ").append(std::to_string(word.value));
            }
            found += "\n";
        }
    }
    EXPECT_EQ(found, kEnumerations);
}

} // namespace
} // namespace meshcast
