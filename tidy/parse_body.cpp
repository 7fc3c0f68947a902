#include "tidy/parse.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <utility>

namespace meshcast::tidy {

namespace {

using Kind = OpenNode::Kind;

void parseInLeaf(Parse& parse) {
    const Lexer& lexer = parse.lexer;
    const std::string_view name = lexer.name(parse.at);
    if (const Field* const known = parse.top().info->field(cutName(name)); known != nullptr) {
        parseField(parse, *known);
        return;
    }
    const std::string_view word = lexer.word(parse.at);
    const bool isNode = !word.empty() && parse.isBraceAfter(parse.at + word.size());
    if (name.empty()) {
        *parse.at == '{' ? parseOpeningBrace(parse) : parseStray(parse);
    } else if (name == "DEF" || name == "USE" || (isNode && findClassInAnyCase(word) != nullptr)) {
        closeLeafEarly(parse);
    } else if (isNode) {
        dropNode(parse, beginHere(parse), word);
    } else if (name == "NULL") {
        parseNull(parse);
    } else {
        parseUnknownField(parse, word);
    }
}

void parseInGroup(Parse& parse) {
    const Lexer& lexer = parse.lexer;
    const std::string_view name = lexer.name(parse.at);
    if (name.empty()) {
        *parse.at == '{' && !parse.isAtTop() ? parseOpeningBrace(parse) : parseStray(parse);
        return;
    }
    const Field* const known = parse.container().info->field(cutName(name));
    if (known != nullptr && parse.top().kind == Kind::kGroup && parse.top().isInFields) {
        if (parseField(parse, *known)) {
            parse.top().fieldsEnd = parse.edits.mark(parse.at);
        }
        return;
    }
    const std::string_view word = lexer.word(parse.at);
    if (name == "NULL") {
        parseNull(parse);
    } else if (name == "USE") {
        parseUse(parse);
    } else if (name == "DEF") {
        parseDef(parse);
    } else if (parse.isBraceAfter(parse.at + word.size())) {
        parseNode(parse, beginHere(parse), word);
    } else if (known != nullptr) {
        parseLateField(parse, *known);
    } else if (parse.isAtTop()) {
        parseStray(parse);
    } else {
        parseUnknownField(parse, word);
    }
}

/// The end of a dropped token. A quote that only closes on another line is dropped by itself: it is
/// more likely the end of a string that contains a quote.
const char* endOfStray(Lexer& lexer, const char* p) {
    const char* const end = skipToken(lexer, p);
    return *p == '"' && std::find(p, end, '\n') != end ? p + 1 : end;
}

} // namespace

void parseText(Parse& parse) {
    while (!parse.isFinished && parse.job.refusal.empty()) {
        parseStep(parse);
    }
}

void parseStep(Parse& parse) {
    parse.at = parse.lexer.skipSpace(parse.at);
    if (parse.at == parse.lexer.end()) {
        parseEnd(parse);
    } else if (*parse.at == '}') {
        parseClosingBrace(parse);
    } else if (parse.top().kind == Kind::kLeaf) {
        parseInLeaf(parse);
    } else {
        parseInGroup(parse);
    }
}

void parseClosingBrace(Parse& parse) {
    if (parse.open.size() == 1) {
        parseStray(parse);
    } else if (parse.top().kind == Kind::kClosedLeaf) {
        parse.edits.drop(parse.at, parse.at + 1);
        ++parse.at;
        parse.open.pop_back();
    } else {
        ++parse.at;
        closeNode(parse);
    }
}

/// A brace without a class before it. In a group it becomes a Group, so that its content is kept.
void parseOpeningBrace(Parse& parse) {
    const char* const brace = parse.at;
    if (parse.top().kind == Kind::kLeaf) {
        parse.at = skipBody(parse.lexer, brace, parse.source.onDropped);
        parse.edits.drop(brace, parse.at, "dropped braces without a class, and what is in them");
        return;
    }
    const Beginning beginning = beginHere(parse);
    parse.edits.insert(brace, "Group ", "put \"Group\" before braces without a class");
    openNode(parse, *findClass("Group"), beginning, brace);
}

/// Drops stray text up to the next position where something valid may begin.
void parseStray(Parse& parse) {
    Lexer& lexer = parse.lexer;
    struct Run {
        const char* first;
        const char* end;
    };
    std::vector<Run> runs;
    const bool isTopLevel = parse.top().kind == Kind::kTop;
    const std::string_view shown = between(parse.at, endOfStray(lexer, parse.at));
    std::size_t tokens = 0;
    for (;;) {
        const char* const token = parse.at;
        const char* const end = endOfStray(lexer, token);
        ++tokens;
        const bool isNear = !runs.empty() && std::all_of(runs.back().end, token, [](char c) {
            return c == ' ' || c == '\t';
        });
        if (isNear) {
            runs.back().end = end;
        } else {
            runs.push_back({token, end});
        }
        parse.at = lexer.skipSpace(end);
        const char c = lexer.at(parse.at);
        if (parse.at == lexer.end() || (c == '}' && parse.open.size() > 1) ||
            (c == '{' && !isTopLevel)) {
            break;
        }
        if (isNameStart(c)) {
            const std::string_view word = lexer.word(parse.at);
            const std::string_view name = lexer.name(parse.at);
            if (!isTopLevel || name == "DEF" || name == "USE" ||
                parse.isBraceAfter(parse.at + word.size())) {
                break;
            }
        }
    }
    std::string message =
        tokens == 1 ? "dropped " + quoted(shown)
                    : "dropped " + counted(tokens, "word") + " from " + quoted(shown) + " on";
    message +=
        isTopLevel && parse.roots > 0 ? " after the last node" : ", which makes no sense here";
    for (const Run& run : runs) {
        parse.edits.drop(run.first, run.end, message);
        message.clear();
    }
}

namespace {

/// Adds a newline to a comment that the end of the file cuts off. Removes carriage returns before
/// it, which would be converted as part of the line end in a second run.
void endComment(Parse& parse, std::string_view message) {
    const char* const end = parse.lexer.end();
    const char* first = end;
    while (first != parse.lexer.begin() && first[-1] == '\r') {
        --first;
    }
    parse.edits.replace(first, end, "\n", message);
}

} // namespace

void parseEnd(Parse& parse) {
    Lexer& lexer = parse.lexer;
    const Source& source = parse.source;
    const char* const end = lexer.end();
    bool endsInComment = lexer.endsInComment();
    if (endsInComment && parse.open.size() > 1) {
        endComment(parse, "");
        endsInComment = false;
    }
    const auto missing =
        std::count_if(parse.open.begin() + 1, parse.open.end(),
                      [](const OpenNode& node) { return node.kind != Kind::kClosedLeaf; });
    std::string message =
        "added " + counted(static_cast<std::size_t>(missing), "missing closing brace");
    while (parse.open.size() > 1 && parse.job.refusal.empty()) {
        if (parse.top().kind == Kind::kClosedLeaf) {
            parse.open.pop_back();
            continue;
        }
        parse.edits.insert(end, " }", message);
        message.clear();
        closeNode(parse);
    }
    parse.isFinished = true;
    const bool isWrapped = source.parent == nullptr && !parse.isPart && parse.roots > 1;
    if (isWrapped) {
        parse.edits.insertAt(parse.rootsBegin, "Group { ",
                             "put " + counted(parse.roots, "top-level node") + " into one Group",
                             parse.source.lineOf(parse.secondRoot));
        parse.edits.insertAt(parse.rootsEnd, " }");
    }
    if (parse.job.deepest + (isWrapped ? 1 : 0) > static_cast<std::size_t>(kMaxNestingDepth)) {
        parse.job.refusal = "is nested deeper than " + std::to_string(kMaxNestingDepth) + " levels";
    }
    // In a scene without nodes the reader goes on to the end, and expects a newline after each
    // comment.
    if (endsInComment && (parse.roots == 0 || source.parent != nullptr)) {
        endComment(parse, source.parent == nullptr ? "ended the last comment" : "");
    }
}

} // namespace meshcast::tidy
