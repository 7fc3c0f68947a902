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

/// A string as the reader takes it: in double quotes, or a word that runs to the next white space.
struct StringToken {
    /// The text that the string stands for.
    std::string value() const;
    /// The name that it is after DEF or USE: names end at their first zero byte.
    std::string nodeName() const {
        const std::string name = value();
        return name.substr(0, name.find('\0'));
    }
    /// What stands between the quotes, as written; of a word all of it.
    std::string_view inner() const;
    const char* end() const { return text.data() + text.size(); }

    std::string_view text; ///< As written, with its quotes.
    bool isQuoted = false;
    bool isClosed = true; ///< False when no closing quote follows; then `text` is the quote.
};

/// Cuts a text into tokens, by the character classes and rules of the reader. Places are pointers
/// into the text. The text is followed by a zero byte, or ends in a brace, so that numbers can be
/// scanned without regard to its end.
///
/// The ends of long tokens are remembered: a text in which every byte could begin a token of all
/// the rest is cut in linear time all the same.
class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::string_view text() const { return text_; }
    const char* begin() const { return text_.data(); }
    const char* end() const { return text_.data() + text_.size(); }
    /// The character at a place, or a zero at the end.
    char at(const char* p) const { return p == end() ? '\0' : *p; }

    /// The first place at or after `p` that is neither white space nor part of a comment.
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
    /// The string at `p`, as the reader takes it.
    StringToken string(const char* p);
    /// The string at `p`, where a word also ends before a brace.
    StringToken stringBeforeBrace(const char* p);

private:
    const char* skipLongSpace(const char* p);

    /// What a search from `first` has found at `found`: it is the same for all places between.
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

/// The string in quotes at `p`, or else the word.
StringToken quotedOrWord(Lexer& lexer, const char* p);

/// Names are compared up to the length at which the reader cuts them.
std::string_view cutName(std::string_view name);

/// A word with braces in quotes, so that every program sees the braces as the reader does; empty
/// for other words and for those that end in a backslash, which no quote can follow.
std::string inQuotes(std::string_view word);

/// True where the `#` after a point begins INF, IND, QNAN or SNAN: how some C libraries print
/// numbers that are not finite.
bool isPrintedNonNumber(const char* hash, const char* end);

} // namespace meshcast::tidy
