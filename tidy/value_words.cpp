#include "tidy/numbers.h"
#include "tidy/skip.h"
#include "tidy/value.h"
#include "vrml/characters.h"

#include <algorithm>
#include <string>
#include <vector>

// Words: truth values, enumerations and masks.

namespace meshcast::tidy {

namespace {

/// Words of other dialects, reduced to letters and digits in lower case, and the words of the
/// catalogue that they mean.
struct Synonym {
    std::string_view dialect;
    std::string_view meant;
};
constexpr Synonym kSynonyms[] = {
    {"ccw", "COUNTERCLOCKWISE"},
    {"anticlockwise", "COUNTERCLOCKWISE"},
    {"cw", "CLOCKWISE"},
    {"convexface", "CONVEX"},
    {"begin", "LEFT"},
    {"first", "LEFT"},
    {"middle", "CENTER"},
    {"centre", "CENTER"},
    {"centered", "CENTER"},
    {"end", "RIGHT"},
    {"sansserif", "SANS"},
    {"helvetica", "SANS"},
    {"times", "SERIF"},
    {"roman", "SERIF"},
    {"courier", "TYPEWRITER"},
    {"monospace", "TYPEWRITER"},
    {"fixed", "TYPEWRITER"},
    {"plain", "NONE"},
    {"normal", "NONE"},
    {"regular", "NONE"},
    {"oblique", "ITALIC"},
    {"true", "ON"},
    {"false", "OFF"},
    {"true", "REPEAT"},
    {"false", "CLAMP"},
    {"clamped", "CLAMP"},
    {"repeated", "REPEAT"},
    {"side", "SIDES"},
    {"perpart", "PER_PART"},
    {"facet", "PER_FACE"},
    {"perpolygon", "PER_FACE"},
    {"vertex", "PER_VERTEX"},
};

/// The letters and digits of a word in lower case.
std::string bare(std::string_view word) {
    std::string text;
    for (const char c : word) {
        if (isNameCharacter(c) && c != '_') {
            text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
    }
    return text;
}

bool holdsWord(const Enumeration* words, std::string_view word) {
    return words != nullptr && words->find(word) != nullptr;
}

/// TRUE or FALSE for another spelling of it, or for a 0 or 1 in another notation.
std::string meantTruth(const std::string& written) {
    for (const std::string_view word : {"true", "yes", "on"}) {
        if (equalInAnyCase(written, word)) {
            return "TRUE";
        }
    }
    for (const std::string_view word : {"false", "no", "off"}) {
        if (equalInAnyCase(written, word)) {
            return "FALSE";
        }
    }
    const MendedNumber mended = mendNumber(written, NumberKind::kInteger);
    const bool isTruth =
        mended.how == MendedNumber::How::kRewritten && (mended.text == "0" || mended.text == "1");
    return isTruth ? mended.text : "";
}

/// The end of a mask that the reader accepts, or null.
const char* endOfMask(const ValuePlace& place, const char* p) {
    Lexer& lexer = place.lexer;
    if (lexer.at(p) != '(') {
        const std::string_view word = lexer.name(p);
        const char* const end = p + word.size();
        return holdsWord(place.type().words, word) && lexer.at(lexer.skipSpace(end)) != '|'
                   ? end
                   : nullptr;
    }
    do {
        p = lexer.skipSpace(p + 1);
        const std::string_view word = lexer.name(p);
        if (!word.empty() && !holdsWord(place.type().words, word)) {
            return nullptr;
        }
        p = lexer.skipSpace(p + word.size());
    } while (lexer.at(p) == '|');
    return lexer.at(p) == ')' ? p + 1 : nullptr;
}

} // namespace

std::string_view meantWord(const Enumeration* words, std::string_view written) {
    constexpr std::size_t kLongest = 64;
    const std::string text = bare(written.substr(0, kLongest));
    if (words == nullptr || text.empty() || written.size() > kLongest) {
        return {};
    }
    std::vector<std::string_view> begun;
    for (const auto& [word, value] : words->words()) {
        const std::string candidate = bare(word);
        if (candidate == text) {
            return word;
        }
        if (candidate.starts_with(text)) {
            begun.push_back(word);
        }
    }
    for (const Synonym& synonym : kSynonyms) {
        if (synonym.dialect == text && holdsWord(words, synonym.meant)) {
            return synonym.meant;
        }
    }
    // "UNKNOWN" means UNKNOWN_ORDERING: an abbreviation that fits one word only and is longer than
    // a letter.
    constexpr std::size_t kShortestBeginning = 3;
    return begun.size() == 1 && text.size() >= kShortestBeginning ? begun.front()
                                                                  : std::string_view();
}

PassedValue passBool(const ValuePlace& place, const char* p) {
    Lexer& lexer = place.lexer;
    // Like the reader, skips a sign without a number.
    const ScannedInteger scanned = scanInteger(p);
    const bool isNumber = scanned.ok && (scanned.value == 0 || scanned.value == 1);
    if (isNumber && maySeparate(place, scanned.end)) {
        return {scanned.end};
    }
    if (!scanned.ok) {
        const std::string_view word =
            lexer.name(lexer.skipSpace(std::min(scanned.end, lexer.end())));
        if (word == "TRUE" || word == "FALSE") {
            return {word.data() + word.size()};
        }
    }
    constexpr std::size_t kLongest = 64;
    const StringToken token = quotedOrWord(lexer, p);
    const std::string meant =
        token.text.size() > kLongest ? "" : meantTruth(std::string(token.inner()));
    return meant.empty() ? PassedValue{} : rewrite(place, p, token.end(), meant);
}

PassedValue passEnum(const ValuePlace& place, const char* p) {
    Lexer& lexer = place.lexer;
    const std::string_view name = lexer.name(p);
    if (holdsWord(place.type().words, name)) {
        return {p + name.size()};
    }
    // In quotes, or in brackets or parentheses; the first word is kept.
    const bool inBrackets = lexer.at(p) == '[' || lexer.at(p) == '(';
    const StringToken token = quotedOrWord(lexer, inBrackets ? lexer.skipSpace(p + 1) : p);
    const std::string_view meant = meantWord(place.type().words, token.inner());
    if (meant.empty()) {
        return {};
    }
    return rewrite(place, p, inBrackets ? skipToBracket(lexer, token.end()) : token.end(), meant);
}

PassedValue passMask(const ValuePlace& place, const char* first) {
    if (const char* const end = endOfMask(place, first)) {
        return {end};
    }
    Lexer& lexer = place.lexer;
    const bool inBrackets = lexer.at(first) == '(' || lexer.at(first) == '[';
    const char* p = first + (inBrackets ? 1 : 0);
    const char* end = p;
    std::vector<std::string_view> words;
    for (bool isNext = true;;) {
        p = lexer.skipSpace(p);
        const char c = lexer.at(p);
        if (c == '|' || (inBrackets && c == ',')) {
            ++p;
            isNext = true;
            continue;
        }
        const StringToken token = quotedOrWord(lexer, p);
        if (token.text.empty() || !token.isClosed || !(isNext || inBrackets)) {
            break;
        }
        const std::string_view meant = meantWord(place.type().words, token.inner());
        // Outside parentheses, an unknown word may be the next field.
        if (meant.empty() && (!inBrackets || place.mayFollow(token.text))) {
            break;
        }
        if (!meant.empty() && std::find(words.begin(), words.end(), meant) == words.end()) {
            words.push_back(meant);
        }
        p = end = token.end();
        isNext = false;
    }
    if (words.empty()) {
        return {};
    }
    if (inBrackets && (lexer.at(p) == ')' || lexer.at(p) == ']')) {
        end = p + 1;
    }
    std::string meant(words.front());
    for (std::size_t i = 1; i < words.size(); ++i) {
        meant.append(" | ").append(words[i]);
    }
    return rewrite(place, first, end, words.size() == 1 ? meant : "(" + meant + ")");
}

} // namespace meshcast::tidy
