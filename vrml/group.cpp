#include "vrml/group.h"

#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <utility>
#include <vector>

namespace meshcast {

namespace {

// This and keepChildren are not inlined: their variables would be in each frame of the recursion
// over nested groups.
[[gnu::noinline]] void append(std::vector<QvNode*>& children, QvNode* child) {
    children.push_back(child);
}

} // namespace

bool QvGroup::readBody(VrmlInput& input) {
    return (isBuiltIn() || readFieldsDeclaration(input)) &&
           readFields(input, UnknownWord::kEndsFields) && readChildren(input);
}

bool QvGroup::readChildren(VrmlInput& input) {
    // The children of all groups that are being read, the innermost group's last.
    std::vector<QvNode*>& unfinished = input.childrenBeingRead();
    const std::size_t first = unfinished.size();
    for (;;) {
        QvNode* child = nullptr;
        if (!readNode(input, child)) {
            return false;
        }
        if (child == nullptr) {
            break;
        }
        append(unfinished, child);
    }
    keepChildren(input, first);
    return true;
}

[[gnu::noinline]] void QvGroup::keepChildren(VrmlInput& input, std::size_t first) {
    std::vector<QvNode*>& unfinished = input.childrenBeingRead();
    const ChildList kept = input.scene().keep(std::span(unfinished).subspan(first));
    children_ = kept.data();
    childCount_ = static_cast<std::uint32_t>(kept.size());
    unfinished.resize(first);
}

QvUnknownNode::QvUnknownNode(Scene& scene, InternedName className)
    : scene_(scene), className_(className) {
    isBuiltIn_ = false;
    scene.newestUnknownTable = &table_;
}

const FieldTable& QvUnknownNode::getFieldTable() const { return *scene_.newestUnknownTable; }

bool QvUnknownNode::adoptField(InternedName typeName, InternedName fieldName) {
    const std::optional<FieldType> type = findFieldType(typeName.view());
    if (!type) {
        return false;
    }
    OwnedField field = createField(*type);
    scene_.newestUnknownTable->addField(fieldName, *type, *field);
    fields_.push_back(std::move(field));
    return true;
}

} // namespace meshcast
