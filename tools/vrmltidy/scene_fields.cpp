#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/scene.h"
#include "tools/vrmltidy/skip.h"
#include "tools/vrmltidy/values.h"

#include <utility>

namespace meshcast::tidy {

/// Takes a known field; false when it had to be dropped.
bool SceneTidier::field(const FieldInfo& known) {
    const ClassInfo& info = *(top().kind == Frame::Kind::kLeaf ? top() : container()).info;
    const char* const begin = cursor_.at;
    cursor_.at += cursor_.name().size();
    cursor_.skipSpace();
    if (cursor_.peek() == '~') {
        ++cursor_.at;
        return true;
    }
    const char* const value = cursor_.at;
    if (!tidyValue(cursor_, known.type, {info, known.name, bracesMatchCheck_}, text_, reporter_)) {
        skipValue(false);
        text_.drop(since(begin));
        reporter_.repaired(begin, "dropped the field " + quoted(known.name) +
                                      (cursor_.at == value || value == cursor_.end
                                           ? ", which has no value"
                                           : ", whose value has no meaning"));
        return false;
    }
    if (info.isInline && known.name == "name") {
        Cursor text(value, cursor_.at);
        text.at += text.peek() == '[' ? 1 : 0;
        text.skipSpace();
        inlineName_ = text.string().value();
    }
    Cursor behind = cursor_;
    behind.skipSpace();
    if (behind.peek() == '~') {
        ++behind.at;
        cursor_ = behind;
    }
    return true;
}

/// A group's field behind its children, where the reader takes it for a node.
void SceneTidier::lateField(const FieldInfo& known) {
    const std::size_t target = container().fieldsEnd;
    const char* const begin = cursor_.at;
    text_.copyTo(begin);
    const std::size_t length = text_.offsetAt(begin);
    field(known);
    text_.copyTo(cursor_.at);
    std::string moved = text_.cutTo(length);
    if (!moved.empty()) {
        text_.drop(since(cursor_.at));
        text_.insertAtOffset(target, moved.insert(0, 1, ' ').append(" "));
        reporter_.repaired(begin, "moved the field " + quoted(known.name) + " before the children");
    }
}

void SceneTidier::unknownField(std::string_view word) {
    const char* const begin = cursor_.at;
    cursor_.at += word.size();
    const bool isLeaf = top().kind == Frame::Kind::kLeaf;
    const FieldInfo* const meant = (isLeaf ? top() : container()).info->fieldInAnyCase(word);
    if (meant != nullptr && (isLeaf || top().isInFields)) {
        const std::size_t length = text_.offsetAt(begin);
        text_.replace(word, meant->name);
        reporter_.repaired(begin, "wrote " + quoted(word) + " as " + meant->name);
        cursor_.at = begin;
        if (!field(*meant)) {
            text_.cutTo(length);
        } else if (!isLeaf) {
            top().fieldsEnd = text_.offsetAt(cursor_.at);
        }
        return;
    }
    if (findClass(word) != nullptr) {
        text_.drop(since(begin));
        reporter_.repaired(begin, "dropped the word " + quoted(word) + ", which no brace follows");
        return;
    }
    skipValue(true);
    text_.drop(since(begin));
    reporter_.repaired(begin, "dropped the unknown field " + quoted(word) + " of " +
                                  (isLeaf ? top() : container()).info->name);
}

/// Passes over a value of whatever shape. A word with which the node goes on is none.
void SceneTidier::skipValue(bool mayBeNode) {
    cursor_.skipSpace();
    const char c = cursor_.peek();
    const ClassInfo& info = *(top().kind == Frame::Kind::kLeaf ? top() : container()).info;
    if (c == '~') {
        ++cursor_.at;
    } else if (c == '[' || c == '(') {
        ++cursor_.at;
        skipToBracket(cursor_, onDroppedDefinition_);
    } else if (c == '"' || beginsNumber(cursor_)) {
        Cursor ahead = cursor_;
        while (ahead.peek() == '"' || ahead.peek() == ',' || beginsNumber(ahead)) {
            skipToken(ahead);
            cursor_ = ahead;
            ahead.skipSpace();
        }
    } else {
        const std::string_view word = cursor_.word();
        if (word.empty() || info.field(cutName(word)) != nullptr ||
            (!mayBeNode && (isBraceBehind(word) || word == "USE" || word == "DEF"))) {
            return;
        }
        cursor_.at += word.size();
        if (word == "USE" || word == "DEF") {
            const char* const definition = word.data();
            cursor_.skipSpace();
            const StringToken name = cursor_.stringBeforeBrace();
            cursor_.at += name.text.size();
            if (word == "DEF") {
                onDroppedDefinition_(name.value(), definition);
                cursor_.skipSpace();
                cursor_.at += cursor_.word().size();
            }
        }
        while (cursor_.peekBehindSpace() == '|') {
            cursor_.skipSpace();
            ++cursor_.at;
            cursor_.skipSpace();
            cursor_.at += cursor_.word().size();
        }
        if (mayBeNode && cursor_.peekBehindSpace() == '[') {
            cursor_.skipSpace();
            ++cursor_.at;
            skipToBracket(cursor_, onDroppedDefinition_);
        }
    }
    if (mayBeNode && cursor_.peekBehindSpace() == '{') {
        cursor_.skipSpace();
        skipBody(cursor_, onDroppedDefinition_);
    }
}

/// Passes over a declaration of fields, from behind the word, as the reader takes it. What is
/// declared is added to a class, if there is one; then the types have to be known.
bool SceneTidier::passDeclaration(ClassInfo* declared) {
    Cursor place = cursor_;
    place.skipSpace();
    // The reader takes any character for the opening bracket.
    place.at += place.atEnd() ? 0 : 1;
    place.skipSpace();
    while (place.peek() != ']') {
        const std::string_view type = place.name();
        place.at += type.size();
        place.skipSpace();
        const std::string_view name = place.name();
        place.at += name.size();
        if (declared != nullptr) {
            const std::optional<ValueType> known = declaredType(type);
            if (!known) {
                return false;
            }
            declared->addField(cutName(name), *known);
        }
        place.skipSpace();
        if (place.peek() == ',') {
            ++place.at;
            place.skipSpace();
        } else if (place.peek() != ']') {
            return false;
        }
    }
    if (place.atEnd()) {
        return false;
    }
    ++place.at;
    cursor_ = place;
    return true;
}

} // namespace meshcast::tidy
