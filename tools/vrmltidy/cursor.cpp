#include "tools/vrmltidy/cursor.h"

#include "vrml/input.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace meshcast::tidy {

namespace {

const char* find(const char* first, const char* last, char c) {
    return static_cast<const char*>(std::memchr(first, c, static_cast<std::size_t>(last - first)));
}

} // namespace

std::string StringToken::value() const {
    if (!isQuoted) {
        return std::string(text);
    }
    std::string value;
    const std::string_view inner = isClosed ? text.substr(1, text.size() - 2) : "";
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] == '\\' && i + 1 < inner.size() && inner[i + 1] == '"') {
            ++i;
        }
        value += inner[i];
    }
    return value;
}

Cursor::Cursor(const char* first, const char* last) : at(first), end(last), lastQuote_(nullptr) {
    for (const char* behind = last; lastQuote_ == nullptr && behind != first;) {
        const void* const quote = memrchr(first, '"', static_cast<std::size_t>(behind - first));
        if (quote == nullptr) {
            break;
        }
        behind = static_cast<const char*>(quote);
        if (behind == first || behind[-1] != '\\') {
            lastQuote_ = behind;
        }
    }
}

char Cursor::peekBehindSpace() const {
    Cursor ahead = *this;
    ahead.skipSpace();
    return ahead.peek();
}

void Cursor::skipLongSpace() {
    for (;;) {
        while (at != end && isSpace(*at)) {
            ++at;
        }
        if (at == end || *at != '#') {
            return;
        }
        const char* const newline = find(at, end, '\n');
        if (newline == nullptr) {
            at = end;
            endsInComment = true;
            return;
        }
        at = newline + 1;
    }
}

std::string_view Cursor::name() const {
    const char* last = at;
    if (at != end && isNameStart(*at)) {
        while (last != end && isNameCharacter(*last)) {
            ++last;
        }
    }
    return {at, static_cast<std::size_t>(last - at)};
}

std::string_view Cursor::word() const {
    const char* last = at;
    while (last != end &&
           (!endsWord(*last) || (*last == '#' && last != at && isPrintedNonNumber(last, end)))) {
        ++last;
    }
    return {at, static_cast<std::size_t>(last - at)};
}

template <class EndsWord>
StringToken Cursor::stringUpTo(const char* last, EndsWord endsWord) const {
    StringToken token;
    token.isQuoted = peek() == '"';
    if (!token.isQuoted) {
        token.text = {at, static_cast<std::size_t>(std::find_if(at, last, endsWord) - at)};
    } else if (lastQuote_ == nullptr || at >= lastQuote_) {
        token.text = {at, 1};
        token.isClosed = false;
    } else {
        // A quote behind a backslash never ends the string, whatever is before the backslash.
        const char* quote = at;
        do {
            quote = find(quote + 1, end, '"');
        } while (quote[-1] == '\\');
        token.text = {at, static_cast<std::size_t>(quote + 1 - at)};
    }
    return token;
}

StringToken Cursor::string(std::size_t longest) const {
    return stringUpTo(at + std::min(longest, static_cast<std::size_t>(end - at)), isSpace);
}

StringToken Cursor::stringBeforeBrace() const {
    return stringUpTo(end, [](char c) { return isSpace(c) || c == '{' || c == '}'; });
}

std::string inQuotes(std::string_view word) {
    const bool isNeeded = word.find_first_of("{}") != std::string_view::npos;
    const bool isPossible = word.find('"') == std::string_view::npos && !word.ends_with('\\');
    return isNeeded && isPossible ? std::string("\"").append(word).append("\"") : "";
}

std::string_view cutName(std::string_view name) {
    return name.substr(0, VrmlInput::kMaxNameLength);
}

bool isPrintedNonNumber(const char* hash, const char* end) {
    static constexpr std::array<std::string_view, 4> kNames = {"INF", "IND", "QNAN", "SNAN"};
    const std::string_view rest(hash + 1, static_cast<std::size_t>(end - hash - 1));
    return hash[-1] == '.' && std::any_of(kNames.begin(), kNames.end(),
                                          [rest](auto name) { return rest.starts_with(name); });
}

} // namespace meshcast::tidy
