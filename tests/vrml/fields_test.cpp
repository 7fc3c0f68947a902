#include "tests/support/conversion.h"
#include "vrml/fields.h"
#include "vrml/nodes.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace meshcast {
namespace {

/// The value of a field is read wherever a block of the input ends.
class Fields : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Pieces, Fields, testing::Values(1, 3, 100'000));

TEST_P(Fields, ListsHoldWhatIsReadAndNothingInReserve) {
    struct Case {
        const char* list;
        std::vector<std::int32_t> values;
    };
    for (const Case& c :
         {Case{"7", {7}}, Case{"[]", {}}, Case{"[ 1 ]", {1}}, Case{"[1,2,3,]", {1, 2, 3}},
          Case{"[ 0x10 ,010 , -1 ]", {16, 8, -1}}, Case{"~", {0}},
          // The second reading of a field counts.
          Case{"[1,2,3] coordIndex [4]", {4}}, Case{"[1] coordIndex [2,3,4]", {2, 3, 4}},
          Case{"[1,2] coordIndex 9", {9}}, Case{"[1,2] coordIndex [ ]", {}}}) {
        ReadScene scene("IndexedFaceSet { coordIndex " + std::string(c.list) + " }", GetParam());
        ASSERT_TRUE(scene.ok) << c.list << scene.messages;
        const QvMFLong& field = scene.root<QvIndexedFaceSet>().coordIndex;
        EXPECT_EQ(std::vector<std::int32_t>(field.values, field.values + field.num), c.values)
            << c.list;
        EXPECT_EQ(field.maxNum, field.num) << c.list;
    }
}

TEST_P(Fields, EveryTypeKeepsItsValue) {
    ReadScene scene(
        "Group { Transform { translation 1 -2 .5 rotation 0 1 0 3.14 scaleFactor 1e2 2 3 }"
        "MatrixTransform { matrix 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 }"
        "PointLight { on FALSE intensity .25 color 1 .5 0 }"
        "Texture2 { filename \"a b\" image 2 1 3 0xFF0000 0x00FF01 wrapS CLAMP }"
        "Texture2Transform { translation 3 4 } TextureCoordinate2 { point [ 1 2, 3 4 ] }"
        "LevelOfDetail { range [ 1, 2.5 ] } Cone { parts ( SIDES | | BOTTOM ) }"
        "Cylinder { parts (TOP) } FontStyle { style ( ) } Switch { whichChild -3 } }",
        GetParam());
    ASSERT_TRUE(scene.ok) << scene.messages;
    const auto& transform = scene.child<QvTransform>(0);
    EXPECT_EQ(transform.translation.value, (std::array<float, 3>{1, -2, 0.5F}));
    EXPECT_EQ(transform.rotation.value, (std::array<float, 4>{0, 1, 0, 3.14F}));
    EXPECT_EQ(transform.scaleFactor.value[0], 100);
    EXPECT_FALSE(transform.rotation.isDefault());
    EXPECT_TRUE(transform.center.isDefault());
    std::array<float, 16> counted{};
    std::iota(counted.begin(), counted.end(), 1.0F);
    EXPECT_EQ(scene.child<QvMatrixTransform>(1).matrix.value, counted);
    const auto& light = scene.child<QvPointLight>(2);
    EXPECT_EQ(light.on.value, 0);
    EXPECT_EQ(light.color.value, (std::array<float, 3>{1, 0.5F, 0}));
    const auto& texture = scene.child<QvTexture2>(3);
    EXPECT_EQ(texture.filename.value, "a b");
    EXPECT_EQ(texture.wrapS.value, QvTexture2::CLAMP);
    const auto bytes = texture.image.bytes();
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()),
              (std::vector<std::uint8_t>{0xFF, 0, 0, 0, 0xFF, 1}));
    EXPECT_EQ(scene.child<QvTexture2Transform>(4).translation.value[1], 4);
    const auto& coordinates = scene.child<QvTextureCoordinate2>(5).point;
    EXPECT_EQ(coordinates.num, 2);
    EXPECT_EQ(coordinates.at(1)[1], 4);
    EXPECT_EQ(scene.child<QvLevelOfDetail>(6).range.at(1)[0], 2.5F);
    EXPECT_EQ(scene.child<QvCone>(7).parts.value, QvCone::ALL);
    EXPECT_EQ(scene.child<QvCylinder>(8).parts.value, QvCylinder::TOP);
    EXPECT_EQ(scene.child<QvFontStyle>(9).style.value, 0);
    EXPECT_EQ(scene.child<QvSwitch>(10).whichChild.value, -3);
}

TEST(FieldMarks, TildeMarksAFieldAsIgnored) {
    ReadScene scene("Cube { width ~ height 3 ~ depth 4 }");
    ASSERT_TRUE(scene.ok);
    const auto& cube = scene.root<QvCube>();
    EXPECT_TRUE(cube.width.isDefault() && cube.width.ignored() && cube.width.value == 2);
    EXPECT_TRUE(!cube.height.isDefault() && cube.height.ignored() && cube.height.value == 3);
    EXPECT_TRUE(!cube.depth.isDefault() && !cube.depth.ignored() && cube.depth.value == 4);
}

TEST(FieldImages, SizesFromStrangers) {
    const auto read = [](const std::string& image) {
        return ReadScene("Texture2 { image " + image + " }").ok;
    };
    EXPECT_TRUE(read("0 0 0"));
    EXPECT_TRUE(read("2 2 0 1 2 3 4"));    // Numbers without bytes.
    EXPECT_TRUE(read("1 1 6 0x01020304")); // More bytes than a number has.
    EXPECT_FALSE(read("-1 1 1 0"));
    EXPECT_FALSE(read("1 -1 1 0"));
    EXPECT_FALSE(read("1 1 -1 0"));
    EXPECT_FALSE(read("32767 32767 2147483647 0")); // More than there is memory for.
    EXPECT_FALSE(read("2 1 3 0xFF0000"));           // A pixel is missing.
}

} // namespace
} // namespace meshcast
