#include "tools/vrmltidy/numbers.h"
#include "tools/vrmltidy/skip.h"
#include "tools/vrmltidy/values.h"

#include <algorithm>
#include <string>

// A list that the reader does not take is gone through twice: first to see how its numbers are
// grouped by commas, then to write it. Commas are taken seriously where the groups make whole
// values; elsewhere they are but space.

namespace meshcast::tidy {

namespace {

/// What was done to one list, each kind told once.
struct Tally {
    void add(const char* at) {
        first = count == 0 ? at : first;
        ++count;
    }
    std::size_t count = 0;
    const char* first = nullptr;
};

struct Item {
    enum class Kind { kNumber, kComma, kStray, kClose, kEnd };
    Kind kind;
    std::string_view text;
    bool isSound = false; ///< A number as the reader takes it.
};

/// Cuts the text of a list into numbers, commas and what does not belong there.
class Items {
public:
    Items(const Cursor& cursor, NumberKind kind, bool inBrackets)
        : place_(cursor), behindLast_(cursor.at), kind_(kind), inBrackets_(inBrackets) {}

    Item next();
    /// Behind the last item that was taken.
    const char* at() const { return behindLast_; }

private:
    /// True when a bracket closes the list before any brace or another list.
    bool isClosedLater();
    bool isNumber();
    Item take(Item::Kind kind, std::size_t size) {
        const Item item{kind, {place_.at, size}, false};
        place_.at += size;
        behindLast_ = size == 0 ? behindLast_ : place_.at;
        return item;
    }

