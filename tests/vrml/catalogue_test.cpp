#include "vrml/fields.h"
#include "vrml/node.h"
#include "vrml/registry.h"

#include <gtest/gtest.h>

#include <charconv>
#include <sstream>
#include <string>
#include <typeinfo>

// What scenes may say, typed once by hand: class, then field, type and default of each field.
namespace meshcast {
namespace {

constexpr const char* kCatalogue = R"(
Cone: parts SFBitMask(Part) 3; bottomRadius SFFloat 1; height SFFloat 2
Coordinate3: point MFVec3f [0 0 0]
Cube: width SFFloat 2; height SFFloat 2; depth SFFloat 2
Cylinder: parts SFBitMask(Part) 7; radius SFFloat 1; height SFFloat 2
DirectionalLight: on SFBool 1; intensity SFFloat 1; color SFColor 1 1 1; direction SFVec3f 0 0 -1
Group:
IndexedFaceSet: coordIndex MFLong [0]; materialIndex MFLong [-1]; normalIndex MFLong [-1]; textureCoordIndex MFLong [-1]
IndexedLineSet: coordIndex MFLong [0]; materialIndex MFLong [-1]; normalIndex MFLong [-1]; textureCoordIndex MFLong [-1]
Info: string SFString "<Undefined info>"
LevelOfDetail: range MFFloat [0]; center SFVec3f 0 0 0
LOD: range MFFloat [0]; center SFVec3f 0 0 0
Material: ambientColor MFColor [0.2 0.2 0.2]; diffuseColor MFColor [0.2 0.2 0.2]; specularColor MFColor [0 0 0]; emissiveColor MFColor [0 0 0]; shininess MFFloat [0.2]; transparency MFFloat [0]
MaterialBinding: value SFEnum(Binding) 0
MatrixTransform: matrix SFMatrix 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1
Normal: vector MFVec3f [0 0 1]
NormalBinding: value SFEnum(Binding) 0
OrthographicCamera: position SFVec3f 0 0 1; orientation SFRotation 0 0 1 0; focalDistance SFFloat 5; height SFFloat 2; aspectRatio SFFloat 1; nearDistance SFFloat 1; farDistance SFFloat 10
PerspectiveCamera: position SFVec3f 0 0 1; orientation SFRotation 0 0 1 0; focalDistance SFFloat 5; heightAngle SFFloat 0.7853982; aspectRatio SFFloat 1; nearDistance SFFloat 1; farDistance SFFloat 10
PointLight: on SFBool 1; intensity SFFloat 1; color SFColor 1 1 1; location SFVec3f 0 0 1
PointSet: startIndex SFLong 0; numPoints SFLong -1
Rotation: rotation SFRotation 0 0 1 0
Scale: scaleFactor SFVec3f 1 1 1
Separator: renderCulling SFEnum(CullEnabled) 2
ShapeHints: vertexOrdering SFEnum(VertexOrdering) 0; shapeType SFEnum(ShapeType) 0; faceType SFEnum(FaceType) 1; creaseAngle SFFloat 0.5
Sphere: radius SFFloat 1
SpotLight: on SFBool 1; intensity SFFloat 1; color SFColor 1 1 1; location SFVec3f 0 0 1; direction SFVec3f 0 0 -1; dropOffRate SFFloat 0; cutOffAngle SFFloat 0.7853982
Switch: whichChild SFLong -1
Texture2: filename SFString ""; image SFImage 0 0 0; wrapS SFEnum(Wrap) 0; wrapT SFEnum(Wrap) 0
Texture2Transform: translation SFVec2f 0 0; rotation SFFloat 0; scaleFactor SFVec2f 1 1; center SFVec2f 0 0
TextureCoordinate2: point MFVec2f [0 0]
Transform: translation SFVec3f 0 0 0; rotation SFRotation 0 0 1 0; scaleFactor SFVec3f 1 1 1; scaleOrientation SFRotation 0 0 1 0; center SFVec3f 0 0 0
TransformSeparator:
Translation: translation SFVec3f 0 0 0
WWWAnchor: name SFString ""; description SFString ""; map SFEnum(Map) 0
WWWInline: name SFString ""; bboxSize SFVec3f 0 0 0; bboxCenter SFVec3f 0 0 0
AsciiText: string SFString ""; spacing SFFloat 1; justification SFEnum(Justification) 0; width SFFloat 0
FontStyle: size SFFloat 10; family SFEnum(Fontfamily) 0; style SFBitMask(Fontstyle) 0
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

template <class Number>
std::string joined(const Number* first, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char digits[32];
        const auto [end, error] = std::to_chars(digits, digits + sizeof digits, first[i]);
        text.append(i == 0 ? "" : " ").append(digits, end);
    }
    return text;
}

template <class Field>
std::string valueText(const Field& field) {
    if constexpr (std::is_same_v<Field, QvSFImage>) {
        EXPECT_TRUE(field.bytes().empty());
        return joined(&field.width, 1) + " " + joined(&field.height, 1) + " " +
               joined(&field.components, 1);
    } else if constexpr (std::is_same_v<Field, QvSFString>) {
        return '"' + field.value + '"';
    } else if constexpr (std::is_base_of_v<QvMField, Field>) {
        const auto width = static_cast<std::size_t>(field.at(1) - field.at(0));
        return "[" + joined(field.values, width * static_cast<std::size_t>(field.num)) + "]";
    } else if constexpr (requires { field.value.data(); }) {
        return joined(field.value.data(), field.value.size());
    } else {
        return joined(&field.value, 1);
    }
}

/// Appends a field's type and value if its type is this one.
template <class Field>
bool describe(const QvField& field, const FieldTable& table, std::string& text) {
    if (typeid(field) != typeid(Field)) {
        return false;
    }
    const std::string_view typeName = typeid(Field).name(); // Ends in "QvSFFloatE" or alike.
    const std::size_t start = typeName.find("Qv") + 2;
    text += typeName.substr(start, typeName.size() - start - 1);
    if constexpr (std::is_base_of_v<QvSFEnum, Field>) {
        const EnumTable* const words = dynamic_cast<const Field&>(field).words();
        EXPECT_EQ(words, table.findEnumeration(words->typeName));
        text.append("(").append(words->typeName.view()).append(")");
    }
    text.append(" ").append(valueText(dynamic_cast<const Field&>(field)));
    EXPECT_TRUE(field.isDefault() && !field.ignored());
    return true;
}

template <class... Fields>
void describeAny(const QvField& field, const FieldTable& table, std::string& text) {
    EXPECT_TRUE((describe<Fields>(field, table, text) || ...));
}

std::string describe(const NodeClass& nodeClass) {
    NodePool nodes;
    nodeClass.create(nodes); // Declares the fields.
    QvNode* const node = nodeClass.create(nodes);
    const FieldTable& table = node->getFieldTable();
    std::string text(nodeClass.name);
    std::string separator = ": ";
    for (const FieldTable::FieldEntry& entry : table.fields()) {
        text.append(separator).append(entry.name.view()).append(" ");
        separator = "; ";
        describeAny<QvSFBitMask, QvSFBool, QvSFColor, QvSFEnum, QvSFFloat, QvSFImage, QvSFLong,
                    QvSFMatrix, QvSFRotation, QvSFString, QvSFVec2f, QvSFVec3f, QvMFColor,
                    QvMFFloat, QvMFLong, QvMFVec2f, QvMFVec3f>(*table.findField(*node, entry.name),
                                                               table, text);
    }
    return text + (table.fields().empty() ? ":" : "") + "\n";
}

TEST(Catalogue, ClassesFieldsAndDefaults) {
    std::string found = "\n";
    for (const NodeClass& nodeClass : nodeClasses()) {
        found += describe(nodeClass);
    }
    EXPECT_EQ(found, kCatalogue);
}

TEST(Catalogue, Enumerations) {
    std::istringstream lines(kEnumerations + 1);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t point = line.find('.');
        const std::size_t colon = line.find(':');
        NodePool nodes;
        QvNode* const node = createNode(nodes, InternedName(line.substr(0, point)));
        const EnumTable* const table = node->getFieldTable().findEnumeration(
            InternedName(line.substr(point + 1, colon - point - 1)));
        ASSERT_NE(table, nullptr) << line;
        std::string words;
        for (std::size_t i = 0; i < table->names.size(); ++i) {
            words.append(i == 0 ? " " : ", ").append(table->names[i].view());
            words.append(" ").append(std::to_string(table->values[i]));
        }
        EXPECT_EQ(words, line.substr(colon + 1)) << line;
    }
}

} // namespace
} // namespace meshcast
