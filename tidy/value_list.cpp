#include "tidy/numbers.h"
#include "tidy/report.h"
#include "tidy/skip.h"
#include "tidy/value.h"

#include <algorithm>
#include <string>

// A list that the reader does not take is gone through twice: first to see how its numbers are
// grouped by commas, then to write it anew. Commas are taken seriously where the groups make whole
// values; elsewhere they are but space. Space and comments between the items are kept.

namespace meshcast::tidy {

namespace {

struct Item {
    enum class Kind { kNumber, kComma, kStray, kClose, kEnd };
    const char* end() const { return text.data() + text.size(); }

    Kind kind;
    std::string_view text;
    bool isSound = false; ///< A number as the reader takes it.
};

/// Cuts the text of a list into numbers, commas and what does not belong there.
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
    const char* closedAt_ = nullptr; ///< What isClosedLater has found.
    bool isClosed_ = false;
};

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
    // A word stands for a number unless the list's bracket is missing before it.
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
    // Nearly all that lists hold.
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

/// How a list's numbers are grouped by its commas. Groups without numbers do not count.
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
    bool hasBroken = false; ///< Some group makes no whole number of values.
    std::size_t size = 0;   ///< Of the group at hand.
};

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

/// Things of one kind that were done to a list.
struct Tally {
    void add(std::string_view text) {
        first = count == 0 ? text : first;
        ++count;
    }
    /// The first of them, and how many more there are.
    std::string shown() const {
        return quoted(first) + (count > 1 ? " and " + counted(count - 1, "other") : "");
    }
    std::size_t count = 0;
    std::string_view first;
};

/// Writes a list anew.
class ListWriter {
public:
    ListWriter(NumberKind kind, std::size_t width, const char* first, bool isSingle, bool isFlat)
        : kind_(kind), width_(width), copied_(first), isSingle_(isSingle), isFlat_(isFlat) {}

    /// Writes the items to the end of the list, all but the last numbers, which make no value.
    void write(Items& items, std::size_t kept);
    std::string report(bool hadBrackets) const;
    std::string& text() { return text_; }
    std::size_t values() const { return numbers_ / width_; }

private:
    void number(const Item& item);
    void comma(const Item& item);
    void drop(const Item& item);
    void copyTo(const char* p) {
        text_ += between(copied_, p);
        copied_ = p;
    }

    NumberKind kind_;
    std::size_t width_;
    const char* copied_; ///< What has been written or left out of the source ends here.
    bool isSingle_;      ///< One value, without commas.
    bool isFlat_;        ///< Commas stand between all numbers and mean nothing.
    std::string text_;
    std::size_t numbers_ = 0;
    std::size_t lastEnd_ = 0; ///< Of the latest number in the text.
    bool needsComma_ = false; ///< A value is complete, and no comma follows it.

    Tally missing_;
    Tally stray_;
    Tally none_;
    Tally rewritten_;
    Tally padded_;
    Tally incomplete_;
    bool isUnclosed_ = false;
};

void ListWriter::number(const Item& item) {
    copyTo(item.text.data());
    if (needsComma_ && !isSingle_) {
        text_.insert(lastEnd_, ",");
        text_ += text_.size() == lastEnd_ + 1 ? " " : "";
        missing_.add(item.text);
    } else if (numbers_ != 0 && text_.size() == lastEnd_) {
        text_ += ' ';
    }
    const MendedNumber mended =
        item.isSound ? MendedNumber{MendedNumber::How::kAsIs, {}} : mendNumber(item.text, kind_);
    if (mended.how == MendedNumber::How::kNone) {
        none_.add(item.text);
    } else if (mended.how == MendedNumber::How::kRewritten) {
        rewritten_.add(item.text);
    }
    text_ += mended.how == MendedNumber::How::kAsIs ? item.text : std::string_view(mended.text);
    copied_ = item.end();
    lastEnd_ = text_.size();
    needsComma_ = ++numbers_ % width_ == 0;
}

void ListWriter::drop(const Item& item) {
    copyTo(item.text.data());
    copied_ = item.end();
    if (!text_.empty() && (text_.back() == ' ' || text_.back() == '\t')) {
        while (*copied_ == ' ' || *copied_ == '\t') {
            ++copied_;
        }
    }
}

void ListWriter::comma(const Item& item) {
    if (numbers_ % width_ != 0 && !isFlat_) {
        padded_.add(item.text);
        for (; numbers_ % width_ != 0; ++numbers_) {
            text_.insert(lastEnd_, " 0");
            lastEnd_ += 2;
        }
        needsComma_ = true;
    }
    if (needsComma_ && !isSingle_) {
        needsComma_ = false;
        copyTo(item.text.data());
        text_ += ',';
        copied_ = item.end();
        if (item.text == ",") {
            return;
        }
    } else {
        drop(item);
    }
    stray_.add(item.text);
}

void ListWriter::write(Items& items, std::size_t kept) {
    for (std::size_t seen = 0;;) {
        const Item item = items.next();
        switch (item.kind) {
        case Item::Kind::kNumber:
            if (seen++ < kept) {
                number(item);
            } else {
                drop(item);
                incomplete_.add(item.text);
            }
            break;
        case Item::Kind::kComma:
            comma(item);
            break;
        case Item::Kind::kStray:
            drop(item);
            stray_.add(item.text);
            break;
        case Item::Kind::kClose:
            copyTo(item.end());
            return;
        case Item::Kind::kEnd:
            isUnclosed_ = !isSingle_;
            text_ += isSingle_ ? "" : " ]";
            return;
        }
    }
}

std::string ListWriter::report(bool hadBrackets) const {
    std::string text;
    const auto tell = [&text](bool was, const std::string& what) {
        if (was) {
            text.append(text.empty() ? "" : ", ").append(what);
        }
    };
    tell(missing_.count != 0, "added " + counted(missing_.count, "missing comma"));
    tell(stray_.count != 0, "removed " + counted(stray_.count, "stray item"));
    tell(none_.count != 0, "put 0 for " + none_.shown());
    tell(rewritten_.count != 0, "rewrote " + rewritten_.shown());
    tell(padded_.count != 0, "filled up " + counted(padded_.count, "short value") + " with 0");
    tell(incomplete_.count != 0, "dropped the incomplete last value");
    tell(isUnclosed_, hadBrackets ? "added the missing bracket" : "added both brackets");
    return text;
}

} // namespace

PassedValue mendList(const ValuePlace& place, const char* first) {
    const ValueType& type = place.type();
    const std::size_t width = type.width;
    const bool inBrackets = *first == '[';
    const NumberKind kind =
        type.kind == ValueType::Kind::kReal ? NumberKind::kReal : NumberKind::kInteger;
    const char* const inside = first + (inBrackets ? 1 : 0);
    Items items(place.lexer, inside, kind, inBrackets);
    const Grouping grouping = groupingOf(items, width);
    if (!inBrackets && grouping.numbers < width) {
        return {};
    }
    const bool isSingle = !inBrackets && grouping.numbers == width;
    const bool isFlat = (grouping.groups > 1 && grouping.largest == 1) ||
                        (grouping.hasBroken && grouping.numbers % width == 0);
    ListWriter writer(kind, width, inside, isSingle, isFlat || isSingle);
    writer.text().append(isSingle ? "" : (inBrackets ? "[" : "[ "));
    writer.write(items, grouping.numbers - (isFlat ? grouping.numbers : grouping.lastSize) % width);
    place.edits.replace(first, items.end(), writer.text(),
                        writer.report(inBrackets).append(" in ").append(quoted(place.field.name)));
    return {items.end(), writer.values()};
}

} // namespace meshcast::tidy
