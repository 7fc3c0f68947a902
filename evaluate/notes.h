#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace meshcast::evaluate {

/// Collects the notes of a model, at most as many as a limit.
class Notes {
public:
    Notes(std::vector<Note>& notes, std::uint64_t limit) : notes_(notes), limit_(limit) {}

    /// Where in the scene the notes are from now on; null: nowhere. `path` must outlive the notes.
    void follow(const std::string* path) { where_ = path; }

    /// Adds a note about the place that is being walked.
    void add(Note::Kind kind, std::string text);
    /// Adds "COUNT NOUNs REST" for a count above 0, with a proper plural.
    void addCount(Note::Kind kind, std::uint64_t count, const char* noun, const char* rest);

private:
    std::vector<Note>& notes_;
    std::uint64_t limit_;
    const std::string* where_ = nullptr;
};

} // namespace meshcast::evaluate
