#include "evaluate/images.h"
#include "evaluate/pixels.h"
#include "tests/evaluate/evaluation.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace meshcast::evaluate {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Image, PixelsOfScenesBecomePng) {
    struct Case {
        const char* image;
        std::uint32_t components;
        Bytes topRowFirst;
        bool hasAlpha;
    };
    for (const Case& c : {
             Case{"1 2 1 10 20", 1, {20, 10}, false},
             Case{"1 2 2 0x0AFF 0x14FE", 2, {20, 254, 10, 255}, true},
             Case{"1 2 3 0x010203 0x040506", 3, {4, 5, 6, 1, 2, 3}, false},
             Case{"1 1 4 0x010203FF", 4, {1, 2, 3, 255}, false},
         }) {
        const Model model = evaluated("Separator { Texture2 { wrapS CLAMP image " +
                                      std::string(c.image) + " } Cube { } }");
        ASSERT_EQ(model.images.size(), 1U) << c.image;
        EXPECT_TRUE(isPng(model.images[0].bytes));
        const auto pixels = decodeImage(model.images[0].bytes);
        ASSERT_TRUE(pixels) << c.image;
        EXPECT_EQ(pixels->components, c.components);
        EXPECT_EQ(pixels->bytes, c.topRowFirst);
        EXPECT_EQ(model.images[0].hasAlpha, c.hasAlpha);
        EXPECT_EQ(linesOf(model, {"material"}),
                  std::string("material 0: color 0.60383 0.60383 0.60383 1 roughness 1") +
                      (c.hasAlpha ? " blended" : "") + " image 0 clamp repeat\n");
    }
    EXPECT_EQ(linesOf("Separator { Texture2 { image 0 0 0 } Cube { } }", {"image", "note"}), "");
    EXPECT_EQ(linesOf("Separator { Texture2 { image 1 1 5 1 } Cube { } }", {"image", "note"}),
              "note missing \"\": texture \"\" is an image of an unknown kind\n");
}

/// A temporary folder with the folder of a scene in it.
class ImageFiles : public testing::Test {
protected:
    ImageFiles() : top_(std::filesystem::temp_directory_path() / "meshcast-XXXXXX") {
        std::string name = top_.string();
        top_ = mkdtemp(name.data());
        std::filesystem::create_directories(top_ / "scene" / "maps");
        options_.folder = options_.root = top_ / "scene";
    }
    ~ImageFiles() override { std::filesystem::remove_all(top_); }

    void write(const std::string& name, const Bytes& bytes) const {
        std::ofstream(top_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }

    std::string listed(const std::string& filename) const {
        return linesOf(evaluated("Separator { Texture2 { filename \"" + filename +
                                     "\" } Cube { } Separator { Texture2 { filename \"" + filename +
                                     "\" } Sphere { } } }",
                                 options_),
                       {"image", "note"});
    }

    std::filesystem::path top_;
    EvaluateOptions options_;
};

const Bytes kPng = encodePng({1, 1, 4, {1, 2, 3, 4}});
const Bytes kGif = {'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 9,    8, 7, 0,  0,
                    0,   ',', 0,   0,   0,   0,   1, 0, 1, 0, 0,    2, 2, 0x44, 1, 0, ';'};

TEST_F(ImageFiles, AreEmbeddedOnceUnchangedOrAsPng) {
    write("scene/maps/a b.png", kPng);
    EXPECT_EQ(listed("maps/a b.png"), "image 0: png \"maps/a b.png\" 1x1 alpha\n");
    EXPECT_EQ(listed("maps\\a b.png"), "image 0: png \"maps\\a b.png\" 1x1 alpha\n");
    EXPECT_EQ(evaluated("Separator { Texture2 { filename \"maps/a b.png\" } Cube { } }", options_)
                  .images.at(0)
                  .bytes,
              kPng);
    write("scene/c.gif", kGif);
    EXPECT_EQ(listed("c.gif"), "image 0: png \"c.gif\" 1x1\n");
}

TEST_F(ImageFiles, OutsideOfTheRootAreNotRead) {
    write("outside.png", kPng);
    write("scene/inside.png", kPng);
    std::filesystem::create_symlink("../outside.png", top_ / "scene" / "link.png");
    std::filesystem::create_directory_symlink("..", top_ / "scene" / "up");
    const auto missing = [](const std::string& name) {
        return "note missing \"\": texture \"" + name +
               "\" cannot be read from the folder of the scene\n";
    };
    const std::string absolute = (top_ / "outside.png").string();
    for (const std::string& name :
         {std::string("../outside.png"), std::string("maps/../../outside.png"), absolute,
          std::string("link.png"), std::string("up/outside.png"), std::string("maps"),
          std::string("none.png"), std::string("http://a.example/inside.png")}) {
        EXPECT_EQ(listed(name), missing(name));
    }
    EXPECT_NE(listed("maps/../inside.png").find("image 0: png"), std::string::npos);
    // A root above the folder of the scene allows more; an empty root allows nothing.
    options_.root = top_;
    EXPECT_NE(listed("../outside.png").find("image 0: png"), std::string::npos);
    options_.root.clear();
    EXPECT_EQ(listed("inside.png"), missing("inside.png"));
}

TEST_F(ImageFiles, ThatCannotBeDecodedAreReported) {
    write("scene/a.png", {kPng.begin(), kPng.begin() + 40});
    EXPECT_EQ(listed("a.png"), "note missing \"\": texture \"a.png\" is damaged\n");
    write("scene/b.rgb", {1, 2, 3});
    EXPECT_EQ(listed("b.rgb"), "note missing \"\": texture \"b.rgb\" is an image of an unknown "
                               "kind\n");
    // The pixels in the scene have precedence over the file.
    EXPECT_EQ(
        linesOf(evaluated("Separator { Texture2 { filename \"b.rgb\" image 1 1 1 5 } Cube { } }",
                          options_),
                {"image"}),
        "image 0: png \"\" 1x1\n");
}

TEST_F(ImageFiles, AreLimited) {
    write("scene/a.png", kPng);
    options_.limits.imagePixels = 0;
    EXPECT_EQ(listed("a.png"),
              "note limit \"\": texture \"a.png\" left out: the images have too many pixels\n");
    options_.limits.imagePixels = 1;
    options_.limits.imageBytes = kPng.size();
    EXPECT_EQ(listed("a.png"), "image 0: png \"a.png\" 1x1 alpha\n");
    options_.limits.imageBytes = kPng.size() - 1;
    EXPECT_NE(listed("a.png").find("note"), std::string::npos);
}

// A scene can give one file many names, and can name pipes and devices without an end.
TEST_F(ImageFiles, AreNotReadWithoutEnd) {
    write("scene/a.png", kPng);
    options_.limits.imageBytes = 2 * kPng.size();
    std::string scene = "Separator {";
    for (const char* const name : {"a.png", "./a.png", "././a.png", "none.png", "pipe"}) {
        scene += std::string(" Texture2 { filename \"") + name + "\" } Cube { }";
    }
    ASSERT_EQ(mkfifo((top_ / "scene" / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(linesOf(evaluated(scene + " }", options_), {"image", "note"}),
              "image 0: png \"a.png\" 1x1 alpha\n"
              "image 1: png \"./a.png\" 1x1 alpha\n"
              "note limit \"\": texture \"././a.png\" left out: the images have too many bytes\n"
              "note missing \"\": texture \"none.png\" cannot be read from the folder of the "
              "scene\n"
              "note missing \"\": texture \"pipe\" cannot be read from the folder of the scene\n");
}

} // namespace
} // namespace meshcast::evaluate
