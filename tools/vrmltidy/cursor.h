#pragma once

#include "vrml/characters.h"

#include <string>
#include <string_view>

namespace meshcast::tidy {

/// A string as the reader takes it: in double quotes, or a word that runs to the next white space.
struct StringToken {
    /// The text that the string stands for.
    std::string value() const;

    std::string_view text; ///< As written, with its quotes.
    bool isQuoted = false;
    bool isClosed = true; ///< False for an opening quote that no other one follows.
};

/// A place in a text and where the text ends. Tokens are cut as the reader cuts them. Behind the
/// end stands a character that belongs to no number: a zero, or the brace that ends a node.
struct Cursor {
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
    /// The string that begins here.
    StringToken string() const;

    const char* at = nullptr;
    const char* end = nullptr;
    /// Set when a comment ran into the end: what is appended needs a line of its own.
    bool endsInComment = false;

private:
    void skipLongSpace();
};

/// Names are compared up to the length at which the reader cuts them.
std::string_view cutName(std::string_view name);

/// True where a `#` behind a point begins INF, IND, QNAN or SNAN: how some C libraries print what
/// is no number.
bool isPrintedNonNumber(const char* hash, const char* end);

} // namespace meshcast::tidy
