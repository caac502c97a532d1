#include "host/json/JsonNode.h"
#include "host/parameters/ParameterTable.h"
#include "tests/support/CommandTest.h"
#include <set>

namespace {

using fernwick::Json;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class ShadeTest : public CommandTest { };

TEST_F(ShadeTest, TellsWhatIsWrongWithASettingAndTouchesNoFile)
{
    const std::pair<std::string, std::string> cases[] = {
        {"Weave --set fRepeatU=x -o a.png", R"(Weave.fRepeatU: expected an integer, got "x")"},
        {"Gary -o a.png", R"(there is no class or source "Gary"; did you mean "Gray"?)"},
        {"Key", "give --picture, --print or --stats"},
        {"Key --print 0.5", "\"0.5\" is no sample"},
        {"Key --print 0.5,0.5x", "is no sample"},
        {"Key --set fMod=KEYM --stats", "did you mean \"fMode\"?"},
        {"Key --set fMode --stats", "--set: \"fMode\" has no field and value"},
        {"Key --set class=Gray --stats", "Key.class: Key has no such field"},
        {"Iridescent --set colour=1 --stats", "Iridescent has no such field; it has fObjectName, fBands, "},
        {"Key --set fRedRange=[30,50 --stats", R"(expected two numbers, got "[30,50")"},
        {"Key --set fSubShader=checker --stats", "give it with --plug"},
        {"Fresnel --plug fCameraName=checker --stats", "give it with --set"},
        {"Super_mixer --set fSubShader=checker --stats", "give it with --plug"},
        {"Key --set fMode=mask --stats",
            R"(expected one of "KEYM" (Mask), "KEYA" (Cut-out), got "mask"; did you mean "Mask"?)"},
        {"Key --set fKeyColor=#ff880 --stats",
            "Key.fKeyColor: \"#ff880\" is no colour; a colour is like #ff8800, "},
        {"surface --set second=#ff880080 --stats", "surface.second: this colour has no alpha"},
        {"surface --set second=#f808 --stats", "surface.second: this colour has no alpha"},
        {"Weave --plug fPattern=checker --stats",
            "--plug: Weave.fPattern takes an array of 5, each an array of 5, each true or false; give it "
            "with --set"},
        {"Iridescent --plug 'fBands[2]=checker' --stats",
            "Iridescent.fBands[2] takes an object; give it with --set"},
        {"Key --on cube -o a.png", "cube"},
        {"Key --on sphere --stats", "go with --on uv"},
        {"Key --on sphere --over checker -o a.png", "go with --on uv"},
        {"Key --plug fSubShader=chekcer --stats", "did you mean \"checker\"?"},
        {"Key --plug fSubShader=checker:8 --stats", "checker takes nothing behind a colon"},
        {"Key --plug fSubShader=color:#ff88f --stats", "Key.fSubShader.color: \"#ff88f\" is no colour"},
        {"Key --plug fSubShader=picture:none.png --stats", "Key.fSubShader.file: none.png can't be read"},
        {"Key --set \"fMode=$(printf '\\377')\" --stats", "isn't UTF-8"},
        {"Key --output alpha --over checker -o a.png", "\"alpha\""},
        {"Key --over color:#f -o a.png", "--over.color: \"#f\" is no colour"},
        {"Key --over checker:8 -o a.png", "--over: checker takes nothing behind a colon"},
    };
    for (const auto& [arguments, text] : cases) {
        const Answer answer = Run("shade " + arguments);
        EXPECT_EQ(answer.status, 2) << arguments;
        EXPECT_THAT(answer.error, HasSubstr(text));
        EXPECT_EQ(answer.out, "") << arguments;
    }
    EXPECT_THAT(FilesIn(fFolder), testing::IsEmpty());
}

TEST_F(ShadeTest, BakesWhatTheSameGraphBakes)
{
    Store(fFolder / "mix.json", R"({"output": "mix", "shaders": {
        "mix": {"class": "Super_mixer", "fCombineMode": "MXMD", "fDistribution": "MADI", "fRange[1]": [50, 90],
                "fSubShader[0]": "control", "fSubShader[2]": "odd", "fSubShader[3]": "photo"},
        "control": {"source": "ramp", "along": "v"},
        "odd": {"source": "color", "color": [1, 0.5, 0]},
        "photo": {"source": "picture", "file": "photo.png"}}})");
    ASSERT_EQ(Run("shade checker --size 16x16 -o photo.png").status, 0);
    ASSERT_EQ(Run("bake mix.json --size 40x30 -o graph.png").status, 0);
    const Answer answer = Run("shade Super_mixer --set fCombineMode=Ranges --set 'fRange[1]=[1,2]' "
                              "--set 'fDistribution=By hand' --set 'fRange[1]=[50,90]' "
                              "--plug 'fSubShader[0]=ramp:v' --plug 'fSubShader[2]=color:1,0.5,0' "
                              "--plug 'fSubShader[3]=picture:photo.png' --size 40x30 -o shade.png");
    EXPECT_EQ(answer.status, 0) << answer.error;
    EXPECT_EQ(answer.out + answer.error,
        "fernwick: --set: Super_mixer.fRange[1] is given more than once; the last one counts\n");
    EXPECT_EQ(FileText(fFolder / "shade.png"), FileText(fFolder / "graph.png"));
}

