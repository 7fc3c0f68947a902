#include "tests/driver/scene_files.h"
#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

// A scene may be truncated at any byte. The reader then reports a documented message or none, and
// there is output only if the root node is complete.
namespace meshcast {
namespace {

class Prefixes : public testing::TestWithParam<std::filesystem::path> {};
INSTANTIATE_TEST_SUITE_P(Files, Prefixes, testing::ValuesIn(sceneFiles()),
                         [](const auto& test) { return testName(test.param); });

TEST_P(Prefixes, EndWithADocumentedMessageOrNone) {
    const std::regex documented(
        "((VRML read error: ("
        "File does not have a valid header string|EOF reached before end of comment|"
        "Couldn't read value for field \"\\w+\"|Couldn't read value \\d+ of field|"
        "Unknown value \\(\"\\(must be TRUE or FALSE\\)\"\\) for QvSFBool |"
        "Unknown QvSF(Enum enumeration|BitMask bit mask) value \"\\w*\"|"
        "EOF reached before '\\)' in QvSFBitMask value|"
        "Unknown (class|field|reference) \".*\"|Premature end of file after (USE|DEF)|"
        "No name given after |Invalid definition of .*|"
        "Expected '[{}]'; got EOF|Bad field specifications for node"
        ")\n\tOccurred at line +\\d+\n)|(Error: .*\n)|(VRML error in .*\n))*");
    const std::string scene = contents(GetParam());
    const Conversion whole = convertWhole(scene);
    if (scene.size() > std::size_t(64) * 1024) {
        return; // Too long to test every prefix.
    }
    for (std::size_t length = 0; length < scene.size(); ++length) {
        const Conversion cut = convertWhole(scene.substr(0, length));
        if (cut.messages != whole.messages) {
            ASSERT_TRUE(std::regex_match(cut.messages, documented))
                << "cut at " << length << ": " << cut.messages;
        }
        ASSERT_TRUE(cut.bytes.empty() || cut.bytes == whole.bytes) << "cut at " << length;
    }
}

} // namespace
} // namespace meshcast
