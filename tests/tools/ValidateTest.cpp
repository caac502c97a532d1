#include "tests/support/Shell.h"
#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;

/// Counters that a compiler puts into a module for fuzzing are static data that is written too, and ask for the
/// module's functions by name.
constexpr bool kCountsCoverage = FERNWICK_COUNTS_COVERAGE;

ShellAnswer Validate(const std::string& arguments)
{
    return Shell(FERNWICK_COMMAND " validate " + arguments);
}

/// What some checks say of a class of a broken module.
json FindingsOf(const std::string& fault, const std::string& only, const std::string& className = "Key")
{
    const ShellAnswer answer = Validate(FERNWICK_BROKEN + fault + ".so --only '" + only + "' --class "
        + className + " --records 500 --time-limit 30 --json 2>/dev/null");
    EXPECT_EQ(answer.status, 1);
    return json::parse(answer.text);
}

TEST(ValidateTest, FindsNothingInThePack)
{
    const ShellAnswer answer = Validate(FERNWICK_MODULE " --records " FERNWICK_RECORDS
        + std::string(kCountsCoverage ? " --only '^(?!static-data$)'" : "") + " 2>&1");
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, testing::Not(HasSubstr("FAILED")));
}

TEST(ValidateTest, FindsEachFault)
{
    struct Case {
        std::string fault;
        std::string className;
        std::string check; // that finds it
        std::string field; // that the finding names
        std::string text;  // in the finding
    };
    const Case cases[] = {
        {"TalkativeKey", "Key", "exports", "", "expected none, came KeyTalks"},
        {"SwappedKey", "Key", "parameter-fuzz", "", "ShadeValue writes beside its result"},
        {"LeakyKey", "Key", "component-laws", "",
            "Release after a query, with two references beside: expected 2, came 5"},
        {"HastyQueryKey", "Key", "component-laws", "", "QueryInterface without a place for the answer"},
        {"HoardingKey", "Key", "no-allocation", "", "allocations of ShadeColor, seed 1: expected 0, came 1"},
        {"CrashingKey", "Key", "parameter-fuzz", "fBlueRange", "crashed with SIGABRT"},
        {"EndlessKey", "Key", "parameter-fuzz", "fKeyColor", "hung while"},
        {"UnsetKey", "Key", "defaults", "", "after it: expected one answer, came two"},
        {"UnreadyDrip", "Drip", "defaults", "", "before the first change: expected one answer, came two"},
        {"SharedSampleDrip", "Drip", "static-data", "", "ShadeValue writes to static data"},
        {"SharedColorKey", "Key", "static-data", "", "ShadeColor writes to static data"},
        {"SharedColorKey", "Key", "interleaved", "",
            "ShadeColor while another object shades within the sample"},
        {"ThreadColorKey", "Key", "interleaved", "",
            "ShadeColor while another object shades within the sample"},
        {"SharedLevelDrip", "Drip", "static-data", "", "ExtensionDataChanged writes to static data"},
        {"SharedLevelDrip", "Drip", "interleaved", "", "ShadeValue by turns with another object"},
        {"SharedLevelDrip", "Drip", "two-threads", "", "ShadeValue beside another thread"},
        {"OtherDefaultSpoke", "Spoke", "default-values", "", "fCount: expected 4, came 5"},
        {"KeepingKey", "Key", "emptied-slots", "", "after all slots were emptied, seed 1: expected 0 calls"},
        {"ForgettingMixer", "Super_mixer", "emptied-slots", "", "of what was plugged, came 0 calls"},
        {"ForgettingControl", "MultiPassControl", "emptied-slots", "", "of what was plugged, came 0 calls"},
        {"TidyingSpoke", "Spoke", "parameter-fuzz", "fSoftness", "ShadeValue rewrites the record's fSoft"},
        {"ClampingGray", "Gray", "parameter-fuzz", "fSaturationShift",
            "ExtensionDataChanged rewrites the record's fSaturationShift"},
        {"MovingSpoke", "Spoke", "parameter-fuzz", "", "ShadeValue changes ShadingIn's fUV"},
        {"MaskingKey", "Key", "parameter-fuzz", "", "ShadeColor changes ShadingIn's fChannelMask"},
        {"FlaglessKey", "Key", "parameter-fuzz", "", "ShadeColor leaves its fullArea"},
        {"ValuelessDrip", "Drip", "parameter-fuzz", "", "ShadeValue leaves its value"},
        {"VectorlessDrip", "Drip", "parameter-fuzz", "", "ShadeVector leaves its vector"},
        {"ColorsOnlyGray", "Gray", "parameter-fuzz", "", "ShadeSurface leaves its result's fScalarA"},
        {"CoveringShift", "Coordinate_Shift", "parameter-fuzz", "",
            "ShadeSurface writes its result's fCoverage: expected 0"},
        {"VectorlessManager", "MultiPassManager", "parameter-fuzz", "",
            "ShadeSurface leaves its result's fVectorChannel"},
        {"ClearingMixer", "Super_mixer_top", "parameter-fuzz", "fBypass",
            "ShadeSurface writes its result's fSecondColor"},
        {"CoveringKey", "Key", "absent-kinds", "", "ShadeSurface writes its result's fCoverage: expected 0"},
        {"SameKey", "Key", "same-parameters", "", "differ in fSubShader: expected 0, came nonzero"},
        {"ForgetfulDrip", "Drip", "same-parameters", "", "differ in fWaves: expected 0, came nonzero"},
        {"FlushingKey", "Key", "processor-state", "",
            "computes after ExtensionDataChanged, seed 1: expected"},
        {"RoundingSpoke", "Spoke", "processor-state", "", "computes after ShadeValue, seed 1: expected"},
        {"PrintingKey", "Key", "silence", "", "came \"Key has changed\""},
        {"ComplainingSpoke", "Spoke", "silence", "", "came \"U is no number\""},
        {"DeepSpoke", "Spoke", "stack", "", "stack of ShadeValue, seed 1: expected at most"},
    };
    for (const Case& broken : cases) {
        if (kCountsCoverage && broken.check == "static-data")
            continue;
        SCOPED_TRACE(broken.fault + ", " + broken.check);
        const json told = FindingsOf(broken.fault, '^' + broken.check + '$', broken.className);
        EXPECT_EQ(told["passed"], false);
        ASSERT_EQ(told["checks"].size(), 1u);
        const json& findings = told["checks"][0]["findings"];
        const auto found = std::ranges::find_if(findings, [&](const json& one) {
            return one["what"].get<std::string>().find(broken.text) != std::string::npos;
        });
        if (found == findings.end()) {
            ADD_FAILURE() << findings;
            continue;
        }
        const json& finding = *found;
        EXPECT_EQ(finding["class"], broken.check == "exports" ? "" : broken.className);
        EXPECT_EQ(finding["field"], broken.field);
        EXPECT_EQ(std::string(finding["value"]).empty(), broken.field.empty());
    }
}

