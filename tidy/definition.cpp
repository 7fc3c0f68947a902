#include "tidy/parse.h"
#include "vrml/characters.h"

#include <algorithm>
#include <utility>

// DEF and USE.

namespace meshcast::tidy {

namespace {

/// Whether a string is a usable name. For the reader, names end at their first zero byte.
bool isNodeName(const StringToken& name) {
    return !name.inner().empty() && name.inner().front() != '\0';
}

/// True for a name that needs no quotes, neither for the filter nor for other programs.
bool isPlainName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return isNameCharacter(c) || c == '-' || c == '.' || c == ':';
    });
}

/// The name after DEF or USE. For the reader a brace is part of it. Here it is only if the braces
/// of the scene do not match otherwise.
StringToken nameAt(Parse& parse, const char* p, bool isDefinition) {
    constexpr std::size_t kLongestBracedName = 256;
    Lexer& lexer = parse.lexer;
    const StringToken name = lexer.stringBeforeBrace(p);
    const char brace = lexer.at(name.end());
    if (name.isQuoted || (brace != '{' && brace != '}') ||
        !(isDefinition ? !parse.source.bracesMatch() : parse.source.hasBracedNames)) {
        return name;
    }
    const StringToken whole = lexer.string(p);
    const bool isKnown =
        whole.text.size() < kLongestBracedName &&
        (isDefinition || parse.source.names.find(whole.nodeName()) != parse.source.names.end());
    return isKnown ? whole : name;
}

/// Sets the name of a node and rewrites it if needed: with quotes only if it holds braces or
/// spaces, and renamed if the name is taken.
void writeName(Parse& parse, Beginning& beginning, const StringToken& name) {
    beginning.name = name.nodeName();
    beginning.writtenName = parse.source.nameToWrite(beginning.name);
    std::string message;
    if (beginning.writtenName.empty() && !name.isQuoted) {
        beginning.writtenName = inQuotes(name.text);
        message = "put quotes around the name " + quoted(beginning.name);
    }
    const bool unquotes = name.isQuoted && isPlainName(name.value());
    if (unquotes) {
        message = "removed the quotes around the name " + quoted(beginning.name);
    } else if (beginning.writtenName.empty()) {
        return;
    }
    std::string written = beginning.writtenName.empty() ? beginning.name : beginning.writtenName;
    written.insert(0, name.text.data() == beginning.begin + 3 ? 1 : 0, ' ');
    written.append(isSpace(parse.lexer.at(name.end())) ? 0 : 1, ' ');
    parse.edits.replace(name.text.data(), name.end(), written, message);
}

/// The class of a node after a few words, which are the rest of a name with spaces in it.
std::string_view classAfterWords(Parse& parse, const char* p) {
    constexpr int kMostWords = 8;
    Lexer& lexer = parse.lexer;
    for (int i = 0; i < kMostWords; ++i) {
        const std::string_view word = lexer.name(p);
        if (!word.empty() && parse.isBraceAfter(p + word.size())) {
            return findClassInAnyCase(word) != nullptr ? word : std::string_view();
        }
        const std::string_view skipped = lexer.word(p);
        if (skipped.empty() || skipped == "DEF" || skipped == "USE") {
            break;
        }
        p = lexer.skipSpace(p + skipped.size());
    }
    return {};
}

/// Repairs a DEF that is not followed by a name and a node with a class.
void mendDefinition(Parse& parse, Beginning beginning, const StringToken& name) {
    Lexer& lexer = parse.lexer;
    const char* const first = name.text.data();
    const char* const end = name.end();
    const char* const next = lexer.skipSpace(end);
    const bool isClass = findClassInAnyCase(name.text) != nullptr;
    const bool isName = name.isClosed && isNodeName(name);
    if (lexer.at(next) == '{' && !isClass && isName) {
        const std::size_t count = parse.edits.edits().size();
        writeName(parse, beginning, name);
        const bool isWritten = parse.edits.edits().size() != count;
        parse.edits.insert(end, isWritten && end != next ? "Group" : " Group ",
                           "put \"Group\" after the name " + quoted(name.text));
        parse.at = next;
        openNode(parse, *findClass("Group"), beginning, next);
        return;
    }
    const std::string_view className = isName ? classAfterWords(parse, next) : "";
    if (!className.empty()) {
        writeName(parse, beginning, name);
        parse.edits.drop(end, className.data(), "cut the name at " + quoted(name.text));
        parseNode(parse, beginning, className);
        return;
    }
    // "DEF Cube {" has no name. In all other cases only the name is known.
    const bool keepsWord = lexer.at(next) == '{' && isClass;
    parse.at = keepsWord ? first : end;
    parse.edits.drop(beginning.begin, parse.at,
                     keepsWord ? "dropped a DEF without a name" : "dropped a DEF without a node");
}

