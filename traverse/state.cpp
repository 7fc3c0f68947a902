#include "traverse/state.h"

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

void QvState::push() {
    ++depth;
}

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

} // namespace meshcast
