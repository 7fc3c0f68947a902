#include "evaluate/walk_place.h"

#include "evaluate/utf8.h"

namespace meshcast::evaluate {

void WalkPlace::enter(std::string_view name, GroupScope scope) {
    const bool isInnerScope = scope == GroupScope::kAll && !frames_.empty();
    frames_.push_back({scope, path_.size(), isInnerScope, url_, matrix_, textureMatrix_});
    scopes_ += isInnerScope ? 1 : 0;
    if (name.empty()) {
        return;
    }
    std::string_view rest = name;
    std::string text(path_.empty() ? "" : "/");
    while (!rest.empty() && path_.size() + text.size() < kLongestPath) {
        appendUtf8(text, takeCharacter(rest));
    }
    // A name that does not fit is left out as a whole.
    if (rest.empty() && path_.size() + text.size() <= kLongestPath) {
        path_ += text;
    }
}

void WalkPlace::leave() {
    const Frame& frame = frames_.back();
    path_.resize(frame.pathLength);
    url_ = frame.url;
    scopes_ -= frame.isInnerScope ? 1 : 0;
    if (frame.scope != GroupScope::kNothing) {
        matrix_ = frame.matrix;
    }
    if (frame.scope == GroupScope::kAll) {
        textureMatrix_ = frame.textureMatrix;
    }
    frames_.pop_back();
}

} // namespace meshcast::evaluate
