#include "tests/support/capture.h"
#include "tests/support/conversion.h"
#include "traverse/state.h"
#include "vrml/group.h"
#include "vrml/registry.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace meshcast {
namespace {

QvElement* add(QvState& state, QvElementKind kind) {
    auto element = std::make_unique<QvElement>();
    QvElement* const added = element.get();
    state.addElement(kind, std::move(element));
    return added;
}

TEST(State, PopDropsWhatItsLevelAdded) {
    QvState state;
    const QvElement* const light = add(state, QvElementKind::Light);
    state.push();
    const QvElement* const outer = add(state, QvElementKind::Transformation);
    state.push();
    add(state, QvElementKind::Light);
    const QvElement* const inner = add(state, QvElementKind::Transformation);
    EXPECT_EQ(inner->next, outer);
    EXPECT_EQ(inner->depth, 2);
    state.pop();
    EXPECT_EQ(state.getTopElement(QvElementKind::Light), light);
    EXPECT_EQ(state.getTopElement(QvElementKind::Transformation), outer);
    state.pop();
    EXPECT_EQ(state.getTopElement(QvElementKind::Transformation), nullptr);
    EXPECT_EQ(state.getTopElement(QvElementKind::Light), light); // Added at depth 0.
    EXPECT_EQ(state.depth, 0);
}

TEST(State, EveryPropertyAddsAnElementOfItsKindAndType) {
    struct Pushed {
        int kind;
        int type;
    };
    const std::map<std::string_view, Pushed> expected = {{"OrthographicCamera", {0, 1}},
                                                         {"PerspectiveCamera", {0, 2}},
                                                         {"Coordinate3", {1, 0}},
                                                         {"DirectionalLight", {2, 3}},
                                                         {"PointLight", {2, 4}},
                                                         {"SpotLight", {2, 5}},
                                                         {"MaterialBinding", {3, 0}},
                                                         {"Material", {4, 0}},
                                                         {"NormalBinding", {5, 0}},
                                                         {"Normal", {6, 0}},
                                                         {"ShapeHints", {7, 0}},
                                                         {"Texture2", {8, 0}},
                                                         {"Texture2Transform", {9, 0}},
                                                         {"TextureCoordinate2", {10, 0}},
                                                         {"MatrixTransform", {11, 7}},
                                                         {"Rotation", {11, 8}},
                                                         {"Scale", {11, 9}},
                                                         {"Transform", {11, 10}},
                                                         {"Translation", {11, 11}},
                                                         {"TransformSeparator", {11, 6}},
                                                         {"FontStyle", {12, 0}}};
    for (const NodeClass& nodeClass : nodeClasses()) {
        NodePool nodes;
        QvNode* const node = nodeClass.create(nodes);
        QvState state;
        capture([&] { node->traverse(state); }); // Shapes write what they are.
        const auto pushed = expected.find(nodeClass.name);
        for (std::size_t kind = 0; kind < kElementKinds; ++kind) {
            const QvElement* const top = state.stacks[kind];
            const bool isExpected =
                pushed != expected.end() && kind == static_cast<std::size_t>(pushed->second.kind);
            ASSERT_EQ(top != nullptr, isExpected) << nodeClass.name;
            if (isExpected) {
                EXPECT_EQ(top->data, node);
                EXPECT_EQ(static_cast<int>(top->type), pushed->second.type) << nodeClass.name;
            }
        }
    }
}

TEST(State, ElementsPrintTheirType) {
    const auto printed = [](QvElementType type) {
        return capture([type] { QvElement(nullptr, type).print(); }).out;
    };
    EXPECT_EQ(printed(QvElementType::Unknown), "\t\tElement of type Unknown\n");
    EXPECT_EQ(printed(QvElementType::NoOpTransform), "\t\tElement of type NoOpTransform\n");
    EXPECT_EQ(printed(QvElementType::FontStyle), "\t\tElement of type FontStyle\n");
}

} // namespace
} // namespace meshcast
