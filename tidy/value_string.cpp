#include "tidy/report.h"
#include "tidy/skip.h"
#include "tidy/value.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace meshcast::tidy {

namespace {

/// True for a string over several lines that holds braces and after which the node cannot continue.
/// Then its closing quote was meant to open another string.
bool runsOver(const ValuePlace& place, const StringToken& string) {
    const std::size_t newline = string.text.find('\n');
    if (newline == std::string_view::npos ||
        string.text.find_first_of("{}", newline) == std::string_view::npos) {
        return false;
    }
    Lexer& lexer = place.lexer;
    const char* const next = lexer.skipSpace(string.end());
    const std::string_view name = lexer.name(next);
    const char c = lexer.at(next);
    const bool goesOn = next == lexer.end() || c == '}' || c == '~' || place.mayFollow(name);
    return !goesOn && (name.empty() || lexer.at(lexer.skipSpace(next + name.size())) != '{');
}

PassedValue closeAtLineEnd(const ValuePlace& place, const char* first) {
    const char* const line = std::find(first, place.lexer.end(), '\n');
    // A quote right after a backslash would not end the string.
    place.edits.insert(line, line[-1] == '\\' ? " \"" : "\"",
                       "closed the string in " + quoted(place.field.name));
    return {line};
}

/// A text in doubled quotes (`""text""`), as written by programs that add quotes to a text that
/// already has them.
PassedValue unquoteTwice(const ValuePlace& place, const StringToken& empty) {
    const char* const first = empty.end();
    const char c = place.lexer.at(first);
    if (empty.text != "\"\"" || isSpace(c) || std::strchr("{}[]\",~", c) != nullptr) {
        return {};
    }
    const char* const line =
        std::find_if(first, place.lexer.end(), [](char end) { return end == '\n' || end == '"'; });
    if (place.lexer.at(line) != '"' || place.lexer.at(line + 1) != '"' || line[-1] == '\\') {
        return {};
    }
    place.edits.replace(empty.text.data(), line + 2,
                        "\"" + std::string(between(first, line)) + "\"",
                        "removed the doubled quotes in " + quoted(place.field.name));
    return {line + 2};
}

/// Replaces a list of strings by one string: joined as lines, or only the first if the field names
/// a file. Null when there is no list.
PassedValue joinStrings(const ValuePlace& place, const char* first) {
    Lexer& lexer = place.lexer;
    const bool inBrackets = lexer.at(first) == '[';
    const bool namesFile = place.field.name == "name" || place.field.name == "filename";
    std::string text;
    std::size_t count = 0;
    const char* end = first + (inBrackets ? 1 : 0);
    for (const char* p = end;;) {
        p = lexer.skipSpace(p);
        if (lexer.at(p) == ',') {
            ++p;
            continue;
        }
        const StringToken token = quotedOrWord(lexer, p);
        if (token.text.empty() || !token.isClosed || (!inBrackets && !token.isQuoted)) {
            break;
        }
        if (count == 0 || !namesFile) {
            text += count == 0 ? "" : "\n";
            text += token.inner();
            text += !token.isQuoted && text.ends_with('\\') ? " " : "";
        }
        ++count;
        p = end = token.end();
    }
    if (count == 0 || (!inBrackets && (count == 1 || namesFile))) {
        return {};
    }
    end = inBrackets ? skipToBracket(lexer, end) : end;
    const std::string done = count == 1  ? "removed the brackets"
                             : namesFile ? "kept the first of " + counted(count, "string")
                                         : "joined " + counted(count, "string");
    place.edits.replace(first, end, "\"" + text + "\"", done + " in " + quoted(place.field.name));
    return {end};
}

} // namespace

PassedValue passString(const ValuePlace& place, const char* p) {
    Lexer& lexer = place.lexer;
    const StringToken beforeBrace = lexer.stringBeforeBrace(p);
    if (!beforeBrace.isClosed || (beforeBrace.isQuoted && runsOver(place, beforeBrace))) {
        return closeAtLineEnd(place, p);
    }
    if (beforeBrace.isQuoted) {
        if (const PassedValue twice = unquoteTwice(place, beforeBrace)) {
            return twice;
        }
        const PassedValue joined = joinStrings(place, p);
        return joined ? joined : PassedValue{beforeBrace.end()};
    }
    // The reader takes a brace as part of a word.
    const char* const brace = beforeBrace.end();
    const bool isCut = lexer.at(brace) == '}' && place.bracesMatch();
    const std::string_view word = isCut ? beforeBrace.text : lexer.string(p).text;
    if (word.empty()) {
        return {};
    }
    if (!isCut) {
        // A bracket, or in a node without children a brace, is part of a word if the node can
        // continue after it.
        const char* const end = p + word.size();
        const bool hasBrace = !place.owner.isGroup && word.find('}') != std::string_view::npos;
        const char* const next = lexer.skipSpace(end);
        if ((word.front() != '[' && !hasBrace) || lexer.at(next) == '}' || lexer.at(next) == '~' ||
            place.mayFollow(lexer.name(next))) {
            if (const std::string clearly = inQuotes(word); !clearly.empty()) {
                place.edits.replace(p, end, clearly, "put quotes around the word " + quoted(word));
            }
            return {end};
        }
    }
    if (word.front() == '[') {
        return joinStrings(place, p);
    }
    const std::size_t size = std::min(word.find('}'), word.size());
    if (size == 0) {
        return {};
    }
    place.edits.insert(p + size, " ",
                       "separated " + quoted(word.substr(0, size)) + " from the brace after it");
    return {p + size};
}

} // namespace meshcast::tidy
