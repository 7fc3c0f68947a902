#include "tests/support/conversion.h"
#include "vrml/fields.h"
#include "vrml/nodes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>

namespace meshcast {
namespace {

/// Fields are read from input blocks of different sizes.
class Fields : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Pieces, Fields, testing::Values(1, 3, 100'000));

TEST_P(Fields, ListsHaveNoSpareCapacity) {
    struct Case {
        const char* list;
        std::vector<std::int32_t> values;
    };
    for (const Case& c :
         {Case{"7", {7}}, Case{"[]", {}}, Case{"[ 1 ]", {1}}, Case{"[1,2,3,]", {1, 2, 3}},
          Case{"[ 0x10 ,010 , -1 ]", {16, 8, -1}}, Case{"~", {0}},
          // If a field is given twice, the last value is kept.
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

/// The result of reading a list field: its values, the messages, and the rest of the text.
template <class Field, std::size_t Width>
std::string readList(const std::string& list, std::size_t pieceSize) {
    const std::string text = "#VRML V1.0 ascii\n" + list;
    MemorySource source(text, pieceSize);
    MessageText messages;
    Scene scene;
    VrmlInput input(scene, source, messages);
    Field field;
    const bool isRead = field.readAll(input);
    std::string found = isRead ? "read" : "failed";
    for (std::size_t i = 0; isRead && i < static_cast<std::size_t>(field.num) * Width; ++i) {
        std::array<char, 32> number{};
        std::snprintf(number.data(), number.size(), " %a", static_cast<double>(field.values[i]));
        found += number.data();
    }
    found += " line " + std::to_string(input.line()) + " rest ";
    for (char c = 0; input.get(c);) {
        found += c;
    }
    return found + " messages " + messages.text;
}

// Lists of plain numbers are read by a fast path, other lists and values across the end of a block
// by the general code. In pieces of one byte, every value takes the general code.
TEST(FieldLists, PlainValuesAreReadLikeOthers) {
    std::minstd_rand random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same lists in every run
    const auto pick = [&random](std::initializer_list<const char*> texts) {
        return std::string(texts.begin()[random() % texts.size()]);
    };
    for (int round = 0; round < 4000; ++round) {
        const auto digits = [&random](unsigned most) {
            std::string text;
            for (auto left = random() % (most + 1); left > 0; --left) {
                text += static_cast<char>('0' + random() % 10);
            }
            return text;
        };
        const bool isOdd = round % 2 != 0; // Half of the lists also need the general code.
        const auto blank = [&] {
            return isOdd && random() % 30 == 0 ? pick({"#c\n", "\v", "\xff", "", "\r\n", "  #\n ,"})
                                               : pick({" ", " ", "\n      ", "\n", "\t", "  "});
        };
        const auto number = [&] {
            const auto kind = random() % 8;
            const std::string sign = kind < 2 ? "-" : isOdd && random() % 30 == 0 ? "+" : "";
            if (kind < 4) {
                return sign + "1" + digits(kind == 3 ? 10 : 6);
            }
            if (isOdd && random() % 30 == 0) {
                return sign + pick({"1e5", "2.5E-3", "0x1F", "017", "089", ".", "1.5.5", "x", "-",
                                    "1e", "00", "123456789012345678901", "0.12345678901234567", "]",
                                    "[", "1\xff", "7\0"});
            }
            return sign + pick({"0", "1", "12"}) + "." + digits(kind == 4 ? 18 : 8);
        };
        std::string list = "[";
        list += pick({"", " ", "\n "});
        for (auto left = random() % 40; left > 0; --left) {
            list += number();
            list += random() % 3 != 0 ? blank() + number() + blank() + number() : "";
            list += pick({"", "", "", " "}) + (isOdd && random() % 40 == 0 ? "" : ",") + blank();
        }
        list +=
            pick({"]", "1 ]", "1 2 3]", "1,]", ",]", "1, #\n]", "1 2 3, # ]\n ]", "1 2 3,", ""}) +
            " rest";
        // Pieces may end anywhere in a value.
        for (const std::size_t pieceSize : {std::size_t{2} + random() % 60, std::size_t{100'000}}) {
            EXPECT_EQ((readList<QvMFLong, 1>(list, 1)), (readList<QvMFLong, 1>(list, pieceSize)))
                << pieceSize << list;
            EXPECT_EQ((readList<QvMFFloat, 1>(list, 1)), (readList<QvMFFloat, 1>(list, pieceSize)))
                << pieceSize << list;
            EXPECT_EQ((readList<QvMFVec3f, 3>(list, 1)), (readList<QvMFVec3f, 3>(list, pieceSize)))
                << pieceSize << list;
        }
    }
}

TEST(FieldLists, LongListsHaveNoSpareCapacity) {
    std::string list = "[";
    for (int i = 0; i < 100'000; ++i) {
        list += std::to_string(i) + (i % 1000 == 0 ? " #\n," : ",");
    }
    for (const std::size_t pieceSize : {std::size_t{1}, std::size_t{1000}, std::size_t{64} << 20}) {
        ReadScene scene("IndexedFaceSet { coordIndex " + list + "] }", pieceSize);
        ASSERT_TRUE(scene.ok) << scene.messages;
        const QvMFLong& field = scene.root<QvIndexedFaceSet>().coordIndex;
        ASSERT_EQ(field.num, 100'000);
        EXPECT_EQ(field.maxNum, field.num);
        for (std::int32_t i = 0; i < field.num; ++i) {
            ASSERT_EQ(field.values[i], i);
        }
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

TEST(FieldImages, InvalidSizesAreRefused) {
    const auto read = [](const std::string& image) {
        return ReadScene("Texture2 { image " + image + " }").ok;
    };
    EXPECT_TRUE(read("0 0 0"));
    EXPECT_TRUE(read("2 2 0 1 2 3 4"));    // Pixels without components.
    EXPECT_TRUE(read("1 1 6 0x01020304")); // More components than an integer has bytes.
    EXPECT_FALSE(read("-1 1 1 0"));
    EXPECT_FALSE(read("1 -1 1 0"));
    EXPECT_FALSE(read("1 1 -1 0"));
    EXPECT_FALSE(read("32767 32767 2147483647 0")); // More than the available memory.
    EXPECT_FALSE(read("2 1 3 0xFF0000"));           // A pixel is missing.
}

} // namespace
} // namespace meshcast
