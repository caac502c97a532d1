#include "tests/support/Shell.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using testing::HasSubstr;

ShellAnswer Validate(const std::string& arguments)
{
    return Shell(FERNWICK_COMMAND " validate " + arguments);
}

/// All findings of a broken module's Key.
json FindingsOf(const std::string& fault, const std::string& only = "")
{
    const ShellAnswer answer = Validate(FERNWICK_BROKEN + fault + ".so --only '" + only
        + "' --class Key --records 500 --time-limit 30 --json 2>/dev/null");
    EXPECT_EQ(answer.status, 1);
    return json::parse(answer.text);
}

TEST(ValidateTest, FindsNothingInThePack)
{
    const ShellAnswer answer = Validate(FERNWICK_MODULE " --records " FERNWICK_RECORDS " 2>&1");
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, testing::Not(HasSubstr("FAILED")));
}

TEST(ValidateTest, FindsEachFaultAndNoOther)
{
    struct Case {
        std::string fault;
        std::string only;
        std::vector<std::string> checks; // all that fail
        std::string field;               // that the last finding names
        std::string text;                // in the last finding
    };
    const Case cases[] = {
        {"SwappedKey", "", {"absent-kinds", "parameter-fuzz"}, "", "ShadeValue writes beside its result"},
        {"LeakyKey", "",
            {"life-cycle", "withheld-services", "routes", "component-laws", "aggregation", "reserved-slots",
                "slots", "hosts", "refused-memory", "leaks", "parameter-fuzz"},
            "", "references to plugged shaders"},
        {"HoardingKey", "", {"aggregation", "slots", "hosts", "no-allocation", "leaks", "parameter-fuzz"}, "",
            "blocks of"},
        {"CrashingKey", "", {"parameter-fuzz"}, "fBlueRange", "crashed with SIGABRT"},
        {"EndlessKey", "^[^hlnt]", {"parameter-fuzz"}, "fKeyColor",
            "hung while"}, // others wait for the limit
        {"UnsetKey", "", {"defaults", "parameter-fuzz"}, "", "ShadeColor answers two things"},
        {"TalkativeKey", "", {"exports"}, "", "KeyTalks is exported"},
    };
    for (const Case& broken : cases) {
        SCOPED_TRACE(broken.fault);
        const json told = FindingsOf(broken.fault, broken.only);
        EXPECT_EQ(told["passed"], false);
        std::vector<std::string> failed;
        json last;
        for (const json& check : told["checks"])
            if (!check["passed"]) {
                failed.push_back(check["check"]);
                last = check["findings"].back();
            }
        EXPECT_EQ(failed, broken.checks);
        EXPECT_THAT(std::string(last["what"]), HasSubstr(broken.text));
        EXPECT_EQ(last["field"], broken.field);
        EXPECT_EQ(std::string(last["value"]).empty(), broken.field.empty());
    }
}

TEST(ValidateTest, AFindingTellsTheCommandThatShowsItAgain)
{
    const json finding = FindingsOf("CrashingKey", "fuzz")["checks"][0]["findings"][0];
    EXPECT_EQ(finding["class"], "Key");
    EXPECT_THAT(std::string(finding["value"]), HasSubstr("inf"));
    std::string replay = finding["replay"];
    ASSERT_TRUE(replay.starts_with("fernwick validate "));
    replay = FERNWICK_COMMAND + replay.substr(8);
    const ShellAnswer again = Shell(replay + " 2>/dev/null");
    EXPECT_EQ(again.status, 1);
    for (const char* const key : {"what", "field", "value", "replay"})
        EXPECT_THAT(again.text, HasSubstr(std::string(finding[key])));
    EXPECT_THAT(again.text, HasSubstr(std::to_string(finding["seed"].get<uint64_t>())));
}

TEST(ValidateTest, ChecksAreNamedAndChosen)
{
    const ShellAnswer list = Validate("--list --only '^l'");
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.text, testing::MatchesRegex("life-cycle .*\nleaks .*\n"));
    for (const std::string arguments : {"--only nothing", "--only '('", "--class Corners", "--records 0"})
        EXPECT_EQ(Validate(arguments + " 2>/dev/null").status, 2) << arguments;
    const ShellAnswer none = Validate(FERNWICK_COMMAND " --only exports --json 2>/dev/null");
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.text, HasSubstr("MCDllInit isn't exported"));
    const ShellAnswer missing = Validate("missing.so --only 'exports|routes' 2>/dev/null");
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.text, HasSubstr("missing.so: no such file"));
}

} // namespace
