#include "tools/vrmltidy/skip.h"

#include "tools/vrmltidy/numbers.h"

#include <algorithm>
#include <cstdint>

namespace meshcast::tidy {

namespace {

/// Passes over tokens until `braces` and `brackets` are closed. In brackets a closing brace that
/// none opened ends the skip in front of it.
void skipBalanced(Cursor& cursor, std::int64_t braces, std::int64_t brackets,
                  const OnDefinition& onDefinition) {
    for (;;) {
        cursor.skipSpace();
        if (cursor.atEnd()) {
            return;
        }
        const char c = *cursor.at;
        if (c == '}' && braces == 0) {
            return;
        }
        if (onDefinition && c == 'D' && cursor.word() == "DEF") {
            const char* const definition = cursor.at;
            cursor.at += 3;
            cursor.skipSpace();
            onDefinition(cursor.stringBeforeBrace().value(), definition);
            continue;
        }
        skipToken(cursor);
        braces += c == '{' ? 1 : 0;
        braces -= c == '}' ? 1 : 0;
        if (braces == 0) {
            brackets += c == '[' || c == '(' ? 1 : 0;
            brackets -= c == ']' || c == ')' ? 1 : 0;
            if (brackets <= 0 && (c == '}' || c == ']' || c == ')')) {
                return;
            }
        }
    }
}

} // namespace

void skipToBracket(Cursor& cursor, const OnDefinition& onDefinition) {
    skipBalanced(cursor, 0, 1, onDefinition);
}

void skipBody(Cursor& cursor, const OnDefinition& onDefinition) {
    ++cursor.at;
    skipBalanced(cursor, 1, 0, onDefinition);
}

void skipToken(Cursor& cursor) {
    if (cursor.peek() == '"') {
        const StringToken string = cursor.string();
        cursor.at += string.isClosed ? string.text.size() : 1;
        return;
    }
    const std::string_view word = numberWord(cursor);
    cursor.at += std::max<std::size_t>(word.size(), 1);
}

bool bracesMatch(Cursor cursor) {
    std::int64_t open = 0;
    for (cursor.skipSpace(); !cursor.atEnd(); cursor.skipSpace()) {
        open += cursor.peek() == '{' ? 1 : 0;
        open -= cursor.peek() == '}' ? 1 : 0;
        skipToken(cursor);
    }
    return open == 0;
}

} // namespace meshcast::tidy