    Cursor place_;
    const char* behindLast_;
    NumberKind kind_;
    bool inBrackets_;
    int depth_ = 0;
    const char* closedAt_ = nullptr; ///< What isClosedLater has found.
    bool isClosed_ = false;
};

bool Items::isClosedLater() {
    if (closedAt_ == nullptr || closedAt_ < place_.at) {
        Cursor ahead = place_;
        for (;;) {
            ahead.skipSpace();
            const char c = ahead.peek();
            if (ahead.atEnd() || c == ']' || c == '[' || c == '{' || c == '}') {
                isClosed_ = c == ']';
                break;
            }
            skipToken(ahead);
        }
        closedAt_ = ahead.at;
    }
    return isClosed_;
}

bool Items::isNumber() {
    if (beginsNumber(place_)) {
        return true;
    }
    // A word is a number that is none, unless the list's bracket is missing in front of it.
    return inBrackets_ && (!isNameStart(place_.peek()) || isClosedLater());
}

Item Items::next() {
    place_.skipSpace();
    const char c = place_.peek();
    if (place_.atEnd() || c == '}') {
        return take(Item::Kind::kEnd, 0);
    }
    if (c == ',' || c == ';') {
        return take(Item::Kind::kComma, 1);
    }
    // Nearly all that lists hold.
    const char* const end = skipNumber(place_.at, kind_);
    if (end != nullptr && endsWord(*end) && *end != '#') {
        Item item = take(Item::Kind::kNumber, static_cast<std::size_t>(end - place_.at));
        item.isSound = true;
        return item;
    }
    if (!inBrackets_) {
        return isNumber() ? take(Item::Kind::kNumber, numberWord(place_).size())
                          : take(Item::Kind::kEnd, 0);
    }
    if (c == ']' && depth_ == 0) {
        return take(Item::Kind::kClose, 1);
    }
    depth_ += c == '[' ? 1 : 0;
    depth_ -= c == ']' ? 1 : 0;
    const std::size_t size = c == '"' ? 0 : numberWord(place_).size();
    if (size == 0) {
        Cursor behind = place_;
        skipToken(behind);
        return take(Item::Kind::kStray, static_cast<std::size_t>(behind.at - place_.at));
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

/// Writes a list.
class ListWriter {
public:
    ListWriter(NumberKind kind, std::size_t width, EditedText& text, const char* first)
        : kind_(kind), width_(width), text_(text), last_(first) {}

    /// Writes the items to the end of the list. Commas mean nothing when `isFlat`; a list that
    /// `isSingle` gets none.
    void write(Items& items, const Grouping& grouping, bool isFlat, bool isSingle);
    void report(const FieldPlace& place, bool hadBrackets, Reporter& reporter) const;

private:
    void number(const Item& item);
    void comma(const Item& item);
    void pad(const char* at);

    NumberKind kind_;
    std::size_t width_;
    EditedText& text_;
    const char* last_; ///< Behind the latest number that was kept.
    std::size_t inValue_ = 0;
    bool needsComma_ = false; ///< A value is whole, and no comma stands behind it.
    bool isSingle_ = false;
    bool isFlat_ = false;

    Tally missing_;
    Tally stray_;
    Tally none_;
    Tally rewritten_;
    Tally padded_;
    Tally incomplete_;
    Tally unclosed_;
    std::string_view firstNone_;
    std::string_view firstRewritten_;
};

void ListWriter::number(const Item& item) {
    if (needsComma_ && !isSingle_) {
        text_.insert(last_, ",");
        if (last_ == item.text.data()) {
            text_.insert(last_, " ");
        }
        missing_.add(last_);
    }
    needsComma_ = false;
    const MendedNumber mended =
        item.isSound ? MendedNumber{MendedNumber::How::kAsIs, {}} : mendNumber(item.text, kind_);
    if (mended.how == MendedNumber::How::kNone) {
        firstNone_ = none_.count == 0 ? item.text : firstNone_;
        none_.add(item.text.data());
    } else if (mended.how == MendedNumber::How::kRewritten) {
        firstRewritten_ = rewritten_.count == 0 ? item.text : firstRewritten_;
        rewritten_.add(item.text.data());
    }
    if (mended.how != MendedNumber::How::kAsIs) {
        text_.replace(item.text, mended.text);
    }
    last_ = item.text.data() + item.text.size();
    inValue_ = inValue_ + 1 == width_ ? 0 : inValue_ + 1;
    needsComma_ = inValue_ == 0;
}

void ListWriter::pad(const char* at) {
    padded_.add(at);
    for (; inValue_ != 0; inValue_ = (inValue_ + 1) % width_) {
        text_.insert(last_, " 0");
    }
    needsComma_ = true;
}

void ListWriter::comma(const Item& item) {
    if (inValue_ != 0 && !isFlat_) {
        pad(item.text.data());
    }
    if (needsComma_ && !isSingle_) {
        needsComma_ = false;
        if (item.text != ",") {
            text_.replace(item.text, ",");
            stray_.add(item.text.data());
        }
        return;
    }
    text_.drop(item.text);
    stray_.add(item.text.data());
}

void ListWriter::write(Items& items, const Grouping& grouping, bool isFlat, bool isSingle) {
    isFlat_ = isFlat || isSingle;
    isSingle_ = isSingle;
    // Numbers of the last value that are not enough for one.
    const std::size_t tail = (isFlat ? grouping.numbers : grouping.lastSize) % width_;
    const std::size_t kept = grouping.numbers - tail;
    std::size_t seen = 0;
    for (;;) {
        const Item item = items.next();
        switch (item.kind) {
        case Item::Kind::kNumber:
            if (seen++ < kept) {
                number(item);
            } else {
                text_.drop(item.text);
                incomplete_.add(item.text.data());
            }
            break;
        case Item::Kind::kComma:
            comma(item);
            break;
        case Item::Kind::kStray:
            text_.drop(item.text);
            stray_.add(item.text.data());
            break;
        case Item::Kind::kClose:
            return;
        case Item::Kind::kEnd:
            if (!isSingle_) {
                text_.insert(items.at(), " ]");
                unclosed_.add(items.at());
            }
            return;
        }
    }
}

void ListWriter::report(const FieldPlace& place, bool hadBrackets, Reporter& reporter) const {
    const std::string field = " in " + quoted(place.fieldName);
    const auto tell = [&reporter](const Tally& tally, const std::string& what) {
        if (tally.count != 0) {
            reporter.repaired(tally.first, what);
        }
    };
    const auto other = [](const Tally& tally) {
        return tally.count > 1 ? " and " + counted(tally.count - 1, "other") : std::string();
    };
    tell(missing_, "set " + counted(missing_.count, "missing comma") + field);
    tell(stray_, "removed " + counted(stray_.count, "stray item") + field);
    tell(none_, "put 0 for " + quoted(firstNone_) + other(none_) + field);
    tell(rewritten_, "rewrote " + quoted(firstRewritten_) + other(rewritten_) + field);
    tell(padded_, "filled " + counted(padded_.count, "short value") + " up with 0" + field);
    tell(incomplete_, "dropped the incomplete last value" + field);
    tell(unclosed_, (hadBrackets ? "set the missing bracket" : "set both brackets") + field);
}

} // namespace

bool tidyList(Cursor& cursor, const ValueType& type, const FieldPlace& place, EditedText& text,
              Reporter& reporter) {
    const bool inBrackets = cursor.peek() == '[';
    Cursor inside = cursor;
    inside.at += inBrackets ? 1 : 0;
    const NumberKind kind =
        type.kind == ValueType::Kind::kReal ? NumberKind::kReal : NumberKind::kInteger;
    Items items(inside, kind, inBrackets);
    const std::size_t width = type.width;
    const Grouping grouping = groupingOf(items, width);
    if (!inBrackets && grouping.numbers < width) {
        return false;
    }
    const bool isSingle = !inBrackets && grouping.numbers == width;
    const bool isFlat = (grouping.groups > 1 && grouping.largest == 1) ||
                        (grouping.hasBroken && grouping.numbers % width == 0);
    ListWriter writer(kind, width, text, inside.at);
    if (!inBrackets && !isSingle) {
        text.insert(inside.at, "[ ");
    }
    writer.write(items, grouping, isFlat, isSingle);
    writer.report(place, inBrackets, reporter);
    cursor.at = items.at();
    return true;
}

} // namespace meshcast::tidy