TEST_F(ShadeTest, TheLaterSettingCountsAndATextNeedsNoQuotes)
{
    const std::string print = " --print 0.5,0.5";
    EXPECT_THAT(Run("shade Weave --set fRepeatU=1 --set fMask=true --set fMask=false" + print).status, 0);
    EXPECT_THAT(Run("shade value --set value=1 --set value=2" + print).out, ContainsRegex("value +2 "));
    EXPECT_THAT(Run("shade gradient --set 'colors[0]=[1,1,1]'" + print).error, HasSubstr("no such field"));
    const std::string lamp = "shade Lit --set fLightName=";
    for (const char* const name : {"12", "'\"12\"'", "null", "''"})
        EXPECT_EQ(Run(lamp + name + print).status, 0) << name;
    // The later of whole array and element counts, wherever the element was set before.
    const std::string ends = " --set fRedRange=[-100,100] --set fGreenRange=[-100,100]"
                             " --set fBlueRange=[-100,100] --plug fSubShader=color:1,1,1";
    EXPECT_THAT(Run("shade Key --set fRedRange=[0,1]" + ends + print).out, ContainsRegex("red +0 "));
    EXPECT_THAT(Run("shade Key" + ends + " --set fRedRange=[0,1]" + print).out, ContainsRegex("red +1 "));
}

TEST_F(ShadeTest, ReadsHexColorsLabelsThatLookLikeNumbersAndWholeArraysOfSlots)
{
    const auto bake = [this](const std::string& arguments) {
        const Answer answer = Run("shade " + arguments + " --size 8x8 -o a.png");
        EXPECT_EQ(answer.out + answer.error, "") << arguments;
        return FileText(fFolder / "a.png");
    };
    const std::string hex = bake("color --set color=#ff000080"); // the alpha isn't encoded
    EXPECT_EQ(hex, bake("color --set color=[1,0,0,0.5019608]"));
    EXPECT_EQ(hex, bake("color --set color=1,0,0,0.5019608"));
    EXPECT_EQ(bake("color --set color=#fa38"), bake("color --set color=#ffaa3388"));
    const std::string clear = "color --set color=0,0,0,0 --over ";
    EXPECT_EQ(bake(clear + "color:#f80"), bake("color --set color=#ff8800"));
    EXPECT_EQ(bake(clear + "color:0.5,0.25,1"), bake("color --set color=0.5,0.25,1"));
    EXPECT_EQ(bake("surface --output second --set second=#ff0000"), bake("color --set color=1,0,0"));
    EXPECT_EQ(bake("Weave --set fWeaveMode=Free --plug fWarpSubShader=color:#ff0000 --plug "
                   "'fWarpSubShader[1]=value:1'"),
        bake("Weave --set fWeaveMode=Free --plug 'fWarpSubShader[0]=color:#ff0000' --plug "
             "'fWarpSubShader[1]=value:1' "
             "--plug 'fWarpSubShader[2]=color:#ff0000' --plug 'fWarpSubShader[3]=color:#ff0000' "
             "--plug 'fWarpSubShader[4]=color:#ff0000'"));
    // The label, which has a grid to fill, and not the number, which has one cell and no creases.
    const auto corners = [&](const std::string& grid) {
        Run("shade Corners --on box --size 16x16 -o c.png --set fGridOption=" + grid);
        return ReadBack(fFolder / "c.png", 16, 16).At(8, 8).fRed;
    };
    EXPECT_GT(corners("512"), 0.1f);
    EXPECT_EQ(corners("7"), 0);
}

