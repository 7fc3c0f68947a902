#include "tidy/parse.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <utility>

namespace meshcast::tidy {

using Kind = OpenNode::Kind;

/// Parses the beginning of a node, starting at its class.
void parseNode(Parse& parse, const Beginning& beginning, std::string_view className) {
    const char* const classEnd = className.data() + className.size();
    const NodeClass* info = findClass(className);
    StandIn other;
    if (info == nullptr) {
        if (parseRotationXYZ(parse, beginning, className)) {
            return;
        }
        other = standIn(parse, className);
        info = other.info != nullptr ? other.info : declaredClass(parse, className);
    }
    if (info == nullptr) {
        info = findClassInAnyCase(className);
        if (info == nullptr) {
            dropNode(parse, beginning, className);
            return;
        }
        parse.edits.replace(className.data(), classEnd, info->name,
                            "wrote " + quoted(className) + " as " + info->name);
    }
    parse.at = parse.lexer.skipSpace(classEnd);
    openNode(parse, *info, beginning, className.data());
    if (other.body != nullptr && parse.job.refusal.empty()) {
        parse.at = other.body;
        parse.top().fieldsEnd = parse.edits.mark(parse.at);
    }
}

/// Opens a node at its opening brace.
void openNode(Parse& parse, const NodeClass& info, const Beginning& beginning,
              const char* classBegin) {
    Job& job = parse.job;
    job.deepest = std::max(job.deepest, ++job.depth);
    if (std::max(job.depth, parse.open.size()) > static_cast<std::size_t>(kMaxNestingDepth)) {
        job.refusal = "is nested deeper than " + std::to_string(kMaxNestingDepth) + " levels";
        return;
    }
    addChild(parse, beginning.mark);
    if (!beginning.name.empty()) {
        Definition& definition = parse.source.names[beginning.name];
        definition = {};
        definition.source = beginning.begin;
        definition.isWritten = true;
        definition.writtenName = beginning.writtenName;
    }
    ++parse.at;
    OpenNode node;
    node.kind = info.isGroup ? Kind::kGroup : Kind::kLeaf;
    node.container = parse.open.size();
    node.info = &info;
    node.begin = beginning.begin;
    node.classBegin = classBegin;
    node.name = beginning.name;
    node.fieldsEnd = parse.edits.mark(parse.at);
    node.editsBefore = beginning.editsBefore;
    openScope(parse, node);
    parse.open.push_back(std::move(node));
    parse.leaf = {};

    // In a group of the catalogue, this would be children, not a declaration.
    if (info.isDeclared || !info.isGroup) {
        const char* const inside = parse.lexer.skipSpace(parse.at);
        const std::string_view word = parse.lexer.at(inside) == '"' && info.isDeclared
                                          ? parse.lexer.string(inside).text
                                          : parse.lexer.name(inside);
        const char* const end = info.isDeclared || word == "fields"
                                    ? endOfDeclaration(parse.lexer, inside + word.size(), nullptr)
                                    : nullptr;
        if (end != nullptr) {
            parse.at = end;
            parse.top().fieldsEnd = parse.edits.mark(end);
        }
    }
}

/// Closes the node whose closing brace has been read.
void closeNode(Parse& parse) {
    OpenNode node = std::move(parse.top());
    parse.open.pop_back();
    --parse.job.depth;
    closeScope(parse, node, parse.container());
    if (node.info->isInline && node.isInFields && parse.job.options.inlines != nullptr) {
        replaceInline(parse, node);
    }
    if (parse.isAtTop()) {
        parse.rootsEnd = parse.edits.mark(parse.at);
    }
    if (!parse.declared.empty() && parse.declared.back().get() == node.info) {
        parse.declared.pop_back();
    }
}

/// Counts a child or a top-level node.
void addChild(Parse& parse, const EditList::Mark& begin) {
    OpenNode& parent = parse.container();
    parent.isInFields = false;
    ++parent.children;
    if (parse.isAtTop()) {
        ++parse.roots;
        parse.rootsBegin = parse.roots == 1 ? begin : parse.rootsBegin;
        parse.secondRoot = parse.roots <= 2 ? parse.at : parse.secondRoot;
    }
}

/// Closes a node that cannot have children before a node in it. Either its closing brace is
/// missing, or the node is really inside. In the second case the extra brace is dropped later.
void closeLeafEarly(Parse& parse) {
    parse.edits.insert(parse.at, "} ",
                       "closed " + parse.top().info->name + " before the node in it");
    --parse.job.depth;
    OpenNode& leaf = parse.top();
    leaf.container = parse.open[parse.open.size() - 2].container;
    closeScope(parse, leaf, parse.container());
    leaf.kind = Kind::kClosedLeaf;
    if (parse.isAtTop()) {
        parse.rootsEnd = parse.edits.mark(parse.at);
    }
}

void dropNode(Parse& parse, const Beginning& beginning, std::string_view className) {
    const char* const brace = parse.lexer.skipSpace(className.data() + className.size());
    parse.at = skipBody(parse.lexer, brace, parse.source.onDropped);
    if (!beginning.name.empty()) {
        parse.source.names.erase(beginning.name);
    }
    const std::string message = "dropped the unknown node " + quoted(className);
    parse.edits.takeSince(beginning.editsBefore); // Undoes a rewritten name.
    if (parse.top().kind == Kind::kLeaf) {
        parse.edits.drop(beginning.begin, parse.at, message);
    } else {
        dropChild(parse, beginning.begin, message);
    }
}

void dropChild(Parse& parse, const char* first, const std::string& message) {
    OpenNode& parent = parse.container();
    if (!parent.info->picksChild) {
        parse.edits.drop(first, parse.at, message);
        return;
    }
    parse.edits.replace(first, parse.at, "Group { }", message);
    parent.isInFields = false;
    ++parent.children;
}

void parseNull(Parse& parse) {
    const char* const first = parse.at;
    parse.at += 4;
    const Kind kind = parse.top().kind;
    // At the end of a group the reader accepts it as the end of the children.
    if (kind == Kind::kGroup && parse.lexer.at(parse.lexer.skipSpace(parse.at)) == '}') {
        parse.container().isInFields = false;
    } else if (kind == Kind::kLeaf) {
        parse.edits.drop(first, parse.at, "dropped NULL");
    } else {
        dropChild(parse, first, "dropped NULL");
    }
}

} // namespace meshcast::tidy
