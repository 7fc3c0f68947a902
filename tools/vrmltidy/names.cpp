#include "tools/vrmltidy/scene.h"
#include "tools/vrmltidy/skip.h"
#include "vrml/characters.h"

#include <algorithm>
#include <utility>

// DEF and USE.

namespace meshcast::tidy {

namespace {

std::string_view between(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

/// True for a name that needs no quotes, to the filter and to other programs.
bool isPlainName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return isNameCharacter(c) || c == '-' || c == '.' || c == ':';
    });
}

} // namespace

SceneTidier::Beginning SceneTidier::beginHere() const {
    const std::size_t offset = text_.offsetAt(cursor_.at);
    return {cursor_.at, offset, offset, {}, {}};
}

/// What a name is called in the text, if it cannot stay as it is: in a scene that is put in place,
/// the names of the scenes around it are taken.
std::string SceneTidier::nameToWrite(const std::string& name) const {
    if (parent_ == nullptr || !parent_->isTaken(name)) {
        return {};
    }
    std::string written = name;
    std::replace_if(
        written.begin(), written.end(), [](char c) { return !isNameCharacter(c); }, '_');
    written.append("_").append(std::to_string(job_.inlinedScenes));
    while (isTaken(written)) {
        written += '_';
    }
    return written;
}

bool SceneTidier::isTaken(std::string_view name) const {
    return names_.find(name) != names_.end() || (parent_ != nullptr && parent_->isTaken(name));
}

/// The name behind DEF or USE. A brace belongs to it, as it does to the reader, if the braces of
/// the scene do not match without it.
StringToken SceneTidier::nameAt(const Cursor& place, bool isDefinition) {
    constexpr std::size_t kLongestBracedName = 256;
    const StringToken name = place.stringBeforeBrace();
    const char* const brace = name.text.data() + name.text.size();
    if (name.isQuoted || brace == place.end || isSpace(*brace) ||
        !(isDefinition ? !bracesMatchCheck_() : hasBracedNames_)) {
        return name;
    }
    const StringToken whole = place.string(kLongestBracedName);
    const bool isKnown = isDefinition || names_.find(whole.text) != names_.end();
    return whole.text.size() < kLongestBracedName && isKnown ? whole : name;
}

/// Names a node, and writes the name as it is to be: with quotes only where braces or blanks need
/// them, and not as one of those that are taken.
void SceneTidier::writeName(Beginning& beginning, const StringToken& name, bool mayUnquote) {
    beginning.name = name.value();
    beginning.writtenName = nameToWrite(beginning.name);
    const char* const first = name.text.data();
    const char* const last = first + name.text.size();
    if (beginning.writtenName.empty() && !name.isQuoted) {
        beginning.writtenName = inQuotes(name.text);
        if (!beginning.writtenName.empty()) {
            reporter_.repaired(first, "put quotes around the name " + quoted(beginning.name));
        }
    }
    const bool unquotes = mayUnquote && name.isQuoted && isPlainName(beginning.name);
    if (!unquotes && beginning.writtenName.empty()) {
        return;
    }
    std::string written = beginning.writtenName.empty() ? beginning.name : beginning.writtenName;
    written.insert(0, first == beginning.source + 3 ? 1 : 0, ' ');
    written.append(last != cursor_.end && !isSpace(*last) ? 1 : 0, ' ');
    text_.replace(name.text, written);
    if (unquotes) {
        reporter_.repaired(first, "took the name " + quoted(beginning.name) + " out of its quotes");
    }
}

/// Takes DEF, its name, and the node behind it as far as its opening brace.
void SceneTidier::define() {
    Beginning beginning = beginHere();
    Cursor place = cursor_;
    place.at += 3;
    place.skipSpace();
    const StringToken name = nameAt(place, true);
    Cursor behind = place;
    behind.at += name.text.size();
    behind.skipSpace();
    const std::string_view className = behind.name();
    const std::string value = name.value();
    if (value.empty() || !isBraceBehind(className)) {
        mendDefinition(beginning, place.stringBeforeBrace());
        return;
    }
    hasBracedNames_ = hasBracedNames_ || value.find_first_of("{}") != std::string::npos;
    writeName(beginning, name, findClassInAnyCase(className) != nullptr);
    cursor_.at = behind.at;
    node(std::move(beginning), className);
}

