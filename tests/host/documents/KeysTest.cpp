#include "host/documents/GraphSequence.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"

using namespace fernwick;

namespace {

/// The value of a field of a source at a frame.
Json Resolved(const std::string& value, double frame)
{
    Json document
        = ParseJson(R"({"shaders": {"a": {"source": "value", "value": )" + value + R"(}}, "output": "a"})");
    Keys(document).Store(frame);
    return document["shaders"]["a"]["value"];
}

std::string ErrorOf(const std::string& members)
{
    try {
        GraphDocument::Parse(R"({"shaders": {"a": {)" + members + R"(}}, "output": "a"})", "/nowhere");
    } catch (const GraphError& error) {
        return error.what();
    }
    return "taken: " + members;
}

TEST(KeysTest, ValuesGoFromKeyToKeyAndHoldOutside)
{
    const std::string keys = R"({"keys": [[2, 10], [4, 30], [12, -2]])";
    const struct {
        double frame, linear, smooth, step;
    } rows[] = {{0, 10, 10, 10}, {2, 10, 10, 10}, {2.5, 15, 13.125, 10}, {3, 20, 20, 10}, {4, 30, 30, 30},
        {6, 22, 25, 30}, {12, -2, -2, -2}, {1e9, -2, -2, -2}};
    for (const auto& row : rows) {
        EXPECT_EQ(Resolved(keys + '}', row.frame), row.linear) << row.frame;
        EXPECT_EQ(Resolved(keys + R"(, "between": "linear"})", row.frame), row.linear) << row.frame;
        EXPECT_EQ(Resolved(keys + R"(, "between": "smooth"})", row.frame), row.smooth) << row.frame;
        EXPECT_EQ(Resolved(keys + R"(, "between": "step"})", row.frame), row.step) << row.frame;
    }
    EXPECT_EQ(Resolved(R"({"keys": [[1, [0, 4]], [3, [1, 8]]]})", 2), Json({0.5, 6}));
    EXPECT_EQ(Resolved(R"([{"keys": [[1, 0], [3, 1]]}, 7])", 2), Json({0.5, 7}));
    EXPECT_EQ(Resolved(R"({"keys": [[1, "x"], [3, null]]})", 2.9), "x");
}

TEST(KeysTest, IntegersCodesSwitchesTextsAndSlotsChangeAllAtOnce)
{
    const auto at = [](double frame) {
        Json document = ParseJson(R"({"output": "a", "shaders": {"b": {"source": "checker"}, "a": {
            "class": "Weave", "fRepeatU": {"keys": [[1, 4], [9, 8]]}, "fMask": {"keys": [[1, true], [5, false]]},
            "fPattern[0]": [{"keys": [[1, false], [5, true]]}, true, true, true, true],
            "fWarpSubShader": {"keys": [[1, ["b", "b", "b", "b", "b"]], [2, [null, "b", null, "b", null]]]}}}})");
        GraphSequence sequence(std::move(document), "", "");
        const GraphDocument resolved = sequence.At(frame);
        std::string texts;
        for (const FieldSetting& setting : resolved.Output().fSettings)
            texts += ValueText(*setting.fField, setting.fValue) + ' ';
        return texts;
    };
    EXPECT_EQ(at(1), "4 true false true true true true 0 0 0 0 0 ");
    EXPECT_EQ(at(5), "4 false true true true true true null 0 null 0 null ");
    EXPECT_EQ(at(9), "8 false true true true true true null 0 null 0 null ");
}

TEST(KeysTest, WrongKeysAreRefusedWithTheirPlace)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"("source": "value", "value": {"keys": []})",
            "a.value.keys: expected keys, each a frame and a value, got an empty array"},
        {R"("source": "value", "value": {"keys": {"1": 2}})",
            "a.value.keys: expected keys, each a frame and a value, got an object"},
        {R"("source": "value", "value": {"keys": [[1, 2, 3]]})",
            "a.value.keys[0]: expected a frame and a value, such as [24, 0.5], got [1,2,3]"},
        {R"("source": "value", "value": {"keys": [["1", 2]]})",
            "a.value.keys[0]: expected a frame and a value, such as [24, 0.5], got an array of 2"},
        {R"("source": "value", "value": {"keys": [[1, 2], [1, 3]]})",
            "a.value.keys[1]: frame 1 doesn't come behind frame 1"},
        {R"("source": "value", "value": {"keys": [[1, {"keys": []}]]})",
            "a.value.keys[0][1]: expected a value without further keys or fields, got an object"},
        {R"("source": "value", "value": {"keys": [[1, 2]], "betwen": "step"})",
            "a.value.betwen: there is no such key; did you mean \"between\"?"},
        {R"("source": "value", "value": {"keys": [[1, 2]], "between": "smoth"})",
            "a.value.between: there is no \"smoth\", only linear, smooth, step; did you mean \"smooth\"?"},
        {R"("source": "color", "color": {"keys": [[1, [0, 0, 0]], [2, [0, 0, 0, 1]]]})",
            "a.color.keys[1][1]: it has more or fewer numbers than the value of the first key"},
        {R"("class": "Key", "fMode": {"keys": [[1, "KEYM"], [2, "KEYA"]], "between": "linear"})",
            "a.fMode.between: what isn't made of numbers changes all at once; expected \"step\""},
        {R"("source": "checker", "countU": {"keys": [[1, 4], [2, 8]], "between": "smooth"})",
            "a.countU.between: an integer changes all at once; expected \"step\""},
        {R"("class": {"keys": [[1, "Key"]]})", "a.class: expected a name, got an object"},
        {R"("source": "value", "value": {"keys": [[1, "x"]]})", "a.value: expected a number, got \"x\""},
        {R"("source": "checker", "countU": {"keys": [[1, 0]]})",
            "a.countU: expected an integer, 1 or more, got 0"},
    };
    for (const auto& [members, error] : cases)
        EXPECT_EQ(ErrorOf(members), error);
}

