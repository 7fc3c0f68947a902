#include "tools/vrmltidy/values.h"

#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/skip.h"
#include "tools/vrmltidy/value.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace meshcast::tidy {

StringToken quotedOrWord(const Cursor& place) {
    return place.peek() == '"' ? place.string() : StringToken{place.word(), false, true};
}

const char* endOfBrackets(Cursor inside) {
    skipToBracket(inside);
    return inside.at;
}

bool FieldPlace::mayFollow(std::string_view word) const {
    return owner.field(cutName(word)) != nullptr ||
           (owner.isGroup &&
            (word == "DEF" || word == "USE" || word == "NULL" || findClass(word) != nullptr));
}

bool tidyValue(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
               Reporter& reporter) {
    const Cursor before = cursor;
    if (Value(cursor, type, place, text, reporter).tidy()) {
        return true;
    }
    cursor = before;
    return false;
}

bool Value::tidy() {
    cursor_.skipSpace();
    switch (type_.kind) {
    case ValueType::Kind::kReal:
    case ValueType::Kind::kInteger:
        return passNumbers() || mendNumbers() ||
               (type_.isList && tidyList(cursor_, type_, place_, text_, reporter_));
    case ValueType::Kind::kBool:
        return passBool() || mendBool();
    case ValueType::Kind::kEnum:
        return passEnum() || mendEnum();
    case ValueType::Kind::kMask:
        return passMask() || mendMask();
    case ValueType::Kind::kString:
        return passString();
    default:
        return passImage() || mendImage();
    }
}

bool Value::accept(const char* end) {
    Cursor behind = cursor_;
    behind.at = end;
    if (behind.peek() == '#' && isPrintedNonNumber(end, behind.end)) {
        return false;
    }
    behind.skipSpace();
    const char c = behind.peek();
    if (!behind.atEnd() && c != '}' && c != '~') {
        // "5height" is a 5 and a height, "5f" is neither.
        if (!isNameStart(c) || (behind.at == end && !place_.mayFollow(behind.name()))) {
            return false;
        }
    }
    cursor_.at = end;
    return true;
}

bool Value::rewrite(const char* end, std::string_view meant) {
    const std::string_view written = between(cursor_.at, end);
    text_.replace(written, meant);
    reporter_.repaired(cursor_.at, "wrote " + quoted(written) + " as " + std::string(meant));
    cursor_.at = end;
    return true;
}

// ---- numbers

bool Value::passOne(const char*& p) const {
    const bool isReal = type_.kind == ValueType::Kind::kReal;
    for (int i = 0; i < type_.width; ++i) {
        if (*p == ' ') {
            ++p;
        }
        const char* end = isReal ? skipReal(p) : skipInteger(p);
        if (end == nullptr) {
            Cursor ahead = cursor_;
            ahead.at = p;
            ahead.skipSpace();
            end = isReal ? skipReal(ahead.at) : skipInteger(ahead.at);
            if (end == nullptr || ahead.atEnd()) {
                return false;
            }
        }
        p = end;
        if (*p == '#' && isPrintedNonNumber(p, cursor_.end)) {
            return false;
        }
    }
    return true;
}

/// Passes over numbers as the reader takes them, which is what nearly every byte of a scene is.
bool Value::passNumbers() {
    const char* p = cursor_.at;
    if (!type_.isList || *p != '[') {
        return passOne(p) && accept(p);
    }
    Cursor place = cursor_;
    ++place.at;
    place.skipSpace();
    while (*place.at != ']') {
        if (!passOne(place.at)) {
            return false;
        }
        place.skipSpace();
        if (*place.at == ',') {
            ++place.at;
            place.skipSpace();
        } else if (*place.at != ']') {
            return false;
        }
    }
    if (place.atEnd()) {
        return false;
    }
    cursor_.at = place.at + 1;
    return true;
}