TEST_F(ShadeTest, EveryClassIsPrintedMeasuredAndShownByThePage)
{
    std::string page = FileText(FERNWICK_SOURCE "/docs/command.md");
    for (size_t wrap = page.find("\\\n"); wrap != std::string::npos; wrap = page.find("\\\n"))
        page.erase(wrap, 2);
    std::filesystem::create_directory_symlink(FERNWICK_EXAMPLES, fFolder / "examples");
    for (const fernwick::ParameterTable& table : fernwick::AllClasses()) {
        const Answer numbers = Run("shade " + table.fName + " --size 9x7 --print 0.25,0.75 --stats");
        EXPECT_EQ(numbers.status, 0) << table.fName;
        EXPECT_EQ(numbers.error, "") << table.fName << ": a scene probe finds what it looks for";
        EXPECT_THAT(numbers.out, HasSubstr(": 63 samples, "));

        const std::string start = "    fernwick shade " + table.fName + ' ';
        const std::string end = " -o out/" + table.fName + ".png\n";
        const size_t found = page.find(end);
        ASSERT_NE(found, std::string::npos) << table.fName;
        const size_t line = page.rfind(start, found) + std::string("    fernwick ").size();
        const Answer shown = Run(page.substr(line, found - line) + " --size 32x32 -o a.png");
        EXPECT_EQ(shown.out + shown.error, "") << table.fName;
        const fernwick::Picture picture = ReadBack(fFolder / "a.png", 32, 32);
        std::set<float> greens;
        for (int y = 8; y < 24; ++y)
            for (int x = 8; x < 24; ++x)
                greens.insert(picture.At(x, y).fGreen);
        EXPECT_GT(greens.size(), 1u) << table.fName;
    }
}

TEST_F(ShadeTest, ShapesAreRenderedInASceneWithWhatProbesLookFor)
{
    const auto center = [this](const std::string& arguments) {
        EXPECT_EQ(Run("shade " + arguments + " --size 33x33 -o a.png").error, "") << arguments;
        return ReadBack(fFolder / "a.png", 33, 33).At(16, 16);
    };
    EXPECT_GT(center("Curvature --on sphere").fRed, 0.3f);
    EXPECT_GT(center("Curvature --on saddle").fBlue, 0.3f);
    EXPECT_EQ(center("Curvature --on plane").fGreen, 0) << "the surface is met";
    const std::string lit = "Lit --set fAngleRange=[0,1.5708] --on ";
    EXPECT_GT(center(lit + "sphere").fRed, 0.1f);
    EXPECT_GT(center(lit + "uv").fRed, 0.1f);
    EXPECT_EQ(center(lit + "sphere --set fLightName=Camera").fRed, 0) << "no light";
    EXPECT_LT(center("checker --on sphere --lit --set odd=1,1,1 --set even=1,1,1").fRed, 0.95f);
    EXPECT_EQ(center("checker --on sphere --set odd=1,1,1 --set even=1,1,1").fRed, 1);
    const std::string layers = "shade Gray --on torus --plug fSubShader=surface --size 8x8";
    EXPECT_EQ(Run(layers + " -o plain.exr").status, 0);
    EXPECT_EQ(Run(layers + " -o some.exr --layers third,normal").status, 0);
    EXPECT_EQ(Run(layers + " -o all.exr --layers all").status, 0);
    const auto head = [this](const std::string& name) { return FileText(fFolder / name).substr(0, 4000); };
    EXPECT_THAT(head("plain.exr"), Not(HasSubstr("normal.X")));
    EXPECT_THAT(
        head("some.exr"), AllOf(HasSubstr("normal.X"), HasSubstr("third.R"), Not(HasSubstr("second.R"))));
    EXPECT_THAT(
        head("all.exr"), AllOf(HasSubstr("normal.X"), HasSubstr("second.R"), HasSubstr("single.switch")));
}

TEST_F(ShadeTest, PrintsEveryResultWithAllDigits)
{
    const Answer color = Run("shade color --set color=[0.1,-2.5,1e-40,0.25] --print 0,0");
    EXPECT_EQ(color.status, 0) << color.error;
    EXPECT_THAT(color.out,
        AllOf(ContainsRegex("red +0\\.100000001 +0x1\\.99999ap-4\n"),
            ContainsRegex("green +-2\\.5 +-0x1\\.4p"),
            ContainsRegex("blue +9\\.9999461e-41 +0x1\\.16c2p-133\n"), ContainsRegex("alpha +0\\.25 "),
            HasSubstr("coverage")));
    EXPECT_THAT(Run("shade color --set color=[0,0,0] --print 0,0").out, Not(HasSubstr("surface")));
    EXPECT_THAT(Run("shade ramp --print -0.75,0.5").out,
        AllOf(ContainsRegex("value\n  value +-0\\.75 "), ContainsRegex("color\n  red +-0\\.75 ")));
    EXPECT_THAT(Run("shade Drip --print 0,0").out, ContainsRegex("vector\n  x +0 .*\n  y +0 .*\n  z +1 "));
    // sRGB becomes linear light, an alpha stays
    EXPECT_THAT(Run("shade Gray --set fMode=SATU --plug fSubShader=color:#FF880033 --print 0,0").out,
        AllOf(ContainsRegex("color\n  red +1 .*\n  green +0\\.246201.*\n  blue +0 "),
            ContainsRegex("alpha +0\\.2000000"), ContainsRegex("surface\n  produced +1 ")));
}

