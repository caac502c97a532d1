#include "tests/support/CommandTest.h"
#include <sstream>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(CommandTest, HelpSucceedsWithAnExampleAndBadUsageIsTold)
{
    for (const std::string command :
        {"list", "describe", "bake", "shade", "plot", "render", "scene", "schema", "completion", "man"}) {
        const Answer answer = Run(command + " --help");
        EXPECT_EQ(answer.status, 0);
        EXPECT_THAT(answer.out, HasSubstr("\n  fernwick " + command));
    }
    const std::pair<std::string, std::string> cases[] = {
        {"", "Usage: fernwick"},
        {"grow", "there is no command \"grow\""},
        {"rendr a.json", "there is no command \"rendr\"; did you mean \"render\"?"},
        {"describe key", "\"key\"; did you mean \"Key\"?"},
        {"bake '" + fKey + "'", "--picture is required"},
        {"bake '" + fKey + "' -o key.jpg", "key.jpg: a picture's name ends in .png, .exr, .tif or .tx"},
        {"bake '" + fKey + "' -o key.png --size 640", "\"640\" is no size"},
        {"bake '" + fKey + "' -o key.png --size 0x8", "\"0x8\" is no size"},
        {"bake '" + fKey + "' -o key.png --size 8x8x8", "\"8x8x8\" is no size"},
        {"bake '" + fKey + "' -o key.png --output normals",
            ", lit, got \"normals\"; did you mean \"normal\"?"},
        {"bake '" + fKey + "' --pictur key.png",
            "there is no option \"--pictur\"; did you mean \"--picture\"?"},
        {"bake '" + fKey + "' -o key.png --sise=8x8",
            "there is no option \"--sise\"; did you mean \"--size\"?\n  `fernwick bake --help` tells more\n"},
        {"bake '" + fKey + "' other.json -o key.png", "\"other.json\" is one argument too many"},
        {"bake '" + fKey + "' -o", "--picture: 1 required FILE missing"},
        {"--versio",
            "there is no option \"--versio\"; did you mean \"--version\"?\n  `fernwick --help` tells more\n"},
        {"\"$(printf 'gr\\377w\\033')\"", "there is no command \"gr\\xffw\\u001b\""},
        {"bake '" + fKey + "' -o key.png --size 16x65537", "each side 1 to 65536"},
        {"bake '" + fKey + "' -o key.png --region 0,0,5,0", "is no region; one is like 0,0,320,240"},
        {"bake '" + fKey + "' -o key.png --region 0,0,513,9",
            "--region 0,0,513,9 is beyond the picture of 512x512"},
        {"render '" + fKey + "' -o key.png --layers normal", "--layers is for an .exr"},
        {"bake '" + fKey + "' -o key.png --tiled", "key.png: a .png has no tiles"},
        {"bake '" + fKey + "' -o key.png --output alpha --over checker", "\"alpha\""},
        {"bake '" + fKey + "' -o key.png --output normal --lit", "--lit"},
        {"bake '" + fKey + "' -o key.png --directx", "--output normal"},
        {"bake '" + fKey + "' -o key.png --outputs color,alpha", "put {output} into the name"},
        {"bake '" + fKey + "' -o - --outputs color,alpha", "put {output} into the name"},
        {"bake '" + fKey + "' -o {output}.png --outputs color,alpha,color", "\"color\" is asked for twice"},
        {"bake '" + fKey + "' -o key.png --samples 0", "--samples"},
        {"bake '" + fKey + "' -o key.png --threads 0",
            "--threads: expected an integer from 1 to 1024, got \"0\""},
        {"bake '" + fKey + "' -o key.png --threads two",
            "--threads: expected an integer from 1 to 1024, got \"two\""},
        {"plot reflectence -o plot.png", "did you mean \"reflectance\"?"},
        {"plot wavelengths", "--picture is required"},
        {"plot wavelengths -o plot.svg", "plot.svg: a picture's name ends in .png, .exr, .tif or .tx"},
    };
    for (const auto& [arguments, text] : cases) {
        const Answer answer = Run(arguments);
        EXPECT_EQ(answer.status, 2) << arguments;
        EXPECT_THAT(answer.error, HasSubstr(text));
        EXPECT_TRUE(arguments.empty() || answer.error.starts_with("fernwick: ")) << arguments;
        EXPECT_EQ(answer.out, "") << arguments;
    }
    EXPECT_THAT(FilesIn(fFolder), testing::IsEmpty());
}

