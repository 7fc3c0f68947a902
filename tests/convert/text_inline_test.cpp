#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast {
namespace {

TEST(Inline, BecomesItsBoundingBox) {
    const Conversion scene =
        convert("WWWInline { name \"x.wrl\" bboxSize 2 4 0.05 bboxCenter 10 0.1 0 Sphere { } }");
    ASSERT_EQ(scene.objects.size(), 1U);
    const geom_stream::Polyhedron& box = scene.objects[0].polyhedron();
    EXPECT_EQ(scene.objects[0].flags, 0U); // No normals.
    ASSERT_EQ(box.vertices.size(), 8U);
    EXPECT_EQ(box.vertices[0], (geom_stream::Vec3{9, static_cast<float>(-2 + 0.1), 0.025F}));
    EXPECT_EQ(box.vertices[6], (geom_stream::Vec3{11, static_cast<float>(2 + 0.1), -0.025F}));
    EXPECT_EQ(box.polygonList,
              (std::vector<std::int64_t>{4, 1, 2, 6, 5, 4, 3, 4, 8, 7, 4, 1, 5, 8, 4, 4,
                                         2, 3, 7, 6, 4, 2, 1, 4, 3, 4, 5, 6, 7, 8, 0}));
    EXPECT_TRUE(convert("WWWInline { name \"x.wrl\" }").bytes.empty());
    EXPECT_TRUE(convert("WWWInline { bboxSize 0.09 -5 0.0999 }").bytes.empty());
    // The float next to 0.1 is above it.
    EXPECT_EQ(convert("WWWInline { bboxSize 0.1 0 0 }").objects.size(), 1U);
}

TEST(Text, IsSwitchedOff) { EXPECT_TRUE(convert("AsciiText { string \"hello\" }").bytes.empty()); }

TEST(Text, BecomesALabelOnceSwitchedOn) {
    struct Case {
        const char* nodes;
        std::uint32_t labelFlags;
    };
    ConvertOptions options;
    options.text = true;
    for (const Case& c :
         {Case{"AsciiText { string \"hello\" }", 0x4000 | 141},
          Case{"FontStyle { } AsciiText { string hello justification CENTER }", 0x1000 | 141},
          Case{"FontStyle { family SANS style BOLD } AsciiText { string hello spacing 2 }",
               0x4000 | 135},
          Case{"FontStyle { family TYPEWRITER style (BOLD|ITALIC) } AsciiText { string hello "
               "justification RIGHT width 9 }",
               0x2000 | 130}}) {
        const Conversion scene = convert(std::string("Group { ") + c.nodes + " }", options);
        ASSERT_EQ(scene.objects.size(), 1U);
        const geom_stream::Label& label = scene.objects[0].label();
        EXPECT_EQ(label.labelFlags, c.labelFlags) << c.nodes;
        EXPECT_EQ(label.texts, std::vector<std::string>{"hello"});
        EXPECT_EQ(label.heights, std::vector<float>{0.15F});
        EXPECT_EQ(label.positions, (std::vector<geom_stream::Vec3>{{0, 0, 0}}));
        EXPECT_EQ(label.offsets, (std::vector<geom_stream::Vec3>{{0, 0, 0}}));
        EXPECT_EQ(scene.objects[0].flags, 0U);
        EXPECT_FALSE(scene.objects[0].hasExtent);
    }
}

} // namespace
} // namespace meshcast