TEST(ValidateTest, WhatWaitsForEverIsFoundAndEndedByCtrlC)
{
    const std::string waiting
        = FERNWICK_BROKEN "WaitingKey.so --class Key --only '^(buffer-sizes|same-parameters)$'";
    const ShellAnswer found = Validate(waiting + " --time-limit 1");
    EXPECT_EQ(found.status, 1);
    EXPECT_THAT(found.text, HasSubstr("Key: stood still for 3 s while asking for SameParameters of two new"));
    EXPECT_THAT(found.text, HasSubstr(" --only '^same-parameters$' --seed 1 --class Key --time-limit 1\n"));

    // The first check has ended, the second waits. Not before its process is gone does the shell's answer end.
    const std::string told = testing::TempDir() + "fernwick_told_while_waiting";
    const ShellAnswer stopped = Shell(FERNWICK_COMMAND " validate " + waiting + " >" + told
        + " & until grep -qs ok " + told + "; do sleep 0.1; done; kill -INT $!; wait $!");
    std::filesystem::remove(told);
    EXPECT_EQ(stopped.status, 130);
    EXPECT_EQ(stopped.text, "fernwick: stopped; nothing is written\n");
}

TEST(ValidateTest, AFileThatCantBeLoadedIsOneLine)
{
    const std::string module = FileText(FERNWICK_MODULE);
    const auto with = [&](std::string_view name, std::string_view other) {
        std::string text = module;
        for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
            text.replace(at, name.size(), other);
        return text;
    };
    const struct {
        std::string name;
        std::string text;
        std::string why;
    } files[] = {
        {"text.so", "no module\n", "can't be loaded"},
        {"empty.so", "", "can't be loaded"},
        {"half.so", module.substr(0, module.size() / 2), "half.so: "},
        {"nameless.so", with("MCDllCleanUp", "MCDllKeepUp_"),
            kCountsCoverage ? "MCDllKeepUp_" : "doesn't export MCDllCleanUp"},
        {"lonely.so", with("libc.so.6", "libq.so.6"), "libq.so.6"},
    };
    const std::string folder = testing::TempDir() + "fernwick_unloadable/";
    for (const auto& file : files) {
        Store(folder + file.name, file.text);
        const ShellAnswer answer = Validate(folder + file.name);
        EXPECT_EQ(answer.status, 1) << answer.text;
        EXPECT_THAT(answer.text, HasSubstr(file.why));
        EXPECT_EQ(answer.text.find(file.name), answer.text.rfind(file.name)) << answer.text;
        EXPECT_THAT(answer.text,
            EndsWith("; build or install it, or name another with --library or FERNWICK_LIBRARY\n"));
        EXPECT_EQ(std::ranges::count(answer.text, '\n'), 1) << answer.text;
    }
    std::filesystem::remove_all(folder);
    const ShellAnswer missing = Validate("missing.so");
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.text,
        HasSubstr("missing.so: can't be loaded: there is no such file; build or install it, or name another "
                  "with "));
    EXPECT_EQ(std::ranges::count(missing.text, '\n'), 1) << missing.text;
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
    const std::string page = FileText(FERNWICK_SOURCE "/docs/hosting.md");
    for (const json& check : json::parse(Validate("--list --json").text)) {
        EXPECT_THAT(page, HasSubstr('`' + std::string(check["check"]) + '`'));
        EXPECT_FALSE(std::string(check["protects"]).empty());
    }
}

} // namespace
