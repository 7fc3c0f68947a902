#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// The repaired text while it grows from one source, or from several one inside the other. What is
/// right is copied in runs as long as can be; places are named by pointers into the source at hand,
/// and go forward.
class EditedText {
public:
    /// Goes on copying at `at`, in a text that ends at `end`.
    void setSource(const char* at, const char* end) {
        next_ = at;
        end_ = end;
    }
    /// Copies up to a place, unless that has been passed.
    void copyTo(const char* at);
    /// Writes a text at a place of the source, apart from a word that ends there.
    void insert(const char* at, std::string_view text);
    /// Writes a text instead of a part of the source.
    void replace(std::string_view part, std::string_view text);
    /// Leaves a part of the source out, with the line that it alone stood on. What stood before and
    /// behind it stays apart.
    void drop(std::string_view part);

    /// How long the text is when it has been copied up to a place.
    std::size_t offsetAt(const char* at) const {
        return text_.size() + (at > next_ ? static_cast<std::size_t>(at - next_) : 0);
    }
    /// Cuts the text back to a length, and returns what was behind it.
    std::string cutTo(std::size_t length);
    /// Writes a text where the text was `offset` long. Of two at one place the first comes first.
    void insertAtOffset(std::size_t offset, std::string text) {
        laterInsertions_.push_back({offset, std::move(text)});
    }

    /// True when something has been written that is no mere copy of a beginning of the source.
    bool isEdited() const { return !text_.empty() || !laterInsertions_.empty(); }
    /// The text, all insertions made.
    std::string take();

private:
    struct Insertion {
        std::size_t offset;
        std::string text;
    };

    std::string text_;
    std::vector<Insertion> laterInsertions_;
    const char* next_ = nullptr;
    const char* end_ = nullptr;
};

} // namespace meshcast::tidy