TEST_F(ShadeTest, CountsNaNsAndInfinitiesBesideTheFiniteRange)
{
    const std::string number = "value +";
    EXPECT_THAT(Run("shade ramp --stats --size 4x2").out,
        AllOf(HasSubstr("value: 8 samples, "), ContainsRegex(number + "0\\.125 +0\\.875 +0 +0\n")));
    EXPECT_THAT(Run("shade ramp --set from=-3e38 --set to=3e38 --stats --size 4x2").out,
        ContainsRegex(number + "- +- +0 +8\n"));
    EXPECT_THAT(Run("shade Drip --set fRingWidth=0 --set fRingStart=0 --set fCenterU=0.5 --set fCenterV=0.5 "
                    "--stats --size 1x3")
                    .out,
        ContainsRegex(number + "0 +0 +1 +0\n"));
    const Answer reported = Run("shade Lit --set fLightName=Sun --stats --size 3x3");
    EXPECT_THAT(reported.error, HasSubstr(" by Lit (Lit, fLightName \"Sun\"), 18 times\n"));
}

TEST_F(ShadeTest, TellsOnceWhatIsDoubtfulAndWhatIsEmptyBehindAnEmptyPicture)
{
    const std::string print = " --print 0.5,0.5";
    const auto error = [this](const std::string& arguments) {
        const Answer answer = Run("shade " + arguments);
        EXPECT_EQ(answer.status, 0) << arguments;
        return answer.error;
    };
    EXPECT_EQ(error("Key --set fMode=17" + print),
        "fernwick: Key.fMode: expected one of \"KEYM\" (Mask), \"KEYA\" (Cut-out), got 17; the shader takes "
        "it in "
        "its own way\n");
    EXPECT_THAT(
        error("Spoke --set fCount=-1" + print), HasSubstr("Spoke.fCount: expected 0 or more, got -1; "));
    EXPECT_THAT(
        error("Fresnel --set fTemperature=3000" + print), HasSubstr("only where fIlluminantPreset is 15"));
    EXPECT_EQ(error("Fresnel --set fTemperature=3000 --set fIlluminantPreset=15" + print), "");

    EXPECT_EQ(error("Super_mixer --plug 'fSubShader[3]=checker' -o a.png --size 8x8"),
        "fernwick: the picture is black all over; nothing is plugged into Super_mixer.fSubShader[0], "
        "Super_mixer.fSubShader[1], Super_mixer.fSubShader[2], Super_mixer.fSubShader[4], "
        "Super_mixer.fSubShader[5], "
        "Super_mixer.fSubShader[6], Super_mixer.fSubShader[7], Super_mixer.fSubShader[8] and 3 more\n");
    EXPECT_EQ(error("MultiPassManager -o a.png --size 8x8"),
        "fernwick: the picture is transparent all over; nothing is plugged into "
        "MultiPassManager.fSubShader[0..10]\n");
    EXPECT_EQ(error("color --set color=#000 -o a.png --size 8x8"), "");
}

TEST_F(ShadeTest, ListAndDescribeSpeakJson)
{
    const Json list = Json::parse(Run("list --json").out);
    EXPECT_EQ(list["classes"].size(), 19u);
    EXPECT_EQ(list["sources"].size(), 7u);
    for (const Json& entry : list["classes"]) {
        const std::string name = entry["name"];
        const Json described = Json::parse(Run("describe --json " + name).out);
        for (const char* const key : {"name", "purpose", "outputs", "identifiers"})
            EXPECT_EQ(described[key], entry[key]) << name;
        for (const Json& field : described["fields"])
            EXPECT_TRUE(field.contains("default")) << name;
    }
    const Json key = Json::parse(Run("describe Key --json").out);
    EXPECT_EQ(key["recordSize"], 56);
    EXPECT_EQ(key["fields"][0], Json::parse(R"({"name": "fRedRange", "type": "vector2", "label": "Red range",
            "help": "Lower and upper offset of the key box from the key colour; both ends belong to the box.",
            "default": [-1, 1], "unit": "%"})"));
    EXPECT_EQ(key["fields"][3]["choices"][1], Json::parse(R"({"value": "KEYA", "label": "Cut-out"})"));
    EXPECT_EQ(key["fields"][5]["default"], Json());
    const Json checker = Json::parse(Run("describe checker --json").out);
    EXPECT_FALSE(checker.contains("identifiers"));
    EXPECT_EQ(checker["fields"][2]["default"], 8);
}

} // namespace
