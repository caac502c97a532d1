#include "tests/support/CommandTest.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

class SequenceTest : public CommandTest {
protected:
    SequenceTest()
    {
        Store(fFolder / "fade.json", R"({"shaders": {"a": {"source": "value",
            "value": {"keys": [[1, 0], [5, 1]]}}}, "output": "a"})");
        Store(fFolder / "mix.json", R"({"shaders": {
            "mix": {"class": "Gray", "fMode": "SATU", "fSubShader": "odd"},
            "mix.odd": {"source": "checker", "countU": 1, "countV": 1, "even": [0, 0, 1]},
            "odd": {"source": "color", "color": [1, 0, 0]}}, "output": "mix"})");
    }
    float ValueIn(const std::string& file) const { return ReadBack(fFolder / file, 1, 1).At(0, 0).fRed; }
};

TEST_F(SequenceTest, EachFrameGetsAPictureByItsNumber)
{
    const std::string bake = "bake fade.json --output value --size 1x1 ";
    const auto run = [&](const std::string& options) {
        const Answer answer = Run(bake + options);
        EXPECT_EQ(answer.status, 0) << answer.error;
        EXPECT_EQ(answer.out + answer.error, "");
    };
    run("--frames 3,0-4x2 -o fade.###.png");
    EXPECT_THAT(FilesIn(fFolder),
        testing::UnorderedElementsAre(
            "fade.json", "mix.json", "fade.000.png", "fade.002.png", "fade.003.png", "fade.004.png"));
    EXPECT_EQ(ValueIn("fade.000.png"), 0);
    EXPECT_NEAR(ValueIn("fade.004.png"), 0.75, 1e-4);
    run("--frames 1234-1235 -o '{frame}/#.png'");
    EXPECT_EQ(ValueIn("1235/1235.png"), 1);
    run("--frames 2 -o one.png");
    EXPECT_NEAR(ValueIn("one.png"), 0.25, 1e-4);
    run("-o '#.png'"); // asked for no frame: the name is the name, the frame the first
    EXPECT_EQ(ValueIn("#.png"), 0);
}

TEST_F(SequenceTest, FramesThatMakeNoSenseAreToldBeforeTheWork)
{
    const std::pair<std::string, std::string> cases[] = {
        {"--frames 1-24 -o a.png", "24 frames need a number in the name, as in ripple.####.png"},
        {"--frames 2-1 -o a.#.png", "\"2-1\" names no frames; frames are like 12, 1-24, 1-24x2 or 1,5,9-12"},
        {"--frames 1-4x0 -o a.#.png", "\"1-4x0\" names no frames"},
        {"--frames 1,,2 -o a.#.png", "\"1,,2\" names no frames"},
        {"--frames -3 -o a.#.png", "\"-3\" names no frames"},
        {"--frames 1-1000000 -o a.#.png", "names no frames"},
    };
    for (const auto& [options, text] : cases) {
        const Answer answer = Run("bake fade.json " + options);
        EXPECT_EQ(answer.status, 2) << options;
        EXPECT_THAT(answer.error, HasSubstr(text));
    }
    std::filesystem::create_directory(fFolder / "a.3.png");
    const Answer answer = Run("bake fade.json --frames 1-4 -o a.#.png");
    EXPECT_NE(answer.status, 0);
    EXPECT_THAT(answer.error, HasSubstr("a.3.png"));
    EXPECT_THAT(FilesIn(fFolder), testing::UnorderedElementsAre("fade.json", "mix.json", "a.3.png"));
}

TEST_F(SequenceTest, NotesAreToldOnceAndFramesThatAreDoneStay)
{
    const Answer alike = Run("bake mix.json --frames 1-2 --size 4x4 -o '#.png'");
    EXPECT_EQ(alike.error, "fernwick: the graph has no keys, so all 2 frames are alike\n");
    EXPECT_EQ(FileText(fFolder / "1.png"), FileText(fFolder / "2.png"));
    Store(fFolder / "odd.json", R"({"shaders": {"a": {"class": "Spoke", "fCount": -1, "fPhase": {
        "keys": [[1, 0], [9, 1]]}}}, "output": "a"})");
    const Answer doubtful = Run("bake odd.json --frames 1-3 --size 4x4 -o '#.png'");
    EXPECT_EQ(doubtful.error.find("a.fCount"), doubtful.error.rfind("a.fCount")) << doubtful.error;

    const std::string keyed = R"({"keys": [[1, 2], [2, -1]]})";
    Store(fFolder / "late.json",
        R"({"shaders": {"a": {"source": "checker", "countU": )" + keyed + R"(}}, "output": "a"})");
    const Answer late = Run("bake late.json --frames 1-3 --size 4x4 -o late.#.png");
    EXPECT_EQ(late.status, 1);
    EXPECT_THAT(
        late.error, HasSubstr("late.json, frame 2: a.countU: expected an integer, 1 or more, got -1"));
    EXPECT_TRUE(std::filesystem::exists(fFolder / "late.1.png"));

    // Frames that take a while: what is whole when Ctrl-C comes, stays.
    const Answer stopped = Run(
        "bake fade.json --frames 1-900 --size 700x700 -o long.#.png", "timeout --preserve-status -s INT 1.5");
    EXPECT_EQ(stopped.status, 130);
    for (const std::string& name : FilesIn(fFolder))
        EXPECT_FALSE(name.ends_with(".part")) << name;
}

