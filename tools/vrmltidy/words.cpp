#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/value.h"

#include <algorithm>
#include <string>

// Words: truth values, enumerations and masks.

namespace meshcast::tidy {

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

} // namespace meshcast::tidy
