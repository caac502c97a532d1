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
                        "1m \xC2\xA0 d\xC3\xA9j\xC3\xA0 \xC2"),
        "\\u009b1m \xC2\xA0 d\xC3\xA9j\xC3\xA0 \xC2");
}

} // namespace
