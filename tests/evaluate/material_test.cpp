#include "evaluate/color.h"
#include "tests/evaluate/evaluation.h"

namespace meshcast::evaluate {
namespace {

const std::string kPoints = "Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0, 1 1 0 ] } ";
const std::string kFaces = "IndexedFaceSet { coordIndex [ 0 1 2 -1 2 1 3 ] } ";

std::string materials(const std::string& material, const std::string& shape = "Cube { }") {
    return linesOf("Separator { " + kPoints + material + shape + "}", {"material", "note"});
}

TEST(Material, ColoursBecomeLinear) {
    // Both branches of the sRGB curve, its ends, and the inverse.
    EXPECT_FLOAT_EQ(linearFromSrgb(0.04F), 0.0030959751F);
    EXPECT_FLOAT_EQ(linearFromSrgb(0.5F), 0.21404114F);
    EXPECT_EQ(linearFromSrgb(0.0F), 0);
    EXPECT_EQ(linearFromSrgb(1.0F), 1);
    for (const float screen : {0.0F, 0.02F, 0.04F, 0.05F, 0.5F, 0.8F, 1.0F}) {
        EXPECT_NEAR(srgbFromLinear(linearFromSrgb(screen)), screen, 1e-6);
    }
    EXPECT_EQ(
        materials("Material { diffuseColor 0.5 1 0 transparency 0.25 emissiveColor 0 0 0.5 }"),
        "material 0: color 0.21404 1 0 0.75 emissive 0 0 0.21404 roughness 1 blended\n");
}

TEST(Material, MissingValuesAreDefaults) {
    const std::string usual = "material 0: color 0.60383 0.60383 0.60383 1 roughness 1\n";
    EXPECT_EQ(materials(""), usual);
    EXPECT_EQ(materials("Material { }"), usual);
    EXPECT_EQ(materials("Material { diffuseColor [ ] }"), usual);
    EXPECT_EQ(materials("Material { diffuseColor [ 3 -1 0, 0 1 0 ] transparency -2 }"),
              "material 0: color 1 0 0 1 roughness 1\n");
}

TEST(Material, ShininessMakesSmoothSurfaces) {
    // (2 / (2 + 128 x 0.2))^(1/4) and (2 / 130)^(1/4).
    const std::string color = "material 0: color 0.60383 0.60383 0.60383 1 specular 1 1 1 ";
    EXPECT_EQ(materials("Material { specularColor 1 1 1 }"), color + "roughness 0.51884\n");
    EXPECT_EQ(materials("Material { specularColor 1 1 1 shininess 1 }"),
              color + "roughness 0.35219\n");
    EXPECT_EQ(materials("Material { specularColor 1 1 1 shininess 0 }"), color + "roughness 1\n");
}

TEST(Material, PrelitMaterialsAreUnlit) {
    const std::string preLit = "Material { ambientColor [ ] diffuseColor [ ] specularColor [ ] "
                               "emissiveColor [ 1 0 0, 0 0 1 ] } ";
    EXPECT_EQ(materials(preLit), "material 0: color 1 0 0 1 unlit\n");
    const Model model = evaluated("Separator { " + kPoints + preLit +
                                  "MaterialBinding { value PER_FACE } " + kFaces + "}");
    EXPECT_EQ(colorsOf(model), "RRRBBB");
    EXPECT_TRUE(model.materials.at(0).isUnlit);
    // A black emissive surface is lit and emissive.
    EXPECT_EQ(materials("Material { diffuseColor 0 0 0 emissiveColor 1 0 0 }"),
              "material 0: color 0 0 0 1 emissive 1 0 0 roughness 1\n");
}

TEST(Material, LinesWithoutNormalsAreUnlit) {
    const auto line = [](const std::string& before) {
        return materials(before, "IndexedLineSet { coordIndex [ 0 1 ] }");
    };
    EXPECT_EQ(line("Material { diffuseColor 1 0 0 emissiveColor 0 1 0 specularColor 1 1 1 }"),
              "material 0: color 1 0 0 1 unlit\n");
    EXPECT_EQ(line("Material { diffuseColor 0 0 0 emissiveColor 0 1 0 }"),
              "material 0: color 0 1 0 1 unlit\n");
    EXPECT_EQ(line("Material { emissiveColor 0 1 0 }"), "material 0: color 0 1 0 1 unlit\n");
    EXPECT_EQ(line("Material { diffuseColor 1 0 0 } Normal { vector [ 0 0 1, 0 1 0 ] } "),
              "material 0: color 1 0 0 1 roughness 1\n");
    EXPECT_EQ(materials("Material { diffuseColor 1 0 0 }", "PointSet { }"),
              "material 0: color 1 0 0 1 unlit\n");
}

TEST(Material, DiffuseColoursBecomeVertexColours) {
    const Model model =
        evaluated("Separator { " + kPoints +
                  "Material { diffuseColor [ 1 0 0, 0 1 0 ] transparency [ 0, 0.5 ] "
                  "} MaterialBinding { value PER_FACE } " +
                  kFaces + "}");
    EXPECT_EQ(linesOf(model, {"material", "mesh"}),
              "material 0: color 1 1 1 1 roughness 1 blended\n"
              "mesh 0: geometry 0 from 0 count 6 material 0\n");
    EXPECT_EQ(model.geometries.at(0).colors.at(0), (Color{1, 0, 0, 1}));
    EXPECT_EQ(model.geometries[0].colors.at(3), (Color{0, 1, 0, 0.5}));
    // Equal values need no vertex colours.
    EXPECT_EQ(linesOf("Separator { " + kPoints +
                          "Material { diffuseColor [ 1 0 0, 1 0 0, 0 1 0 ] } "
                          "MaterialBinding { value PER_FACE } " +
                          kFaces + "}",
                      {"material"}),
              "material 0: color 1 0 0 1 roughness 1\n");
}

TEST(Material, DifferentMaterialsMakePrimitives) {
    const std::string glowing = "Material { diffuseColor [ 1 0 0, 0 1 0 ] emissiveColor [ 0 0 0, 0 "
                                "0 1 ] } MaterialBinding { value ";
    EXPECT_EQ(linesOf("Separator { " + kPoints + glowing + "PER_FACE } " + kFaces + "}",
                      {"material", "mesh", "note"}),
              "material 0: color 1 0 0 1 roughness 1\n"
              "material 1: color 0 1 0 1 emissive 0 0 1 roughness 1\n"
              "mesh 0: geometry 0 from 0 count 3 material 0\n"
              "mesh 0: geometry 0 from 3 count 3 material 1\n");
    // By corner: 0 1 2 and 2 1 3 get the values 0 1 0 and 0 1 1. The finish is their mean: 1/3 and
    // 2/3 of blue in sRGB, converted to linear light.
    const Model mixed = evaluated("Separator { " + kPoints + glowing +
                                  "PER_VERTEX_INDEXED } IndexedFaceSet { coordIndex [ 0 1 2 -1 2 1 "
                                  "3 ] materialIndex [ 0 1 0 -1 0 1 1 ] } }");
    EXPECT_EQ(linesOf(mixed, {"material", "note"}),
              "material 0: color 1 1 1 1 emissive 0 0 0.09084 roughness 1\n"
              "material 1: color 1 1 1 1 emissive 0 0 0.40198 roughness 1\n"
              "note approximated \"\": materials averaged over each face: only diffuse colour and "
              "transparency can vary by corner\n");
    EXPECT_EQ(colorsOf(mixed), "RGR RGG");
}

TEST(Material, TooManyMaterialsAreReduced) {
    // 2,000 faces, each with a different finish.
    std::string colors;
    std::string indices;
    for (int i = 0; i < 2000; ++i) {
        colors += std::to_string(i / 2000.0) + " 0 0,";
        indices += "0 1 2 -1 ";
    }
    const Model model = evaluated("Separator { " + kPoints + "Material { emissiveColor [ " +
                                  colors + " ] } MaterialBinding { value PER_FACE } " +
                                  "IndexedFaceSet { coordIndex [ " + indices + " ] } }");
    EXPECT_EQ(model.materials.size(), 1U);
    EXPECT_EQ(model.geometries.at(0).indices.size(), 6000U);
    EXPECT_EQ(linesOf(model, {"note"}), "note approximated \"\": too many materials: only diffuse "
                                        "colour and transparency vary\n");
}

} // namespace
} // namespace meshcast::evaluate
