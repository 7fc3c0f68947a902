#include "tidy/inflate.h"
#include "tidy/tidy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <zlib.h>

namespace meshcast::tidy {
namespace {

using testing::HasSubstr;

const std::string kHeaderLine = "#VRML V1.0 ascii\n";

/// Scenes in memory. Counts how often they are opened.
class MemoryScenes final : public InlineSource {
public:
    std::shared_ptr<const Scene> open(const std::string& name, const std::string&) override {
        ++asked;
        const auto found = scenes.find(name);
        return std::make_shared<const Scene>(
            found == scenes.end() ? Scene{{}, {}, {}, {}, "there is none"}
                                  : Scene{name, name, kHeaderLine + found->second, {}, {}});
    }
    std::map<std::string, std::string> scenes;
    int asked = 0;
};

struct Outcome {
    Result result;
    std::string messages;
};

Outcome tidied(const std::string& scene, InlineSource* inlines = nullptr) {
    Outcome outcome;
    Options options;
    options.path = "scene";
    options.identity = "scene";
    options.inlines = inlines;
    options.report = [&outcome](const Message& message) {
        outcome.messages += std::string(message.file) + ":" + std::to_string(message.line) + ": " +
                            std::string(message.what) + "\n";
    };
    outcome.result = tidy(kHeaderLine + scene, options);
    return outcome;
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(Inlines, AreBoundedInNumber) {
    MemoryScenes scenes;
    const std::string node = "WWWInline{name \"none\"}";
    const Outcome at = tidied("Group{" + repeated(node, kMostInlines) + "}", &scenes);
    EXPECT_EQ(at.messages.find("has more than"), std::string::npos);
    EXPECT_EQ(scenes.asked, static_cast<int>(kMostInlines));
    const Outcome past = tidied("Group{" + repeated(node, kMostInlines + 1) + "}", &scenes);
    EXPECT_THAT(past.messages, HasSubstr("the scene has more than 10000 inlined scenes"));
    EXPECT_EQ(scenes.asked, 2 * static_cast<int>(kMostInlines));
    EXPECT_EQ(past.result.repairs, 0U);
}

TEST(Inlines, AreBoundedInDepth) {
    MemoryScenes scenes;
    for (std::size_t i = 0; i < kDeepestInline + 1; ++i) {
        scenes.scenes[std::to_string(i)] = "WWWInline{name \"" + std::to_string(i + 1) + "\"}";
    }
    const Outcome outcome = tidied("WWWInline{name \"0\"}", &scenes);
    EXPECT_EQ(scenes.asked, static_cast<int>(kDeepestInline) - 1);
    EXPECT_THAT(outcome.messages,
                HasSubstr("62:2: left WWWInline \"63\" as it is: inlined scenes are nested deeper "
                          "than 64 levels"));
}

TEST(Inlines, AreBoundedInBytes) {
    MemoryScenes scenes;
    scenes.scenes["large"] = "Info{string \"" + std::string(std::size_t(200) << 20, 'x') + "\"}";
    const Outcome outcome =
        tidied("Group{" + repeated("WWWInline{name \"large\"}", 5) + "}", &scenes);
    EXPECT_THAT(outcome.messages, HasSubstr("the inlined scenes exceed 1073741824 bytes"));
    ASSERT_TRUE(outcome.result.text);
    EXPECT_GT(outcome.result.text->size(), std::size_t(400) << 20);
    EXPECT_LT(outcome.result.text->size(), kMostInlinedBytes);
}

TEST(Inlines, NamesOfInlinedScenesDoNotReachTheOuterOne) {
    MemoryScenes scenes;
    scenes.scenes["chair"] = "Group { DEF leg Cube { } USE leg DEF leg Cone { } USE leg }";
    const Outcome outcome =
        tidied("Group { DEF leg Sphere { } WWWInline { name \"chair\" } USE leg "
               "WWWInline { name \"a\\0b\" } }",
               &scenes);
    EXPECT_EQ(*outcome.result.text,
              kHeaderLine +
                  "Group { DEF leg Sphere { } Separator { \nGroup { DEF leg_1 Cube { } USE leg_1 "
                  "DEF leg_1 Cone { } USE leg_1 } } USE leg WWWInline { name \"a\\0b\" } }");
    const std::string zero = "WWWInline { name \"a" + std::string(1, '\0') + "\" }";
    EXPECT_THAT(tidied(zero, &scenes).messages, HasSubstr("its name holds a zero byte"));
}

TEST(Definitions, ThatAreRepeatedAreBounded) {
    // Each definition uses the one before twice or more: about 2 to the power of 40 cubes.
    std::string scene = "Group { X { DEF a0 Cube { } ";
    for (int i = 1; i < 40; ++i) {
        const std::string last = "USE a" + std::to_string(i - 1) + " ";
        scene += "DEF a" + std::to_string(i) + " Group { X { " + last + "} " + last + last + "} ";
    }
    const Outcome outcome = tidied(scene + "} USE a39 }");
    ASSERT_TRUE(outcome.result.text);
    EXPECT_LT(outcome.result.text->size(), (kLargestGrowth + 2) * scene.size());
}

std::string packed(const std::string& text) {
    z_stream stream{};
    constexpr int kGzip = 16 + MAX_WBITS;
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY);
    std::string bytes(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    deflate(&stream, Z_FINISH);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

TEST(Inflate, TakesAllMembersUpToTheLimit) {
    const std::string text(300'000, 'x');
    const std::string two = packed(text) + packed("end");
    std::string bytes = two + "trailing garbage";
    EXPECT_EQ(inflate(bytes, text.size() + 3), "");
    EXPECT_EQ(bytes, text + "end");
    bytes = two;
    EXPECT_EQ(inflate(bytes, text.size() + 2), "inflates to more than 300002 bytes");
    bytes = two.substr(0, two.size() - 9);
    EXPECT_EQ(inflate(bytes, text.size() + 3), "is compressed but truncated");
    bytes = two;
    bytes[two.size() / 2] ^= 0x55;
    EXPECT_EQ(inflate(bytes, text.size() + 3), "is compressed but damaged");
    EXPECT_EQ(mostInflated(10), std::uint64_t(16) << 20);
    EXPECT_EQ(mostInflated(std::uint64_t(1) << 20), std::uint64_t(128) << 20);
    EXPECT_EQ(mostInflated(kLargestScene), kLargestScene);
}

} // namespace
} // namespace meshcast::tidy
