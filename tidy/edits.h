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

/// A change of a text: `length` bytes at `offset` become `replacement`. One with neither only has
/// something to say.
struct Edit {
    std::size_t offset;
    std::size_t length;
    std::string_view replacement;
    std::string_view message;          ///< What was done, or why nothing was.
    const std::string* file = nullptr; ///< Where the message belongs, if to another file.
    std::uint32_t line = 0;            ///< The line of the message; 0: that of the offset.
    bool isRepair = false;             ///< Counts as a repair.

    bool changesText() const { return length != 0 || !replacement.empty(); }
};

/// Keeps the texts of edits.
class TextStore {
public:
    /// Messages beyond this many are counted, not kept: nobody reads them, and they would take many
    /// times the memory of the scene.
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

/// The edits of one text, in the order of their places and without overlap: each is added at or
/// after the end of the last one, save those that are added at a mark.
class EditList {
public:
    /// A place to which the text has been gone through, with the edits made so far.
    struct Mark {
        const char* at = nullptr;
        std::size_t count = 0;
    };

    EditList(std::string_view text, TextStore& store) : text_(text), store_(store) {}

    /// Replaces [first, last) by a text. Words that would touch are kept apart by a blank.
    void replace(const char* first, const char* last, std::string_view replacement,
                 std::string_view message = {});
    void insert(const char* at, std::string_view text, std::string_view message = {}) {
        replace(at, at, text, message);
    }
    /// Removes [first, last), and the line if nothing else stands on it; what stands before and
    /// after it stays apart.
    void drop(const char* first, const char* last, std::string_view message = {});
    /// Says what the edits of another text have to say, or remarks.
    void quote(const char* at, const std::vector<Edit>& said);

    /// A mark at a place, or at the end of the last edit if that lies after it.
    Mark mark(const char* at) const {
        return {text_.data() + std::max(offsetOf(at), lastEnd()), edits_.size()};
    }
    /// Inserts a text where the mark was set.
    void insertAt(Mark mark, std::string_view text, std::string_view message = {},
                  std::uint32_t line = 0);
    /// Takes back the edits made since `count` of them were there.
    std::vector<Edit> takeSince(std::size_t count);
    /// The edits so far, apart from those at marks.
    const std::deque<Edit>& edits() const { return edits_; }

    /// All edits, in the order of their places. The list is empty then.
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
    /// The last character before a place in the edited text; a newline at its beginning.
    char lastBefore(const char* at) const;

    std::string_view text_;
    TextStore& store_;
    std::deque<Edit> edits_;
    std::vector<Late> late_;
    // The latest run of neighbouring parts that were dropped: the first edit of the run and where
    // the blanks before it begin.
    std::size_t runBegin_ = 0;
    std::size_t runBlanks_ = 0;
    std::size_t runLast_ = 0; ///< Its last edit.
    std::size_t runEnd_ = std::string_view::npos;
};

/// Something to say about a place that is left as it is.
Edit remark(std::string_view message, std::uint32_t line);

/// The length of a text after edits in the order of their places.
std::size_t editedLength(std::string_view text, const std::vector<Edit>& edits);

/// Calls `piece` for each piece of the edited text, in order.
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