/// One value that is written as words that may be no numbers, with commas or in brackets. Of lists,
/// only a bare value in which commas stand for points.
bool Value::mendNumbers() {
    struct Word {
        std::string_view text;
        bool isGlued; ///< To the word before, by nothing but a comma.
    };
    constexpr std::size_t kMostWords = 40;
    const bool inBrackets = cursor_.peek() == '[';
    if (type_.isList && (inBrackets || type_.kind != ValueType::Kind::kReal)) {
        return false;
    }
    Cursor place = cursor_;
    place.at += inBrackets ? 1 : 0;
    std::vector<Word> words;
    const char* end = place.at;
    for (const char* comma = nullptr;;) {
        place.skipSpace();
        if (place.peek() == ',') {
            comma = place.at++;
        } else if (beginsNumber(place)) {
            const std::string_view word = numberWord(place);
            if (words.size() < kMostWords) {
                const bool isGlued = !words.empty() && comma == end && end + 1 == place.at;
                words.push_back({word, isGlued});
            }
            place.at += word.size();
            end = place.at;
            comma = nullptr;
        } else {
            break;
        }
    }
    const std::size_t width = type_.width;
    const NumberKind kind =
        type_.kind == ValueType::Kind::kReal ? NumberKind::kReal : NumberKind::kInteger;
    if (words.size() < width) {
        return false;
    }
    if (!inBrackets && words.size() > width) {
        // Too many for commas between the numbers: they stand for points within them.
        std::vector<Word> joined;
        for (const Word& word : words) {
            if (word.isGlued && joined.back().text.find(',') == std::string_view::npos) {
                joined.back().text =
                    between(joined.back().text.data(), word.text.data() + word.text.size());
            } else {
                joined.push_back(word);
            }
        }
        if (type_.isList && joined.size() != width) {
            return false;
        }
        if (joined.size() >= width) {
            words = std::move(joined);
        }
    } else if (type_.isList) {
        return false;
    }
    std::string meant;
    std::string_view none;
    for (std::size_t i = 0; i < width; ++i) {
        const MendedNumber mended = mendNumber(words[i].text, kind);
        if (mended.how == MendedNumber::How::kNone) {
            none = words[i].text;
        }
        meant += i == 0 ? "" : " ";
        meant += mended.how == MendedNumber::How::kAsIs ? words[i].text : mended.text;
    }
    const std::size_t left = inBrackets ? 0 : words.size() - width;
    const std::string_view last = words[width - 1].text;
    end = inBrackets ? endOfBrackets(place) : (left == 0 ? end : last.data() + last.size());
    const std::string field = " in " + quoted(place_.fieldName);
    if (!none.empty()) {
        reporter_.repaired(none.data(), "put 0 for " + quoted(none) + field);
    } else if (inBrackets) {
        reporter_.repaired(cursor_.at, "kept the first value" + field);
    } else if (between(cursor_.at, end) != meant) {
        reporter_.repaired(cursor_.at,
                           "wrote " + quoted(between(cursor_.at, end)) + " as " + meant + field);
    }
    text_.replace(between(cursor_.at, end), meant);
    cursor_.at = end;
    return true;
}

// ---- strings

/// True for a string with another line of which braces are a part, behind which the node does not
/// go on: the quote that closes it was meant to open another one.
bool Value::runsOver(std::string_view string) const {
    const std::size_t newline = string.find('\n');
    if (newline == std::string_view::npos ||
        string.find_first_of("{}", newline) == std::string_view::npos) {
        return false;
    }
    Cursor behind = cursor_;
    behind.at = string.data() + string.size();
    behind.skipSpace();
    const std::string_view next = behind.name();
    const bool goesOn =
        behind.atEnd() || behind.peek() == '}' || behind.peek() == '~' || place_.mayFollow(next);
    behind.at += next.size();
    return !goesOn && (next.empty() || behind.peekBehindSpace() != '{');
}

bool Value::passString() {
    const StringToken beforeBrace = cursor_.stringBeforeBrace();
    const char* const brace = beforeBrace.text.data() + beforeBrace.text.size();
    if (!beforeBrace.isClosed || (beforeBrace.isQuoted && runsOver(beforeBrace.text))) {
        const char* const line = std::find(cursor_.at, cursor_.end, '\n');
        // A quote right behind a backslash would not end the string.
        text_.insert(line, line[-1] == '\\' ? " \"" : "\"");
        reporter_.repaired(cursor_.at, "closed the string in " + quoted(place_.fieldName));
        cursor_.at = line;
        return true;
    }
    if (beforeBrace.isQuoted) {
        cursor_.at = brace;
        return true;
    }
    // To the reader a brace is part of a word.
    const bool isCut = brace != cursor_.end && *brace == '}' && place_.bracesMatch();
    const std::string_view word = isCut ? beforeBrace.text : cursor_.string().text;
    if (word.empty()) {
        return false;
    }
    Cursor behind = cursor_;
    behind.at = word.data() + word.size();
    if (!isCut) {
        const char* const end = behind.at;
        // A bracket and, in a node without children, a brace are part of a word if the node goes
        // on well behind it.
        const bool hasBrace = !place_.owner.isGroup && word.find('}') != std::string_view::npos;
        behind.skipSpace();
        if ((word.front() != '[' && !hasBrace) || behind.peek() == '}' || behind.peek() == '~' ||
            place_.mayFollow(behind.name())) {
            if (const std::string clearly = inQuotes(word); !clearly.empty()) {
                text_.replace(word, clearly);
                reporter_.repaired(cursor_.at, "put quotes around the word " + quoted(word));
            }
            cursor_.at = end;
            return true;
        }
    }
    if (word.front() == '[') {
        return keepFirstString();
    }
    const std::size_t size = std::min(word.find('}'), word.size());
    if (size == 0) {
        return false;
    }
    text_.insert(cursor_.at + size, " ");
    reporter_.repaired(cursor_.at, "separated " + quoted(word.substr(0, size)) + " from its brace");
    cursor_.at += size;
    return true;
}

/// Of a list of strings the first.
bool Value::keepFirstString() {
    Cursor inside = cursor_;
    ++inside.at;
    inside.skipSpace();
    const StringToken first = quotedOrWord(inside);
    if (first.text.empty() || !first.isClosed) {
        return false;
    }
    inside.at = first.text.data() + first.text.size();
    const char* const bracket = endOfBrackets(inside);
    reporter_.repaired(cursor_.at, "kept the first value in " + quoted(place_.fieldName));
    text_.replace(between(cursor_.at, bracket),
                  std::string(first.text).append(first.isQuoted ? "" : " "));
    cursor_.at = bracket;
    return true;
}

} // namespace meshcast::tidy
