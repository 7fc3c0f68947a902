#include "tidy/list_items.h"

#include "tidy/skip.h"

namespace meshcast::tidy {

/// True when a bracket closes the list before any brace or another list.
bool Items::isClosedLater() {
    if (closedAt_ == nullptr || closedAt_ < at_) {
        const char* p = lexer_.skipSpace(at_);
        while (std::string_view("][{}").find(lexer_.at(p)) == std::string_view::npos &&
               p != lexer_.end()) {
            p = lexer_.skipSpace(skipToken(lexer_, p));
        }
        isClosed_ = lexer_.at(p) == ']';
        closedAt_ = p;
    }
    return isClosed_;
}

bool Items::isNumber() {
    // A word counts as a damaged number, unless the list's closing bracket is missing before it.
    return beginsNumber(lexer_, at_) ||
           (inBrackets_ && (!isNameStart(lexer_.at(at_)) || isClosedLater()));
}

Item Items::next() {
    at_ = lexer_.skipSpace(at_);
    const char c = lexer_.at(at_);
    if (at_ == lexer_.end() || c == '}') {
        return take(Item::Kind::kEnd, 0);
    }
    if (c == ',' || c == ';') {
        return take(Item::Kind::kComma, 1);
    }
    // The common case, tried first for speed.
    const char* const end = endOfNumber(at_, kind_);
    if (end != nullptr && std::string_view(" \t\n\v\f\r,]").find(*end) != std::string_view::npos) {
        return take(Item::Kind::kNumber, static_cast<std::size_t>(end - at_), true);
    }
    const std::size_t size = lexer_.word(at_).size();
    if (inBrackets_ && c == ']' && depth_ == 0) {
        return take(Item::Kind::kClose, 1);
    }
    if (inBrackets_ && size == 0) {
        depth_ += c == '[' ? 1 : 0;
        depth_ -= c == ']' ? 1 : 0;
        return take(Item::Kind::kStray, static_cast<std::size_t>(skipToken(lexer_, at_) - at_));
    }
    return isNumber() ? take(Item::Kind::kNumber, size) : take(Item::Kind::kEnd, 0);
}

Grouping groupingOf(Items items, std::size_t width) {
    Grouping grouping;
    for (;;) {
        const Item item = items.next();
        if (item.kind == Item::Kind::kNumber) {
            ++grouping.numbers;
            ++grouping.size;
        } else if (item.kind != Item::Kind::kStray) {
            grouping.endGroup(width);
            if (item.kind != Item::Kind::kComma) {
                return grouping;
            }
        }
    }
}

} // namespace meshcast::tidy
