#include "tests/support/CommandTest.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

class HelpPagesTest : public CommandTest { };

TEST_F(HelpPagesTest, BashCompletes)
{
    ASSERT_EQ(Run("completion fish").status, 2);
    Store(fFolder / "completion", Run("completion bash").out);
    Store(fFolder / "graph.json", "");
    // Asks as bash does, which splits words at "=".
    Store(fFolder / "ask",
        "source ./completion; compopt() { :; }; COMP_WORDS=(fernwick \"$@\"); COMP_CWORD=$#; _fernwick\n"
        "echo -n \"${COMPREPLY[*]}\"");
    const std::pair<std::string, std::string> cases[] = {
        {"b", "bake"},
        {"--v", "--version"},
        {"describe ra", "ramp"},
        {"shade Key --pi", "--picture"},
        {"shade --output n", "normal"},
        {"shade Key --on s", "sphere saddle"},
        {"shade Key --on gr", "graph.json"},
        {"render graph.json --fr", "--frames"},
        {"plot w", "wavelengths"},
        {"validate --only le", "leaks"},
        {"shade Key --set fMod", "fMode="},
        {"shade Key --set fMode =", "KEYM KEYA"},
        {"shade -o a.png Key --set fMode = KEYA --plug ''", "fSubShader="},
        {"shade Key --set fMode = KEYA --plug fSubShader = ch", "checker"},
        {"shade Super_mixer --plug 'fSubShader[11'", "fSubShader[11]="},
        {"bake gr", "graph.json"},
        {"bake graph.json --over g", "gradient graph.json"},
        {"completion ''", "bash zsh"},
    };
    for (const auto& [words, completed] : cases)
        EXPECT_EQ(Run("./ask " + words, "", "bash").out, completed) << words;
}

TEST_F(HelpPagesTest, ZshCompletes)
{
    if (std::system("command -v zsh >/dev/null") != 0)
        GTEST_SKIP() << "zsh isn't installed";
    Store(fFolder / "_fernwick", Run("completion zsh").out);
    Store(fFolder / "ask", R"(
zmodload zsh/zpty
zpty -b shell 'PS1= TERM=dumb zsh -f -i'
zpty -w shell 'autoload -U compinit; compinit -u -D; source ./_fernwick; print ready | tr a-z A-Z'
zpty -r shell line '*READY*'
zpty -n -w shell "fernwick $1"$'\t\x01print -r -- "<\x05>" | tr a-z A-Z\n'
zpty -r shell line '*<FERNWICK*>*'
print -rn -- "${${line##*<}%%>*}"
)");
    const std::pair<std::string, std::string> cases[] = {
        {"bak", "FERNWICK BAKE"},
        {"shade Key --sta", "FERNWICK SHADE KEY --STATS"},
        {"shade Weave --set fProfileAl", "FERNWICK SHADE WEAVE --SET FPROFILEALONG="},
        {"shade Gray --set fMode=G", "FERNWICK SHADE GRAY --SET FMODE=GRSC"},
        {"shade Key --plug fSubShader=ra", "FERNWICK SHADE KEY --PLUG FSUBSHADER=RAMP"},
    };
    for (const auto& [words, completed] : cases)
        EXPECT_EQ(Run("-f ./ask '" + words + "'", "timeout 20", "zsh").out, completed) << words;
}

TEST_F(HelpPagesTest, TheManualHasEveryCommandAndIsWellFormed)
{
    const Answer page = Run("man", "SOURCE_DATE_EPOCH=86400");
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.out,
        AllOf(testing::StartsWith(".TH FERNWICK 1 1970-01-02 "),
            HasSubstr("\\fB\\-o, \\-\\-picture\\fR \\fIFILE\\fR\n"),
            HasSubstr("\nfernwick bake examples/key.json \\-o key.png\n"), HasSubstr("; else 512x512.\n")));
    for (const std::string command :
        {"list", "describe", "bake", "shade", "plot", "render", "scene", "validate", "schema", "completion", "man"})
        EXPECT_THAT(page.out, HasSubstr("\n.SS \\fBfernwick " + command + "\\fR [OPTIONS]"));
    Store(fFolder / "fernwick.1", page.out);
    for (const std::string checker : {"mandoc -Tlint", "groff -ww -man -Tutf8 -z", "man --warnings -l"})
        if (Shell("command -v " + checker.substr(0, checker.find(' '))).status == 0) {
            EXPECT_EQ(
                Shell("cd '" + fFolder.string() + "' && " + checker + " fernwick.1 3>&1 >/dev/null 2>&3")
                    .text,
                "")
                << checker;
        }
}

} // namespace
