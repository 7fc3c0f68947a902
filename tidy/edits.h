#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// A change of a text: `length` bytes at `offset` are replaced by `replacement`. With a length of 0
/// and no replacement, the edit is only a message.
struct Edit {
    std::size_t offset;
    std::size_t length;
    std::string_view replacement;
    std::string_view message; ///< What was done, or why nothing was done.
    const std::string* file =
        nullptr;            ///< The file that the message is about; null: this text's file.
    std::uint32_t line = 0; ///< The line of the message; 0: the line of `offset`.
    bool isRepair = false;  ///< Counts as a repair.

    bool changesText() const { return length != 0 || !replacement.empty(); }
};

/// Owns the texts that edits point to.
class TextStore {
public:
    /// Messages beyond this many are counted, not kept. They would take many times the memory of
    /// the scene.
    static constexpr std::size_t kMostMessages = 100'000;

    std::string_view keep(std::string_view text);
    std::string_view keepMessage(std::string_view text) {
        return !text.empty() && ++messages_ > kMostMessages ? std::string_view() : keep(text);
    }
    /// Takes over a long text without a copy.
    std::string_view take(std::string text);

private:
    std::pmr::monotonic_buffer_resource memory_;
    std::deque<std::string> long_;
    std::size_t messages_ = 0;
};

/// The edits of one text, sorted by offset and without overlap. Each edit must be at or after the
/// end of the last one, except for edits added at a mark.
class EditList {
public:
    /// A position that the parser has reached, and the number of edits made up to it. An edit can
    /// be inserted there later.
    struct Mark {
        const char* at = nullptr;
        std::size_t count = 0;
    };

    EditList(std::string_view text, TextStore& store) : text_(text), store_(store) {}

    /// Replaces [first, last) by a text. Adds a space where two words would otherwise touch.
    void replace(const char* first, const char* last, std::string_view replacement,
                 std::string_view message = {});
    void insert(const char* at, std::string_view text, std::string_view message = {}) {
        replace(at, at, text, message);
    }
    /// Removes [first, last), and the whole line if nothing else is on it. The text before and the
    /// text after stay separated.
    void drop(const char* first, const char* last, std::string_view message = {});
    /// Adds the messages of another text's edits, or remarks.
    void quote(const char* at, const std::vector<Edit>& said);

    /// A mark at `at`, or at the end of the last edit if that is later.
    Mark mark(const char* at) const {
        return {text_.data() + std::max(offsetOf(at), lastEnd()), edits_.size()};
    }
    /// Inserts a text at a mark.
    void insertAt(Mark mark, std::string_view text, std::string_view message = {},
                  std::uint32_t line = 0);
    /// Removes and returns the edits after the first `count`.
    std::vector<Edit> takeSince(std::size_t count);
    /// The edits so far, without those at marks.
    const std::deque<Edit>& edits() const { return edits_; }

    /// All edits, sorted by offset. The list is empty afterwards.
    std::vector<Edit> finish();

private:
    struct Late {
        std::size_t count;
        Edit edit;
    };
    std::size_t offsetOf(const char* p) const { return static_cast<std::size_t>(p - text_.data()); }
    std::size_t lastEnd() const {
        return edits_.empty() ? 0 : edits_.back().offset + edits_.back().length;
    }
    /// The character before `at` in the edited text; a newline at the beginning of the text.
    char lastBefore(const char* at) const;

    std::string_view text_;
    TextStore& store_;
    std::deque<Edit> edits_;
    std::vector<Late> late_;
    // The latest run of adjacent drops: its first edit, and the start of the white space before it.
    std::size_t runBegin_ = 0;
    std::size_t runBlanks_ = 0;
    std::size_t runLast_ = 0; ///< Its last edit.
    std::size_t runEnd_ = std::string_view::npos;
};

/// An edit that changes nothing and only reports a message.
Edit remark(std::string_view message, std::uint32_t line);

/// The length of a text after sorted edits.
std::size_t editedLength(std::string_view text, const std::vector<Edit>& edits);

/// Calls `piece` for each piece of the edited text, in order. The edits must be sorted.
template <class OnPiece>
void forEachPiece(std::string_view text, const std::vector<Edit>& edits, OnPiece piece) {
    std::size_t next = 0;
    for (const Edit& edit : edits) {
        if (edit.changesText()) {
            piece(text.substr(next, edit.offset - next));
            piece(edit.replacement);
            next = edit.offset + edit.length;
        }
    }
    piece(text.substr(next));
}

/// The edited text.
std::string applyEdits(std::string_view text, const std::vector<Edit>& edits);

} // namespace meshcast::tidy
