#include "tests/compat/geom/harness.h"

#include <cstring>

TEST(Fonts, NumberFamilyWeightAndSlant) {
    EXPECT_EQ(GEOMfont_number("Times", 1, 1), 142);
    EXPECT_EQ(GEOMfont_number("Courier", 0, 0), 129);
    EXPECT_EQ(GEOMfont_number("Mathematics", 2, 0), 128 + 32 + 2 + 1);
    int number = 0;
    EXPECT_EQ(captured_stderr([&] { number = GEOMfont_number("times", 0, 0); }),
              "GEOM error: unrecognized font name: times (using: Courier)\n");
    EXPECT_EQ(number, 129);
}

TEST(Messages, AreNeverCut) {
    const std::string longest(100'000, 'x');
    EXPECT_EQ(captured_stderr([&] { GEOMerror("<%s>", longest.c_str()); }),
              "GEOM error: <" + longest + ">\n");
    EXPECT_EXIT(GEOMfatal_error("%d %s", 7, longest.c_str()), testing::ExitedWithCode(1),
                testing::Eq("GEOM fatal error: 7 " + longest + "\n"));
}

TEST(Properties, FirstOfAKindIsFoundBehindRecordsOfAnyLength) {
    const Object obj = make(GEOM_POLYHEDRON);
    std::uint32_t value = 5;
    EXPECT_EQ(GEOMget_property(obj.get(), 1, &value), 0);
    EXPECT_EQ(value, 5u);

    // one record with 3 bytes, as another writer of the array may leave it
    const std::uint32_t words[] = {1, 3, 10};
    obj->vals = block<unsigned char>(std::vector<unsigned char>(15, 0xEE));
    std::memcpy(obj->vals, words, sizeof words);
    obj->nvals = 1;
    EXPECT_EQ(GEOMadd_property(obj.get(), 2, 20), obj->vals);
    GEOMadd_property(obj.get(), 2, 30);
    EXPECT_EQ(obj->nvals, 3u);
    EXPECT_EQ(GEOMget_property(obj.get(), 2, &value), 1);
    EXPECT_EQ(value, 20u);
}
