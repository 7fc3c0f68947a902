#include "tools/vrmltidy/edited_text.h"

#include "vrml/characters.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace meshcast::tidy {

namespace {

bool isBlank(char c) { return isSpace(c) && c != '\n'; }

} // namespace

void EditedText::copyTo(const char* at) {
    if (at > next_) {
        if (text_.capacity() < static_cast<std::size_t>(at - next_)) {
            // Room for the rest too, and for what is put in: memory that is not used costs nothing.
            const auto rest = static_cast<std::size_t>(end_ - next_);
            text_.reserve(text_.size() + rest + rest / 8);
        }
        text_.append(next_, at);
        next_ = at;
    }
}

void EditedText::insert(const char* at, std::string_view text) {
    copyTo(at);
    if (!text_.empty() && !text.empty() && isNameCharacter(text_.back()) &&
        isNameCharacter(text.front())) {
        text_ += ' ';
    }
    text_ += text;
}

void EditedText::replace(std::string_view part, std::string_view text) {
    insert(part.data(), text);
    next_ = std::max(next_, part.data() + part.size());
}

void EditedText::drop(std::string_view part) {
    copyTo(part.data());
    const char* const behind = std::max(next_, part.data() + part.size());
    const char* const rest = std::find_if_not(behind, end_, isBlank);
    std::size_t length = text_.size();
    while (length > 0 && isBlank(text_[length - 1])) {
        --length;
    }
    next_ = behind;
    if (rest == end_ || *rest == '\n') {
        const bool stoodAlone = rest != end_ && length > 0 && text_[length - 1] == '\n';
        text_.resize(length);
        next_ = stoodAlone ? rest + 1 : rest;
    } else if (length != text_.size()) {
        next_ = rest;
    } else if (rest == behind && length > 0 && text_.back() != '\n') {
        text_ += ' ';
    }
}

std::string EditedText::cutTo(std::size_t length) {
    if (length >= text_.size()) {
        return {};
    }
    std::string tail = text_.substr(length);
    text_.resize(length);
    return tail;
}

std::string EditedText::take() {
    std::stable_sort(laterInsertions_.begin(), laterInsertions_.end(),
                     [](const Insertion& a, const Insertion& b) { return a.offset < b.offset; });
    std::size_t shift = 0;
    for (const Insertion& insertion : laterInsertions_) {
        shift += insertion.text.size();
    }
    std::size_t last = text_.size();
    text_.resize(text_.size() + shift);
    // From the back, so that each part is moved once.
    for (auto insertion = laterInsertions_.rbegin(); shift > 0; ++insertion) {
        const std::size_t first = std::min(insertion->offset, last);
        std::memmove(text_.data() + first + shift, text_.data() + first, last - first);
        shift -= insertion->text.size();
        insertion->text.copy(text_.data() + first + shift, insertion->text.size());
        last = first;
    }
    return std::exchange(text_, {});
}

} // namespace meshcast::tidy
