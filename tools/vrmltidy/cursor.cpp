#include "tools/vrmltidy/cursor.h"

#include "vrml/input.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace meshcast::tidy {

namespace {

bool endsWord(char c) {
    static constexpr std::string_view kEnds = "{}[]()\",;#|~";
    return isSpace(c) || kEnds.find(c) != std::string_view::npos;
}

const char* find(const char* first, const char* last, char c) {
    return static_cast<const char*>(std::memchr(first, c, static_cast<std::size_t>(last - first)));
}

} // namespace

std::string StringToken::value() const {
    if (!isQuoted) {
        return std::string(text);
    }
    std::string value;
    const std::string_view inner = text.substr(1, text.size() - (isClosed ? 2 : 1));
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] == '\\' && i + 1 < inner.size() && inner[i + 1] == '"') {
            ++i;
        }
        value += inner[i];
    }
    return value;
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
    while (last != end && (!endsWord(*last) ||
                           (*last == '#' && last != at && isPrintedNonNumber(last, end)))) {
        ++last;
    }
    return {at, static_cast<std::size_t>(last - at)};
}

StringToken Cursor::string() const {
    StringToken token;
    token.isQuoted = peek() == '"';
    const char* last = at;
    if (token.isQuoted) {
        // A quote behind a backslash never ends the string, whatever is before the backslash.
        do {
            last = find(last + 1, end, '"');
        } while (last != nullptr && last[-1] == '\\' && last - 1 != at);
        token.isClosed = last != nullptr;
        last = last == nullptr ? end : last + 1;
    } else {
        last = std::find_if(at, end, isSpace);
    }
    token.text = {at, static_cast<std::size_t>(last - at)};
    return token;
}

std::string_view cutName(std::string_view name) {
    return name.substr(0, VrmlInput::kMaxNameLength);
}

bool isPrintedNonNumber(const char* hash, const char* end) {
    static constexpr std::array<std::string_view, 4> kNames = {"INF", "IND", "QNAN", "SNAN"};
    const std::string_view rest(hash + 1, static_cast<std::size_t>(end - hash - 1));
    return hash[-1] == '.' && std::any_of(kNames.begin(), kNames.end(), [rest](auto name) {
               return rest.starts_with(name);
           });
}

} // namespace meshcast::tidy
