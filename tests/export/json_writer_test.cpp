#include "export/json_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace meshcast::exporter {
namespace {

TEST(JsonWriter, PutsCommasAndLineBreaksBetweenValues) {
    std::string text;
    JsonWriter json(text);
    json.breakLinesTo(1);
    json.beginObject().member("a", 1U).key("b").beginArray().value(2U).beginObject().endObject();
    json.value(true).endArray().list("c", std::array{1.5F, -0.25F}).endObject();
    EXPECT_EQ(text, "{\n\t\"a\":1,\n\t\"b\":[2,{},true],\n\t\"c\":[1.5,-0.25]\n}");
}

TEST(JsonWriter, EscapesWhatWouldEndAStringOrAScript) {
    std::string text;
    JsonWriter(text).value(std::string_view("a\"b\\c\n\0</script>\x7F\xC3\xA9", 19));
    EXPECT_EQ(text, "\"a\\\"b\\\\c\\u000a\\u0000\\u003c/script>\\u007f\xC3\xA9\"");
}

TEST(JsonWriter, WritesFloatsThatReadBackExactly) {
    using Limits = std::numeric_limits<float>;
    for (const float number : {0.1F, 1e-45F, -0.0F, 16777217.0F, 1 / 3.0F, Limits::max()}) {
        std::string text;
        JsonWriter(text).value(number);
        EXPECT_EQ(std::stod(text) == 0 ? 0 : std::strtof(text.c_str(), nullptr), number) << text;
        EXPECT_LE(text.size(), 14U) << text;
    }
}

} // namespace
} // namespace meshcast::exporter
