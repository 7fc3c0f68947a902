#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace meshcast::evaluate {

/// Collects the notes of a model, up to a limit.
class Notes {
public:
    Notes(std::vector<Note>& notes, std::uint64_t limit) : notes_(notes), limit_(limit) {}

    /// Sets the place that further notes refer to; null: none. `path` is read when a note is added
    /// and must outlive the notes.
    void follow(const std::string* path) { where_ = path; }

    /// Adds a note about the current place.
    void add(Note::Kind kind, std::string text);
    /// Adds "COUNT NOUNs REST" for a count above 0; NOUN is singular for 1.
    void addCount(Note::Kind kind, std::uint64_t count, const char* noun, const char* rest);

private:
    std::vector<Note>& notes_;
    std::uint64_t limit_;
    const std::string* where_ = nullptr;
};

} // namespace meshcast::evaluate