TEST_F(CommandTest, ListsAndDescribes)
{
    const std::string keyID = "379752D6-C5EB-4173-B3E4-FF727769483A";
    const Answer list = Run("list");
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, AllOf(HasSubstr("\nKey  "), HasSubstr(keyID), HasSubstr("\nchecker  ")));
    const Answer key = Run("describe Key");
    EXPECT_EQ(key.status, 0);
    EXPECT_THAT(key.out,
        AllOf(HasSubstr(keyID), HasSubstr("56 bytes"), HasSubstr("Outputs     color\n"),
            testing::ContainsRegex("\nfRedRange .*\\[-1, 1\\] +%\n    Red range: "), HasSubstr("\"KEYM\"")));
    EXPECT_THAT(Run("describe checker").out, testing::ContainsRegex("\ncountU .* 8\n"));
    const std::string weave = Run("describe Weave").out;
    EXPECT_THAT(weave,
        HasSubstr("\n      [[false, true, false, true, false],\n       [true, false, true, false, true],\n"));
    std::istringstream lines(weave.substr(weave.find("FIELD")));
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line.size() <= 80 && !line.ends_with(' ')) << line;
}

TEST_F(CommandTest, TheLibraryIsTheNamedOneElseTheEnvironmentsElseOneNearby)
{
    const std::string missing = "FERNWICK_LIBRARY=missing.so";
    EXPECT_EQ(Run("describe Key").status, 0);
    EXPECT_EQ(Run("describe Key", missing + " FERNWICK_LIBRARY='" FERNWICK_MODULE "'").status, 0);
    EXPECT_EQ(Run("describe Key --library '" FERNWICK_MODULE "'", missing).status, 0);
    const Answer answer = Run("describe Key", missing);
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.error,
        AllOf(testing::StartsWith("fernwick: FERNWICK_LIBRARY: "),
            HasSubstr("missing.so: can't be loaded: there is no such file; build or install it, or name "
                      "another with ")));
    for (const std::string arguments : {"list", "describe checker"}) { // which wouldn't need it
        EXPECT_EQ(Run(arguments, missing).status, 1);
        EXPECT_EQ(Run(arguments, missing).error, answer.error);
    }

    const auto bin = fFolder / "bin";
    std::filesystem::create_directory(bin);
    std::filesystem::copy_file(FERNWICK_COMMAND, bin / "fernwick");
    const Answer alone = Run("describe Key", "", (bin / "fernwick").string());
    EXPECT_EQ(alone.status, 1);
    const std::string name = std::filesystem::path(FERNWICK_MODULE).filename().string();
    for (const auto& place : {bin / name, fFolder / name, fFolder / "lib" / "fernwick" / name})
        EXPECT_THAT(alone.error, HasSubstr("\n  " + place.string() + '\n'));
    std::filesystem::create_directories(fFolder / "lib" / "fernwick");
    std::filesystem::copy_file(FERNWICK_MODULE, fFolder / "lib" / "fernwick" / name);
    EXPECT_EQ(Run("describe Key", "", (bin / "fernwick").string()).status, 0);
}

