#include "tests/support/conversion.h"
#include "tests/support/walk.h"
#include "traverse/state.h"

#include <gtest/gtest.h>

#include <string>

// The spheres of the scenes are identified by their radii.
namespace meshcast {
namespace {

std::vector<float> radii(const std::string& scene) {
    std::vector<float> found;
    for (const geom_stream::Object& object : convert(scene).objects) {
        found.push_back(object.sphere().radii.at(0));
    }
    return found;
}

using Radii = std::vector<float>;

TEST(Groups, ChooseTheirChildren) {
    const std::string children = " Sphere { radius 1 } Sphere { radius 2 } Sphere { radius 3 } }";
    EXPECT_EQ(radii("Group {" + children), (Radii{1, 2, 3}));
    EXPECT_EQ(radii("Separator {" + children), (Radii{1, 2, 3}));
    EXPECT_EQ(radii("TransformSeparator {" + children), (Radii{1, 2, 3}));
    EXPECT_EQ(radii("WWWAnchor { name \"x\"" + children), (Radii{1, 2, 3}));
    EXPECT_EQ(radii("WWWInline { name \"x\"" + children), Radii{});
    EXPECT_EQ(radii("Other { fields [ ]" + children), Radii{});
    EXPECT_EQ(radii("LOD { range [ 5, 6 ]" + children), Radii{1});
    EXPECT_EQ(radii("LevelOfDetail { }"), Radii{});
    for (const int which : {-1, -2, -4, 3, 2147483647}) {
        EXPECT_EQ(radii("Switch { whichChild " + std::to_string(which) + children), Radii{});
    }
    EXPECT_EQ(radii("Switch { whichChild -3" + children), (Radii{1, 2, 3}));
    EXPECT_EQ(radii("Switch { whichChild 2" + children), Radii{3});
}

TEST(Groups, ScopeWhatTheirChildrenAdd) {
    struct Case {
        const char* open;
        bool restoresTransforms;
        bool restoresOthers;
    };
    for (const Case& c :
         {Case{"Separator {", true, true}, Case{"WWWAnchor {", true, true},
          Case{"TransformSeparator {", true, false}, Case{"Group {", false, false},
          Case{"Switch { whichChild -3", false, false}, Case{"LOD { Group {", false, false}}) {
        std::string text = std::string("Group { Scale { } ") + c.open;
        text += " Translation { } Material { } ";
        text += std::string_view(c.open).ends_with("Group {") ? "} } }" : "} }";
        ReadScene scene(text);
        ASSERT_TRUE(scene.ok) << scene.messages;
        const Walk walk(scene);
        const QvState& state = walk.state;
        EXPECT_EQ(state.getTopElement(QvElementKind::Material) == nullptr, c.restoresOthers)
            << c.open;
        // A TransformSeparator leaves its marker.
        const QvElement* top = state.getTopElement(QvElementKind::Transformation);
        EXPECT_NE(top->type == QvElementType::Translation, c.restoresTransforms) << c.open;
        EXPECT_EQ(state.depth, 0);
        EXPECT_EQ(state.traversalNestingLevel, 0);
    }
}

TEST(Groups, NodesInsideThemselvesAreReportedOnce) {
    const auto contains = [](const std::string& name) {
        return "VRML error in QvGroup::traverse(): Node \"" + name + "\" contains itself\n";
    };
    const Conversion inSelf =
        convert("Group { DEF a Separator { Sphere { } USE a USE a Cube { } } Sphere { } }");
    EXPECT_EQ(inSelf.objects.size(), 3U);
    EXPECT_EQ(inSelf.messages, contains("a"));
    const char* const kinds[] = {"Group {", "TransformSeparator {", "Switch { whichChild 0",
                                 "LOD {",   "Separator {",          "WWWAnchor {"};
    for (const std::string outer : kinds) {
        for (const std::string inner : kinds) {
            const Conversion circle = convert("Group { DEF a " + outer + " DEF b " + inner +
                                              " USE a } } USE b USE a Sphere { } }");
            EXPECT_EQ(circle.messages, contains("a") + contains("b")) << outer << inner;
            EXPECT_EQ(circle.objects.size(), 1U);
        }
    }
    const Conversion longer = convert("DEF a Group { DEF b LOD { DEF c Switch { whichChild -3 USE "
                                      "a USE b Sphere { } } } USE c }");
    EXPECT_EQ(longer.objects.size(), 2U);
    EXPECT_EQ(longer.messages, contains("a") + contains("b") + contains("c"));
}

TEST(Groups, DepthMadeByUseIsBounded) {
    // Each definition contains the one before, 5,000 levels deeper.
    const auto around = [](const std::string& name, const std::string& inner) {
        std::string text = "DEF " + name + " Group{";
        for (int i = 1; i < 5000; ++i) {
            text += "Group{";
        }
        return text + inner + std::string(5000, '}');
    };
    const Conversion deep = convert("Group { " + around("a", "Sphere{}") + around("b", "USE a ") +
                                    around("c", "USE b ") + "Cube{} }");
    EXPECT_EQ(deep.objects.size(), 2U); // The sphere of a alone, and the cube.
    // The innermost groups of a, under b, and of b, under c, are left out.
    const std::string message = "VRML error in QvGroup::traverse(): Nesting deeper than 10000 "
                                "levels at node \"\"\n";
    EXPECT_EQ(deep.messages, message + message);
}

TEST(Groups, ElementsAddedByUseAreBounded) {
    const std::string leaves = "Group { Material { } TransformSeparator { "
                               "Scale { } } }";
    ReadScene scene(doubled(leaves, 17)); // 131,072 times.
    Walk walk(scene);
    QvState& state = walk.state;
    for (const auto kind : {QvElementKind::Material, QvElementKind::Transformation}) {
        EXPECT_EQ(state.count(kind), QvState::kMaxElements);
    }
    state.push();
    state.addElement(QvElementKind::Material, std::make_unique<QvElement>());
    EXPECT_EQ(state.count(QvElementKind::Material), QvState::kMaxElements + 1);
    state.pop();
    EXPECT_NE(state.getTopElement(QvElementKind::Material)->data, nullptr);
}

} // namespace
} // namespace meshcast
