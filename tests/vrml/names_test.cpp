#include "tests/support/capture.h"
#include "vrml/names.h"
#include "vrml/nodes.h"

#include <gtest/gtest.h>

#include <string>

namespace meshcast {
namespace {

TEST(Names, EqualTextsHaveEqualHandles) {
    // Enough to fill many pools and to make the table grow.
    std::vector<InternedName> names;
    names.reserve(20'000);
    for (int i = 0; i < 20'000; ++i) {
        names.emplace_back("name" + std::to_string(i));
    }
    const InternedName longName(std::string(5000, 'x'));
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = "name" + std::to_string(i);
        ASSERT_EQ(InternedName(text), names[static_cast<std::size_t>(i)]);
        ASSERT_EQ(names[static_cast<std::size_t>(i)].c_str(), text);
    }
    EXPECT_EQ(InternedName(std::string(5000, 'x')), longName);
    EXPECT_FALSE(InternedName(std::string(5001, 'x')) == longName);
    EXPECT_TRUE(InternedName("").empty() && InternedName("") == InternedName());

    NameMap<int> map;
    for (int i = 0; i < 20'000; ++i) {
        map[names[static_cast<std::size_t>(i)]] = i;
    }
    for (int i = 0; i < 20'000; ++i) {
        ASSERT_EQ(map[names[static_cast<std::size_t>(i)]], i);
    }
    EXPECT_EQ(map[longName], 0);
}

TEST(Names, ScopesForgetTheirNames) {
    const InternedName kept("kept");
    const auto firstNewNumber = [] {
        const NameScope scope;
        const std::size_t first = InternedName("new 0").number();
        for (int i = 0; i < 50'000; ++i) {
            EXPECT_EQ(InternedName("new " + std::to_string(i)).number(),
                      first + static_cast<std::size_t>(i));
        }
        return first;
    };
    EXPECT_EQ(firstNewNumber(), firstNewNumber());
    EXPECT_EQ(InternedName("kept"), kept);
}

TEST(Names, NodeNamesAreMadeLegal) {
    const auto legal = [](const char* text) {
        return std::string(legalNodeName(InternedName(text)).view());
    };
    EXPECT_EQ(legal("a.b-c[1]"), "a.b-c[1]");
    EXPECT_EQ(legal("_x"), "_x");
    EXPECT_EQ(legal("1a"), "_1a");
    EXPECT_EQ(legal("a b"), "a_b");
    EXPECT_EQ(legal("+a'b\"c\\d{e}"), "__a_b_c_d_e_");
    EXPECT_EQ(legal("a\x01\x7f\xe9"), "a__\xe9");
    EXPECT_EQ(legal("\xe9"), "_\xe9");
    EXPECT_EQ(legal(""), "");
}

TEST(Names, DictionaryFollowsTheNodes) {
    const InternedName name("shared name");
    const InternedName legalName("shared_name");
    const auto listed = [legalName] {
        const auto nodes = NameDictionary::global().nodes(legalName);
        return std::vector<QvNode*>(nodes.begin(), nodes.end());
    };
    const Captured captured = capture([&] {
        QvCube stray;
        {
            QvCube first;
            QvCube second;
            first.setName(name);
            second.setName(name);
            stray.setName(name);
            EXPECT_EQ(listed(), (std::vector<QvNode*>{&first, &second, &stray}));
            second.setName(InternedName("other"));
            EXPECT_EQ(listed(), (std::vector<QvNode*>{&first, &stray}));
        }
        EXPECT_EQ(listed(), (std::vector<QvNode*>{&stray}));
        EXPECT_TRUE(NameDictionary::global().remove(legalName, &stray));
        EXPECT_EQ(stray.nodeName(), legalName);
    });
    // The stray node's destructor misses it.
    const std::string front = "VRML error in QvNode::removeName(): Name \"shared_name\" (node ";
    EXPECT_EQ(captured.err.substr(0, front.size()), front);
    EXPECT_TRUE(captured.err.ends_with(") is not in dictionary\n")) << captured.err;
}

} // namespace
} // namespace meshcast