TEST_F(CommandTest, TheLibrariesForPicturesAreThoseOfAProgramOfItsOwn)
{
    const std::filesystem::path folder = std::filesystem::path(FERNWICK_COMMAND).parent_path();
    const std::filesystem::path pictures = folder / "fernwick-pictures";
    const std::filesystem::path formats = folder / "fernwick-formats.so";
    const std::string own = Shell("ldd '" FERNWICK_COMMAND "'").text;
    const std::string theirs = Shell("ldd '" + pictures.string() + "'").text;
    EXPECT_THAT(own, HasSubstr("libstdc++"));
    for (const std::string library : {"assimp", "embree", "cairo", "tbb", "libz"}) {
        EXPECT_THAT(own, testing::Not(HasSubstr(library))); // or each command starts slowly
        EXPECT_THAT(theirs, HasSubstr(library));
    }
    EXPECT_THAT(theirs, testing::Not(HasSubstr("OpenImageIO"))); // or each picture
    EXPECT_THAT(Shell("ldd '" + formats.string() + "'").text, HasSubstr("OpenImageIO"));

    const auto bin = fFolder / "bin";
    const auto lib = fFolder / "lib" / "fernwick";
    std::filesystem::create_directories(bin);
    std::filesystem::create_directories(lib);
    std::filesystem::copy_file(FERNWICK_COMMAND, bin / "fernwick");
    std::filesystem::create_symlink("bin/fernwick", fFolder / "link");
    const std::string command = (fFolder / "link").string();
    const std::string plot = "plot reflectance -o a.png";
    EXPECT_EQ(Run("list", "", command).status, 0);
    const Answer alone = Run(plot, "", command);
    EXPECT_EQ(alone.status, 1);
    EXPECT_EQ(alone.error,
        "fernwick: there is no " + (bin / "fernwick-pictures").string() + " and no "
            + (lib / "fernwick-pictures").string()
            + ", which works with pictures and scenes; build or install all of the command\n");
    Store(lib / "fernwick-pictures", "");
    EXPECT_EQ(Run(plot, "", command).error,
        "fernwick: " + (lib / "fernwick-pictures").string()
            + ": can't be started: Permission denied; build or install all of the command\n");
    std::filesystem::copy_file(
        pictures, lib / "fernwick-pictures", std::filesystem::copy_options::overwrite_existing);
    std::filesystem::permissions(lib / "fernwick-pictures", std::filesystem::perms::owner_all);
    EXPECT_EQ(
        Run(plot, "", command).error, Run("describe Key", "", command).error); // where the library is not
    std::filesystem::copy_file(FERNWICK_MODULE, fFolder / std::filesystem::path(FERNWICK_MODULE).filename());
    EXPECT_EQ(Run(plot, "", command).error, "");

    const auto shade
        = [&](const std::string& name) { return Run("shade Drip --size 8x8 -o " + name, "", command); };
    EXPECT_EQ(shade("a.png").error, "");
    const auto module = lib / "fernwick-formats.so";
    const std::string refused = "fernwick: " + module.string() + ": can't be loaded: ";
    EXPECT_THAT(shade("a.exr").error, StartsWith(refused + "there is no such file; "));
    std::filesystem::copy_file(formats, module);
    EXPECT_EQ(shade("a.exr").error, "");
    std::filesystem::resize_file(module, 100'000); // of which it would die, if it touched the rest
    EXPECT_THAT(shade("b.exr").error, StartsWith(refused + "the file is cut off after 100000 bytes; "));
    EXPECT_FALSE(std::filesystem::exists(fFolder / "b.exr"));
    std::filesystem::resize_file(lib / "fernwick-pictures", 100'000);
    EXPECT_THAT(
        shade("b.png").error, HasSubstr(": can't be started: the file is cut off after 100000 bytes; "));
    std::filesystem::copy_file(FERNWICK_COMMAND, bin / "fernwick-pictures");
    EXPECT_THAT(shade("b.png").error, HasSubstr(": this is the command itself"));
}

TEST_F(CommandTest, BakesTheSameFileWithAnyNumberOfThreadsAndSaysNothing)
{
    for (const std::string threads : {"1", "2"}) {
        const Answer answer
            = Run("bake '" + fKey + "' -o " + threads + ".png --size 200x120 --threads " + threads);
        EXPECT_EQ(answer.status, 0) << answer.error;
        EXPECT_EQ(answer.out + answer.error, "");
    }
    EXPECT_EQ(FileText(fFolder / "1.png"), FileText(fFolder / "2.png"));
    const fernwick::Picture cut = ReadBack(fFolder / "1.png", 200, 120);
    EXPECT_EQ(cut.At(0, 0).fAlpha, 0);
    EXPECT_EQ(cut.At(130, 70).fAlpha, 1);

    EXPECT_EQ(Run("bake '" + fKey + "' -o over.png --size 200x120 --over checker").status, 0);
    const fernwick::Picture over = ReadBack(fFolder / "over.png", 200, 120);
    EXPECT_NEAR(over.At(0, 0).fRed, 1, 1e-3);
    EXPECT_NEAR(over.At(30, 0).fRed, 0, 1e-3);
}

TEST_F(CommandTest, BakesSeveralOutputsAsOneByOne)
{
    const std::string cloth
        = "bake '" + std::string(FERNWICK_EXAMPLES) + "/weave-rounded.json' --size 150x300 ";
    for (const std::string ending : {".png", ".exr"}) {
        const Answer answer = Run(
            cloth + "--over checker --samples 2 --outputs lit,normal,color -o maps/a.{output}" + ending);
        EXPECT_EQ(answer.status, 0) << answer.error;
        for (const std::string output : {"lit", "normal", "color"}) {
            const std::string over = output == "normal" ? "" : "--over checker ";
            EXPECT_EQ(Run(cloth + over + "--samples 2 --output " + output + " -o one" + ending).status, 0);
            EXPECT_EQ(
                FileText(fFolder / "maps" / ("a." + output + ending)), FileText(fFolder / ("one" + ending)))
                << output << ending;
        }
    }
    EXPECT_EQ(FilesIn(fFolder / "maps").size(), 6);
}

TEST_F(CommandTest, AGraphMayComeFromStdinWithFilesFromTheCurrentFolder)
{
    EXPECT_EQ(Run("shade checker --size 8x8 -o photo.png").status, 0);
    Store(fFolder / "graph.json",
        R"({"shaders": {"a": {"source": "picture", "file": "photo.png"}}, "output": "a"})");
    EXPECT_EQ(Run("bake graph.json --size 8x8 -o file.png").status, 0);
    EXPECT_EQ(Run("bake - --size 8x8 -o stdin.png <graph.json").status, 0);
    EXPECT_EQ(Run("bake - --size 8x8 -o pipe.png", "cat graph.json |").status, 0);
    EXPECT_EQ(FileText(fFolder / "stdin.png"), FileText(fFolder / "file.png"));
    EXPECT_EQ(FileText(fFolder / "pipe.png"), FileText(fFolder / "file.png"));
    EXPECT_EQ(Run("bake - -o old.png </dev/null").error, "fernwick: stdin: not JSON: it is empty\n");
    EXPECT_EQ(
        Run("bake photo.png -o old.png").error, "fernwick: photo.png: not JSON: it is a picture (PNG)\n");
}

TEST_F(CommandTest, BakesABumpAsANormalMapOrLit)
{
    Store(fFolder / "cloth.json",
        R"({"shaders": {"a": {"class": "Weave", "fRoundAcross": true, "fGapSubShader": "clear"},
            "clear": {"source": "color", "color": [0, 0, 0, 0]}}, "output": "a"})");
    const auto bake = [this](const std::string& options) {
        EXPECT_EQ(Run("bake cloth.json --size 8x8 -o a.png " + options).status, 0) << options;
        return ReadBack(fFolder / "a.png", 8, 8);
    };
    const float up = bake("--output normal").At(2, 5).fGreen; // on the upper half of a weft thread
    EXPECT_GT(up, 0.52f);
    EXPECT_NEAR(bake("--output normal --directx").At(2, 5).fGreen, 1 - up, 0.005f);
    EXPECT_EQ(bake("--lit").At(0, 0).fAlpha, 0);
    EXPECT_EQ(bake("--lit --over color").At(0, 0).fRed, 1); // the ground needs no vector
}

