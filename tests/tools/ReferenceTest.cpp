#include "host/parameters/ParameterTable.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ReferenceTest : public testing::Test {
protected:
    const FreshFolder fFolder;

    /// The page of a class as the command writes it.
    std::string Page(const std::string& name, const std::string& arguments = "") const
    {
        const ShellAnswer answer
            = Shell("'" FERNWICK_COMMAND "' reference --library '" FERNWICK_MODULE "' -o '"
                + (fFolder / "reference").string() + "' " + arguments);
        EXPECT_EQ(answer.status, 0) << answer.text;
        return FileText(fFolder / "reference" / (name + ".md"));
    }
};

TEST_F(ReferenceTest, EveryClassHasAPageAndEveryFieldALine)
{
    const std::string index = Page("index");
    for (const fernwick::ParameterTable& table : fernwick::AllClasses()) {
        EXPECT_THAT(index, HasSubstr("[" + table.fName + "](" + table.fName + ".md)"));
        const std::string page = FileText(fFolder / "reference" / (table.fName + ".md"));
        EXPECT_THAT(
            page, AllOf(HasSubstr("# " + table.fName), HasSubstr(table.fPurpose), Not(HasSubstr("## Good"))));
        for (const fernwick::Row& row : table.fRows)
            EXPECT_THAT(page, HasSubstr("| `" + row.fField.fName)) << table.fName;
        EXPECT_TRUE(std::filesystem::exists(FERNWICK_SOURCE "/docs/quirks/" + table.fName + ".md"))
            << table.fName;
    }
    EXPECT_THAT(FileText(fFolder / "reference" / "sources.md"), HasSubstr("`countU` | an integer | `8`"));
}

TEST_F(ReferenceTest, ArraysAreOneLineWithTheirCommonOrAllTheirDefaults)
{
    const std::string weave = Page("Weave");
    EXPECT_THAT(weave,
        AllOf(HasSubstr("| `fWarpWidth[0..4]` | an integer | `1` |"), HasSubstr("UV, normal (world)"),
            HasSubstr("| `[[false, true, false, true, false], [true, false,")));
    const auto read = [&](const char* name) { return FileText(fFolder / "reference" / name); };
    EXPECT_THAT(read("Iridescent.md"),
        AllOf(HasSubstr("`[0, 15, 30, 45, 60, 75, 90]` | degrees | Band #: centre"),
            HasSubstr("`fBands[0..6].fWidth` | a number | `3`")));
    EXPECT_THAT(read("Fresnel.md"), AllOf(HasSubstr("C21E8AD4"), HasSubstr("`\"Rendering Camera\"`")));
    EXPECT_THAT(
        read("Shadow_pass.md"), AllOf(HasSubstr("no route"), HasSubstr("| Needs"), HasSubstr("`false`")));
    EXPECT_THAT(read("Key.md"), HasSubstr("<br>\"KEYA\" = Cut-out |"));
}

TEST_F(ReferenceTest, AGraphWithAPictureShowsTheClassBestAsItsOutput)
{
    const std::string root = (fFolder / "root").string();
    const auto graph = [&](const std::string& name, const std::string& output) {
        Store(root + "/examples/" + name,
            R"({"shaders": {"a": {"class": "Drip"}, "b": {"class": "Key", "fSubShader": "a"}},
            "output": ")"
                + output + "\"}\n");
    };
    graph("drip.json", "a");
    graph("key.json", "b");
    graph("plain.json", "a");
    Store(root + "/examples/no-graph.json", "[]");
    Store(root + "/docs/quirks/Key.md", "- Ends belong.\n");
    Store(root + "/docs/gallery/one.list",
        "# pictures\nkeyed.png bake examples/key.json --size 8x8\nround.png bake "
        "examples/drip.json\nscene.png view\n");
    Store(root + "/docs/blender/scenes/README.md",
        "# Scenes\n\n`Key`\n\n## Badge\n\n![A badge](badge.jpg)\n\nBy a `Key`.\n\n## Bowl\n\n![A "
        "bowl](bowl.jpg)\n");
    const std::string key = Page("Key", "--with '" + root + "'");
    EXPECT_THAT(key,
        AllOf(HasSubstr("](../gallery/keyed.png)"), HasSubstr("## Good to know\n\n- Ends belong.\n"),
            HasSubstr("`fernwick bake examples/key.json --size 8x8 -o keyed.png`"),
            HasSubstr("\"output\": \"b\"}\n```\n"),
            HasSubstr("![A badge](../blender/scenes/badge.jpg)\n\n[Badge]("), Not(HasSubstr("bowl"))));
    EXPECT_THAT(FileText(fFolder / "reference" / "Drip.md"), HasSubstr("](../gallery/round.png)"));
    Store(root + "/docs/gallery/two.list", "# Drip: wet.png\nwet.png bake examples/key.json\n");
    EXPECT_THAT(Page("Drip", "--with '" + root + "'"), HasSubstr("](../gallery/wet.png)"));
    std::filesystem::remove(root + "/docs/gallery/two.list");
    std::filesystem::remove(root + "/docs/gallery/one.list");
    EXPECT_THAT(Page("Drip", "--with '" + root + "'"),
        AllOf(HasSubstr("`fernwick bake examples/drip.json -o drip.png`"), Not(HasSubstr("gallery"))));
    const ShellAnswer missing = Shell("'" FERNWICK_COMMAND "' reference --with missing -o '" + root + "'");
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.text, HasSubstr("missing"));
    EXPECT_THAT(FileText(fFolder / "reference" / "Spoke.md"), Not(HasSubstr("## Example")));
}

} // namespace
