#include "tidy/skip.h"

#include <algorithm>
#include <cstdint>

namespace meshcast::tidy {

namespace {

/// Skips tokens until `braces` and `brackets` are closed. In brackets, stops before a closing brace
/// that was not opened there.
const char* skipBalanced(Lexer& lexer, const char* p, std::int64_t braces, std::int64_t brackets,
                         const OnDefinition& onDefinition) {
    for (;;) {
        p = lexer.skipSpace(p);
        const char c = lexer.at(p);
        if (p == lexer.end() || (c == '}' && braces == 0)) {
            return p;
        }
        if (onDefinition && c == 'D' && lexer.word(p) == "DEF") {
            const StringToken name = lexer.stringBeforeBrace(lexer.skipSpace(p + 3));
            onDefinition(name, p);
            p = name.end();
            continue;
        }
        p = skipToken(lexer, p);
        braces += c == '{' ? 1 : 0;
        braces -= c == '}' ? 1 : 0;
        if (braces == 0) {
            brackets += c == '[' || c == '(' ? 1 : 0;
            brackets -= c == ']' || c == ')' ? 1 : 0;
            if (brackets <= 0 && (c == '}' || c == ']' || c == ')')) {
                return p;
            }
        }
    }
}

} // namespace

const char* skipToken(Lexer& lexer, const char* p) {
    if (lexer.at(p) == '"') {
        return lexer.string(p).end();
    }
    const std::string_view word = lexer.word(p);
    return p + std::max<std::size_t>(word.size(), 1);
}

const char* skipToBracket(Lexer& lexer, const char* p, const OnDefinition& onDefinition) {
    return skipBalanced(lexer, p, 0, 1, onDefinition);
}

const char* skipBody(Lexer& lexer, const char* p, const OnDefinition& onDefinition) {
    return skipBalanced(lexer, p + 1, 1, 0, onDefinition);
}

bool bracesMatch(std::string_view text) {
    Lexer lexer(text);
    std::int64_t open = 0;
    const char* p = lexer.skipSpace(lexer.begin());
    while (p != lexer.end()) {
        open += *p == '{' ? 1 : 0;
        open -= *p == '}' ? 1 : 0;
        p = lexer.skipSpace(skipToken(lexer, p));
    }
    return open == 0;
}

} // namespace meshcast::tidy
