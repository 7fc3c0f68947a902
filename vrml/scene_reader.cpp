#include "vrml/scene_reader.h"

#include "vrml/catalogue.h"
#include "vrml/input.h"
#include "vrml/scene.h"

#include <string>
#include <string_view>

// readNode and the nodes' readBody and readChildren call one another, once for each level of
// nesting. What is needed only before or after a body is kept in functions of its own, so that
// these frames stay small and a scene of the greatest depth fits the stack, even in a sanitizer
// build.

namespace meshcast {

namespace {

constexpr char kOpen = '{';
constexpr char kClose = '}';

bool readBrace(VrmlInput& input, char brace) {
    char c = 0;
    if (!input.skipWhiteSpace() || !input.get(c)) {
        input.readError("Expected '%c'; got EOF", brace);
        return false;
    }
    if (c != brace) {
        input.readError("Expected '%c'; got '%c'", brace, c);
        return false;
    }
    return true;
}

/// Reads the name of a node. It may hold any character, but ends at its first zero byte, as it does
/// in messages.
bool readNodeName(VrmlInput& input, InternedName& name) {
    std::string text;
    const bool isRead = input.readString(text);
    name = input.scene().intern(std::string_view(text).substr(0, text.find('\0')));
    return isRead;
}

/// Reads the name after USE and finds its node.
bool readReference(VrmlInput& input, QvNode*& node) {
    InternedName name;
    if (!readNodeName(input, name)) {
        input.readError("Premature end of file after USE");
        return false;
    }
    node = input.scene().references()[name];
    if (node == nullptr) {
        input.readError("Unknown reference \"%s\"", name.c_str());
    }
    return node != nullptr;
}

/// Reads the name after DEF and the class name after that.
bool readDefinition(VrmlInput& input, InternedName& name, InternedName& className) {
    bool ok = true;
    const bool named = readNodeName(input, name);
    className = InternedName();
    if (!named || !input.readName(className)) {
        input.readError("Premature end of file after DEF");
        ok = false;
    }
    if (name.empty()) {
        input.readError("No name given after ");
        ok = false;
    }
    if (className.empty()) {
        input.readError("Invalid definition of %s", name.c_str());
        ok = false;
    }
    return ok;
}

/// Makes a node of a class. A class outside the catalogue must begin its body with the word
/// "fields", which is put back. Reports any other unknown class.
QvNode* createFromInput(VrmlInput& input, InternedName className) {
    if (const ClassInfo* const known = findClass(className)) {
        return known->create(input.scene());
    }
    std::string word;
    if (!input.readString(word) || word != "fields") {
        input.readError("Unknown class \"%s\"", className.c_str());
        return nullptr;
    }
    input.putBackWord(word);
    return input.scene().make<QvUnknownNode>(input.scene(), className);
}

enum class Opened {
    kBody,           ///< A node was made, and its body follows.
    kUnreadableBody, ///< No node was made for the body that follows.
    kNoBody,         ///< USE named a node, or no node follows.
    kFailed,
};

/// Reads a node up to and including the opening brace of its body, if it has one.
[[gnu::noinline]] Opened openNode(VrmlInput& input, QvNode*& node) {
    static const InternedName kNull = catalogueName("NULL");
    static const InternedName kUse = catalogueName("USE");
    static const InternedName kDef = catalogueName("DEF");

    node = nullptr;
    InternedName className;
    if (!input.readName(className)) {
        return input.noErrorSoFar() ? Opened::kNoBody : Opened::kFailed;
    }
    if (className.empty() || className == kNull) {
        return Opened::kNoBody;
    }
    if (className == kUse) {
        return readReference(input, node) ? Opened::kNoBody : Opened::kFailed;
    }
    InternedName name;
    if (className == kDef && !readDefinition(input, name, className)) {
        return Opened::kFailed;
    }
    if (!readBrace(input, kOpen)) {
        return Opened::kFailed;
    }
    if (input.nestingDepth() >= kMaxNestingDepth) {
        input.readError("Nesting deeper than %d levels", kMaxNestingDepth);
        return Opened::kUnreadableBody;
    }
    node = createFromInput(input, className);
    if (node == nullptr) {
        return Opened::kUnreadableBody;
    }
    if (!name.empty()) {
        input.scene().references()[name] = node;
        input.scene().setName(*node, name, input.diagnostics());
    }
    return Opened::kBody;
}

/// Succeeds if the reader has met the end of an input that holds no node. Otherwise reports the
/// next character. A byte 255 that ended the last token was not put back; when nothing follows it,
/// kEndOfFile is reported in its place, which is the same byte.
bool endsWithoutNode(VrmlInput& input) {
    if (input.metEnd()) {
        return true;
    }
    char c = 0;
    input.get(c);
    input.readError("Extra characters ('%c') found in input", c);
    return false;
}

} // namespace

bool readNode(VrmlInput& input, QvNode*& node) {
    const Opened opened = openNode(input, node);
    if (opened == Opened::kNoBody || opened == Opened::kFailed) {
        return opened == Opened::kNoBody;
    }
    ++input.nestingDepth();
    const bool isRead = opened == Opened::kBody && node->readBody(input);
    --input.nestingDepth();
    if (!isRead) {
        input.skipBody();
    }
    if (!isRead || !readBrace(input, kClose)) {
        node = nullptr;
        return false;
    }
    return true;
}

bool readScene(VrmlInput& input) {
    QvNode*& root = input.scene().root;
    if (!readNode(input, root)) {
        root = nullptr;
        return false;
    }
    return root != nullptr || endsWithoutNode(input);
}

bool readScene(Scene& scene, ByteSource& source, Diagnostics& diagnostics) {
    VrmlInput input(scene, source, diagnostics);
    return readScene(input);
}

} // namespace meshcast