TEST_F(CommandTest, AFailedOrStoppedJobLeavesTheOldPicture)
{
    Store(fFolder / "graph.json", R"({"shaders": {"a": {"class": "Rainbow"}}, "output": "a"})");
    Store(fFolder / "value.json", R"({"shaders": {"a": {"source": "value"}}, "output": "a"})");
    Store(fFolder / "old.png", "old");
    const std::pair<std::string, std::string> cases[] = {
        {"bake graph.json -o old.png", "graph.json: a.class: there is no class \"Rainbow\""},
        {"bake '" + fKey + "' --over graph.json -o old.png", "graph.json: a.class: "},
        {"bake missing.json -o old.png", "missing.json"},
        {"bake value.json -o old.png --output alpha",
            "value.json: the output shader has no channel \"alpha\""},
        {"render value.json -o old.png", "value.json: the document has no \"scene\""},
        {"bake '" + fKey + "' -o old.png --over nothing", "nothing: can't be read: there is no such file"},
        {"bake '" + fKey + "' -o old.png --over chekcer", "\"chekcer\"; did you mean \"checker\"?"},
        {"bake value.json -o graph.json/new.png", "graph.json/new.png: "},
        {"plot illuminants -o graph.json/new.png", "graph.json/new.png: "},
        {"plot illuminants -o old.png --library missing.so", "missing.so"},
    };
    for (const auto& [arguments, text] : cases) {
        const Answer answer = Run(arguments);
        EXPECT_EQ(answer.status, 1) << arguments;
        EXPECT_THAT(answer.error, AllOf(testing::StartsWith("fernwick: "), HasSubstr(text)));
    }
    std::string chain = R"({"shaders": {"0": {"source": "color"})"; // slow enough to be stopped
    for (int i = 1; i <= 250; ++i)
        chain += ", \"" + std::to_string(i) + R"(": {"class": "Key", "fSubShader": ")" + std::to_string(i - 1)
            + "\"}";
    Store(fFolder / "chain.json", chain + R"(}, "output": "250"})");
    // Whether it comes before or in the bake, Ctrl-C gives 130.
    const std::string interrupt = "timeout --preserve-status -s INT 0.6";
    EXPECT_EQ(Run("bake chain.json -o old.png --size 2048x2048", interrupt).status, 130);
    EXPECT_EQ(FileText(fFolder / "old.png"), "old");
    EXPECT_THAT(
        FilesIn(fFolder), testing::UnorderedElementsAre("graph.json", "value.json", "chain.json", "old.png"));
}

TEST_F(CommandTest, EndsWhereverItIsWhenItIsInterrupted)
{
    std::string chain = R"({"shaders": {"0": {"source": "color"})"; // each asks the one below twice
    for (int i = 1; i <= 60; ++i) {
        const std::string below = '"' + std::to_string(i - 1) + '"';
        chain += ", \"" + std::to_string(i) + R"(": {"class": "Super_mixer", "fDistribution": "Automatic",)"
            + R"("fSubShader[0]": )" + below + R"(, "fSubShader[2]": )" + below + R"(, "fSubShader[3]": )"
            + below + '}';
    }
    Store(fFolder / "dear.json", chain + R"(}, "output": "60"})");
    Store(fFolder / "old.png", "old");
    // One sample is never done; what isn't over after a while is killed, with 137.
    EXPECT_EQ(
        Run("bake dear.json -o old.png --size 8x8", "timeout --preserve-status -k 9 -s INT 0.6").status, 130);
    EXPECT_EQ(
        Run("bake dear.json -o old.png --size 8x8", "timeout --preserve-status -k 9 -s TERM 0.6").status,
        143);
    EXPECT_EQ(FileText(fFolder / "old.png"), "old");
    EXPECT_THAT(FilesIn(fFolder), testing::UnorderedElementsAre("dear.json", "old.png"));
    // So does what doesn't look out for Ctrl-C: here it writes more than a pipe takes that nobody empties.
    const ShellAnswer stopped = Shell("cd '" + fPlace.Path().string()
        + "'; mkfifo pipe; env --default-signal=INT '" FERNWICK_COMMAND
          "' schema >pipe & { head -c 1 >/dev/null; kill -INT $!; wait $!; } <pipe");
    EXPECT_EQ(stopped.status, 130);
    EXPECT_EQ(stopped.text, "fernwick: stopped\n");
}

TEST_F(CommandTest, AFullDiskOrAnUnwritablePlaceLeavesTheOldFileAndIsToldBeforeTheWork)
{
    Store(fFolder / "old.png", "old");
    Store(fFolder / "old.exr", "old");
    Store(fFolder / "old.json", "old");
    const std::string small = "ulimit -f 16;"; // blocks, which some shells take for 512 bytes each
    for (const std::string& arguments : {"bake '" + fKey + "' -o old.png", "bake '" + fKey + "' -o old.exr",
             std::string("plot reflectance -o old.png"), std::string("schema -o old.json")}) {
        const Answer answer = Run(arguments, small);
        EXPECT_EQ(answer.status, 1) << arguments;
        EXPECT_THAT(answer.error,
            testing::MatchesRegex("fernwick: old\\.[a-z]+: can't be written: File too large\n"));
    }
    for (const std::string name : {"old.png", "old.exr", "old.json"})
        EXPECT_EQ(FileText(fFolder / name), "old");
    EXPECT_THAT(FilesIn(fFolder), testing::UnorderedElementsAre("old.png", "old.exr", "old.json"));

    for (const std::string& arguments : {"bake '" + fKey + "' --size 16384x16384 -o /proc/new.png",
             std::string("render missing.json -o /proc/new.png"), std::string("shade Spoke -o /proc/new.png"),
             std::string("plot wavelengths -o /proc/new.png"), std::string("schema -o /proc/new.json"),
             std::string("reference -o /proc/new")}) {
        const Answer answer = Run(arguments);
        EXPECT_EQ(answer.status, 1) << arguments;
        EXPECT_THAT(answer.error, testing::StartsWith("fernwick: /proc/new")) << arguments;
    }
}

TEST_F(CommandTest, StreamsMayBeClosedOrFullOrTakeThePicture)
{
    for (const std::string arguments :
        {"list", "list --json", "describe Key", "--help", "--version", "schema", "completion bash", "man",
            "shade Spoke --print 0.5,0.5", "shade Spoke --size 8x8 -o -"})
        for (const std::string where : {" >&-", " >/dev/full"}) {
            const Answer answer = Run(arguments + where);
            EXPECT_EQ(answer.status, 1) << arguments << where;
            EXPECT_THAT(answer.error,
                testing::MatchesRegex("fernwick: stdout:? can't be written: (Bad file descriptor|"
                                      "No space left on device)\n"));
        }
    for (const std::string where : {"2>&-", "2>/dev/full"}) {
        const auto statusOf = [&](const std::string& arguments) {
            return Shell("cd '" + fFolder.string() + "' && '" FERNWICK_COMMAND "' " + arguments + ' ' + where)
                .status;
        };
        EXPECT_EQ(statusOf("describe key"), 2);
        EXPECT_EQ(statusOf("bake missing.json -o a.png"), 1);
        EXPECT_EQ(statusOf("shade Spoke --size 8x8 -o a.png"), 0);
        Store(fFolder / "shift.json",
            R"({"shaders": {"a": {"class": "Coordinate_Shift", "fMode": "OBJM"}}, "output": "a"})");
        EXPECT_EQ(statusOf("bake shift.json -o b.png --size 8x4"), 1); // has something to tell
        EXPECT_THAT(FileText(fFolder / "b.png"), HasSubstr("IEND"));
    }
    const Answer piped = Run("shade Spoke --size 8x8 -o -");
    EXPECT_EQ(piped.status, 0) << piped.error;
    EXPECT_EQ(piped.out, FileText(fFolder / "a.png"));
}

TEST_F(CommandTest, ThePictureIsAsAskedFor)
{
    Store(fFolder / "value.json", R"({"shaders": {"a": {"source": "value", "value": 0.3}}, "output": "a"})");
    EXPECT_EQ(Run("bake value.json --output value --size 1x1 -o fine.png").status, 0);
    EXPECT_EQ(Run("bake value.json --output value --size 1x1 --bits 8 -o coarse.png").status, 0);
    EXPECT_NEAR(ReadBack(fFolder / "fine.png", 1, 1).At(0, 0).fRed, 0.3, 1e-5);
    EXPECT_FLOAT_EQ(ReadBack(fFolder / "coarse.png", 1, 1).At(0, 0).fRed, 77 / 255.0f);
    const auto green = [this](const std::string& picture) {
        EXPECT_EQ(Run("shade Gray --plug fSubShader=picture:" + picture + " --size 1x1 -o a.exr").status, 0);
        return ReadBack(fFolder / "a.exr", 1, 1).At(0, 0).fGreen;
    };
    EXPECT_NEAR(green("fine.png"), 0.3, 1e-5); // marked as linear
    EXPECT_NEAR(green("fine.png:sRGB"), 0.0732, 1e-4);
    std::filesystem::copy_file(fFolder / "fine.png", fFolder / "fine.png:sRGB");
    EXPECT_NEAR(green("fine.png:sRGB"), 0.3, 1e-5); // a file of that name
    EXPECT_EQ(Run("bake value.json -o a.png --straight").status, 2);
    EXPECT_EQ(Run("bake value.json -o a.exr --bits 8").status, 2);
    EXPECT_EQ(Run("bake value.json -o a.png --bits 12").status, 2);
}

TEST_F(CommandTest, ReportsOfTheLibraryAreCounted)
{
    Store(fFolder / "shift.json",
        R"({"shaders": {"a": {"class": "Coordinate_Shift", "fMode": "OBJM"}}, "output": "a"})");
    const Answer answer = Run("bake shift.json -o shift.png --size 8x4");
    EXPECT_EQ(answer.status, 0);
    EXPECT_THAT(answer.error, AllOf(HasSubstr("shadingIn.fInstance"), HasSubstr(", 32 times\n")));
}

TEST_F(CommandTest, Plots)
{
    for (const std::string plot : {"reflectance", "wavelengths", "illuminants"}) {
        const Answer answer = Run("plot " + plot + " -o '" + plot + ".png'");
        EXPECT_EQ(answer.status, 0) << answer.error;
        EXPECT_EQ(answer.out + answer.error, "");
        EXPECT_GT(std::filesystem::file_size(fFolder / (plot + ".png")), 8000u);
    }
    const fernwick::Picture strips = ReadBack(fFolder / "wavelengths.png", 960, 330);
    EXPECT_NEAR(strips.At(2, 2).fGreen, 1, 1e-3) << "paper";
    EXPECT_NEAR(strips.At(612, 120).fGreen, 0, 1e-3) << "640 nm";
    EXPECT_GT(strips.At(612, 120).fRed, 0.8f);
}

} // namespace