/// The class of the node that stands behind a few words: those of a name with blanks in it.
std::string_view SceneTidier::classBehindWords(Cursor place) const {
    constexpr int kMostWords = 8;
    for (int i = 0; i < kMostWords; ++i) {
        const std::string_view word = place.name();
        if (isBraceBehind(word)) {
            return findClassInAnyCase(word) != nullptr ? word : std::string_view();
        }
        const std::string_view skipped = place.word();
        if (skipped.empty() || skipped == "DEF" || skipped == "USE") {
            break;
        }
        place.at += skipped.size();
        place.skipSpace();
    }
    return {};
}

/// Makes something of a DEF that no node with a class follows as it should.
void SceneTidier::mendDefinition(Beginning beginning, const StringToken& name) {
    const char* const first = name.text.data();
    const std::string_view head = name.text;
    Cursor behind = cursor_;
    behind.at = first + head.size();
    behind.skipSpace();
    const bool isClass = findClassInAnyCase(head) != nullptr;
    if (behind.peek() == '{' && !isClass && !head.empty() && name.isClosed &&
        !name.value().empty()) {
        reporter_.repaired(first, "put \"Group\" behind the name " + quoted(head));
        writeName(beginning, name, true);
        text_.insert(first + head.size(), " Group ");
        cursor_ = behind;
        open(*findClass("Group"), beginning);
        return;
    }
    const std::string_view className =
        name.value().empty() ? std::string_view() : classBehindWords(behind);
    if (!className.empty()) {
        writeName(beginning, name, true);
        cursor_.at = className.data();
        text_.drop(since(first + head.size()));
        reporter_.repaired(first, "cut the name at " + quoted(head));
        node(std::move(beginning), className);
        return;
    }
    // "DEF Cube {" has no name; of anything else nothing but the name can be told.
    const bool keepsWord = behind.peek() == '{' && isClass;
    cursor_.at = keepsWord ? first : first + head.size();
    text_.drop(since(beginning.source));
    reporter_.repaired(beginning.source,
                       keepsWord ? "dropped a DEF without a name" : "dropped a DEF without a node");
}

void SceneTidier::use() {
    const char* const begin = cursor_.at;
    const std::size_t offset = text_.offsetAt(begin);
    Cursor place = cursor_;
    place.at += 3;
    place.skipSpace();
    const StringToken token = nameAt(place, false);
    std::string_view written = token.text;
    std::string name = token.value();
    auto found = names_.find(name);
    if (found == names_.end() && !token.isQuoted) {
        written = written.substr(0, written.find_first_of("[](),;\""));
        name = written;
        found = names_.find(name);
    }
    cursor_.at = written.empty() ? begin + 3 : written.data() + written.size();
    if (found == names_.end()) {
        dropChild(since(begin));
        reporter_.repaired(begin, "dropped the USE of " + quoted(name) + ", which is not defined");
        return;
    }
    if (!found->second.isWritten) {
        if (!restore(since(begin), name, found->second.source)) {
            names_.erase(found);
            dropChild(since(begin));
            reporter_.repaired(begin, "dropped the USE of " + quoted(name) +
                                          ", which is no node that is known");
        }
        return;
    }
    addChild(offset);
    if (!found->second.writtenName.empty()) {
        text_.replace(written, found->second.writtenName);
    }
    if (isAtTop()) {
        rootsEnd_ = text_.offsetAt(cursor_.at);
    }
    if (!token.isQuoted && cursor_.at != cursor_.end && !isSpace(*cursor_.at)) {
        text_.insert(cursor_.at, " ");
        reporter_.repaired(begin, "separated the name " + quoted(name) + " from what follows it");
    }
}

/// Goes on in a definition that was dropped, to write it in place of a USE. False when its node
/// would only be dropped again.
bool SceneTidier::restore(std::string_view use, std::string_view name, const char* definition) {
    Cursor part = whole_;
    part.at = definition;
    part.at += 3;
    part.skipSpace();
    part.at += part.stringBeforeBrace().text.size();
    part.skipSpace();
    const std::string_view className = part.name();
    if (findClassInAnyCase(className) == nullptr || !isBraceBehind(className)) {
        return false;
    }
    part.at += className.size();
    part.skipSpace();
    skipBody(part, {});
    const std::string_view source = between(definition, part.at);
    if (source.size() > job_.mayStillRepeat) {
        job_.refusal = "uses too much of what has to be dropped";
        return true;
    }
    job_.mayStillRepeat -= source.size();
    reporter_.repaired(use.data(), "put " + quoted(name) + " here, which was in something dropped");
    text_.replace(use, "");
    parts_.push_back({cursor_, frames_.size()});
    cursor_ = {definition, part.at};
    text_.setSource(definition, part.at);
    return true;
}

} // namespace meshcast::tidy
