#include "vrml/node.h"

#include "vrml/fields.h"
#include "vrml/group.h"
#include "vrml/input.h"

#include <memory>

namespace meshcast {

bool QvNode::readBody(VrmlInput& input) {
    return readFieldsDeclaration(input) && readFields(input, UnknownWord::kIsError);
}

bool QvNode::readFields(VrmlInput& input, UnknownWord policy) {
    const FieldTable& table = getFieldTable();
    if (table.fields().empty()) {
        return true;
    }
    for (;;) {
        InternedName name;
        if (!input.readName(name)) {
            return input.noErrorSoFar();
        }
        if (name.empty()) {
            return true;
        }
        const FieldTable::FieldEntry* const field = table.findField(name);
        if (field == nullptr) {
            if (policy == UnknownWord::kIsError) {
                input.readError("Unknown field \"%s\"", name.c_str());
                return false;
            }
            input.putBackWord(name.view());
            return true;
        }
        if (!readField(input, field->of(*this), name, field->words())) {
            return false;
        }
    }
}

bool QvNode::readFieldsDeclaration(VrmlInput& input) {
    // Few bodies begin with an f. Looking ahead avoids reading the first word of all others twice.
    char c = 0;
    if (!input.skipWhiteSpace() || !input.get(c)) {
        return input.noErrorSoFar();
    }
    input.putBack(c);
    InternedName word;
    if (c != 'f' || !input.readName(word)) {
        return true;
    }
    if (word.view() != "fields") {
        input.putBackWord(word.view());
        return true;
    }
    if (!readDeclarations(input)) {
        input.readError("Bad field specifications for node");
        return false;
    }
    return true;
}

bool QvNode::readDeclarations(VrmlInput& input) {
    // Kept: any character is accepted as the opening bracket.
    char c = 0;
    if (!input.skipWhiteSpace() || !input.get(c) || !input.skipWhiteSpace()) {
        return false;
    }
    if (input.readExpected(']')) {
        return true;
    }
    // A class of the catalogue ignores declarations. All other nodes are unknown nodes.
    auto* const adopter = !isBuiltIn() && getFieldTable().fields().empty()
                              ? static_cast<QvUnknownNode*>(this)
                              : nullptr;
    for (;;) {
        InternedName typeName;
        InternedName fieldName;
        if (!input.readName(typeName) || !input.readName(fieldName)) {
            return false;
        }
        if (adopter != nullptr && !adopter->adoptField(typeName, fieldName)) {
            return false;
        }
        if (!input.skipWhiteSpace() || !input.get(c)) {
            return false;
        }
        if (c == ']') {
            return true;
        }
        if (c != ',' || !input.skipWhiteSpace()) {
            return false;
        }
        if (input.readExpected(']')) {
            return true;
        }
    }
}

std::span<QvNode* const> NodePool::keep(std::span<QvNode* const> nodes) {
    if (nodes.empty()) {
        return {};
    }
    auto* const place =
        static_cast<QvNode**>(memory_.allocate(nodes.size_bytes(), alignof(QvNode*)));
    std::uninitialized_copy(nodes.begin(), nodes.end(), place);
    return {place, nodes.size()};
}

NodePool::~NodePool() {
    for (QvNode* const node : owners_) {
        node->~QvNode();
    }
}

} // namespace meshcast
