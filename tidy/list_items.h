#pragma once

#include "tidy/lexer.h"
#include "tidy/numbers.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace meshcast::tidy {

struct Item {
    enum class Kind { kNumber, kComma, kStray, kClose, kEnd };
    const char* end() const { return text.data() + text.size(); }

    Kind kind;
    std::string_view text;
    bool isSound = false; ///< A number that the reader accepts.
};

/// Splits the text of a list into numbers, commas and stray items.
class Items {
public:
    Items(Lexer& lexer, const char* first, NumberKind kind, bool inBrackets)
        : lexer_(lexer), at_(first), end_(first), kind_(kind), inBrackets_(inBrackets) {}

    Item next();
    /// The end of the last item that was taken.
    const char* end() const { return end_; }

private:
    bool isClosedLater();
    bool isNumber();
    Item take(Item::Kind kind, std::size_t size, bool isSound = false) {
        const Item item{kind, {at_, size}, isSound};
        at_ += size;
        end_ = size == 0 ? end_ : at_;
        return item;
    }

    Lexer& lexer_;
    const char* at_;
    const char* end_;
    NumberKind kind_;
    bool inBrackets_;
    int depth_ = 0;
    const char* closedAt_ = nullptr; ///< The position for which isClosed_ was computed.
    bool isClosed_ = false;
};

/// How commas group the numbers of a list. Empty groups do not count.
struct Grouping {
    void endGroup(std::size_t width) {
        if (size != 0) {
            ++groups;
            lastSize = size;
            largest = std::max(largest, size);
            hasBroken = hasBroken || size % width != 0;
        }
        size = 0;
    }

    std::size_t numbers = 0;
    std::size_t groups = 0;
    std::size_t lastSize = 0;
    std::size_t largest = 0;
    bool hasBroken = false; ///< The size of some group is not a multiple of the width.
    std::size_t size = 0;   ///< Of the current group.
};

/// The grouping of the items up to the end of the list.
Grouping groupingOf(Items items, std::size_t width);

} // namespace meshcast::tidy
