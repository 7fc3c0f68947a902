#include "convert/converter.h"
#include "tests/support/conversion.h"
#include "tests/support/walk.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace meshcast {
namespace {

using geom_stream::Vec2;
using geom_stream::Vec3;

/// Textures are enabled. A temporary folder holds the converted images and the converters, which
/// record their command lines there.
class Textures : public testing::Test {
protected:
    void SetUp() override {
        std::string path = testing::TempDir() + "meshcast-texture-XXXXXX";
        ASSERT_NE(mkdtemp(path.data()), nullptr);
        folder_ = path;
        options_.textures = true;
        options_.images.folder = path;
        for (std::string& converter : options_.images.converters) {
            converter.insert(0, path + "/");
            std::ofstream(converter)
                << "#!/bin/sh\nprintf '%s|' \"${0##*/}\" \"$@\" >>" << path << "/calls\n";
            std::filesystem::permissions(converter, std::filesystem::perms::owner_all);
        }
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string file(const std::string& name) const {
        std::ifstream stream(folder_ + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// The command lines of the converters for a texture.
    std::string calls(const std::string& filename) {
        std::filesystem::remove(folder_ + "/calls");
        convert("Texture2 { filename \"" + filename + "\" }", options_);
        return file("calls");
    }
    /// The texture coordinates of a face set over these points, with these nodes before it.
    std::vector<Vec2> faceUvs(const std::string& points, const std::string& nodes = "",
                              const std::string& fields = "coordIndex [ 0, 1, 2 ]") const;

    std::string folder_;
    ConvertOptions options_;
};

const std::string kTexture = "Texture2 { filename a.rgb } ";

TEST(TextureNames, ExtensionsGiveTheType) {
    EXPECT_EQ(convertedName("T", "a.rgb"), "T/a.x");
    EXPECT_EQ(convertedName("T", "d/a.sgi"), "T/d/a.x");
    EXPECT_EQ(convertedName("T", "/d/a.gif"), "T/a.x");
    EXPECT_EQ(convertedName("T", "http://h/d/a.jpg"), "T/a.x");
    EXPECT_EQ(convertedName("T", "a.jpeg"), "T/a.jx");
    EXPECT_EQ(convertedName("T", "a.GIF"), "T/a.GIF.x");
    EXPECT_EQ(convertedName("T", "/d.rgb/a"), "T/a.x");
    EXPECT_EQ(convertedName("T", "a."), "T/a..x");
    EXPECT_EQ(convertedName("/tmp", "MESHCAST"), "/tmp/MESHCAST.x");
    EXPECT_EQ(shellWord("./a-b_c/d+e:f@g%h,i=9"), "./a-b_c/d+e:f@g%h,i=9");
    EXPECT_EQ(shellWord("a b"), "'a b'");
    EXPECT_EQ(shellWord("it's;$x\n"), "'it'\\''s;$x\n'");
}

TEST_F(Textures, ConvertersRunOnImageFiles) {
    EXPECT_EQ(calls("p.rgb"), "rgb2kra|./p.rgb|" + folder_ + "/p.x|");
    EXPECT_EQ(calls("/q/p.gif"), "gif2kra|/q/p.gif|" + folder_ + "/p.x|");
    EXPECT_EQ(calls("http://h/p.jpeg"), "jpg2kra|./p.jpeg|" + folder_ + "/p.jx|");
    EXPECT_EQ(calls("x'; touch $(id) `id` & .gif"),
              "gif2kra|./x'; touch $(id) `id` & .gif|" + folder_ + "/x'; touch $(id) `id` & .x|");
    options_.images.converters.fill(folder_ + "/rgb2kra -o");
    EXPECT_EQ(calls("p.sgi"), "rgb2kra|-o|./p.sgi|" + folder_ + "/p.x|");
    EXPECT_EQ(calls("p.gif"), "rgb2kra|-o|./p.gif|" + folder_ + "/p.x|");
    EXPECT_EQ(calls("p.jpg"), "rgb2kra|-o|./p.jpg|" + folder_ + "/p.x|");
}

TEST(ImageEnvironment, EmptyVariablesCountAsNotSet) {
    const auto images = [](const char* value) {
        for (const char* const name : {"RGBTMP", "RGBCONV", "GIFCONV", "JPGCONV"}) {
            setenv(name, value, 1);
        }
        ImageConversion found = environmentOptions().images;
        for (const char* const name : {"RGBTMP", "RGBCONV", "GIFCONV", "JPGCONV"}) {
            unsetenv(name);
        }
        return found;
    };
    EXPECT_EQ(images("x").folder, "x");
    EXPECT_EQ(images("x").converters, (std::array<std::string, 3>{"x", "x", "x"}));
    EXPECT_EQ(images("").folder, "/tmp");
    EXPECT_EQ(images("").converters, (std::array<std::string, 3>{"rgb2kra", "gif2kra", "jpg2kra"}));
}

TEST_F(Textures, UnknownTypesSwitchTexturesOff) {
    const Conversion scene = convert(
        "Group { " + kTexture + "Texture2 { filename a.png } " + kTexture + "Cube { } }", options_);
    EXPECT_EQ(scene.printed, "Unknown Image type:\na.png");
    EXPECT_TRUE(scene.objects.at(0).polyhedron().uvs.empty());
}

TEST_F(Textures, InlineImagesBecomeRawFiles) {
    struct Case {
        const char* image;
        std::string pixels;
    };
    using namespace std::string_literals;
    for (const Case& c : {
             // Rows from the last to the first, with the height as the distance between rows
             // (kept).
             Case{"2 1 1 10 20", "\0\0\0\x02\0\0\0\x01"s + "\0\x0a\x0a\x0a"s + "\0\x14\x14\x14"s},
             Case{"1 2 1 10 20", "\0\0\0\x01\0\0\0\x02"s + "\0\0\0\0"s + "\0\x0a\x0a\x0a"s},
             Case{"2 2 1 1 2 3 4",
                  "\0\0\0\x02\0\0\0\x02"s + "\0\3\3\3"s + "\0\4\4\4"s + "\0\1\1\1"s + "\0\2\2\2"s},
             Case{"2 1 2 0x1020 0x3040",
                  "\0\0\0\x02\0\0\0\x01"s + "\xdf\x10\x10\x10"s + "\xbf\x30\x30\x30"s},
             Case{"1 1 3 0x010203", "\0\0\0\x01\0\0\0\x01"s + "\0\1\2\3"s},
             Case{"1 1 4 0x01020304", "\0\0\0\x01\0\0\0\x01"s + "\xfb\1\2\3"s},
             // The alpha of a pixel outside the image is that of a byte 0.
             Case{"1 2 2 0x1020 0x3040",
                  "\0\0\0\x01\0\0\0\x02"s + "\xff\0\0\0"s + "\xdf\x10\x10\x10"s},
             Case{"0 0 0", "\0\0\0\0\0\0\0\0"s},
         }) {
        convert("Texture2 { image " + std::string(c.image) + " }", options_);
        EXPECT_EQ(file("MESHCAST.x"), c.pixels) << c.image;
    }
    // The texture in force has the name of this file, unless the file could not be opened.
    const auto use = [this] {
        const ReadScene scene("Texture2 { filename \"x\" image 1 1 1 0 wrapT CLAMP }");
        MemorySink sink;
        MessageText messages;
        CountedDiagnostics counted(messages);
        Converter converter(sink, counted, options_);
        QvState state(converter, messages);
        scene.scene.root->traverse(state);
        return converter.textureInForce(state);
    };
    const std::optional<TextureUse> written = use();
    ASSERT_TRUE(written.has_value());
    EXPECT_EQ(written->name, folder_ + "/MESHCAST.x");
    EXPECT_TRUE(!written->clampS && written->clampT);
    std::filesystem::rename(folder_ + "/MESHCAST.x", folder_ + "/target");
    std::filesystem::create_symlink("target", folder_ + "/MESHCAST.x");
    const std::string target = file("target");
    EXPECT_FALSE(use().has_value());
    convert("Texture2 { image 3 3 1 }", options_);
    EXPECT_EQ(file("target"), target); // Links are not followed.
    options_.images.folder = "/nowhere/at/all";
    EXPECT_FALSE(use().has_value());
}

TEST_F(Textures, CubesAndConesAndCylinders) {
    const Conversion scene =
        convert("Group { " + kTexture + "Cube { width 4 } Cylinder { radius 2 height 6 } " +
                    "Cone { height 4 } }",
                options_);
    ASSERT_EQ(scene.objects.size(), 3U);
    const geom_stream::Polyhedron& cube = scene.objects[0].polyhedron();
    EXPECT_EQ(scene.objects[0].flags, 0x5U);
    ASSERT_EQ(cube.vertices.size(), 24U);
    EXPECT_EQ(cube.vertices[4], (Vec3{2, -1, 1}));
    EXPECT_EQ(cube.vertices[23], (Vec3{-2, -1, 1}));
    EXPECT_EQ(cube.uvs[5], (Vec2{1, 1}));
    EXPECT_EQ(cube.uvs[23], (Vec2{0, 0}));
    const geom_stream::Polyhedron& cylinder = scene.objects[1].polyhedron();
    ASSERT_EQ(cylinder.vertices.size(), 54U);
    ASSERT_EQ(cylinder.polygonCount, 36);
    const std::vector<std::vector<std::int64_t>> polygons = cylinder.polygons();
    EXPECT_EQ(polygons[11], (std::vector<std::int64_t>{1, 13, 14}));
    EXPECT_EQ(polygons[12], (std::vector<std::int64_t>{15, 28, 29, 16}));
    EXPECT_EQ(polygons[35], (std::vector<std::int64_t>{54, 53, 52}));
    EXPECT_EQ(cylinder.vertices[1], (Vec3{0, -3, -2}));
    EXPECT_FLOAT_EQ(cylinder.vertices[30][0], 2); // A quarter around the top of the side.
    EXPECT_EQ(cylinder.vertices[30][1], 3);
    EXPECT_EQ(cylinder.uvs[0], (Vec2{0.5F, 0.5F}));
    EXPECT_EQ(cylinder.uvs[1], (Vec2{0.5F, 1}));
    EXPECT_EQ(cylinder.uvs[17], (Vec2{0.25F, 1}));
    EXPECT_EQ(cylinder.uvs[30], (Vec2{0.25F, 0}));
    EXPECT_EQ(cylinder.uvs[40], (Vec2{0.5F, 0}));

    EXPECT_EQ(scene.printed, " sin = 0.841471\n");
    const geom_stream::Polyhedron& cone = scene.objects[2].polyhedron();
    ASSERT_EQ(cone.vertices.size(), 28U);
    EXPECT_EQ(cone.vertices[14], cone.vertices[1]);
    EXPECT_EQ(cone.vertices[27], (Vec3{0, 2, 0}));
    EXPECT_EQ(cone.polygons()[12], (std::vector<std::int64_t>{28, 16, 15}));
    EXPECT_EQ(cone.uvs[14], (Vec2{0, 1}));
    EXPECT_EQ(cone.uvs[27], (Vec2{0.5F, 0}));
}

TEST_F(Textures, SpheresBecomeMeshesAndPrintSines) {
    const Conversion scene =
        convert("Group { " + kTexture + "Sphere { radius 3 } Sphere { } }", options_);
    std::string lines;
    for (int i = 0; i < 21; ++i) {
        char line[32];
        std::snprintf(line, sizeof line, " sin = %f\n",
                      static_cast<double>(std::sin(static_cast<float>(i * 0.3141592652589793))));
        lines += line;
    }
    EXPECT_EQ(scene.printed, lines); // Once, for the first sphere.
    ASSERT_EQ(scene.objects.size(), 2U);
    const geom_stream::Mesh& mesh = scene.objects[0].mesh();
    EXPECT_EQ(mesh.u, 21);
    EXPECT_EQ(mesh.v, 11);
    EXPECT_EQ(mesh.vertices[0], (Vec3{-0.0F, 3, -0.0F}));
    EXPECT_NEAR(mesh.vertices[5 * 21 + 5][0], -3, 1e-6);
    EXPECT_EQ(mesh.uvs[5 * 21 + 5], (Vec2{0.25F, 0.5F}));
    EXPECT_EQ(scene.objects[0].flags, 0x4U);
    EXPECT_TRUE(scene.objects[0].hasExtent);
}

std::vector<Vec2> Textures::faceUvs(const std::string& points, const std::string& nodes,
                                    const std::string& fields) const {
    const Conversion scene = convert("Group { " + kTexture + nodes + "Coordinate3 { point [ " +
                                         points + " ] } IndexedFaceSet { " + fields + " } }",
                                     options_);
    return scene.objects.at(0).polyhedron().uvs;
}

TEST_F(Textures, FaceSetsProjectTheirPoints) {
    using Uvs = std::vector<Vec2>;
    EXPECT_EQ(faceUvs("1 1 0, 3 1 0, 3 2 0"), (Uvs{{0, 0}, {1, 0}, {1, 0.5F}}));    // x > y > z
    EXPECT_EQ(faceUvs("0 0 0, 4 1 2, 4 0 2"), (Uvs{{0, 0}, {1, 0.5F}, {1, 0.5F}})); // x > z > y
    EXPECT_EQ(faceUvs("0 0 0, 1 4 2, 1 0 2"), (Uvs{{0, 0}, {1, 0.5F}, {0, 0.5F}})); // y > z > x
    EXPECT_EQ(faceUvs("0 0 0, 2 4 1, 2 0 1"), (Uvs{{0, 0}, {1, 0.5F}, {0, 0.5F}})); // y > x > z
    EXPECT_EQ(faceUvs("0 0 0, 1 2 4, 1 2 0"), (Uvs{{0, 0}, {1, 0.5F}, {0, 0.5F}})); // z > y > x
    EXPECT_EQ(faceUvs("0 0 0, 2 1 4, 2 1 0"), (Uvs{{0, 0}, {1, 0.5F}, {0, 0.5F}})); // z > x > y
    // Sides of equal length: x = y > z and x > y = z are mapped along x and y,
    EXPECT_EQ(faceUvs("0 0 0, 2 2 1, 2 0 0"), (Uvs{{0, 0}, {1, 1}, {1, 0}}));
    EXPECT_EQ(faceUvs("0 0 0, 2 1 1, 2 0 1"), (Uvs{{0, 0}, {1, 0.5F}, {1, 0}}));
    // x = z > y, y = z > x, z > x = y and cubes along z and x,
    EXPECT_EQ(faceUvs("0 0 0, 2 1 2, 0 1 2"), (Uvs{{0, 0}, {1, 1}, {1, 0}}));
    EXPECT_EQ(faceUvs("0 0 0, 1 2 2, 0 1 2"), (Uvs{{0, 0}, {1, 0.5F}, {1, 0}}));
    EXPECT_EQ(faceUvs("0 0 0, 1 1 2, 0 1 2"), (Uvs{{0, 0}, {1, 0.5F}, {1, 0}}));
    EXPECT_EQ(faceUvs("0 0 0, 2 2 2, 0 1 2"), (Uvs{{0, 0}, {1, 1}, {1, 0}}));
    // and y > x = z along y and x.
    EXPECT_EQ(faceUvs("0 0 0, 1 2 1, 0 2 1"), (Uvs{{0, 0}, {1, 0.5F}, {1, 0}}));
    EXPECT_EQ(faceUvs("").size(), 0U);
    const std::string given = "TextureCoordinate2 { point [ 0.25 0.5, 1 0 ] } ";
    EXPECT_EQ(faceUvs("0 0 0, 1 0 0, 1 1 0", given,
                      "coordIndex [ 0, 1, 2, -1, 0 ] textureCoordIndex [ 1, 0, 9, -1, -1, 0 ]"),
              (Uvs{{1, 0}, {0.25F, 0.5F}, {0, 0}}));
    options_.textures = false;
    EXPECT_TRUE(faceUvs("0 0 0, 1 0 0, 1 1 0").empty());
}

TEST(TextureTransforms, CoordinatesPassThroughTransformsAndWraps) {
    const auto through = [](const std::string& nodes, Vec2 uv, bool clamp) {
        const ReadScene scene("Group { " + nodes + " }");
        const Walk walk(scene);
        transformTextureCoordinates(walk.state, {"", clamp, clamp}, uv);
        return uv;
    };
    EXPECT_EQ(through("", {0.25F, 1}, false), (Vec2{0.25F, 1}));
    EXPECT_EQ(through("", {1.5F, -0.5F}, true), (Vec2{1, 0}));
    // Every other period is mirrored, on both sides of zero.
    EXPECT_EQ(through("", {1.25F, 2.25F}, false), (Vec2{0.75F, 0.25F}));
    EXPECT_EQ(through("", {-0.25F, -1.25F}, false), (Vec2{0.25F, 0.75F}));
    EXPECT_EQ(through("", {3, -2}, false), (Vec2{1, 0}));
    EXPECT_EQ(through("Texture2Transform { translation 0.25 0.5 scaleFactor 2 0.5 }", {0.25F, 0.5F},
                      false),
              (Vec2{0.75F, 0.75F}));
    // The last transform is applied first. The rotation is about the centre, the scale is not.
    EXPECT_EQ(through("Texture2Transform { scaleFactor 0.5 0.5 } Texture2Transform { translation "
                      "0.5 0 }",
                      {0.25F, 0.5F}, false),
              (Vec2{0.375F, 0.25F}));
    const Vec2 turned = through("Texture2Transform { center 0.5 0.5 rotation 1.5707963 scaleFactor "
                                "0.5 1 }",
                                {0.75F, 0.5F}, true);
    EXPECT_NEAR(turned[0], 0.25F, 1e-6);
    EXPECT_NEAR(turned[1], 0.75F, 1e-6);
}

} // namespace
} // namespace meshcast