TEST(KeysTest, PartsOfASceneMove)
{
    Json document = ParseJson(R"({"shaders": {"keys": {"source": "color"}, "b": {"source": "color"}},
        "output": "keys", "scene": {
        "elements": [{"name": "Eye", "position": {"keys": [[0, [0, 0, 0]], [4, [4, 8, 0]]]},
                      "camera": {"fieldOfView": {"keys": [[0, 20], [4, 40]], "between": "smooth"}},
                      "children": [{"name": "keys", "rotation": [0, {"keys": [[0, 0], [4, 180]]}, 0]}]},
                     {"name": "Lamp", "light": {"brightness": {"keys": [[0, 0], [4, 1]]}}}],
        "nodes": {"keys": "b", "Lamp": {"keys": [[0, "keys"], [2, "b"]]}},
        "camera": {"keys": [[0, "Eye"], [3, "Lamp"]]}, "shaded": {"hotPoint": {"keys": [[0, [1, 0, 0]]]}}}})");
    GraphSequence sequence(std::move(document), "", "");
    EXPECT_TRUE(sequence.HasKeys());
    for (const double frame : {4.0, 1.0}) { // in any order
        const SceneDescription scene = *sequence.At(frame).Scene();
        EXPECT_EQ(
            scene.fElements[0].fPlace.fTranslation, TVector3(frame == 1 ? 1 : 4, frame == 1 ? 2 : 8, 0));
        EXPECT_FLOAT_EQ(scene.fElements[0].fCamera->fFieldOfView, frame == 1 ? 23.125f : 40);
        EXPECT_FLOAT_EQ(scene.fElements[0].fChildren[0].fPlace.fMatrix[0][0], frame == 1 ? 0.70710678f : -1);
        EXPECT_EQ(scene.fElements[1].fLight->fBrightness, frame / 4);
        EXPECT_EQ(scene.fElements[1].fLook.fShader, frame == 1 ? "keys" : "b");
        EXPECT_EQ(scene.fElements[0].fChildren[0].fLook.fShader, "b");
        EXPECT_EQ(scene.fCamera, frame == 1 ? "Eye" : "Lamp");
        EXPECT_EQ(scene.fShaded.fHotPoint[0], 1);
    }
}

TEST(KeysTest, FilesAreReadOnceForAllFramesInARowThatWantThem)
{
    const FreshFolder folder;
    Store(folder / "sheet.obj", "o Sheet\nv 1 0 0\nv 3 0 0\nv 3 4 0\nf 1 2 3\n");
    for (const std::string name : {"first.png", "second.png"})
        Picture(2, 2, PictureContent::kColor).Save(folder / name);
    const std::string text = R"({"shaders": {"a": {"source": "picture", "file": "first.png"}, "b": {
        "source": "picture", "file": {"keys": [[1, "first.png"], [3, "second.png"]]}}},
        "output": "a", "scene": {"file": "sheet.obj"}})";
    GraphSequence sequence(ParseJson(text), "", folder.Path());
    const auto sourceOf = [](const GraphDocument& document, const std::string& name) {
        return (document.Shaders()[0].fName == name ? document.Shaders()[0] : document.Shaders()[1])
            .fSource.Get();
    };
    const GraphDocument first = sequence.At(1);
    EXPECT_EQ(sourceOf(first, "a"), sourceOf(first, "b"));
    std::filesystem::remove(folder / "sheet.obj");
    std::filesystem::remove(folder / "first.png");
    const GraphDocument third = sequence.At(3);
    EXPECT_EQ(sourceOf(third, "a"), sourceOf(first, "a"));
    EXPECT_NE(sourceOf(third, "b"), sourceOf(first, "b"));
    EXPECT_EQ(third.Scene()->fElements[0].fGeometry, first.Scene()->fElements[0].fGeometry);
    std::filesystem::remove(folder / "second.png");
    EXPECT_EQ(sourceOf(sequence.At(4), "b"), sourceOf(third, "b"));
    sequence.At(2);
    EXPECT_THROW(sequence.At(3), GraphError) << "what no frame in between asked for isn't kept";
}

} // namespace
