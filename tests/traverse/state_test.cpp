#include "tests/support/conversion.h"
#include "tests/support/walk.h"

#include <gtest/gtest.h>

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
    Walk walk;
    QvState& state = walk.state;
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

TEST(State, TwoWalksCanShareAScene) {
    ReadScene scene("DEF a Group { Material { } Separator { Scale { } } USE a }");
    Walk one;
    Walk other;
    for (Walk* const walk : {&one, &other}) {
        // The group is open in both walks, and each reports the cycle.
        ASSERT_TRUE(walk->state.enter(scene.root<QvGroup>(), GroupScope::kNothing));
    }
    one.state.leave(scene.root<QvGroup>());
    scene.scene.root->traverse(one.state);
    scene.scene.root->traverse(other.state);
    const std::string circle = "VRML error in QvGroup::traverse(): Node \"a\" contains itself\n";
    EXPECT_EQ(one.messages.text, circle);
    EXPECT_EQ(other.messages.text, circle);
    EXPECT_EQ(one.state.material(), &scene.child<QvMaterial>(0));
    EXPECT_EQ(other.state.material(), nullptr);
}

} // namespace
} // namespace meshcast
