#include "tools/vrmltidy/preamble.h"
#include "tools/vrmltidy/scene.h"
#include "tools/vrmltidy/skip.h"
#include "vrml/characters.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <utility>

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

// ---- nodes

/// Takes a node, from its class on.
void SceneTidier::node(Beginning beginning, std::string_view className) {
    beginning.classOffset = text_.offsetAt(className.data());
    const ClassInfo* info = findClass(className);
    if (info == nullptr) {
        info = declaredClass(className);
    }
    if (info == nullptr) {
        info = findClassInAnyCase(className);
        if (info == nullptr) {
            dropNode(beginning, className);
            return;
        }
        text_.replace(className, info->name);
        reporter_.repaired(className.data(), "wrote " + quoted(className) + " as " + info->name);
    }
    cursor_.at = className.data() + className.size();
    cursor_.skipSpace();
    open(*info, beginning);
}

/// The class of an unknown node that declares its fields; null when it does not, or not so that
/// the reader could take it.
const ClassInfo* SceneTidier::declaredClass(std::string_view className) {
    constexpr std::string_view kFields = "fields";
    Cursor body = cursor_;
    body.at = className.data() + className.size();
    body.skipSpace();
    if (body.peek() != '{' || !std::all_of(className.begin(), className.end(), isNameCharacter)) {
        return nullptr;
    }
    ++body.at;
    body.skipSpace();
    const bool isQuoted = body.peek() == '"';
    const std::string_view word = isQuoted ? body.string().text : body.name();
    if (word.substr(isQuoted ? 1 : 0, kFields.size()) != kFields ||
        word.size() != kFields.size() + (isQuoted ? 2 : 0)) {
        return nullptr;
    }
    // The reader takes a whole word here.
    const char* const behind = word.data() + word.size();
    const bool isGlued = !isQuoted && behind != body.end && !isSpace(*behind);
    auto made = std::make_unique<ClassInfo>();
    made->name = className;
    made->isGroup = true;
    const Cursor before = std::exchange(cursor_, body);
    cursor_.at = behind;
    const bool isRead = passDeclaration(made.get());
    cursor_ = before;
    if (!isRead) {
        return nullptr;
    }
    if (isGlued) {
        text_.insert(behind, " ");
        reporter_.repaired(behind, "separated \"fields\" from its bracket");
    }
    declared_.push_back(std::move(made));
    return declared_.back().get();
}

/// Enters a node whose opening brace is at the cursor.
void SceneTidier::open(const ClassInfo& info, const Beginning& beginning) {
    ++job_.depth;
    job_.deepest = std::max(job_.deepest, job_.depth);
    if (std::max(job_.depth, frames_.size()) > static_cast<std::size_t>(kMaxNestingDepth)) {
        job_.refusal = "is nested deeper than " + std::to_string(kMaxNestingDepth) + " levels";
        return;
    }
    addChild(beginning.offset);
    if (!beginning.name.empty()) {
        names_[beginning.name] = {true, beginning.source, beginning.writtenName};
    }
    const bool isDeclared = !declared_.empty() && declared_.back().get() == &info;
    ++cursor_.at;
    const std::size_t place = text_.offsetAt(cursor_.at);
    const auto kind = info.isGroup ? Frame::Kind::kGroup : Frame::Kind::kLeaf;
    frames_.push_back({kind, true, static_cast<std::uint32_t>(frames_.size()), &info,
                       beginning.classOffset, place});
    inlineName_.clear();
    // A group of the catalogue has children in the place of a declaration.
    if (isDeclared || !info.isGroup) {
        Cursor inside = cursor_;
        inside.skipSpace();
        const std::string_view word =
            isDeclared && inside.peek() == '"' ? inside.string().text : inside.name();
        if (isDeclared || word == "fields") {
            cursor_.at = inside.at + word.size();
            if (!passDeclaration(nullptr)) {
                cursor_.at = inside.at;
            }
            top().fieldsEnd = text_.offsetAt(cursor_.at);
        }
    }
}

/// Leaves the node whose closing brace has been passed.
void SceneTidier::close() {
    const Frame frame = top();
    frames_.pop_back();
    --job_.depth;
    if (frame.info->isInline && frame.isInFields && job_.options.inlines != nullptr) {
        replaceInline(frame);
    }
    if (isAtTop()) {
        rootsEnd_ = text_.offsetAt(cursor_.at);
    }
    if (!declared_.empty() && declared_.back().get() == frame.info) {
        declared_.pop_back();
    }
}

/// Notes that a child begins, or a node at the top.
void SceneTidier::addChild(std::size_t begin) {
    container().isInFields = false;
    if (isAtTop()) {
        ++roots_;
        rootsBegin_ = roots_ == 1 ? begin : rootsBegin_;
        secondRoot_ = roots_ <= 2 ? cursor_.at : secondRoot_;
    }
}

