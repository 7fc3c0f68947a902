#include "tidy/edits.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace meshcast::tidy {
namespace {

/// A text and its edits, whose positions are given as words.
class Edits : public testing::Test {
protected:
    const char* at(std::string_view word, std::size_t skip = 0) const {
        return text_.data() + text_.find(word, skip);
    }
    void drop(std::string_view word) {
        const char* const first = at(word, dropped_);
        dropped_ = static_cast<std::size_t>(first - text_.data()) + word.size();
        made_->drop(first, first + word.size(), "dropped");
    }
    std::string result() { return applyEdits(text_, made_->finish()); }
    void use(std::string_view text) {
        text_ = text;
        dropped_ = 0;
        made_.emplace(text_, store_);
    }

    std::string_view text_;
    std::size_t dropped_ = 0;
    TextStore store_;
    std::optional<EditList> made_;
};

TEST_F(Edits, DroppedPartsLeaveOneSeparator) {
    struct Case {
        const char* text;
        std::vector<const char*> dropped;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"a x b", {"x"}, "a b"},
        {"a,b", {","}, "a b"},
        {"a\n  x\nb", {"x"}, "a\nb"},
        {"a x\nb", {"x"}, "a\nb"},
        {"a\n  x y\n  b", {"x", "y"}, "a\n  b"},
        {"a\n  x y b", {"x", "y"}, "a\n  b"},
        {"a x", {"x"}, "a"},
        {"a  x # why\n", {"x"}, "a  # why\n"},
        {"a\nx\ny\nb", {"x", "y"}, "a\nb"},
        {"a(x)b", {"(", "x", ")"}, "a b"},
    };
    for (const Case& test : cases) {
        use(test.text);
        for (const char* const part : test.dropped) {
            drop(part);
        }
        EXPECT_EQ(result(), test.expected) << test.text;
    }
}

TEST_F(Edits, NeighboursKeepTheirOrder) {
    use("one two");
    const EditList::Mark begin = made_->mark(at("one"));
    made_->replace(at("one"), at("one") + 3, "1", "first");
    const EditList::Mark middle = made_->mark(at(" two"));
    made_->insert(at(" two"), ";");
    made_->replace(at("two"), at("two") + 3, "2");
    made_->insertAt(middle, " late");
    made_->insertAt(begin, "[", "last");
    made_->insertAt(middle, " later");
    made_->insert(text_.data() + text_.size(), "]");
    const std::vector<Edit> edits = made_->finish();
    EXPECT_EQ(applyEdits(text_, edits), "[1 late later; 2]");
    EXPECT_EQ(editedLength(text_, edits), std::string_view("[1 late later; 2]").size());
    EXPECT_EQ(edits[0].message, "last");
    EXPECT_EQ(edits[1].message, "first");
}

TEST_F(Edits, MarksAreOrderedByPosition) {
    use("a b");
    const EditList::Mark first = made_->mark(at("a"));
    const EditList::Mark second = made_->mark(at("b"));
    made_->insertAt(second, "2");
    made_->insertAt(first, "1");
    EXPECT_EQ(result(), "1a 2b");
}

TEST_F(Edits, MarksNeverLieInsideAnEdit) {
    use("a x  b");
    drop("x");
    made_->insertAt(made_->mark(at("x") + 1), "late ");
    EXPECT_EQ(result(), "a late b");
}

TEST_F(Edits, WordsAndBracesStayApart) {
    use("a b");
    made_->insert(at(" b"), "word");
    made_->replace(at("b"), at("b") + 1, "}");
    EXPECT_EQ(result(), "a word }");
    use("word");
    made_->insert(text_.data() + text_.size(), "}");
    EXPECT_EQ(result(), "word }");
}

TEST_F(Edits, EditsCanBeTakenBack) {
    use("a b c");
    made_->insert(at("a"), "1");
    const std::size_t count = made_->edits().size();
    made_->insert(at("b"), "2", "told");
    made_->insert(at("c"), "3");
    const std::vector<Edit> taken = made_->takeSince(count);
    EXPECT_EQ(taken.size(), 2U);
    made_->quote(at("c"), taken);
    const std::vector<Edit> edits = made_->finish();
    EXPECT_EQ(applyEdits(text_, edits), "1a b c");
    EXPECT_EQ(edits.back().message, "told");
}

TEST_F(Edits, MessagesBeyondTheLimitAreOnlyCounted) {
    use("x");
    for (std::size_t i = 0; i <= TextStore::kMostMessages; ++i) {
        made_->insert(text_.data(), "", "said");
    }
    const std::vector<Edit> edits = made_->finish();
    EXPECT_EQ(edits[TextStore::kMostMessages - 1].message, "said");
    EXPECT_EQ(edits[TextStore::kMostMessages].message, "");
    EXPECT_TRUE(edits[TextStore::kMostMessages].isRepair);
}

} // namespace
} // namespace meshcast::tidy
