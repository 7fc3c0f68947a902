#include "traverse/state.h"

#include "traverse/shape_visitor.h"
#include "vrml/diagnostics.h"
#include "vrml/scene_reader.h"

#include <cstdio>

namespace meshcast {

namespace {

constexpr std::array<const char*, 13> kTypeNames = {
    "Unknown",   "OrthographicCamera", "PerspectiveCamera", "DirectionalLight", "PointLight",
    "SpotLight", "NoOpTransform",      "MatrixTransform",   "Rotation",         "Scale",
    "Transform", "Translation",        "FontStyle"};

} // namespace

void QvElement::print() const {
    std::printf("\t\tElement of type %s\n", kTypeNames[static_cast<std::size_t>(type)]);
}

QvState::~QvState() {
    while (depth >= 0) {
        pop();
    }
}

void QvState::addElement(QvElementKind kind, std::unique_ptr<QvElement> element) {
    if (count(kind) >= kMaxElements && getTopElement(kind)->depth == depth) {
        popElement(kind);
    }
    QvElement*& top = stacks[indexOf(kind)];
    element->depth = depth;
    element->next = top;
    top = element.release();
    ++counts_[indexOf(kind)];
}

void QvState::push() { ++depth; }

void QvState::pop() {
    --depth;
    for (std::size_t kind = 0; kind < kElementKinds; ++kind) {
        while (stacks[kind] != nullptr && stacks[kind]->depth > depth) {
            popElement(static_cast<QvElementKind>(kind));
        }
    }
}

void QvState::popElement(QvElementKind kind) {
    QvElement*& top = stacks[indexOf(kind)];
    const std::unique_ptr<QvElement> dropped(top);
    top = dropped->next;
    --counts_[indexOf(kind)];
}

bool QvState::enter(const QvGroup& group, GroupScope scope) {
    if (group.groupNumber() >= openGroups_.size()) {
        openGroups_.resize(group.groupNumber() + 1);
    }
    const bool isOpen = openGroups_[group.groupNumber()];
    if (!isOpen && traversalNestingLevel < kMaxNestingDepth) {
        if (!shapes_.enterGroup(group, scope)) {
            return false;
        }
        openGroups_[group.groupNumber()] = true;
        ++traversalNestingLevel;
        return true;
    }
    if (!refusedGroups_.insert(&group).second) {
        return false;
    }
    if (isOpen) {
        report(diagnostics_, DiagnosticKind::kSceneError, 0,
               "QvGroup::traverse(): Node \"%s\" contains itself", group.nodeName().c_str());
    } else {
        report(diagnostics_, DiagnosticKind::kSceneError, 0,
               "QvGroup::traverse(): Nesting deeper than %d levels at node \"%s\"",
               kMaxNestingDepth, group.nodeName().c_str());
    }
    return false;
}

void QvState::leave(const QvGroup& group) {
    --traversalNestingLevel;
    openGroups_[group.groupNumber()] = false;
    shapes_.leaveGroup(group);
}

} // namespace meshcast
