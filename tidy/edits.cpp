#include "tidy/edits.h"

#include "vrml/characters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace meshcast::tidy {

namespace {

bool isBlank(char c) { return isSpace(c) && c != '\n'; }

} // namespace

std::string_view TextStore::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    auto* const copy = static_cast<char*>(memory_.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), copy);
    return {copy, text.size()};
}

std::string_view TextStore::take(std::string text) {
    constexpr std::size_t kLong = 4096;
    return text.size() < kLong ? keep(text) : std::string_view(long_.emplace_back(std::move(text)));
}

char EditList::lastBefore(const char* at) const {
    if (!edits_.empty()) {
        const Edit& last = edits_.back();
        if (last.offset + last.length == offsetOf(at) && last.changesText()) {
            at = text_.data() + last.offset;
            if (!last.replacement.empty()) {
                return last.replacement.back();
            }
        }
    }
    return at == text_.data() ? '\n' : at[-1];
}

void EditList::replace(const char* first, const char* last, std::string_view replacement,
                       std::string_view message) {
    // A brace after a word would be part of it.
    const char before = lastBefore(first);
    const bool touches = !replacement.empty() &&
                         (replacement.front() == '}'
                              ? !isSpace(before)
                              : isNameCharacter(replacement.front()) && isNameCharacter(before));
    std::string apart;
    if (touches) {
        apart.append(" ").append(replacement);
    }
    edits_.push_back({offsetOf(first), static_cast<std::size_t>(last - first),
                      store_.keep(touches ? apart : replacement), store_.keepMessage(message),
                      nullptr, 0, !message.empty()});
}

void EditList::drop(const char* first, const char* last, std::string_view message) {
    const char* const textEnd = text_.data() + text_.size();
    const std::size_t begin = offsetOf(first);
    std::size_t changing = edits_.size();
    while (changing > runLast_ + 1 && !edits_[changing - 1].changesText()) {
        --changing;
    }
    // A run has no insertions between its parts.
    if (runEnd_ != begin || changing != runLast_ + 1) {
        // The white space after the previous edit. Text before that edit is not searched again.
        const std::size_t least = edits_.empty() ? 0 : edits_.back().offset + edits_.back().length;
        runBlanks_ = begin;
        while (runBlanks_ > least && isBlank(text_[runBlanks_ - 1])) {
            --runBlanks_;
        }
        runBegin_ = edits_.size();
    }
    const char* rest = last;
    while (rest != textEnd && isBlank(*rest)) {
        ++rest;
    }
    Edit edit{begin,
              static_cast<std::size_t>(last - first),
              {},
              store_.keepMessage(message),
              nullptr,
              0,
              !message.empty()};
    if (rest == textEnd || *rest == '\n') {
        // The rest of the line is empty, so the white space before it is removed too.
        const Edit* const before = runBegin_ == 0 ? nullptr : &edits_[runBegin_ - 1];
        const bool follows = before != nullptr && !before->replacement.empty() &&
                             before->offset + before->length == runBlanks_;
        const bool stoodAlone =
            rest != textEnd && runBlanks_ != 0 && text_[runBlanks_ - 1] == '\n' && !follows;
        edit.length = static_cast<std::size_t>(rest - first) + (stoodAlone ? 1 : 0);
        Edit& firstOfRun = runBegin_ == edits_.size() ? edit : edits_[runBegin_];
        firstOfRun.length += firstOfRun.offset - runBlanks_;
        firstOfRun.offset = runBlanks_;
    } else if (runBlanks_ < begin || runBegin_ != edits_.size()) {
        edit.length = static_cast<std::size_t>(rest - first);
    } else if (rest == last && begin != 0 && text_[begin - 1] != '\n') {
        edit.replacement = " ";
    }
    runEnd_ = edit.offset + edit.length;
    runLast_ = edits_.size();
    edits_.push_back(edit);
}

void EditList::quote(const char* at, const std::vector<Edit>& said) {
    const std::size_t offset = std::max(offsetOf(at), lastEnd());
    for (const Edit& edit : said) {
        if (edit.isRepair || !edit.message.empty()) {
            edits_.push_back({offset, 0, {}, edit.message, edit.file, edit.line, edit.isRepair});
        }
    }
}

void EditList::insertAt(Mark mark, std::string_view text, std::string_view message,
                        std::uint32_t line) {
    late_.push_back({mark.count,
                     {offsetOf(mark.at), 0, store_.keep(text), store_.keepMessage(message), nullptr,
                      line, !message.empty()}});
}

std::vector<Edit> EditList::takeSince(std::size_t count) {
    std::vector<Edit> taken(edits_.begin() + static_cast<std::ptrdiff_t>(count), edits_.end());
    edits_.resize(count, Edit{});
    runEnd_ = taken.empty() ? runEnd_ : std::string_view::npos;
    return taken;
}

std::vector<Edit> EditList::finish() {
    std::stable_sort(late_.begin(), late_.end(), [](const Late& a, const Late& b) {
        return std::pair(a.count, a.edit.offset) < std::pair(b.count, b.edit.offset);
    });
    std::vector<Edit> all;
    all.reserve(edits_.size() + late_.size());
    auto late = late_.begin();
    for (std::size_t i = 0;; ++i) {
        for (; late != late_.end() && late->count == i; ++late) {
            all.push_back(late->edit);
        }
        if (edits_.empty()) {
            break;
        }
        all.push_back(edits_.front());
        edits_.pop_front(); // Frees its memory.
    }
    late_.clear();
    return all;
}

Edit remark(std::string_view message, std::uint32_t line) {
    Edit edit{0, 0, {}, message};
    edit.line = line;
    return edit;
}

std::size_t editedLength(std::string_view text, const std::vector<Edit>& edits) {
    std::size_t length = 0;
    forEachPiece(text, edits, [&length](std::string_view piece) { length += piece.size(); });
    return length;
}

std::string applyEdits(std::string_view text, const std::vector<Edit>& edits) {
    std::string edited;
    edited.reserve(editedLength(text, edits));
    forEachPiece(text, edits, [&edited](std::string_view piece) { edited += piece; });
    return edited;
}

} // namespace meshcast::tidy
