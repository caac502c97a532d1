#include "host/json/ParseJson.h"
#include "host/json/GraphError.h"
#include "host/json/Nearest.h"
#include "host/json/Printable.h"
#include <chrono>
#include <gtest/gtest.h>

using namespace fernwick;

namespace {

std::string ErrorOf(const std::string& text)
{
    try {
        ParseJson(text);
    } catch (const GraphError& error) {
        return error.what();
    }
    return "taken: " + text;
}

TEST(ParseJson, GivesWhatThePackagesParserGives)
{
    for (const char* const text :
        {R"({"z": [1, -2, 3.5, 18446744073709551615], "a": {"b": {}, "c": [[], {"d": null}]}, "e": "\u00e9"})",
            "[[1], [2, [3]], {}]", "true", "\"text\"", "-0.0"})
        EXPECT_EQ(ParseJson(text).dump(), Json::parse(text).dump());
}

TEST(ParseJson, NamesThePlaceOfAKeyThatOccursTwice)
{
    EXPECT_EQ(ErrorOf(R"({"a": 1, "b": 2, "a": 3})"), "the key \"a\" occurs twice in one object");
    EXPECT_EQ(ErrorOf(R"({"shaders": {"x": {"y": 1}, "cloth": {"y": 1, "y": 2}}})"),
        "shaders.cloth: the key \"y\" occurs twice in one object");
    EXPECT_EQ(ErrorOf(R"({"a": [0, [1, {"k": {}, "k": 0}]]})"),
        "a[1][1]: the key \"k\" occurs twice in one object");
    EXPECT_EQ(ErrorOf("{\"\\u001b\": {\"\\u007f\": 1, \"\\u007f\": 2}}"),
        "\\u001b: the key \"\\u007f\" occurs twice in one object");
}

TEST(ParseJson, NamesThePlaceOfANumberThatNothingHolds)
{
    const std::string text = "expected a number that a float can hold, got ";
    EXPECT_EQ(ErrorOf("1e400"), text + "1e400");
    EXPECT_EQ(ErrorOf(R"({"scene": {"a": 1, "elements": [{}, {"position": [0, -1e999, 0]}]}})"),
        "scene.elements[1].position[1]: " + text + "-1e999");
    const std::string longNumber = std::string(R"({"a": {"b": 1)").append(400, '0').append("}}");
    EXPECT_EQ(ErrorOf(longNumber), "a.b: " + text + "a long number");
    EXPECT_EQ(ParseJson("1e308").get<double>(), 1e308);
}

TEST(ParseJson, TellsWhatElseAFileIs)
{
    const auto text = [](const char* what) { return std::string("not JSON: it is ") + what; };
    EXPECT_EQ(ErrorOf(" \n"), text("empty"));
    EXPECT_EQ(ErrorOf("\xFF\xFE{\0}\0"), text("UTF-16 and must be UTF-8"));
    EXPECT_EQ(ErrorOf(std::string("{\0}\0", 4)), text("UTF-16 and must be UTF-8"));
    EXPECT_EQ(ErrorOf(std::string("\0{\0}", 4)), text("UTF-16 and must be UTF-8"));
    EXPECT_EQ(ErrorOf("\x89PNG\r\n\x1a\n"), text("a picture (PNG)"));
    EXPECT_EQ(ErrorOf(std::string("II*\0\b\0\0\0", 8)), text("a picture (TIFF)"));
    EXPECT_EQ(ErrorOf(std::string("abc\0def", 7)), text("no text: it holds zero bytes"));
    EXPECT_EQ(ParseJson("\xEF\xBB\xBF{}"), Json::object()) << "behind a byte order mark";
}

/// A search through all keys for each one takes minutes here.
TEST(ParseJson, TakesManyKeysAndEndsSoonWithoutOne)
{
    std::string text = "{";
    std::vector<std::string> names;
    for (int i = 0; i < 200000; ++i) {
        names.push_back("shader" + std::to_string(i));
        text += (i > 0 ? ", \"" : "\"") + names.back() + "\": {}";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ParseJson(text + '}').size(), 200000u);
    EXPECT_EQ(NearestHint(std::string(200, 'x'), names), "");
    EXPECT_EQ(NearestHint("shadr17", names), "; did you mean \"shader17\"?");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(Printable, EscapesWhatCouldSteerATerminalAndNothingElse)
{
    EXPECT_EQ(Printable("\x1b[31mred\r\n\t\x7f"), "\\u001b[31mred\\u000d\\u000a\\u0009\\u007f");
    EXPECT_EQ(Printable("\xC2\x9B"
                        "1m \xC2\xA0 d\xC3\xA9j\xC3\xA0"),
        "\\u009b1m \xC2\xA0 d\xC3\xA9j\xC3\xA0");
}

TEST(Printable, ShowsBytesThatArentUTF8InHexadecimal)
{
    EXPECT_EQ(Printable("\xFF fit \xC2"), "\\xff fit \\xc2");
    EXPECT_EQ(Printable("\xE2\x82\xAC \xF0\x9F\x98\x80 \xED\x9F\xBF"),
        "\xE2\x82\xAC \xF0\x9F\x98\x80 \xED\x9F\xBF");
    EXPECT_EQ(Printable("\xE2\x82 \xC0\x80 \xED\xA0\x80"), "\\xe2\\x82 \\xc0\\x80 \\xed\\xa0\\x80");
    EXPECT_EQ(Printable("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
}

} // namespace
