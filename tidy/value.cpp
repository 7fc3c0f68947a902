#include "tidy/value.h"

#include "tidy/report.h"

namespace meshcast::tidy {

bool ValuePlace::mayFollow(std::string_view word) const {
    return owner.field(cutName(word)) != nullptr ||
           (owner.isGroup &&
            (word == "DEF" || word == "USE" || word == "NULL" || findClass(word) != nullptr));
}

PassedValue passValue(const ValuePlace& place, const char* p) {
    if (p == place.lexer.end()) {
        return {};
    }
    switch (place.type().kind) {
    case ValueType::Kind::kReal:
    case ValueType::Kind::kInteger:
        return passNumbers(place, p);
    case ValueType::Kind::kBool:
        return passBool(place, p);
    case ValueType::Kind::kEnum:
        return passEnum(place, p);
    case ValueType::Kind::kMask:
        return passMask(place, p);
    case ValueType::Kind::kString:
        return passString(place, p);
    case ValueType::Kind::kImage:
        return passImage(place, p);
    }
    return {};
}

bool maySeparate(const ValuePlace& place, const char* end) {
    Lexer& lexer = place.lexer;
    if (lexer.at(end) == '#' && isPrintedNonNumber(end, lexer.end())) {
        return false;
    }
    const char* const next = lexer.skipSpace(end);
    const char c = lexer.at(next);
    if (next == lexer.end() || c == '}' || c == '~') {
        return true;
    }
    // "5height" is the number 5 and a field; "5f" is not.
    return isNameStart(c) && (next != end || place.mayFollow(lexer.name(next)));
}

PassedValue rewrite(const ValuePlace& place, const char* first, const char* end,
                    std::string_view meant) {
    const std::string_view written = between(first, end);
    place.edits.replace(first, end, meant,
                        "wrote " + quoted(written) + " as " + quoted(meant) + " in " +
                            quoted(place.field.name));
    return {end};
}

} // namespace meshcast::tidy
