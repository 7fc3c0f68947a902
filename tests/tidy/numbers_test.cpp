#include "tidy/node_class.h"
#include "tidy/numbers.h"
#include "tidy/value.h"

#include <gtest/gtest.h>

namespace meshcast::tidy {
namespace {

/// The repaired form of a word: the word itself, another one, or "none".
std::string mended(std::string_view word, NumberKind kind) {
    const MendedNumber number = mendNumber(word, kind);
    switch (number.how) {
    case MendedNumber::How::kAsIs:
        return std::string(word);
    case MendedNumber::How::kRewritten:
        return number.text;
    default:
        return "none";
    }
}

TEST(Numbers, AreRewrittenForTheReader) {
    struct Case {
        const char* word;
        const char* real;
        const char* integer;
        const char* pixel;
    };
    const std::vector<Case> cases = {
        {"1.5", "1.5", "1", "1"},
        {"-1.5e3", "-1.5e3", "-1500", "none"},
        {"+7", "+7", "+7", "7"},
        {"1,5", "1.5", "1", "1"},
        {"1,5,2", "none", "none", "none"},
        {"1.0f", "1.0", "1", "1"},
        {"10L", "10", "10", "10"},
        {"1.5D+02", "1.5e+02", "150", "150"},
        {"0x1F", "31", "0x1F", "0x1F"},
        {"0X1f", "31", "0x1f", "0x1f"},
        {"-0X1", "-1", "-0x1", "none"},
        {"0x", "none", "none", "none"},
        {"2147483648.0", "2147483648.0", "none", "none"},
        {"1e", "none", "none", "none"},
        {"nan", "none", "none", "none"},
        {"1.#INF", "none", "none", "none"},
        {"-", "none", "none", "none"},
        {"", "none", "none", "none"},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(mended(test.word, NumberKind::kReal), test.real) << test.word;
        EXPECT_EQ(mended(test.word, NumberKind::kInteger), test.integer) << test.word;
        EXPECT_EQ(mended(test.word, NumberKind::kUnsigned), test.pixel) << test.word;
    }
}

TEST(Numbers, EndWhereTheScannersEndThem) {
    for (const char* const text : {"1", "-1.", ".5e-7x", "1e", "e1", "+.", "0x1g", "019", "08.5",
                                   "--1", "-0x", "00", "1.2.3", "4294967296", "+0X1"}) {
        const ScannedReal real = scanReal(text);
        EXPECT_EQ(endOfReal(text), real.ok ? real.end : nullptr) << text;
        const ScannedInteger integer = scanInteger(text);
        EXPECT_EQ(endOfInteger(text), integer.ok ? integer.end : nullptr) << text;
    }
}

TEST(Words, OfOtherDialectsAreReplacedIfUnambiguous) {
    const auto meant = [](const char* node, const char* field, const char* word) {
        return meantWord(findClass(node)->field(field)->type.words, word);
    };
    EXPECT_EQ(meant("ShapeHints", "vertexOrdering", "ccw"), "COUNTERCLOCKWISE");
    EXPECT_EQ(meant("ShapeHints", "vertexOrdering", "unknown"), "UNKNOWN_ORDERING");
    EXPECT_EQ(meant("MaterialBinding", "value", "PerVertexIndexed"), "PER_VERTEX_INDEXED");
    EXPECT_EQ(meant("MaterialBinding", "value", "per"), "");
    EXPECT_EQ(meant("Separator", "renderCulling", "TRUE"), "ON");
    EXPECT_EQ(meant("Texture2", "wrapS", "TRUE"), "REPEAT");
    EXPECT_EQ(meant("Texture2", "wrapS", "re"), "");
}

} // namespace
} // namespace meshcast::tidy
