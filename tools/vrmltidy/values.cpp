#include "tools/vrmltidy/values.h"

#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/skip.h"
#include "vrml/fields.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace meshcast::tidy {

namespace {

using Kind = ValueType::Kind;

NumberKind numberKind(const ValueType& type) {
    return type.kind == Kind::kReal ? NumberKind::kReal : NumberKind::kInteger;
}

/// The string in quotes or else the word at a place.
StringToken quotedOrWord(const Cursor& place) {
    return place.peek() == '"' ? place.string() : StringToken{place.word(), false, true};
}

/// The part of the source between two places.
std::string_view between(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

/// Where the brackets end that a value stands in which is none of a list.
const char* endOfBrackets(Cursor inside) {
    skipToBracket(inside);
    return inside.at;
}

/// A value in the making.
class Value {
public:
    Value(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
          Reporter& reporter)
        : cursor_(cursor), type_(type), place_(place), text_(text), reporter_(reporter) {}

    bool tidy() {
        cursor_.skipSpace();
        switch (type_.kind) {
        case Kind::kReal:
        case Kind::kInteger:
            return passNumbers() || mendNumbers() ||
                   (type_.isList && tidyList(cursor_, type_, place_, text_, reporter_));
        case Kind::kBool:
            return passBool() || mendBool();
        case Kind::kEnum:
            return passEnum() || mendEnum();
        case Kind::kMask:
            return passMask() || mendMask();
        case Kind::kString:
            return passString();
        default:
            return passImage() || mendImage();
        }
    }

private:
    bool passNumbers();
    bool passOne(const char*& p) const;
    bool passBool();
    bool passEnum();
    bool passMask();
    bool passString();
    bool keepFirstString();
    bool passImage();
    bool mendNumbers();
    bool mendBool();
    bool mendEnum();
    bool mendMask();
    bool mendImage();

    /// Accepts what stands up to `end` if the node may go on there.
    bool accept(const char* end);
    /// Writes `meant` for everything up to `end`.
    bool rewrite(const char* end, std::string_view meant);
    Cursor& cursor_;
    const ValueType& type_;
    const FieldPlace& place_;
    EditedText& text_;
    Reporter& reporter_;
};

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
    const bool isReal = type_.kind == Kind::kReal;
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
    if (type_.isList && (inBrackets || type_.kind != Kind::kReal)) {
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
        const MendedNumber mended = mendNumber(words[i].text, numberKind(type_));
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

// ---- words

bool Value::passBool() {
    // As the reader does it: a sign alone is passed over.
    const ScannedInteger scanned = scanInteger(cursor_.at);
    if (scanned.ok) {
        return (scanned.value == 0 || scanned.value == 1) && *cursor_.at != '+' &&
               accept(scanned.end);
    }
    Cursor place = cursor_;
    place.at = std::min(scanned.end, cursor_.end);
    place.skipSpace();
    const std::string_view word = place.name();
    if (word != "TRUE" && word != "FALSE") {
        return false;
    }
    cursor_.at = word.data() + word.size();
    return true;
}

bool Value::mendBool() {
    struct Meaning {
        std::string_view written;
        bool isTrue;
    };
    static constexpr Meaning kMeanings[] = {{"true", true},   {"yes", true}, {"on", true},
                                            {"false", false}, {"no", false}, {"off", false}};
    const StringToken string = quotedOrWord(cursor_);
    const std::string_view word = string.isQuoted ? string.text : numberWord(cursor_);
    const std::string inner = string.isQuoted ? string.value() : std::string(word);
    for (const Meaning& meaning : kMeanings) {
        if (equalInAnyCase(inner, meaning.written)) {
            return rewrite(word.data() + word.size(), meaning.isTrue ? "TRUE" : "FALSE");
        }
    }
    if (!word.empty() && beginsNumber(cursor_)) {
        const MendedNumber mended = mendNumber(word, NumberKind::kInteger);
        if (mended.how == MendedNumber::How::kRewritten &&
            (mended.text == "0" || mended.text == "1")) {
            return rewrite(word.data() + word.size(), mended.text);
        }
    }
    return false;
}

bool Value::passEnum() {
    const std::string_view word = cursor_.name();
    if (!holdsWord(type_.words, word)) {
        return false;
    }
    cursor_.at += word.size();
    return true;
}

bool Value::mendEnum() {
    // In quotes, or in the brackets of a list or a mask, of which the first word is kept.
    Cursor place = cursor_;
    const bool inBrackets = place.peek() == '[' || place.peek() == '(';
    if (inBrackets) {
        ++place.at;
        place.skipSpace();
    }
    const StringToken string = quotedOrWord(place);
    const std::string_view word = string.text;
    const std::string_view meant = meantWord(type_.words, string.value());
    if (meant.empty()) {
        return false;
    }
    place.at = word.data() + word.size();
    return rewrite(inBrackets ? endOfBrackets(place) : place.at, meant);
}

bool Value::passMask() {
    Cursor place = cursor_;
    if (place.peek() != '(') {
        place.at += place.name().size();
        return place.peekBehindSpace() != '|' && passEnum();
    }
    do {
        ++place.at;
        place.skipSpace();
        const std::string_view word = place.name();
        if (!word.empty() && !holdsWord(type_.words, word)) {
            return false;
        }
        place.at += word.size();
        place.skipSpace();
    } while (place.peek() == '|');
    if (place.peek() != ')') {
        return false;
    }
    cursor_.at = place.at + 1;
    return true;
}

bool Value::mendMask() {
    Cursor place = cursor_;
    const bool inBrackets = place.peek() == '(' || place.peek() == '[';
    place.at += inBrackets ? 1 : 0;
    const char* end = place.at;
    std::string words;
    for (bool isNext = true;;) {
        place.skipSpace();
        const char c = place.peek();
        if (c == '|' || (inBrackets && c == ',')) {
            ++place.at;
            isNext = true;
            continue;
        }
        const StringToken string = quotedOrWord(place);
        const std::string_view word = string.text;
        if (word.empty() || !string.isClosed || !(isNext || inBrackets)) {
            break;
        }
        const std::string_view meant = meantWord(type_.words, string.value());
        // Outside brackets, what is no word of the mask may be the next field.
        if (meant.empty() && (!inBrackets || place_.mayFollow(word))) {
            break;
        }
        if (!meant.empty()) {
            words.append(words.empty() ? "" : " | ").append(meant);
        }
        place.at += word.size();
        end = place.at;
        isNext = false;
    }
    if (words.empty()) {
        return false;
    }
    if (inBrackets) {
        end = place.peek() == ')' || place.peek() == ']' ? place.at + 1 : end;
    }
    const bool isOne = words.find('|') == std::string::npos;
    return rewrite(end, isOne ? words : "(" + words + ")");
}

// ---- strings

bool Value::passString() {
    const StringToken beforeBrace = cursor_.stringBeforeBrace();
    const char* const brace = beforeBrace.text.data() + beforeBrace.text.size();
    if (!beforeBrace.isClosed) {
        const char* const line = std::find(cursor_.at, cursor_.end, '\n');
        text_.insert(line, "\"");
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

// ---- images

/// The numbers of pixels that follow the three of an image's head, if the reader takes the head.
/// More than four bytes a pixel are no image, and would be room for nothing.
bool pixelCount(const std::int32_t (&head)[3], std::uint64_t& count) {
    const auto width = static_cast<std::int16_t>(head[0]);
    const auto height = static_cast<std::int16_t>(head[1]);
    constexpr std::int32_t kMostComponents = 4;
    if (width < 0 || height < 0 || head[2] < 0 || head[2] > kMostComponents) {
        return false;
    }
    count = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    return true;
}

bool Value::passImage() {
    Cursor place = cursor_;
    std::int32_t head[3] = {};
    for (std::int32_t& number : head) {
        place.skipSpace();
        const ScannedInteger scanned = scanInteger(place.at);
        if (!scanned.ok || place.peek() == '+' || place.atEnd()) {
            return false;
        }
        number = scanned.value;
        place.at = scanned.end;
    }
    std::uint64_t count = 0;
    if (!pixelCount(head, count)) {
        return false;
    }
    for (; count > 0; --count) {
        place.skipSpace();
        const char* const end = skipNumber(place.at, NumberKind::kUnsigned);
        if (end == nullptr || place.atEnd()) {
            return false;
        }
        place.at = end;
    }
    return accept(place.at);
}

/// Commas and words that are no numbers among the pixels. Too few pixels are no image.
bool Value::mendImage() {
    Cursor place = cursor_;
    std::int32_t head[3] = {};
    std::uint64_t wanted = 3;
    std::uint64_t found = 0;
    for (; found < wanted; ++found) {
        while (place.skipSpace(), place.peek() == ',') {
            ++place.at;
        }
        if (!beginsNumber(place)) {
            return false;
        }
        const std::string_view word = numberWord(place);
        if (found < 3) {
            const MendedNumber mended = mendNumber(word, NumberKind::kInteger);
            head[found] = scanInteger(mended.how == MendedNumber::How::kAsIs ? word.data()
                                                                             : mended.text.c_str())
                              .value;
        }
        place.at += word.size();
        if (found == 2) {
            std::uint64_t pixels = 0;
            if (!pixelCount(head, pixels)) {
                return false;
            }
            wanted += pixels;
        }
    }
    const char* const end = place.at;
    place.at = cursor_.at;
    for (std::uint64_t i = 0; i < wanted; ++i) {
        while (place.skipSpace(), place.peek() == ',') {
            text_.replace({place.at, 1}, " ");
            ++place.at;
        }
        const std::string_view word = numberWord(place);
        const MendedNumber mended =
            mendNumber(word, i < 3 ? NumberKind::kInteger : NumberKind::kUnsigned);
        if (mended.how != MendedNumber::How::kAsIs) {
            text_.replace(word, mended.text);
        }
        place.at += word.size();
    }
    reporter_.repaired(cursor_.at, "mended the numbers in " + quoted(place_.fieldName));
    cursor_.at = end;
    return true;
}

} // namespace

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

} // namespace meshcast::tidy
