#include "traverse/shape_visitor.h"
#include "traverse/state.h"
#include "vrml/nodes.h"

#include <memory>

namespace meshcast {

namespace {

void traverseAll(const QvGroup& group, QvState& state) {
    for (const QvNode* const child : group.getChildList()) {
        child->traverse(state);
    }
}

void traverseScoped(const QvGroup& group, QvState& state) {
    if (state.enter(group, GroupScope::kAll)) {
        state.push();
        traverseAll(group, state);
        state.pop();
        state.leave(group);
    }
}

} // namespace

void QvGroup::traverse(QvState& state) const {
    if (state.enter(*this, GroupScope::kNothing)) {
        traverseAll(*this, state);
        state.leave(*this);
    }
}

void QvSeparator::traverse(QvState& state) const { traverseScoped(*this, state); }

void QvWWWAnchor::traverse(QvState& state) const { traverseScoped(*this, state); }

void QvSwitch::traverse(QvState& state) const {
    constexpr std::int32_t kAllChildren = -3;
    if (!state.enter(*this, GroupScope::kNothing)) {
        return;
    }
    const std::int32_t which = whichChild.value;
    if (which == kAllChildren) {
        traverseAll(*this, state);
    } else if (which >= 0 && which < getNumChildren()) {
        getChild(which)->traverse(state);
    }
    state.shapes().leaveSwitch(*this, state);
    state.leave(*this);
}

// The stream always holds the highest level of detail: there is no viewer to measure a distance to.
void QvLevelOfDetail::traverse(QvState& state) const {
    if (state.enter(*this, GroupScope::kNothing)) {
        if (getNumChildren() > 0) {
            getChild(0)->traverse(state);
        }
        state.leave(*this);
    }
}

void QvTransformSeparator::traverse(QvState& state) const {
    if (!state.enter(*this, GroupScope::kTransforms)) {
        return;
    }
    state.addElement(QvElementKind::Transformation,
                     std::make_unique<QvElement>(this, QvElementType::NoOpTransform));
    const std::int32_t marked = state.count(QvElementKind::Transformation);
    traverseAll(*this, state);
    // The marker stays until its level is closed. It has no effect on transformations.
    while (state.count(QvElementKind::Transformation) > marked) {
        state.popElement(QvElementKind::Transformation);
    }
    state.leave(*this);
}

// Since the meaning of an unknown class is unknown, shapes and properties inside it have no effect.
void QvUnknownNode::traverse(QvState& state) const { state.shapes().passUnknown(*this); }

} // namespace meshcast