TEST_F(SequenceTest, AStripHasAllFramesSideBySide)
{
    Store(fFolder / "wall.json", R"({"shaders": {"a": {"source": "value",
        "value": {"keys": [[1, 0], [5, 1]]}}}, "output": "a", "scene": {"elements": [
        {"name": "Wall", "shape": {"kind": "plane", "size": [9, 9]}},
        {"name": "Eye", "position": [0, 0, 3], "camera": {}}]}})");
    EXPECT_EQ(Run("render wall.json --size 1x1 --frames 1-5 --strip -o strip.exr").error, "");
    const fernwick::Picture strip = ReadBack(fFolder / "strip.exr", 5, 1);
    for (int x = 0; x < 5; ++x)
        EXPECT_NEAR(strip.At(x, 0).fRed, static_cast<float>(x) / 4, 1e-6);
    EXPECT_THAT(Run("render wall.json --strip -o a.png").error, HasSubstr("--frames"));
    EXPECT_THAT(Run("render wall.json --frames 1-129 --strip -o a.png").error,
        HasSubstr("--strip: 129 frames side by side are 66048 pixels wide"));
}

TEST_F(SequenceTest, SetAndPlugReachEveryShaderOfTheGraph)
{
    const auto bake = [this](const std::string& options) {
        const Answer answer = Run("bake mix.json --size 1x1 -o a.exr " + options);
        EXPECT_EQ(answer.out + answer.error, "") << options;
        EXPECT_EQ(answer.status, 0) << options;
        return ReadBack(fFolder / "a.exr", 1, 1).At(0, 0);
    };
    EXPECT_EQ(bake("").fRed, 1);
    EXPECT_FLOAT_EQ(bake("--set odd.color=#0f0").fGreen, 1);
    EXPECT_FLOAT_EQ(bake("--set odd.color=[0,0,1]").fBlue, 1);
    EXPECT_EQ(bake("--plug mix.fSubShader=mix.odd").fBlue, 1) << "another shader of the graph";
    EXPECT_EQ(bake("--plug fSubShader=mix.odd --set mix.odd.even=0,1,0").fGreen, 1) << "the longest name";
    EXPECT_EQ(bake("--plug fSubShader=color:#0f0").fGreen, 1) << "of the output";
    EXPECT_EQ(bake("--plug fSubShader=color --set mix.fSubShader.color=0,1,0").fGreen, 1);
    EXPECT_EQ(bake("--set 'odd.color={\"keys\": [[1, [0, 1, 0]]]}'").fGreen, 1);
    std::filesystem::create_directory(fFolder / "deep");
    ASSERT_EQ(Run("shade color --set color=#0f0 --size 1x1 -o green.png").status, 0);
    std::filesystem::rename(fFolder / "mix.json", fFolder / "deep/mix.json");
    ASSERT_EQ(Run("bake deep/mix.json --plug fSubShader=picture:green.png --size 1x1 -o a.exr").error, "");
    EXPECT_EQ(ReadBack(fFolder / "a.exr", 1, 1).At(0, 0).fGreen, 1) << "from the current folder";

    const std::pair<std::string, std::string> cases[] = {
        {"--set mix.fMod=SATU", "--set mix.fMod: Gray has no such field; did you mean \"fMode\"?"},
        {"--set fMod=SATU", "--set mix.fMod: Gray has no such field; did you mean \"fMode\"?"},
        {"--set mx.fMode=SATU", "--set: there is no shader \"mx\"; did you mean \"mix\"?"},
        {"--set fMode=SATX", "--set mix.fMode: expected one of \"GRSC\""},
        {"--set mix.class=Key", "--set mix.class: Gray has no such field"},
        {"--set fMode", "--set: \"fMode\" has no field and value"},
        {"--set odd.color=#12", "--set odd.color: \"#12\" is no colour"},
        {"--set mix.fSubShader=odd", "--set: mix.fSubShader takes a shader; give it with --plug"},
        {"--plug odd.color=checker",
            "--plug: odd.color takes four numbers from red to alpha; give it with --set"},
        {"--plug mix.fSubShader=chekcer", "did you mean \"checker\"?"},
        {"--plug mix.fSubShader=checker:3", "--plug: checker takes nothing behind a colon"},
    };
    for (const auto& [options, text] : cases) {
        const Answer answer = Run("bake deep/mix.json -o b.png " + options);
        EXPECT_NE(answer.status, 0) << options;
        EXPECT_THAT(answer.error, HasSubstr(text));
    }
    EXPECT_EQ(Run("bake deep/mix.json -o b.png --size 1x1 --set odd.color=#fff --set odd.color=#000").error,
        "fernwick: --set: odd.color is given more than once; the last one counts\n");
    EXPECT_THAT(Run("bake deep/mix.json -o b.png --size 1x1 --plug fSubShader=").error,
        HasSubstr("nothing is plugged into mix.fSubShader"));
}

} // namespace
