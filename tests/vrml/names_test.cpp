#include "tests/support/conversion.h"
#include "vrml/catalogue.h"
#include "vrml/keyed_hash.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <set>
#include <string>

namespace meshcast {
namespace {

TEST(Names, EqualTextsHaveEqualHandles) {
    // Enough to fill several pools and to make the table grow.
    NameTable table;
    NameMap<int> map;
    std::vector<InternedName> names;
    for (int i = 0; i < 20'000; ++i) {
        names.push_back(table.intern("name" + std::to_string(i)));
        map[names.back()] = i;
    }
    const InternedName longName = table.intern(std::string(5000, 'x'));
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = "name" + std::to_string(i);
        const InternedName name = names[static_cast<std::size_t>(i)];
        ASSERT_EQ(table.intern(text), name);
        ASSERT_EQ(name.c_str(), text);
        ASSERT_EQ(map[name], i);
    }
    EXPECT_EQ(table.intern(std::string(5000, 'x')), longName);
    EXPECT_FALSE(table.intern(std::string(5001, 'x')) == longName);
    EXPECT_EQ(map[longName], 0);
    EXPECT_TRUE(table.intern("").empty() && table.intern("") == InternedName());
}

TEST(Names, CatalogueNamesAreTheSameForAllScenes) {
    NameTable one(&catalogueNames());
    NameTable other(&catalogueNames());
    for (const char* const text : {"Cone", "FontStyle", "DEF", "fields", "coordIndex", "wrapT"}) {
        EXPECT_EQ(one.intern(text), catalogueName(text)) << text;
        EXPECT_EQ(one.intern(text), other.intern(text)) << text;
    }
    for (const char* const text : {"cone", "C", "coordIndey", "Font Style", "\xff"}) {
        EXPECT_FALSE(one.intern(text) == other.intern(text)) << text;
        EXPECT_GT(one.intern(text).number(), catalogueName("wrapT").number()) << text;
    }
}

/// A name of sixteen bytes whose std::hash is the same for every `number`, by inverting what the
/// library does with the second half (MurmurHash64A).
std::string collidingName(std::uint64_t number) {
    constexpr std::uint64_t kMultiplier = 0xc6a4a7935bd1e995;
    constexpr std::uint64_t kInverse = 0x5f7a0ea7e59b19bd;
    constexpr std::uint64_t kSeed = 0xc70f6907;
    static_assert(kMultiplier * kInverse == 1);
    const auto mix = [](std::uint64_t value) { return value ^ (value >> 47); };
    const std::uint64_t first = 0x6161616161616161 + number;
    const std::uint64_t half =
        ((kSeed ^ (16 * kMultiplier)) ^ (mix(first * kMultiplier) * kMultiplier)) * kMultiplier;
    const std::uint64_t second = mix((half ^ 1) * kInverse) * kInverse;
    std::string name(16, '\0');
    std::memcpy(name.data(), &first, 8);
    std::memcpy(name.data() + 8, &second, 8);
    return name;
}

TEST(Names, ChosenNamesDoNotCollide) {
    if (sizeof(std::size_t) != 8) {
        GTEST_SKIP() << "the names collide only with the std::hash of 64-bit machines";
    }
    std::set<std::size_t> plain;
    std::set<std::uint32_t> keyed;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        const std::string name = collidingName(i);
        plain.insert(std::hash<std::string_view>()(name));
        keyed.insert(static_cast<std::uint32_t>(keyedHash(name)));
    }
    ASSERT_EQ(plain.size(), 1U);
    EXPECT_GT(keyed.size(), 990U);
}

TEST(Names, NodeNamesAreMadeLegal) {
    EXPECT_TRUE(isLegalNodeName("a.b-c[1]") && isLegalNodeName("_x"));
    EXPECT_FALSE(isLegalNodeName("1a") || isLegalNodeName("a b") || isLegalNodeName(""));
    EXPECT_EQ(madeLegal("1a"), "_1a");
    EXPECT_EQ(madeLegal("a b"), "a_b");
    EXPECT_EQ(madeLegal("+a'b\"c\\d{e}"), "__a_b_c_d_e_");
    EXPECT_EQ(madeLegal("a\x01\x7f\xe9"), "a__\xe9");
    EXPECT_EQ(madeLegal("\xe9"), "_\xe9");
}

TEST(Names, DictionaryFollowsTheNodes) {
    Scene scene;
    MessageText messages;
    const InternedName name = scene.intern("shared name");
    const InternedName legalName = scene.intern("shared_name");
    const auto listed = [&] {
        const auto nodes = scene.dictionary().nodes(legalName);
        return std::vector<QvNode*>(nodes.begin(), nodes.end());
    };
    auto* const first = scene.make<QvCube>();
    auto* const second = scene.make<QvCube>();
    auto* const third = scene.make<QvCube>();
    for (QvNode* const node : {first, second, third}) {
        scene.setName(*node, name, messages);
    }
    EXPECT_EQ(listed(), (std::vector<QvNode*>{first, second, third}));
    EXPECT_EQ(first->nodeName(), legalName);
    scene.setName(*second, scene.intern("other"), messages);
    EXPECT_EQ(listed(), (std::vector<QvNode*>{first, third}));
    scene.removeName(*first, messages);
    EXPECT_EQ(listed(), (std::vector<QvNode*>{third}));
    EXPECT_EQ(messages.text, "");
    // Its name is not in the dictionary any more.
    scene.setName(*first, name, messages);
    const std::string front = "VRML error in QvNode::removeName(): Name \"shared_name\" (node ";
    EXPECT_EQ(messages.text.substr(0, front.size()), front);
    EXPECT_TRUE(messages.text.ends_with(") is not in dictionary\n")) << messages.text;
}

} // namespace
} // namespace meshcast
