#include "tests/support/conversion.h"
#include "vrml/scene_reader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace meshcast {
namespace {

TEST(SceneReader, UseSharesTheLatestDefinition) {
    ReadScene scene("Group { DEF 1x Cube { } USE 1x DEF 1x Sphere { } USE \"1x\" }");
    ASSERT_TRUE(scene.ok) << scene.messages;
    const ChildList children = scene.root<QvGroup>().getChildList();
    ASSERT_EQ(children.size(), 4U);
    EXPECT_EQ(children[0], children[1]);
    EXPECT_EQ(children[2], children[3]);
    EXPECT_NE(children[0], children[2]);
    // The node has the legal form of the name; USE takes the name as it was written.
    EXPECT_EQ(children[0]->nodeName().view(), "_1x");
}

TEST(SceneReader, NodeNamesEndAtTheirFirstZeroByte) {
    using namespace std::string_literals;
    ReadScene scene("Group { DEF a\0b Cube { } USE a USE \"a\0c\" }"s);
    ASSERT_TRUE(scene.ok) << scene.messages;
    const ChildList children = scene.root<QvGroup>().getChildList();
    ASSERT_EQ(children.size(), 3U);
    EXPECT_EQ(children[0], children[1]);
    EXPECT_EQ(children[0], children[2]);
    EXPECT_EQ(children[0]->nodeName().view(), "a");
    EXPECT_EQ(ReadScene("DEF \"\0a\" Cube { }"s).messages,
              readErrorText("No name given after ", 2));
    EXPECT_EQ(ReadScene("USE b\0c"s).messages, readErrorText("Unknown reference \"b\"", 2));
}

TEST(SceneReader, UnknownNodesReadTheFieldsThatTheyDeclare) {
    ReadScene scene("Group { A { fields [ SFFloat x, MFLong y, ] y [ 1, 2 ] x 0.5 Cube { }"
                    " B { fields <SFString s] s in } Cone { } } C { fields [ ] } }");
    ASSERT_TRUE(scene.ok) << scene.messages;
    const auto& node = scene.child<QvUnknownNode>(0);
    EXPECT_EQ(node.className().view(), "A");
    EXPECT_FALSE(node.isBuiltIn());
    EXPECT_EQ(node.getNumChildren(), 3);
    EXPECT_EQ(node.declaredFields().fields().size(), 2U);
    // The field table is that of the last node of the class, which declares no fields (kept).
    EXPECT_TRUE(node.getFieldTable().fields().empty());
}

TEST(SceneReader, EveryFieldTypeCanBeDeclared) {
    ReadScene scene(
        "A { fields [ SFBitMask a, SFBool b, SFColor c, SFEnum d, SFFloat e, SFImage f, SFLong g,"
        " SFMatrix h, SFRotation i, SFString j, SFVec2f k, SFVec3f l, MFColor m, MFFloat n,"
        " MFLong o, MFVec2f p, MFVec3f q ]"
        " a ( ) b 1 c 1 2 3 d ~ e 1 f 1 1 1 1 g 1 h 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6"
        " i 1 2 3 4 j \"x\" k 1 2 l 1 2 3 m [ 1 2 3 ] n [ 1, 2 ] o 1 p [ 1 2 ] q 1 2 3 }");
    EXPECT_TRUE(scene.ok) << scene.messages;
    // A declared enumeration has no words, so every word is unknown.
    EXPECT_EQ(ReadScene("A { fields [ SFEnum a ] a B }").messages,
              readErrorText("Unknown QvSFEnum enumeration value \"B\"", 2) +
                  readErrorText("Couldn't read value for field \"a\"", 2));
}

TEST(SceneReader, DepthIsBounded) {
    const auto nested = [](int depth, const std::string& open = "Separator{") {
        std::string text;
        for (int i = 0; i < depth; ++i) {
            text += open;
        }
        return text.append(static_cast<std::size_t>(depth), '}');
    };
    for (const char* const open :
         {"DEF a Separator{", "Group{", "Switch{whichChild 0 ", "LOD{", "TransformSeparator{",
          "WWWAnchor{", "WWWInline{", "X{fields [SFLong a] a 1 "}) {
        EXPECT_EQ(convert(nested(kMaxNestingDepth, open)).messages, "") << open;
        EXPECT_EQ(convert(nested(kMaxNestingDepth + 1, open)).messages,
                  readErrorText("Nesting deeper than 10000 levels", 2))
            << open;
    }
    // Skipping an invalid node does not recurse.
    EXPECT_EQ(convert(std::string(1'000'000, '{')).messages,
              readErrorText("Extra characters ('{') found in input", 2));
    EXPECT_EQ(convert("Group { " + nested(1'000'000) + " }").messages,
              readErrorText("Nesting deeper than 10000 levels", 2));
}

TEST(SceneReader, NodesAreFreedWithTheirScene) {
    // The leak checker of the sanitizer build finds nodes that are not freed.
    for (int i = 0; i < 100; ++i) {
        ReadScene scene("Group { DEF a A { fields [ SFString s ] s \"a long enough text\" } "
                        "DEF b Material { diffuseColor [ 1 1 1, 0 0 0 ] } Cube { bad } }");
        EXPECT_FALSE(scene.ok);
    }
}

} // namespace
} // namespace meshcast
