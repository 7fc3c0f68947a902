#pragma once

#include "vrml/characters.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// White space, brackets, and what else separates words in whatever dialect.
inline constexpr std::array<bool, 256> kWordEnds = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view("{}[]()\",;#|~ \t\n\v\f\r")) {
        table[static_cast<unsigned char>(c)] = true;
    }
    return table;
}();

constexpr bool endsWord(char c) { return kWordEnds[static_cast<unsigned char>(c)]; }

/// A string as the reader takes it: in double quotes, or a word that runs to the next white space.
struct StringToken {
    /// The text that the string stands for.
    std::string value() const;

    std::string_view text; ///< As written, with its quotes.
    bool isQuoted = false;
    bool isClosed = true; ///< False for a quote that no other one follows; it is all of the text.
};

/// A place in a text and where the text ends. Tokens are cut as the reader cuts them. The text ends
/// in a brace, or stands before a zero, so that numbers can be scanned without regard to its end.
struct Cursor {
    Cursor(const char* first, const char* last);

    bool atEnd() const { return at == end; }
    /// The character at hand, or a zero at the end.
    char peek() const { return at == end ? '\0' : *at; }
    char peekBehindSpace() const;

    /// Skips white space and comments.
    void skipSpace() {
        if (*at == ' ' && at != end) {
            ++at;
        }
        if (*at <= ' ' || *at == '#') {
            skipLongSpace();
        }
    }

    /// The name that begins here: letters, digits and `_`; may be empty.
    std::string_view name() const;
    /// The characters from here to the next white space, bracket, quote, comma, semicolon or bar.
    /// A number's `.#INF` belongs to the word though it looks like a comment.
    std::string_view word() const;
    /// The string that begins here, as the reader takes it. A word is cut behind `longest`
    /// characters, for those who only look whether it is a short one.
    StringToken string(std::size_t longest = std::string_view::npos) const;
    /// The string that begins here, where a word also ends in front of a brace.
    StringToken stringBeforeBrace() const;

    const char* at;
    const char* end;
    /// Set when a comment ran into the end: what is appended needs a line of its own.
    bool endsInComment = false;

private:
    void skipLongSpace();
    template <class EndsWord>
    StringToken stringUpTo(const char* last, EndsWord endsWord) const;

    /// The last quote that no backslash stands before: none behind it begins a string.
    const char* lastQuote_;
};

/// A word with braces in quotes, so that all see the braces as the reader does; empty for other
/// words and for those that quotes would change.
std::string inQuotes(std::string_view word);

/// Names are compared up to the length at which the reader cuts them.
std::string_view cutName(std::string_view name);

/// True where a `#` behind a point begins INF, IND, QNAN or SNAN: how some C libraries print what
/// is no number.
bool isPrintedNonNumber(const char* hash, const char* end);

} // namespace meshcast::tidy
