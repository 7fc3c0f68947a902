#include "tidy/list_items.h"
#include "tidy/numbers.h"
#include "tidy/report.h"
#include "tidy/value.h"

#include <string>

// A list that the reader rejects is parsed twice: first to see how commas group its numbers, then
// to rewrite it. Commas count as separators only where every group makes whole values; otherwise
// they are treated as white space. White space and comments between the items are kept.

namespace meshcast::tidy {

namespace {

/// Counts repairs of one kind in a list.
struct Tally {
    void add(std::string_view text) {
        first = count == 0 ? text : first;
        ++count;
    }
    /// The first repaired item, and how many more there are.
    std::string shown() const {
        return quoted(first) + (count > 1 ? " and " + counted(count - 1, "other") : "");
    }
    std::size_t count = 0;
    std::string_view first;
};

/// Rewrites a list.
class ListWriter {
public:
    ListWriter(NumberKind kind, std::size_t width, const char* first, bool isSingle, bool isFlat)
        : kind_(kind), width_(width), copied_(first), isSingle_(isSingle), isFlat_(isFlat) {}

    /// Writes the items up to the end of the list, except for an incomplete last value.
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
    const char* copied_; ///< The source is processed up to here.
    bool isSingle_;      ///< A single value, without commas.
    bool isFlat_;        ///< There are commas between all numbers, so they do not separate values.
    std::string text_;
    std::size_t numbers_ = 0;
    std::size_t lastEnd_ = 0; ///< The end of the latest number in the text.
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
    tell(none_.count != 0, "replaced " + none_.shown() + " by 0");
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
