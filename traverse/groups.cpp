#include "traverse/state.h"
#include "vrml/nodes.h"

#include <memory>

namespace meshcast {

namespace {

/// A group that is open as long as this lives, unless it must be left out.
class OpenGroup {
public:
    OpenGroup(const QvGroup& group, QvState& state)
        : group_(group), state_(state), entered_(state.enter(group)) {}
    OpenGroup(const OpenGroup&) = delete;
    OpenGroup& operator=(const OpenGroup&) = delete;
    ~OpenGroup() {
        if (entered_) {
            state_.leave(group_);
        }
    }

    explicit operator bool() const { return entered_; }

private:
    const QvGroup& group_;
    QvState& state_;
    bool entered_;
};

void traverseAll(const QvGroup& group, QvState& state) {
    const std::int32_t count = group.getNumChildren();
    for (std::int32_t i = 0; i < count; ++i) {
        // Nodes that USE brings together lie anywhere in memory.
        if (i + 1 < count) {
            __builtin_prefetch(group.getChild(i + 1));
        }
        group.getChild(i)->traverse(state);
    }
}

void traverseScoped(const QvGroup& group, QvState& state) {
    if (const OpenGroup open(group, state); open) {
        state.push();
        traverseAll(group, state);
        state.pop();
    }
}

} // namespace

void QvGroup::traverse(QvState& state) const {
    if (const OpenGroup open(*this, state); open) {
        traverseAll(*this, state);
    }
}

void QvSeparator::traverse(QvState& state) const {
    traverseScoped(*this, state);
}

void QvWWWAnchor::traverse(QvState& state) const {
    traverseScoped(*this, state);
}

void QvSwitch::traverse(QvState& state) const {
    constexpr std::int32_t kAllChildren = -3;
    const OpenGroup open(*this, state);
    if (!open) {
        return;
    }
    const std::int32_t which = whichChild.value;
    if (which == kAllChildren) {
        traverseAll(*this, state);
    } else if (which >= 0 && which < getNumChildren()) {
        getChild(which)->traverse(state);
    }
}

// Whatever the viewer's distance would be: the stream holds the highest level of detail.
void QvLevelOfDetail::traverse(QvState& state) const {
    const OpenGroup open(*this, state);
    if (open && getNumChildren() > 0) {
        getChild(0)->traverse(state);
    }
}

void QvTransformSeparator::traverse(QvState& state) const {
    const OpenGroup open(*this, state);
    if (!open) {
        return;
    }
    state.addElement(QvElementKind::Transformation,
                     std::make_unique<QvElement>(this, QvElementType::NoOpTransform));
    const std::int32_t marked = state.count(QvElementKind::Transformation);
    traverseAll(*this, state);
    // The marker stays: it transforms nothing, and goes with the level that it stands on.
    while (state.count(QvElementKind::Transformation) > marked) {
        state.popElement(QvElementKind::Transformation);
    }
}

// What an unknown class means is unknown: neither shapes nor properties inside it take effect.
void QvUnknownNode::traverse(QvState& /*state*/) const {}

} // namespace meshcast
