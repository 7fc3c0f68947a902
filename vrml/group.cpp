#include "vrml/group.h"

#include "vrml/input.h"
#include "vrml/scene_reader.h"

#include <utility>

namespace meshcast {

namespace {

/// What QvUnknownNode::getFieldTable reports: null when the newest unknown node is gone.
FieldTable* newestUnknownTable = nullptr;

} // namespace

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

QvUnknownNode::QvUnknownNode(std::string className) : className_(std::move(className)) {
    isBuiltIn_ = false;
    newestUnknownTable = &table_;
}

QvUnknownNode::~QvUnknownNode() {
    if (newestUnknownTable == &table_) {
        newestUnknownTable = nullptr;
    }
}

FieldTable& QvUnknownNode::getFieldTable() {
    return newestUnknownTable != nullptr ? *newestUnknownTable : table_;
}

bool QvUnknownNode::adoptField(InternedName typeName, InternedName fieldName) {
    std::unique_ptr<QvField> field = createField(typeName.view());
    if (field == nullptr) {
        return false;
    }
    field->container = this;
    getFieldTable().addField(fieldName.view(), *this, *field);
    fields_.push_back(std::move(field));
    return true;
}

} // namespace meshcast
