#include "tidy/lexer.h"
#include "tidy/report.h"
#include "tidy/skip.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast::tidy {
namespace {

TEST(Lexer, FindsTheSameTokensAsTheReader) {
    struct Case {
        const char* text;
        const char* name;
        const char* word;
        const char* string;
        const char* stringBeforeBrace;
    };
    const std::vector<Case> cases = {
        {"abc_1-x y", "abc_1", "abc_1-x", "abc_1-x", "abc_1-x"},
        {"a}b c", "a", "a", "a}b", "a"},
        {"1.#INF,2", "", "1.#INF", "1.#INF,2", "1.#INF,2"},
        {"1#INF", "", "1", "1#INF", "1#INF"},
        {"-nan(ind) x", "", "-nan(ind)", "-nan(ind)", "-nan(ind)"},
        {"-nan(i d)", "", "-nan", "-nan(i", "-nan(i"},
        {"\"a b\"c", "", "", "\"a b\"", "\"a b\""},
        {"\"a \\\" b\\\\\" c\"d", "", "", "\"a \\\" b\\\\\" c\"", "\"a \\\" b\\\\\" c\""},
        {"\"never", "", "", "\"", "\""},
        {"\xe9t\xe9 x", "", "\xe9t\xe9", "\xe9t\xe9", "\xe9t\xe9"},
    };
    for (const Case& test : cases) {
        Lexer lexer(test.text);
        EXPECT_EQ(lexer.name(lexer.begin()), test.name) << test.text;
        EXPECT_EQ(lexer.word(lexer.begin()), test.word) << test.text;
        EXPECT_EQ(lexer.string(lexer.begin()).text, test.string) << test.text;
        EXPECT_EQ(lexer.stringBeforeBrace(lexer.begin()).text, test.stringBeforeBrace) << test.text;
    }
    Lexer escaped("\"say \\\"a\\b\\\"\"");
    EXPECT_EQ(escaped.string(escaped.begin()).value(), "say \"a\\b\"");
}

TEST(Lexer, CachesEndsOfTokensCorrectly) {
    // Queries every position forwards and backwards, and compares the result with that of a fresh
    // lexer.
    const std::string text = "ab\\\"c \"d}e\" f\"\\\"g{h\" \"i\n";
    Lexer lexer(text);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char* const p = text.data() + (round == 0 ? i : text.size() - 1 - i);
            Lexer fresh(text);
            EXPECT_EQ(lexer.string(p).text, fresh.string(p).text) << p;
            EXPECT_EQ(lexer.stringBeforeBrace(p).text, fresh.stringBeforeBrace(p).text) << p;
        }
    }
}

TEST(Lexer, SkipsSpaceAndComments) {
    const std::string text = " \t# one\n\r\n#two";
    Lexer lexer(text);
    EXPECT_EQ(lexer.skipSpace(lexer.begin()), lexer.end());
    EXPECT_TRUE(lexer.endsInComment());
    Lexer part(std::string_view("{ # }").substr(0, 2));
    EXPECT_EQ(part.skipSpace(part.begin() + 1), part.end());
    EXPECT_FALSE(part.endsInComment());
}

TEST(Lexer, SkipsBodiesAndReportsTheirDefinitions) {
    const std::string text = "{ \"}\" # }\n [ { DEF a{ } ] DEF \"b c\" X { } } } rest";
    Lexer lexer(text);
    std::string names;
    const auto note = [&names](const StringToken& name, const char* definition) {
        names += name.value() + ":" + std::string(definition, 3) + " ";
    };
    EXPECT_EQ(std::string_view(skipBody(lexer, lexer.begin(), note)), " rest");
    EXPECT_EQ(names, "a:DEF b c:DEF ");
    EXPECT_TRUE(bracesMatch("{ \"}\" a{ } }"));
    EXPECT_FALSE(bracesMatch("{ a{ }"));
}

TEST(Reports, ControlCharactersAreEscaped) {
    EXPECT_EQ(printable("a\x1b[31mb\n\x7f"), "a?[31mb??");
    EXPECT_EQ(printable("gr\xc3\xbc\xc3\x9f \xe2\x82\xac \xf0\x9f\x98\x80"),
              "gr\xc3\xbc\xc3\x9f \xe2\x82\xac \xf0\x9f\x98\x80");
    EXPECT_EQ(printable("\xc2\x9b"
                        "31m \xff\xc3 \xc3("),
              "??31m ?? ?(");
    EXPECT_EQ(quoted("a\x1b\xc3\xbc"), "\"a???\"");
    EXPECT_EQ(tidy::quoted(std::string(41, 'x')), "\"" + std::string(40, 'x') + "...\"");
}

TEST(Reports, LinesAreFoundInAnyOrder) {
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text += i % 7 == 0 ? "\n" : "abc\n";
    }
    LineIndex lines(text);
    for (const std::size_t offset : {text.size(), std::size_t(0), std::size_t(4095),
                                     std::size_t(4096), std::size_t(4097), std::size_t(9000)}) {
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(offset);
        EXPECT_EQ(lines.lineAt(offset),
                  1U + static_cast<std::size_t>(std::count(text.begin(), end, '\n')));
    }
}

} // namespace
} // namespace meshcast::tidy
