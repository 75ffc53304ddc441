#include "output/JsonWriter.h"

#include <gtest/gtest.h>

#include <string>

namespace VpAgent {
namespace {

std::string textOf(std::string_view value) {
    std::string out;
    JsonWriter(out).text(value);
    return out;
}

TEST(JsonWriter, PutsABlankBehindCommasAndColons) {
    std::string out;
    JsonWriter json(out);
    json.openObject().member("ok", "call").member("line", U32{7}).member("result", true);
    json.key("runs").openArray().openArray().number(0).number(7).closeArray().openArray();
    json.closeArray().closeArray().key("pool").null().key("none").openObject().closeObject();
    json.closeObject();
    EXPECT_EQ(out, R"({"ok": "call", "line": 7, "result": true, "runs": [[0, 7], []], )"
                   R"("pool": null, "none": {}})");
}

TEST(JsonWriter, WritesTheLargestNumber) {
    std::string out;
    JsonWriter(out).number(18446744073709551615u);
    EXPECT_EQ(out, "18446744073709551615");
}

TEST(JsonWriter, EscapesWhatJsonDoesNotTake) {
    EXPECT_EQ(textOf(""), R"("")");
    EXPECT_EQ(textOf("Ethernet1/1:100"), R"("Ethernet1/1:100")");
    EXPECT_EQ(textOf("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(textOf("a\nb\x1b"), R"("a\nb\u001b")");
    EXPECT_EQ(textOf("Z\xC3\xBCrich"), "\"Z\xC3\xBCrich\"");
}

TEST(JsonWriter, ShowsTerminalsNoControlCharacter) {
    EXPECT_EQ(textOf("a\x7f"), R"("a\u007f")");
    EXPECT_EQ(textOf("\xC2\x9B"), R"("\u009b")");
}

TEST(JsonWriter, ReplacesWhatIsNotUtf8) {
    // A text that was cut within a character, as the library cuts its messages.
    EXPECT_EQ(textOf("cut \xE2\x82"), "\"cut \xEF\xBF\xBD\"");
}

} // namespace
} // namespace VpAgent
