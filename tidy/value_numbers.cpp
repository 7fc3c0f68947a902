#include "tidy/numbers.h"
#include "tidy/report.h"
#include "tidy/skip.h"
#include "tidy/value.h"

#include <string>
#include <utility>
#include <vector>

namespace meshcast::tidy {

namespace {

NumberKind kindOf(const ValueType& type) {
    return type.kind == ValueType::Kind::kReal ? NumberKind::kReal : NumberKind::kInteger;
}

/// The end of the numbers of one value if the reader accepts them, or null.
template <NumberKind kind>
const char* endOfValue(Lexer& lexer, const char* p, int width) {
    for (int i = 0; i < width; ++i) {
        p += *p == ' ' ? 1 : 0;
        const char* end = endOfNumber(p, kind);
        if (end == nullptr) {
            p = lexer.skipSpace(p);
            end = p == lexer.end() ? nullptr : endOfNumber(p, kind);
            if (end == nullptr) {
                return nullptr;
            }
        }
        p = end;
        if (*p == '#' && isPrintedNonNumber(p, lexer.end())) {
            return nullptr;
        }
    }
    return p;
}

/// Parses a list that the reader accepts. Nearly every byte of a scene is in such a list.
template <NumberKind kind>
PassedValue passList(Lexer& lexer, const char* p, int width) {
    std::size_t count = 0;
    p = lexer.skipSpace(p + 1);
    for (; *p != ']'; ++count) {
        p = endOfValue<kind>(lexer, p, width);
        if (p == nullptr) {
            return {};
        }
        p = lexer.skipSpace(p);
        if (*p == ',') {
            p = lexer.skipSpace(p + 1);
        } else if (*p != ']') {
            return {};
        }
    }
    // The parsed text may be part of a longer one, so a number could continue after its end.
    return p >= lexer.end() ? PassedValue{} : PassedValue{p + 1, count};
}

struct NumberWord {
    std::string_view text;
    bool isGlued; ///< Only a comma separates it from the word before.
};

/// The words of numbers from `p` on, and their end. Words after the first forty are skipped: no
/// single value has so many.
const char* gatherWords(Lexer& lexer, const char* p, std::vector<NumberWord>& words) {
    constexpr std::size_t kMostWords = 40;
    const char* end = p;
    for (const char* comma = nullptr;;) {
        p = lexer.skipSpace(p);
        if (lexer.at(p) == ',') {
            comma = p++;
        } else if (beginsNumber(lexer, p)) {
            const std::string_view word = lexer.word(p);
            if (words.size() < kMostWords) {
                words.push_back({word, !words.empty() && comma == end && end + 1 == p});
            }
            p += word.size();
            end = p;
            comma = nullptr;
        } else {
            return end;
        }
    }
}

/// Joins words at the commas between them. There are too many words for one value, so these are
/// decimal commas.
std::vector<NumberWord> joinedAtCommas(const std::vector<NumberWord>& words) {
    std::vector<NumberWord> joined;
    for (const NumberWord& word : words) {
        if (word.isGlued && joined.back().text.find(',') == std::string_view::npos) {
            std::string_view& text = joined.back().text;
            text = between(text.data(), word.text.data() + word.text.size());
        } else {
            joined.push_back(word);
        }
    }
    return joined;
}

/// Repairs a single value written with commas, in brackets, or with damaged numbers. For a list,
/// only a value without brackets and with decimal commas.
PassedValue mendSingle(const ValuePlace& place, const char* first) {
    Lexer& lexer = place.lexer;
    const ValueType& type = place.type();
    const std::size_t width = type.width;
    const bool inBrackets = lexer.at(first) == '[';
    std::vector<NumberWord> words;
    const char* end = gatherWords(lexer, first + (inBrackets ? 1 : 0), words);
    if (!inBrackets && words.size() > width) {
        std::vector<NumberWord> joined = joinedAtCommas(words);
        if (type.isList && joined.size() != width) {
            return {};
        }
        if (joined.size() >= width) {
            words = std::move(joined);
        }
    } else if (type.isList) {
        return {};
    }
    if (words.size() < width) {
        return {};
    }
    std::string meant;
    std::string_view none;
    for (std::size_t i = 0; i < width; ++i) {
        const MendedNumber mended = mendNumber(words[i].text, kindOf(type));
        none = mended.how == MendedNumber::How::kNone ? words[i].text : none;
        meant += i == 0 ? "" : " ";
        meant += mended.how == MendedNumber::How::kAsIs ? words[i].text : mended.text;
    }
    if (inBrackets) {
        end = skipToBracket(lexer, end);
    } else if (words.size() > width) {
        end = words[width - 1].text.data() + words[width - 1].text.size();
    }
    const std::string field = " in " + quoted(place.field.name);
    if (!none.empty()) {
        place.edits.replace(first, end, meant, "replaced " + quoted(none) + " by 0" + field);
    } else if (inBrackets) {
        place.edits.replace(first, end, meant, "kept the first value" + field);
    } else if (meant != between(first, end)) {
        rewrite(place, first, end, meant);
    }
    return {end};
}

} // namespace

PassedValue passNumbers(const ValuePlace& place, const char* p) {
    const ValueType& type = place.type();
    const bool isList = type.isList && *p == '[';
    if (isList) {
        const PassedValue list = kindOf(type) == NumberKind::kReal
                                     ? passList<NumberKind::kReal>(place.lexer, p, type.width)
                                     : passList<NumberKind::kInteger>(place.lexer, p, type.width);
        if (list) {
            return list;
        }
    } else {
        const char* const end = kindOf(type) == NumberKind::kReal
                                    ? endOfValue<NumberKind::kReal>(place.lexer, p, type.width)
                                    : endOfValue<NumberKind::kInteger>(place.lexer, p, type.width);
        if (end != nullptr && end <= place.lexer.end() && maySeparate(place, end)) {
            return {end};
        }
        if (!type.isList || type.kind == ValueType::Kind::kReal) {
            if (const PassedValue single = mendSingle(place, p)) {
                return single;
            }
        }
    }
    return type.isList ? mendList(place, p) : PassedValue{};
}

} // namespace meshcast::tidy
