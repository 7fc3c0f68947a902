#include "tests/driver/scene_files.h"
#include "tests/support/conversion.h"
#include "tools/scene_dump/scene_dump.h"
#include "vrml/scene_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace meshcast {
namespace {

std::string dump(const std::string& text) {
    Scene scene;
    MemorySource source(text);
    MessageText messages;
    readScene(scene, source, messages);
    std::ostringstream out;
    dumpScene(scene.root, out);
    return out.str();
}

class Dumps : public testing::TestWithParam<std::filesystem::path> {};
INSTANTIATE_TEST_SUITE_P(Files, Dumps, testing::ValuesIn(sceneFiles()),
                         [](const auto& test) { return testName(test.param); });

TEST_P(Dumps, ReadBackAsTheSameTree) {
    const std::string text = contents(GetParam());
    const std::string dumped = dump(text);
    EXPECT_EQ(dump(dumped), dumped);
    const Conversion original = convertWhole(text);
    if (!original.bytes.empty()) {
        EXPECT_EQ(convertWhole(dumped).bytes, original.bytes);
    }
}

TEST(Dump, WritesEveryKindOfValue) {
    const std::string dumped = dump(R"(#VRML V1.0 ascii
DEF 1x Separator {
  Unheard { fields [ SFString s, SFEnum e, SFBitMask m, SFString s, MFFloat f, SFImage i ]
    s "a \"b\" \\" c" e ~ m ( ) i 2 1 3 0x010203 0xff0000 f [ 1e99, -0.0, .1 ] Cube { width 3 ~ } }
  Cone { height 5 height ~ }
  DEF a Cylinder { parts ( TOP | SIDES ) }
  USE a
  Info { string back\ }
  Coordinate3 { point [ 0 0 0, 1 0 0, 2 0 0, 3 0 0, 4 0 0, 5 0 0, 6 0 0, 7 0 0, 8 0 0 ] }
  DEF a Switch { }
  USE a
  USE 1x
})");
    EXPECT_EQ(dumped, R"(#VRML V1.0 ascii
DEF _1x Separator {
  # renderCulling AUTO
  Unheard {
    fields [ SFString s, SFEnum e, SFBitMask m, SFString s, MFFloat f, SFImage i, ]
    s "a \"b\" \\" c"
    e ~
    m ( )
    f [ 1e999, -0, 0.1 ]
    i 2 1 3 66051 16711680
    Cube {
      width 3 ~
      # height 2
      # depth 2
    }
  }
  Cone {
    # parts ALL
    # bottomRadius 1
    height 5 height ~
  }
  DEF a Cylinder {
    parts ( SIDES | TOP )
    # radius 1
    # height 2
  }
  USE a
  Info {
    string back\
  }
  Coordinate3 {
    point [ 0 0 0, 1 0 0, 2 0 0, 3 0 0, 4 0 0, 5 0 0, 6 0 0, 7 0 0,
8 0 0 ]
  }
  DEF a Switch {
    # whichChild -1
  }
  USE a
  USE _1x
}
)");
    EXPECT_EQ(dump(dumped), dumped);
}

TEST(Dump, RenamesNodesThatShareAName) {
    // Both names become _1. USE 1 is the first node.
    const std::string dumped = dump("#VRML V1.0 ascii\nGroup { DEF 1 Cube { } DEF _1 Cone { } "
                                    "USE 1 USE _1 }");
    EXPECT_NE(dumped.find("DEF _1_2 Cube"), std::string::npos) << dumped;
    EXPECT_NE(dumped.find("USE _1_2\n  USE _1\n"), std::string::npos) << dumped;
    EXPECT_EQ(dump("not a scene"), "#VRML V1.0 ascii\n");
}

} // namespace
} // namespace meshcast
