#include "tidy/numbers.h"
#include "tidy/parse.h"

namespace meshcast::tidy {

namespace {

using Kind = OpenNode::Kind;

/// The end of a word with what belongs to it: the bars of a mask, a bracket, or the name of a DEF
/// or USE.
const char* endOfWordValue(Parse& parse, const char* p, bool mayBeNode) {
    Lexer& lexer = parse.lexer;
    const std::string_view word = lexer.word(p);
    const bool isUse = word == "USE" || word == "DEF";
    if (word.empty() || parse.owner().field(cutName(word)) != nullptr ||
        (!mayBeNode && (isUse || parse.isBraceAfter(p + word.size())))) {
        return p;
    }
    p += word.size();
    if (isUse) {
        const StringToken name = lexer.stringBeforeBrace(lexer.skipSpace(p));
        p = name.end();
        if (word == "DEF") {
            parse.source.onDropped(name, word.data());
            const char* const classBegin = lexer.skipSpace(p);
            p = classBegin + lexer.word(classBegin).size();
        }
    }
    for (const char* bar = lexer.skipSpace(p); lexer.at(bar) == '|'; bar = lexer.skipSpace(p)) {
        p = lexer.skipSpace(bar + 1);
        p += lexer.word(p).size();
    }
    const char* const bracket = lexer.skipSpace(p);
    return mayBeNode && lexer.at(bracket) == '['
               ? skipToBracket(lexer, bracket + 1, parse.source.onDropped)
               : p;
}

/// The end of a value of any kind. A word with which the node may continue is not a value.
const char* endOfAnyValue(Parse& parse, const char* p, bool mayBeNode) {
    Lexer& lexer = parse.lexer;
    const char* const first = lexer.skipSpace(p);
    const char c = lexer.at(first);
    if (c == '~') {
        return first + 1;
    }
    if (c == '[' || c == '(') {
        p = skipToBracket(lexer, first + 1, parse.source.onDropped);
    } else if (c == '"' || beginsNumber(lexer, first)) {
        const char* next = first;
        while (lexer.at(next) == '"' || lexer.at(next) == ',' || beginsNumber(lexer, next)) {
            p = skipToken(lexer, next);
            next = lexer.skipSpace(p);
        }
    } else {
        const char* const end = endOfWordValue(parse, first, mayBeNode);
        if (end == first) {
            // A body that belongs to no word is all that may be dropped here.
            return mayBeNode && c == '{' ? skipBody(lexer, first, parse.source.onDropped) : p;
        }
        p = end;
    }
    const char* const brace = lexer.skipSpace(p);
    return mayBeNode && lexer.at(brace) == '{' ? skipBody(lexer, brace, parse.source.onDropped) : p;
}

} // namespace

/// Parses a known field; false when it had to be dropped.
bool parseField(Parse& parse, const Field& known) {
    Lexer& lexer = parse.lexer;
    const char* const first = parse.at;
    const char* const value = lexer.skipSpace(first + lexer.name(first).size());
    if (lexer.at(value) == '~') {
        parse.at = value + 1;
        return true;
    }
    const std::size_t count = parse.edits.edits().size();
    const ValuePlace place{lexer, parse.edits, parse.owner(), known, parse.source.bracesMatch};
    const PassedValue passed = passValue(place, value);
    if (!passed) {
        const char* const end = endOfAnyValue(parse, value, false);
        const bool hasNone = end == value;
        parse.at = hasNone ? first + lexer.name(first).size() : end;
        parse.edits.drop(first, parse.at,
                         "dropped the field " + quoted(known.name) +
                             (hasNone ? ", which has no value" : ", whose value is invalid"));
        return false;
    }
    const char* const next = lexer.skipSpace(passed.end);
    parse.at = lexer.at(next) == '~' ? next + 1 : passed.end;
    const std::string_view meant = parse.edits.edits().size() == count
                                       ? between(value, passed.end)
                                       : parse.edits.edits().back().replacement;
    std::string moved;
    if (parse.source.parent != nullptr && parse.owner().namesImage && known.name == "filename") {
        moved = imageNameFromOutside(parse.source, meant);
    }
    if (!moved.empty()) {
        const std::vector<Edit> before = takeEditsFrom(parse, value);
        const std::string message = "wrote the file " + quoted(meant) + " as " + quoted(moved);
        parse.edits.replace(value, passed.end, moved, message);
        parse.edits.quote(passed.end, before);
    } else if (leavesPointsOpen(known, parse.owner(), meant)) {
        takeEditsFrom(parse, first); // The number is written when the node ends.
        parse.edits.drop(first, parse.at);
    } else {
        noteField(parse, known, meant, passed.count);
    }
    if (parse.top().kind == Kind::kLeaf) {
        parse.top().fieldsEnd = parse.edits.mark(parse.at);
    }
    return true;
}

/// Moves a group's field that comes after its children to the other fields. The reader would take
/// it for a node.
void parseLateField(Parse& parse, const Field& known) {
    const char* const first = parse.at;
    const std::size_t count = parse.edits.edits().size();
    if (!parseField(parse, known)) {
        return;
    }
    std::vector<Edit> edits = parse.edits.takeSince(count);
    const auto offset = static_cast<std::size_t>(first - parse.edited.data());
    const std::string_view text = between(first, parse.at);
    for (Edit& edit : edits) {
        edit.line = parse.source.lineOf(parse.edited.data() + edit.offset);
        edit.offset -= offset;
    }
    std::string moved(1, ' ');
    moved.append(applyEdits(text, edits)).append(" ");
    parse.edits.insertAt(parse.container().fieldsEnd, moved);
    parse.edits.drop(first, parse.at,
                     "moved the field " + quoted(known.name) + " before the children");
    parse.edits.quote(parse.at, edits);
}

void parseUnknownField(Parse& parse, std::string_view word) {
    const char* const first = parse.at;
    const bool isLeaf = parse.top().kind == Kind::kLeaf;
    const Field* const meant = parse.owner().fieldInAnyCase(word);
    if (meant != nullptr && (isLeaf || parse.top().isInFields)) {
        const std::size_t count = parse.edits.edits().size();
        parse.edits.replace(first, first + word.size(), meant->name,
                            "wrote " + quoted(word) + " as " + meant->name);
        if (!parseField(parse, *meant)) {
            // The field is dropped as a whole, so an edit of its name would overlap.
            std::vector<Edit> edits = parse.edits.takeSince(count);
            parse.edits.drop(first, parse.at, edits.back().message);
        } else if (!isLeaf) {
            parse.top().fieldsEnd = parse.edits.mark(parse.at);
        }
        return;
    }
    parse.at = first + word.size();
    if (findClass(word) != nullptr) {
        parse.edits.drop(first, parse.at,
                         "dropped the word " + quoted(word) + ", which no brace follows");
        return;
    }
    parse.at = endOfAnyValue(parse, parse.at, true);
    parse.edits.drop(first, parse.at,
                     "dropped the unknown field " + quoted(word) + " of " + parse.owner().name);
}

} // namespace meshcast::tidy
