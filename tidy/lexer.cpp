#include "tidy/lexer.h"

#include "vrml/input.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace meshcast::tidy {

namespace {

/// The characters that end a word in any dialect of the language.
constexpr std::array<bool, 256> kWordEnds = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view("{}[]()\",;#|~ \t\n\v\f\r")) {
        table[static_cast<unsigned char>(c)] = true;
    }
    return table;
}();

bool isNan(std::string_view word) {
    const std::size_t sign = word.starts_with('-') || word.starts_with('+') ? 1 : 0;
    return word.size() == sign + 3 && (word[sign] | 0x20) == 'n' &&
           (word[sign + 1] | 0x20) == 'a' && (word[sign + 2] | 0x20) == 'n';
}

} // namespace

std::string_view StringToken::inner() const {
    if (!isQuoted) {
        return text;
    }
    return isClosed ? text.substr(1, text.size() - 2) : std::string_view();
}

std::string StringToken::value() const {
    const std::string_view written = inner();
    if (!isQuoted) {
        return std::string(written);
    }
    std::string value;
    for (std::size_t i = 0; i < written.size(); ++i) {
        i += written[i] == '\\' && i + 1 < written.size() && written[i + 1] == '"' ? 1 : 0;
        value += written[i];
    }
    return value;
}

const char* Lexer::skipLongSpace(const char* p) {
    for (;;) {
        while (p != end() && isSpace(*p)) {
            ++p;
        }
        if (p == end() || *p != '#') {
            return p;
        }
        const void* const newline = std::memchr(p, '\n', static_cast<std::size_t>(end() - p));
        if (newline == nullptr) {
            endsInComment_ = true;
            return end();
        }
        p = static_cast<const char*>(newline) + 1;
    }
}

std::string_view Lexer::name(const char* p) const {
    const char* last = p;
    if (p != end() && isNameStart(*p)) {
        last = std::find_if_not(p, end(), isNameCharacter);
    }
    return between(p, last);
}

std::string_view Lexer::word(const char* p) const {
    const char* last = p;
    while (last != end() && (!kWordEnds[static_cast<unsigned char>(*last)] ||
                             (*last == '#' && last != p && isPrintedNonNumber(last, end())))) {
        ++last;
    }
    if (at(last) == '(' && isNan(between(p, last))) {
        const char* const bracket = std::find_if_not(last + 1, end(), isNameCharacter);
        last = at(bracket) == ')' ? bracket + 1 : last;
    }
    return between(p, last);
}

StringToken Lexer::string(const char* p) {
    if (at(p) != '"') {
        const char* const last = space_.from(
            p, [this](const char* first) { return std::find_if(first, end(), isSpace); });
        return {between(p, last), false, true};
    }
    // A quote after a backslash never ends the string, even if another backslash is before it.
    const char* const quote = quote_.from(p + 1, [this](const char* first) {
        const char* found = std::find(first, end(), '"');
        while (found != end() && found[-1] == '\\') {
            found = std::find(found + 1, end(), '"');
        }
        return found;
    });
    const bool isClosed = quote != end();
    return {between(p, isClosed ? quote + 1 : p + 1), true, isClosed};
}

StringToken Lexer::stringBeforeBrace(const char* p) {
    if (at(p) == '"') {
        return string(p);
    }
    const auto endsWord = [](char c) { return isSpace(c) || c == '{' || c == '}'; };
    const char* const last = brace_.from(
        p, [this, endsWord](const char* first) { return std::find_if(first, end(), endsWord); });
    return {between(p, last), false, true};
}

StringToken quotedOrWord(Lexer& lexer, const char* p) {
    return lexer.at(p) == '"' ? lexer.string(p) : StringToken{lexer.word(p), false, true};
}

std::string_view cutName(std::string_view name) {
    return name.substr(0, VrmlInput::kMaxNameLength);
}

std::string inQuotes(std::string_view word) {
    if (word.find_first_of("{}") == std::string_view::npos || word.ends_with('\\')) {
        return {};
    }
    std::string quotedWord = "\"";
    for (const char c : word) {
        quotedWord.append(c == '"' ? "\\\"" : std::string(1, c));
    }
    return quotedWord.append("\"");
}

bool isPrintedNonNumber(const char* hash, const char* end) {
    static constexpr std::array<std::string_view, 4> kNames = {"INF", "IND", "QNAN", "SNAN"};
    const std::string_view rest = between(hash + 1, end);
    return hash[-1] == '.' && std::any_of(kNames.begin(), kNames.end(),
                                          [rest](auto name) { return rest.starts_with(name); });
}

} // namespace meshcast::tidy
