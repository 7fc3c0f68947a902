#include "tools/vrmltidy/scene.h"

#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/skip.h"
#include "vrml/scene_reader.h"

#include <utility>

namespace meshcast::tidy {

SceneTidier::SceneTidier(Job& job, std::string_view body, std::string path, Reporter& reporter,
                         const SceneTidier* parent)
    : job_(job), text_(job.text), reporter_(reporter),
      whole_(body.data(), body.data() + body.size()), path_(std::move(path)), parent_(parent),
      cursor_(whole_) {
    onDroppedDefinition_ = [this](std::string_view name, const char* definition) {
        Definition& known = names_[std::string(name)];
        // A node that has been fetched out of what is dropped once more is still there.
        if (!known.isWritten || known.source != definition) {
            known = {false, definition, {}};
        }
    };
    bracesMatchCheck_ = [this] {
        if (!bracesMatch_) {
            bracesMatch_ = bracesMatch(whole_);
        }
        return *bracesMatch_;
    };
}

void SceneTidier::run() {
    static const ClassInfo kNoClass;
    frames_.push_back({Frame::Kind::kTop, false, 0, &kNoClass, 0, 0});
    while (!isFinished_ && job_.refusal.empty()) {
        step();
    }
}

void SceneTidier::step() {
    cursor_.skipSpace();
    if (cursor_.atEnd()) {
        endOfPart();
    } else if (*cursor_.at == '}') {
        closingBrace();
    } else if (top().kind == Frame::Kind::kLeaf) {
        stepInLeaf();
    } else {
        stepInGroup();
    }
}

void SceneTidier::stepInLeaf() {
    const std::string_view name = cursor_.name();
    if (const FieldInfo* const known = top().info->field(cutName(name)); known != nullptr) {
        field(*known);
        return;
    }
    const std::string_view word = cursor_.word();
    if (name.empty()) {
        if (*cursor_.at == '{') {
            openingBrace();
        } else {
            stray();
        }
    } else if (name == "DEF" || name == "USE" ||
               (isBraceBehind(word) && findClassInAnyCase(word) != nullptr)) {
        closeLeafEarly();
    } else if (isBraceBehind(word)) {
        dropNode(beginHere(), word);
    } else if (name == "NULL") {
        null();
    } else {
        unknownField(word);
    }
}

void SceneTidier::stepInGroup() {
    const std::string_view name = cursor_.name();
    if (name.empty()) {
        if (*cursor_.at == '{' && !isAtTop()) {
            openingBrace();
        } else {
            stray();
        }
        return;
    }
    const FieldInfo* const known = container().info->field(cutName(name));
    if (known != nullptr && top().kind == Frame::Kind::kGroup && top().isInFields) {
        if (field(*known)) {
            top().fieldsEnd = text_.offsetAt(cursor_.at);
        }
        return;
    }
    const std::string_view word = cursor_.word();
    if (name == "NULL") {
        null();
    } else if (name == "USE") {
        use();
    } else if (name == "DEF") {
        define();
    } else if (isBraceBehind(word)) {
        node(beginHere(), word);
    } else if (known != nullptr) {
        lateField(*known);
    } else if (isAtTop()) {
        stray();
    } else {
        unknownField(word);
    }
}

bool SceneTidier::isBraceBehind(std::string_view word) const {
    Cursor behind = cursor_;
    behind.at = word.data() + word.size();
    return !word.empty() && behind.peekBehindSpace() == '{';
}

void SceneTidier::closingBrace() {
    const std::size_t own = parts_.empty() ? 1 : parts_.back().frames;
    if (frames_.size() <= own) {
        stray();
    } else if (top().kind == Frame::Kind::kClosedLeaf) {
        const char* const brace = cursor_.at++;
        text_.drop(since(brace));
        frames_.pop_back();
    } else {
        ++cursor_.at;
        close();
    }
}

/// A brace without a class in front of it. In a group it opens one, so that nothing is lost.
void SceneTidier::openingBrace() {
    const char* const brace = cursor_.at;
    if (top().kind == Frame::Kind::kLeaf) {
        skipBody(cursor_, onDroppedDefinition_);
        text_.drop(since(brace));
        reporter_.repaired(brace, "dropped braces without a class and what is in them");
        return;
    }
    const Beginning beginning = beginHere();
    text_.insert(brace, "Group ");
    reporter_.repaired(brace, "put \"Group\" before braces without a class");
    open(*findClass("Group"), beginning);
}

/// Drops what nothing can be made of, up to where something may begin.
void SceneTidier::stray() {
    const char* const first = cursor_.at;
    const std::size_t own = parts_.empty() ? 1 : parts_.back().frames;
    const bool isTopLevel = top().kind == Frame::Kind::kTop;
    std::size_t tokens = 0;
    std::string_view shown;
    for (;;) {
        const char* const token = cursor_.at;
        skipToken(cursor_);
        if (*token == '"' && since(token).find('\n') != std::string_view::npos) {
            // More likely the end of a string with a quote in it than one over several lines.
            cursor_.at = token + 1;
        }
        text_.drop(since(token));
        shown = tokens++ == 0 ? since(token) : shown;
        cursor_.skipSpace();
        const char c = cursor_.peek();
        if (cursor_.atEnd() || (c == '}' && frames_.size() > own) || (c == '{' && !isTopLevel)) {
            break;
        }
        if (isNameStart(c)) {
            const std::string_view word = cursor_.word();
            const std::string_view name = cursor_.name();
            if (!isTopLevel || name == "DEF" || name == "USE" || isBraceBehind(word)) {
                break;
            }
        }
    }
    const char* const where = isTopLevel && roots_ > 0 ? " behind the last node" : "";
    reporter_.repaired(first, "dropped " +
                                  (tokens == 1 ? "stray " + quoted(shown)
                                               : counted(tokens, "stray word") + " from " +
                                                     quoted(shown) + " on") +
                                  where);
}

void SceneTidier::endOfPart() {
    const std::size_t own = parts_.empty() ? 1 : parts_.back().frames;
    std::size_t missing = 0;
    if (cursor_.endsInComment && (frames_.size() > own || !parts_.empty())) {
        text_.insert(cursor_.end, "\n");
        cursor_.endsInComment = false;
    }
    while (frames_.size() > own && job_.refusal.empty()) {
        if (top().kind == Frame::Kind::kClosedLeaf) {
            frames_.pop_back();
            continue;
        }
        text_.insert(cursor_.end, " }");
        ++missing;
        close();
    }
    if (missing != 0) {
        reporter_.repaired(cursor_.end, "set " + counted(missing, "missing closing brace"));
    }
    if (parts_.empty()) {
        finish();
        return;
    }
    text_.copyTo(cursor_.end);
    cursor_ = parts_.back().cursor;
    parts_.pop_back();
    text_.setSource(cursor_.at, cursor_.end);
}

void SceneTidier::finish() {
    isFinished_ = true;
    const bool isWrapped = parent_ == nullptr && roots_ > 1;
    if (isWrapped) {
        text_.insertAtOffset(rootsBegin_, "Group { ");
        text_.insertAtOffset(rootsEnd_, " }");
        reporter_.repaired(secondRoot_,
                           "put " + counted(roots_, "top-level node") + " into one Group");
    }
    if (job_.deepest + (isWrapped ? 1 : 0) > static_cast<std::size_t>(kMaxNestingDepth)) {
        job_.refusal = "is nested deeper than " + std::to_string(kMaxNestingDepth) + " levels";
    }
    // The reader looks for a first node to the end, and expects a comment to have one.
    if (cursor_.endsInComment && (roots_ == 0 || parent_ != nullptr)) {
        text_.insert(cursor_.end, "\n");
        if (parent_ == nullptr) {
            reporter_.repaired(cursor_.end, "ended the last comment");
        }
    }
    if (parent_ != nullptr || text_.isEdited()) {
        text_.copyTo(cursor_.end);
    }
}

} // namespace meshcast::tidy
