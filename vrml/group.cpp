#include "vrml/group.h"

#include "vrml/input.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <utility>

namespace meshcast {

bool QvGroup::readBody(VrmlInput& input) {
    return (isBuiltIn() || readFieldsDeclaration(input)) &&
           readFields(input, UnknownWord::kEndsFields) && readChildren(input);
}

bool QvGroup::readChildren(VrmlInput& input) {
    for (;;) {
        QvNode* child = nullptr;
        if (!readNode(input, child)) {
            return false;
        }
        if (child == nullptr) {
            return true;
        }
        appendDoubling(children_, child);
    }
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
    std::unique_ptr<QvField> field = createField(*type);
    scene_.newestUnknownTable->addField(fieldName, *type, *field);
    fields_.push_back(std::move(field));
    return true;
}

} // namespace meshcast
