#pragma once

#include "vrml/characters.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace meshcast::tidy {

/// The part of a text between two places.
inline std::string_view between(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

/// A string as the reader sees it: in double quotes, or a word up to the next white space.
struct StringToken {
    /// The value of the string, without quotes and escapes.
    std::string value() const;
    /// The string as a name after DEF or USE: names end at their first zero byte.
    std::string nodeName() const {
        const std::string name = value();
        return name.substr(0, name.find('\0'));
    }
    /// The text between the quotes, as written; the whole text of a word.
    std::string_view inner() const;
    const char* end() const { return text.data() + text.size(); }

    std::string_view text; ///< As written, with its quotes.
    bool isQuoted = false;
    bool isClosed =
        true; ///< False when the closing quote is missing; then `text` is just the opening quote.
};

/// Splits a text into tokens by the character classes and rules of the reader. Positions are
/// pointers into the text. The text is followed by a zero byte or ends in a brace, so that numbers
/// can be scanned without checking for the end.
///
/// The ends of long tokens are cached. So the time stays linear even for a text in which every byte
/// could begin a token that reaches to the end.
class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::string_view text() const { return text_; }
    const char* begin() const { return text_.data(); }
    const char* end() const { return text_.data() + text_.size(); }
    /// The character at `p`, or zero at the end.
    char at(const char* p) const { return p == end() ? '\0' : *p; }

    /// The first position at or after `p` that is neither white space nor part of a comment.
    const char* skipSpace(const char* p) {
        p += *p == ' ' && p != end() ? 1 : 0;
        return *p <= ' ' || *p == '#' ? skipLongSpace(p) : p;
    }
    /// True once skipSpace has met a comment that no newline ends.
    bool endsInComment() const { return endsInComment_; }

    /// The name at `p`: letters, digits and `_`; may be empty.
    std::string_view name(const char* p) const;
    /// The characters up to the next white space, bracket, quote, comma, semicolon or bar. The `#`
    /// of a `1.#INF` belongs to the word, and so do the parentheses of `-nan(ind)`.
    std::string_view word(const char* p) const;
    /// The string at `p`, as the reader sees it.
    StringToken string(const char* p);
    /// The string at `p`; unlike for the reader, a word also ends before a brace.
    StringToken stringBeforeBrace(const char* p);

private:
    const char* skipLongSpace(const char* p);

    /// A cached search: started at `first`, it found `found`. The result is the same for all
    /// positions in between.
    struct Remembered {
        template <class Search>
        const char* from(const char* p, Search search) {
            if (first == nullptr || p < first || p > found) {
                found = search(p);
                first = p;
            }
            return found;
        }
        const char* first = nullptr;
        const char* found = nullptr;
    };

    std::string_view text_;
    Remembered quote_; ///< The next quote without a backslash before it.
    Remembered space_; ///< The next white space.
    Remembered brace_; ///< The next white space or brace.
    bool endsInComment_ = false;
};

/// The quoted string at `p`, or the word if there is no quote.
StringToken quotedOrWord(Lexer& lexer, const char* p);

/// Cuts a name to the length that the reader keeps. Names are compared in this form.
std::string_view cutName(std::string_view name);

/// Puts quotes around a word with braces, so that every program takes the braces as part of it, as
/// the reader does. Empty for words without braces, and for words that end in a backslash, because
/// that would escape the closing quote.
std::string inQuotes(std::string_view word);

/// True when INF, IND, QNAN or SNAN follows a `#`. Some C libraries print infinities and NaNs as
/// `1.#INF` and the like.
bool isPrintedNonNumber(const char* hash, const char* end);

} // namespace meshcast::tidy