/// Repeats a definition in place of a USE. False when its node would only be dropped, or the text
/// would grow too much.
bool restore(Parse& parse, const char* use, const char* useEnd, std::string_view name,
             const char* definition, const std::string& why) {
    Job& job = parse.job;
    Lexer whole(parse.source.body);
    const StringToken nameToken = whole.stringBeforeBrace(whole.skipSpace(definition + 3));
    const char* const classBegin = whole.skipSpace(nameToken.end());
    const std::string_view className = whole.name(classBegin);
    const char* const brace = whole.skipSpace(classBegin + className.size());
    if (findClassInAnyCase(className) == nullptr || whole.at(brace) != '{' ||
        job.restoring == kDeepestRestoring) {
        return false;
    }
    const std::string_view part = between(definition, skipBody(whole, brace));
    if (part.size() > job.mayStillRepeat) {
        return false;
    }
    job.mayStillRepeat -= part.size();
    ++job.restoring;
    Parse restored(parse.source, part, part);
    restored.isPart = true;
    parseText(restored);
    --job.restoring;
    if (!job.refusal.empty()) {
        return true;
    }
    std::vector<Edit> edits = restored.edits.finish();
    // The definitions in it now count as written, so it is kept even if it exceeds the limit. Later
    // ones are not.
    job.mayStillRepeat -= std::min<std::uint64_t>(job.mayStillRepeat, editedLength(part, edits));
    for (Edit& edit : edits) {
        edit.line = edit.line != 0 ? edit.line : parse.source.lineOf(part.data() + edit.offset);
    }
    parse.edits.replace(use, useEnd, job.store.take(applyEdits(part, edits)),
                        "repeated the definition of " + quoted(name) + " here" + why);
    parse.edits.quote(useEnd, edits);
    return true;
}

/// The part of a word after USE that is the name: all of it, or the part before a bracket or comma.
/// The total work is limited, because looking up long words again and again could take long.
std::string_view writtenName(Source& source, const StringToken& token) {
    const std::size_t cut =
        token.isQuoted ? std::string_view::npos : token.text.find_first_of("[](),;\"");
    if (cut == std::string_view::npos) {
        return token.text;
    }
    if (source.mayStillCompare >= token.text.size()) {
        if (source.names.find(token.nodeName()) != source.names.end()) {
            return token.text;
        }
        source.mayStillCompare -= token.text.size();
    }
    return token.text.substr(0, cut);
}

} // namespace

Beginning beginHere(Parse& parse) {
    return {parse.at, parse.edits.edits().size(), parse.edits.mark(parse.at), {}, {}};
}

/// Parses DEF, its name, and the node after it up to the opening brace.
void parseDef(Parse& parse) {
    Lexer& lexer = parse.lexer;
    Beginning beginning = beginHere(parse);
    const char* const place = lexer.skipSpace(parse.at + 3);
    const StringToken name = nameAt(parse, place, true);
    const char* const next = lexer.skipSpace(name.end());
    const std::string_view className = lexer.name(next);
    if (!isNodeName(name) || className.empty() || !parse.isBraceAfter(next + className.size())) {
        mendDefinition(parse, std::move(beginning), lexer.stringBeforeBrace(place));
        return;
    }
    parse.source.hasBracedNames =
        parse.source.hasBracedNames || name.inner().find_first_of("{}") != std::string_view::npos;
    writeName(parse, beginning, name);
    parse.at = next;
    parseNode(parse, beginning, className);
}

void parseUse(Parse& parse) {
    Source& source = parse.source;
    const char* const first = parse.at;
    const EditList::Mark mark = parse.edits.mark(first);
    const StringToken token = nameAt(parse, parse.lexer.skipSpace(first + 3), false);
    const std::string_view written = writtenName(source, token);
    const std::string name =
        StringToken{written, token.isQuoted && written.size() == token.text.size()}.nodeName();
    const auto found = source.names.find(name);
    const char* const end = written.empty() ? first + 3 : written.data() + written.size();
    parse.at = end;
    if (found == source.names.end()) {
        dropChild(parse, first, "dropped the USE of " + quoted(name) + ", which is not defined");
        return;
    }
    const Definition definition = found->second;
    const bool isForOtherPoints =
        definition.pointsWritten >= 0 && definition.pointsWritten != parse.job.coordinates.count;
    const bool isRestored = (!definition.isWritten || isForOtherPoints) &&
                            restore(parse, first, end, name, definition.source,
                                    definition.isWritten ? ", for other coordinates"
                                                         : ", because it was in something dropped");
    if (!definition.isWritten && !isRestored) {
        source.names.erase(name);
        dropChild(parse, first,
                  "dropped the USE of " + quoted(name) + ", whose definition had to be dropped");
        return;
    }
    addChild(parse, mark);
    if (!isRestored) {
        useScope(parse, definition);
        if (!definition.writtenName.empty()) {
            parse.edits.replace(written.data(), end, definition.writtenName);
        }
        if (!token.isQuoted && end != parse.lexer.end() && !isSpace(*end)) {
            parse.edits.insert(end, " ",
                               "separated the name " + quoted(name) + " from what follows it");
        }
    }
    if (parse.isAtTop()) {
        parse.rootsEnd = parse.edits.mark(parse.at);
    }
}

} // namespace meshcast::tidy
