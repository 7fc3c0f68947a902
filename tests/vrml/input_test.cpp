#include "tests/support/conversion.h"
#include "vrml/scene_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast {
namespace {

/// Reads tokens from a text in pieces of a given size. In pieces of one byte, every token crosses
/// the ends of blocks.
class Tokens {
public:
    Tokens(std::string_view body, std::size_t pieceSize)
        : text_(std::string("#VRML V1.0 ascii\n").append(body)), source_(text_, pieceSize),
          input(scene_, source_, messages_) {
        input.skipWhiteSpace();
    }

    std::string rest() {
        std::string text;
        for (char c = 0; input.get(c);) {
            text += c;
        }
        return text;
    }

private:
    std::string text_;
    MemorySource source_;
    Scene scene_;
    MessageText messages_;

public:
    VrmlInput input;
};

/// A number's text, whether it can be read, its value, and what is left after it.
struct NumberCase {
    const char* text;
    bool ok;
    double value;
    const char* rest;
};

class Pieces : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Input, Pieces, testing::Values(1, 2, 7, 100'000));

TEST_P(Pieces, Integers) {
    for (const NumberCase& c :
         {NumberCase{"0x1F,", true, 31, ","}, NumberCase{"-12 ", true, -12, " "},
          NumberCase{" \n# c\n+7]", true, 7, "]"}, NumberCase{"010", true, 8, ""},
          NumberCase{"09,", true, 0, ","}, NumberCase{"0X1F", true, 0, "X1F"},
          NumberCase{"4294967293", true, -3, ""}, NumberCase{"0x,", false, 0, ","},
          NumberCase{"X", false, 0, "X"}, NumberCase{"-TRUE", false, 0, "TRUE"},
          NumberCase{"--1", false, 0, "-1"}, NumberCase{"", false, 0, ""},
          NumberCase{"5\xff"
                     "6",
                     true, 5, "6"}, // A byte 255 is not put back.
          NumberCase{"1.5", true, 1, ".5"}}) {
        Tokens tokens(c.text, GetParam());
        std::int32_t value = 0;
        EXPECT_EQ(tokens.input.readInteger(value), c.ok) << c.text;
        EXPECT_EQ(c.ok ? value : 0, c.value) << c.text;
        EXPECT_EQ(tokens.rest(), c.rest) << c.text;
    }
    Tokens shorts("65537 -1", GetParam());
    std::int16_t low = 0;
    EXPECT_TRUE(shorts.input.readShort(low) && low == 1);
    EXPECT_TRUE(shorts.input.readShort(low) && low == -1);
}

TEST_P(Pieces, Reals) {
    for (const NumberCase& c :
         {NumberCase{"1.,", true, 1, ","}, NumberCase{".5", true, 0.5, ""},
          NumberCase{"-.5e-1}", true, -0.05, "}"}, NumberCase{"+2E2 ", true, 200, " "},
          NumberCase{"1e,", false, 0, ","}, NumberCase{".", false, 0, ""},
          NumberCase{"+.x", false, 0, "x"}, NumberCase{"-e5", false, 0, "e5"},
          NumberCase{"3e+4e5", true, 30000, "e5"}, NumberCase{"1.5.5", true, 1.5, ".5"},
          NumberCase{"7\xff", true, 7, ""},
          NumberCase{"0.1234567890123456789 ", true, 0.1234567890123456789, " "}}) {
        Tokens tokens(c.text, GetParam());
        double value = 0;
        EXPECT_EQ(tokens.input.readReal(value), c.ok) << c.text;
        EXPECT_EQ(c.ok ? value : 0, c.value) << c.text;
        EXPECT_EQ(tokens.rest(), c.rest) << c.text;
    }
}

TEST_P(Pieces, NamesAndPutBackWords) {
    const std::string longName(300, 'a');
    Tokens tokens("_a1{1b " + longName +
                      " q\xff"
                      "r",
                  GetParam());
    InternedName name;
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), "_a1");
    tokens.input.putBackWord(name.view());
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), "_a1");
    EXPECT_TRUE(tokens.input.readExpected('{'));
    ASSERT_TRUE(tokens.input.readName(name)); // A digit starts no name.
    EXPECT_TRUE(name.empty());
    EXPECT_TRUE(tokens.input.readExpected('1'));
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), "b");
    // A word that was not read from the input can be put back too.
    tokens.input.putBackWord("other");
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), "other");
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), longName.substr(0, 255)); // Truncated; the rest is dropped.
    ASSERT_TRUE(tokens.input.readName(name));
    EXPECT_EQ(name.view(), "q"); // The byte 255 after it is dropped.
    EXPECT_EQ(tokens.rest(), "r");
    EXPECT_FALSE(tokens.input.readName(name));
}

