#include "traverse/groups.h"

#include "traverse/state.h"
#include "vrml/messages.h"
#include "vrml/nodes.h"
#include "vrml/scene_reader.h"

#include <memory>
#include <utility>

namespace meshcast {

std::int32_t traversalNestingLevel = 0;

namespace {

/// Opens a group for the time of its walk. A scene can put a group inside itself (a node may USE
/// the name it bears), and can nest groups by USE deeper than any text does: such a group is left
/// out, which is reported once for each node.
class OpenGroup {
public:
    explicit OpenGroup(QvGroup& group) : group_(group), entered_(mayEnter(group)) {
        if (entered_) {
            group_.walkMarks.isOpen = true;
            ++traversalNestingLevel;
        }
    }
    OpenGroup(const OpenGroup&) = delete;
    OpenGroup& operator=(const OpenGroup&) = delete;
    ~OpenGroup() {
        if (entered_) {
            --traversalNestingLevel;
            group_.walkMarks.isOpen = false;
        }
    }

    explicit operator bool() const { return entered_; }

private:
    static bool mayEnter(QvGroup& group) {
        if (!group.walkMarks.isOpen && traversalNestingLevel < kMaxNestingDepth) {
            return true;
        }
        if (!group.walkMarks.isRefused) {
            group.walkMarks.isRefused = true;
            report(group);
        }
        return false;
    }

    static void report(const QvGroup& group) {
        constexpr const char* kOperation = "QvGroup::traverse";
        if (group.walkMarks.isOpen) {
            vrmlError(kOperation, "Node \"%s\" contains itself", group.nodeName().c_str());
        } else {
            vrmlError(kOperation, "Nesting deeper than %d levels at node \"%s\"", kMaxNestingDepth,
                      group.nodeName().c_str());
        }
    }

    QvGroup& group_;
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

void traverseScoped(QvGroup& group, QvState& state) {
    if (const OpenGroup open(group); open) {
        state.push();
        traverseAll(group, state);
        state.pop();
    }
}

} // namespace

void QvGroup::traverse(QvState& state) {
    if (const OpenGroup open(*this); open) {
        traverseAll(*this, state);
    }
}

void QvSeparator::traverse(QvState& state) {
    traverseScoped(*this, state);
}

void QvWWWAnchor::traverse(QvState& state) {
    traverseScoped(*this, state);
}

void QvSwitch::traverse(QvState& state) {
    constexpr std::int32_t kAllChildren = -3;
    const OpenGroup open(*this);
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
void QvLevelOfDetail::traverse(QvState& state) {
    const OpenGroup open(*this);
    if (open && getNumChildren() > 0) {
        getChild(0)->traverse(state);
    }
}

void QvTransformSeparator::traverse(QvState& state) {
    const OpenGroup open(*this);
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
void QvUnknownNode::traverse(QvState& /*state*/) {}

} // namespace meshcast
