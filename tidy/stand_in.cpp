#include "tidy/numbers.h"
#include "tidy/parse.h"
#include "vrml/characters.h"

#include <algorithm>
#include <optional>

// Nodes of classes that are not in the catalogue but can still be understood: they declare their
// fields, they name a known class in `isA`, or they are known from other programs.

namespace meshcast::tidy {

namespace {

/// The word `fields` at `p`, which may be in quotes where the reader reads a string; else empty.
std::string_view fieldsWord(Lexer& lexer, const char* p) {
    const StringToken token = lexer.at(p) == '"' ? lexer.string(p) : StringToken{lexer.name(p)};
    return token.inner() == "fields" ? token.text : std::string_view();
}

/// The end of a declaration with any types, starting at its bracket.
const char* endOfAnyDeclaration(Lexer& lexer, const char* p) {
    p = lexer.skipSpace(p);
    return lexer.at(p) == '[' ? skipToBracket(lexer, p + 1) : nullptr;
}

/// The first known class of the list of names at `p`, or null.
const NodeClass* firstKnown(Lexer& lexer, const char* p) {
    constexpr int kMostNames = 32;
    p += lexer.at(p) == '[' ? 1 : 0;
    for (int i = 0; i < kMostNames; ++i) {
        p = lexer.skipSpace(p);
        p = lexer.at(p) == ',' ? lexer.skipSpace(p + 1) : p;
        const StringToken token = quotedOrWord(lexer, p);
        if (token.inner().empty()) {
            return nullptr;
        }
        if (const NodeClass* const info = findClass(token.inner())) {
            return info;
        }
        p = token.end();
    }
    return nullptr;
}

} // namespace

const char* endOfDeclaration(Lexer& lexer, const char* p, NodeClass* declared) {
    p = lexer.skipSpace(p);
    // The reader accepts any character as the opening bracket.
    p = lexer.skipSpace(p + (p == lexer.end() ? 0 : 1));
    while (lexer.at(p) != ']') {
        const std::string_view type = lexer.name(p);
        p = lexer.skipSpace(p + type.size());
        const std::string_view name = lexer.name(p);
        p = lexer.skipSpace(p + name.size());
        if (declared != nullptr) {
            const std::optional<ValueType> known = declaredType(type);
            if (!known) {
                return nullptr;
            }
            declared->addField(cutName(name), *known);
        }
        if (lexer.at(p) == ',') {
            p = lexer.skipSpace(p + 1);
        } else if (lexer.at(p) != ']') {
            return nullptr;
        }
    }
    return p + 1;
}

/// The class of an unknown node that declares its fields; null when there is no declaration that
/// the reader accepts.
const NodeClass* declaredClass(Parse& parse, std::string_view className) {
    Lexer& lexer = parse.lexer;
    const char* const brace = lexer.skipSpace(className.data() + className.size());
    if (lexer.at(brace) != '{' ||
        !std::all_of(className.begin(), className.end(), isNameCharacter)) {
        return nullptr;
    }
    const std::string_view word = fieldsWord(lexer, lexer.skipSpace(brace + 1));
    const char* const end = word.data() + word.size();
    auto made = std::make_unique<NodeClass>();
    if (word.empty() || endOfDeclaration(lexer, end, made.get()) == nullptr) {
        return nullptr;
    }
    made->name = className;
    made->isGroup = made->isDeclared = made->keepsItsState = true;
    // The reader reads a whole word here.
    if (*word.data() != '"' && !isSpace(lexer.at(end))) {
        parse.edits.insert(end, " ", "separated \"fields\" from its bracket");
    }
    parse.declared.push_back(std::move(made));
    return parse.declared.back().get();
}

/// The known class that an unknown node names in its field `isA`. The node is rewritten as a node
/// of that class, without its declaration. Fields that the class does not have are dropped as
/// usual.
StandIn standIn(Parse& parse, std::string_view className) {
    Lexer& lexer = parse.lexer;
    const char* const classEnd = className.data() + className.size();
    const char* const brace = lexer.skipSpace(classEnd);
    const char* const inside = lexer.skipSpace(brace + 1);
    const std::string_view fields = fieldsWord(lexer, inside);
    const char* const declarationEnd =
        fields.empty() ? nullptr : endOfAnyDeclaration(lexer, fields.data() + fields.size());
    // Fields come before children, so the search ends at the first node.
    const char* p = lexer.skipSpace(declarationEnd != nullptr ? declarationEnd : inside);
    while (p != lexer.end() && *p != '}' && *p != '{') {
        const std::string_view name = lexer.name(p);
        if (name == "isA") {
            const NodeClass* const info = firstKnown(lexer, lexer.skipSpace(p + name.size()));
            if (info == nullptr) {
                return {};
            }
            parse.edits.replace(className.data(), classEnd, info->name,
                                "wrote " + quoted(className) + " as " + info->name +
                                    ", which it says it is");
            if (declarationEnd != nullptr) {
                parse.edits.drop(inside, declarationEnd);
            }
            return {info, declarationEnd};
        }
        p = lexer.skipSpace(*p == '[' || *p == '(' ? skipToBracket(lexer, p + 1)
                                                   : skipToken(lexer, p));
    }
    return {};
}

/// A rotation around one axis, as some programs write it.
bool parseRotationXYZ(Parse& parse, const Beginning& beginning, std::string_view className) {
    if (className != "RotationXYZ") {
        return false;
    }
    Lexer& lexer = parse.lexer;
    std::string_view axis = "1 0 0";
    std::string angle = "0";
    const char* p = lexer.skipSpace(lexer.skipSpace(className.data() + className.size()) + 1);
    while (lexer.at(p) != '}') {
        const std::string_view field = lexer.name(p);
        std::string_view value = lexer.word(lexer.skipSpace(p + field.size()));
        const char* const comma = value.data() + value.size();
        if (lexer.at(comma) == ',' && isDigit(lexer.at(comma + 1))) { // A decimal comma.
            const std::string_view fraction = lexer.word(comma + 1);
            value = between(value.data(), fraction.data() + fraction.size());
        }
        if (field == "axis" && (value == "X" || value == "Y" || value == "Z")) {
            axis = value == "X" ? "1 0 0" : (value == "Y" ? "0 1 0" : "0 0 1");
        } else if (field == "angle" && beginsNumber(lexer, value.data())) {
            const MendedNumber mended = mendNumber(value, NumberKind::kReal);
            angle = mended.how == MendedNumber::How::kAsIs ? std::string(value) : mended.text;
        } else {
            return false;
        }
        p = lexer.skipSpace(value.data() + value.size());
    }
    parse.at = p;
    addChild(parse, beginning.mark);
    parse.edits.replace(className.data(), p + 1,
                        "Rotation { rotation " + std::string(axis) + " " + angle + " }",
                        "wrote RotationXYZ as Rotation");
    parse.at = p + 1;
    if (!beginning.name.empty()) {
        Definition& definition = parse.source.names[beginning.name];
        definition = {beginning.begin, true, beginning.writtenName, -1, -1};
    }
    if (parse.isAtTop()) {
        parse.rootsEnd = parse.edits.mark(parse.at);
    }
    return true;
}

} // namespace meshcast::tidy
