// The JSON printer of the tools.
#include "json_writer.h"

#include "test_support.h"
#include "tool_run.h"

namespace {

using tools::JsonWriter;

std::string quoted(const std::string &text) {
    std::string out;
    JsonWriter(&out).text(text);
    return out;
}

TEST(JsonWriter, SeparatesValuesAndMembers) {
    std::string out;
    JsonWriter json(&out);
    json.begin_object().member("a", "x").member_number("b", 1).key("c").begin_array();
    json.number(-2).null().boolean(true).boolean(false).begin_object().end_object();
    json.begin_array().end_array().end_array().member("d", static_cast<const char *>(nullptr));
    json.member_boolean("e", true).end_object();
    EXPECT_EQ(out, R"({"a":"x","b":1,"c":[-2,null,true,false,{},[]],"d":null,"e":true})");
    EXPECT_TRUE(oaktest::JsonCheck::is_valid(out));
}

TEST(JsonWriter, BreaksLinesWhereItIsTold) {
    std::string out;
    JsonWriter json(&out);
    json.begin_array().line().number(1).line().number(2).line().end_array();
    EXPECT_EQ(out, "[\n1,\n2\n]");
}

TEST(JsonWriter, EscapesWhatMayNotStandInAText) {
    EXPECT_EQ(quoted("a\"b\\c/"), R"("a\"b\\c/")");
    EXPECT_EQ(quoted(std::string("\0\n\x1F\x7F", 4)), "\"\\u0000\\u000a\\u001f\x7F\"");
}

TEST(JsonWriter, ShowsWhatIsNoUtf8AsTheReplacementCharacter) {
    const std::string good[] = {"\xC2\x80",         "\xDF\xBF",        "\xE0\xA0\x80",
                                "\xED\x9F\xBF",     "\xEE\x80\x80",    "\xEF\xBF\xBF",
                                "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"};
    for (const std::string &text : good) {
        EXPECT_EQ(quoted(text), "\"" + text + "\"");
    }
    const std::pair<std::string, int> bad[] = {
        {"\x80", 1},
        {"\xC1\xBF", 2},
        {"\xC2", 1},
        {"\xC2"
         "a",
         1},
        {"\xE0\x9F\xBF", 3},
        {"\xED\xA0\x80", 3},
        {"\xE2\x82", 2},
        {"\xF0\x8F\xBF\xBF", 4},
        {"\xF5\x80", 2},
        {"\xF4\x90\x80\x80", 4},
        {"\xFF", 1},
    };
    for (const auto &[text, count] : bad) {
        std::string expected = "\"";
        for (int i = 0; i < count; ++i) {
            expected += "\\ufffd";
        }
        expected += text.back() == 'a' ? "a\"" : "\"";
        EXPECT_EQ(quoted(text), expected) << oaktest::hex(text.data(), text.size());
    }
}

} // namespace
