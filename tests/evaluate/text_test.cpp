#include "evaluate/utf8.h"
#include "tests/evaluate/evaluation.h"

#include <algorithm>

// The installed font is unknown, so only properties that do not depend on it are tested.
namespace meshcast::evaluate {
namespace {

struct Extent {
    Vec3 low, high;
};

Extent extentOf(const std::string& text, const std::string& style = "") {
    const Model model = evaluated("Separator { " + style + " AsciiText { " + text + " } }");
    Extent extent{{1e9F, 1e9F, 1e9F}, {-1e9F, -1e9F, -1e9F}};
    if (model.geometries.empty()) {
        ADD_FAILURE() << modelText(model);
        return extent;
    }
    for (const Vec3& position : model.geometries[0].positions) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            extent.low[axis] = std::min(extent.low[axis], position[axis]);
            extent.high[axis] = std::max(extent.high[axis], position[axis]);
        }
    }
    EXPECT_GT(doubledArea(model.geometries[0]), 0);
    EXPECT_EQ(model.geometries[0].normals.at(0), (Vec3{0, 0, 1}));
    return extent;
}

TEST(Text, HasItsBaselineAtZero) {
    const Extent usual = extentOf("string \"H\"");
    EXPECT_NEAR(usual.low[1], 0, 1e-4);
    EXPECT_NEAR(usual.high[1], 8, 1e-3);
    EXPECT_GE(usual.low[0], 0);
    EXPECT_EQ(usual.low[2], 0);
    EXPECT_EQ(usual.high[2], 0);
    EXPECT_NEAR(extentOf("string \"H\"", "FontStyle { size 2 family SANS style BOLD }").high[1],
                1.6, 1e-3);
    // The second line is 1.5 sizes below the first.
    EXPECT_NEAR(extentOf("string \"H\nH\" spacing 1.5").low[1], -15, 1e-3);
    EXPECT_NEAR(extentOf("string \"H\r\nH\"").low[1], -10, 1e-3);
}

TEST(Text, IsJustifiedAndFitted) {
    const Extent left = extentOf("string \"HOH\"");
    const Extent center = extentOf("string \"HOH\" justification CENTER");
    const Extent right = extentOf("string \"HOH\" justification RIGHT");
    EXPECT_NEAR(center.low[0], -center.high[0], 0.01);
    EXPECT_NEAR(right.high[0], -left.low[0], 0.01);
    // The side bearings of an H are scaled too.
    const Extent fitted = extentOf("string \"HOH\" width 100");
    const double natural = static_cast<double>(left.high[0] + left.low[0]);
    EXPECT_NEAR(fitted.high[0] + fitted.low[0], 100, 1e-3);
    EXPECT_NEAR(fitted.low[0], left.low[0] * 100 / natural, 1e-3);
    EXPECT_EQ(fitted.high[1], left.high[1]);
}

TEST(Text, IsLeftOutWithoutFont) {
    EvaluateOptions options;
    options.findFont = [](const FontRequest&) { return FontFile{}; };
    const std::string scene = "Separator { DEF sign AsciiText { string \"H\" } }";
    EXPECT_EQ(modelText(evaluated(scene, options)),
              "note missing \"sign\": text left out: no font is installed\n");
    FontRequest asked;
    options.findFont = [&asked](const FontRequest& request) {
        asked = request;
        return FontFile{"/dev/null", 0};
    };
    evaluated("Separator { FontStyle { family TYPEWRITER style (BOLD | ITALIC) } AsciiText { "
              "string \"H\" } }",
              options);
    EXPECT_EQ(asked, (FontRequest{FontRequest::Family::kTypewriter, true, true}));
    EXPECT_EQ(modelText(evaluated("AsciiText { }")), "");
    EXPECT_EQ(modelText(evaluated("Separator { FontStyle { size 0 } AsciiText { string \"H\" } }")),
              "");
}

TEST(Text, InvalidUtf8IsReadAsLatin1) {
    EXPECT_EQ(toUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
              "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8("\xE9t\xE9"), "\xC3\xA9t\xC3\xA9");
    // Truncated, overlong, a surrogate, and above U+10FFFF.
    EXPECT_EQ(toUtf8("\xE2\x82"), "\xC3\xA2\xC2\x82");
    EXPECT_EQ(toUtf8("\xC0\x80"), "\xC3\x80\xC2\x80");
    EXPECT_EQ(toUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80");
    EXPECT_EQ(toUtf8("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80");
    EXPECT_EQ(toUtf8("\xE0\x80\x80"), "\xC3\xA0\xC2\x80\xC2\x80");
}

} // namespace
} // namespace meshcast::evaluate
