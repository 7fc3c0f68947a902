#include "evaluate/notes.h"

#include <utility>

namespace meshcast::evaluate {

void Notes::add(Note::Kind kind, std::string text) {
    if (notes_.size() + 1 < limit_) {
        notes_.push_back({kind, std::move(text), where_ == nullptr ? std::string() : *where_});
    } else if (notes_.size() < limit_) {
        notes_.push_back({Note::Kind::kLimit, "further notes are not listed", {}});
    }
}

void Notes::addCount(Note::Kind kind, std::uint64_t count, const char* noun, const char* rest) {
    if (count > 0) {
        add(kind, std::to_string(count) + ' ' + noun + (count == 1 ? " " : "s ") + rest);
    }
}

} // namespace meshcast::evaluate
