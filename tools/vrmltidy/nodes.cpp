#include "tools/vrmltidy/scene.h"
#include "tools/vrmltidy/skip.h"
#include "vrml/characters.h"
#include "vrml/scene_reader.h"

#include <algorithm>
#include <utility>

namespace meshcast::tidy {

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
    text_.cutTo(beginning.offset); // A name that has been written.
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

} // namespace meshcast::tidy