/// Closes a node that has no children in front of one. Whether its brace is missing or the node
/// stands inside it is seen later: a brace behind is dropped.
void SceneTidier::closeLeafEarly() {
    reporter_.repaired(cursor_.at, "closed " + top().info->name + " before the node in it");
    text_.insert(cursor_.at, "}");
    --job_.depth;
    top().kind = Frame::Kind::kClosedLeaf;
    top().container = frames_[frames_.size() - 2].container;
    if (isAtTop()) {
        rootsEnd_ = text_.offsetAt(cursor_.at);
    }
    text_.insert(cursor_.at, " ");
}

void SceneTidier::dropNode(const Beginning& beginning, std::string_view className) {
    cursor_.at = className.data() + className.size();
    cursor_.skipSpace();
    skipBody(cursor_, onDroppedDefinition_);
    names_.erase(beginning.name);
    if (top().kind == Frame::Kind::kLeaf) {
        text_.drop(since(beginning.source));
    } else {
        dropChild(since(beginning.source));
    }
    reporter_.repaired(beginning.source, "dropped the unknown node " + quoted(className));
}

/// Leaves a child out. Where children are chosen by their number, something keeps its place.
void SceneTidier::dropChild(std::string_view part) {
    if (!container().info->picksChild) {
        text_.drop(part);
        return;
    }
    text_.replace(part, "Group { }");
    container().isInFields = false;
}

void SceneTidier::null() {
    const char* const begin = cursor_.at;
    cursor_.at += 4;
    // At the end of a group the reader takes it for the end of the children.
    if (top().kind == Frame::Kind::kGroup && cursor_.peekBehindSpace() == '}') {
        container().isInFields = false;
        return;
    }
    if (top().kind == Frame::Kind::kLeaf) {
        text_.drop(since(begin));
    } else {
        dropChild(since(begin));
    }
    reporter_.repaired(begin, "dropped NULL");
}

// ---- names

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
    beginning.name = value;
    beginning.writtenName = nameToWrite(value);
    const bool unquotes =
        name.isQuoted && isPlainName(value) && findClassInAnyCase(className) != nullptr;
    if (unquotes || !beginning.writtenName.empty()) {
        const bool isGluedToDef = place.at == beginning.source + 3;
        const bool isGluedToClass = behind.at == place.at + name.text.size();
        text_.replace(name.text,
                      (isGluedToDef ? " " : "") +
                          (beginning.writtenName.empty() ? value : beginning.writtenName) +
                          (isGluedToClass ? " " : ""));
    }
    if (unquotes) {
        reporter_.repaired(place.at, "took the name " + quoted(value) + " out of its quotes");
    }
    cursor_.at = behind.at;
    node(std::move(beginning), className);
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
        beginning.name = name.isQuoted ? name.value() : std::string(head);
        beginning.writtenName = nameToWrite(beginning.name);
        text_.replace(head, beginning.writtenName.empty() ? head : beginning.writtenName);
        text_.insert(first + head.size(), " Group ");
        cursor_ = behind;
        open(*findClass("Group"), beginning);
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

// ---- scenes in place of nodes

void SceneTidier::replaceInline(const Frame& frame) {
    const std::string shown = "WWWInline " + quoted(inlineName_);
    const auto leave = [&](const std::string& why) {
        reporter_.note(cursor_.at, "left " + shown + " as it is: " + why);
    };
    if (inlineName_.empty()) {
        return;
    }
    auto opened = job_.options.inlines->open(inlineName_, path_);
    if (const auto* const why = std::get_if<std::string>(&opened)) {
        leave(*why);
        return;
    }
    auto& scene = std::get<InlineSource::Scene>(opened);
    auto& outer = job_.openScenes;
    if (std::find(outer.begin(), outer.end(), scene.identity) != outer.end()) {
        leave("the scene contains itself");
        return;
    }
    if (outer.size() >= kDeepestInline) {
        leave("scenes name one another to more than " + std::to_string(kDeepestInline) + " levels");
        return;
    }
    job_.inlinedBytes += scene.bytes.size();
    const Preamble preamble = prepare(scene.bytes);
    if (!preamble.refusal.empty()) {
        leave("it " + preamble.refusal);
        return;
    }
    if (job_.inlinedBytes > kMostInlinedBytes) {
        job_.refusal = "names scenes of more than " + std::to_string(kMostInlinedBytes) + " bytes";
        return;
    }
    reporter_.note(cursor_.at, "put " + scene.path + " in the place of " + shown);
    Reporter inner(scene.bytes, scene.path, job_.options.report, job_.repairs);
    for (const std::string& repair : preamble.repairs) {
        inner.repaired(scene.bytes.data(), repair);
    }
    const std::string_view body = std::string_view(scene.bytes).substr(preamble.headerSize);
    job_.mayStillRepeat += kLargestGrowth * body.size();
    ++job_.inlinedScenes;
    outer.push_back(scene.identity);
    text_.copyTo(cursor_.at);
    text_.cutTo(frame.classOffset);
    // What is in force behind an inline is what was in force before it.
    text_.setSource(body.data(), body.data() + body.size());
    text_.insert(body.data(), "Separator { ");
    ++job_.depth;
    SceneTidier(job_, body, scene.path, inner, this).run();
    --job_.depth;
    text_.setSource(cursor_.at, cursor_.end);
    text_.insert(cursor_.at, " }");
    outer.pop_back();
}

} // namespace meshcast::tidy