TEST_P(Pieces, StringsAndLines) {
    const std::string longText(1000, 'x');
    Tokens tokens("\"a\\\"b\" \"a\\nb\" \"c\\\\\" d\" un}quoted] \"two\nlines\" \"" + longText +
                      "\" # comment\n\"open\nend",
                  GetParam());
    std::string text;
    for (const std::string& expected :
         {std::string("a\"b"), std::string("a\\nb"), std::string("c\\\" d"),
          std::string("un}quoted]"), std::string("two\nlines"), longText,
          std::string("open\nend")}) {
        ASSERT_TRUE(tokens.input.readString(text));
        EXPECT_EQ(text, expected);
    }
    EXPECT_EQ(tokens.input.line(), 5);
    EXPECT_FALSE(tokens.input.readString(text));
}

TEST_P(Pieces, BytesBeyondAsciiAreNeitherLettersNorSpace) {
    Tokens tokens("\xa0\x85x", GetParam());
    InternedName name;
    EXPECT_TRUE(tokens.input.readName(name) && name.empty());
    EXPECT_EQ(tokens.rest(), "\xa0\x85x");
}

TEST_P(Pieces, SkipBodyCountsBracesAnywhere) {
    Tokens tokens("{ \"}\" } { } } x", GetParam());
    tokens.input.skipBody();
    EXPECT_EQ(tokens.rest(), " { } } x");
}

TEST(Input, HeaderLineMustMatchInFull) {
    const std::string message =
        "VRML read error: File does not have a valid header string\n\tOccurred at line ";
    struct Case {
        std::string text;
        int line; // 0: accepted.
    };
    for (const Case& c :
         {Case{"", 1}, Case{"x", 1}, Case{"\xff#VRML V1.0 ascii\n", 1}, Case{"#VRML V1.0 ascii", 0},
          Case{"#VRML V1.0 ascii\n", 0}, Case{"#VRML V1.0 ascii\r\n", 2},
          Case{"#VRML V1.0 ascii \n", 2}, Case{"#VRML V1.0 asci", 1}, Case{"#VRML V2.0 utf8\n", 2},
          Case{"#" + std::string(1'000'000, 'x') + "\n", 2},
          Case{std::string("#VRML V1.0 ascii\0\n", 18), 2}}) {
        EXPECT_EQ(convertWhole(c.text).messages,
                  c.line == 0 ? "" : message + "  " + std::to_string(c.line) + "\n")
            << c.text.substr(0, 40);
    }
}

TEST(Input, ReadsNothingAfterTheRoot) {
    // A source that fails the test if more than the root node is read.
    class Impatient final : public ByteSource {
    public:
        std::size_t read(char* buffer, std::size_t capacity) override {
            EXPECT_FALSE(text_.empty()) << "asked for input after the root's brace";
            const std::size_t count = text_.copy(buffer, std::min<std::size_t>(capacity, 5));
            text_.remove_prefix(count);
            return count;
        }

    private:
        std::string_view text_ = "#VRML V1.0 ascii\nSeparator { Cube { } }";
    } source;
    Scene scene;
    MessageText messages;
    EXPECT_TRUE(readScene(scene, source, messages));
    EXPECT_NE(scene.root, nullptr);
}

} // namespace
} // namespace meshcast
