#include "host/json/JsonNode.h"
#include "tests/support/CommandTest.h"

namespace {

using fernwick::Json;
using testing::AllOf;
using testing::HasSubstr;

/// A sheet of two materials, two wide and four high, in a graph with a lamp.
class SceneTest : public CommandTest {
protected:
    SceneTest()
    {
        Store(fFolder / "sheet.mtl", "newmtl Red\nKd 1 0 0\nnewmtl Blue\nKd 0 0 1\n");
        Store(fFolder / "sheet.obj",
            "mtllib sheet.mtl\no Sheet\nv 0 0 0\nv 2 0 0\nv 2 4 0\nv 0 4 0\nvt 0 0\nvt 1 0\nvt 1 2\nvt 0 2\n"
            "usemtl Red\nf 1/1 2/2 3/3\nusemtl Blue\nf 1/1 3/3 4/4\n");
        Store(
            fFolder / "graph.json", Graph(R"("file": "sheet.obj", "nodes": {"Sheet": {"shading": "lit"}},)"));
    }

    static std::string Graph(const std::string& scene)
    {
        return R"({"shaders": {"red": {"source": "color", "color": [1, 0, 0]},
            "blue": {"source": "color", "color": [0, 0, 1]}}, "output": "red", "scene": {)"
            + scene + R"( "elements": [
            {"name": "Rig", "position": [1, 2, 3], "children": [{"name": "Lamp", "light": {"kind": "spot",
                "color": [1, 0.5, 0.25], "brightness": 2, "range": [1, 8], "cone": [20, 30]}}]},
            {"name": "Eye", "position": [1, 2, 9], "camera": {"fieldOfView": 30}}]}})";
    }
};

TEST_F(SceneTest, TellsWhatAModelAndAGraphAreMadeOf)
{
    const Answer model = Run("scene sheet.obj");
    EXPECT_EQ(model.status, 0) << model.error;
    EXPECT_EQ(model.error, "");
    EXPECT_THAT(model.out,
        AllOf(HasSubstr("sheet.obj: 1 element, 1 shape, 2 triangles, 0 lights, 0 cameras\n"),
            HasSubstr("Sheet  2 triangles, 6 vertices; UV (0, 0) to (1, 2); materials Red, Blue; "
                      "box (0, 0, 0) to (2, 4, 0)\n")));
    const Answer text = Run("scene graph.json");
    EXPECT_THAT(text.out,
        AllOf(HasSubstr("4 elements, 1 shape, 2 triangles, 1 light, 1 camera\n"),
            HasSubstr("\n  Lamp  at (1, 2, 3); spot light, colour 1, 0.5, 0.25, brightness 2, range 1 to 8, "
                      "cone 20 to 30 degrees\n"),
            HasSubstr("camera, field of view 30 degrees"), HasSubstr("; lit\n")));

    const Json json = Json::parse(Run("scene graph.json --json").out);
    const Json& sheet = json["elements"][0];
    EXPECT_EQ(sheet["name"], "Sheet");
    EXPECT_EQ(sheet["shading"], "lit");
    EXPECT_EQ(sheet["box"], Json::parse(R"({"min": [0, 0, 0], "max": [2, 4, 0]})"));
    EXPECT_EQ(sheet["shape"]["triangles"], 2);
    EXPECT_EQ(sheet["shape"]["uvSets"], Json::parse(R"([{"min": [0, 0], "max": [1, 2]}])"));
    EXPECT_EQ(sheet["shape"]["materials"], Json({"Red", "Blue"}));
    EXPECT_EQ(json["elements"][1]["children"][0]["light"],
        Json::parse(R"({"kind": "spot", "color": [1, 0.5, 0.25], "brightness": 2, "range": [1, 8],
            "cone": [20, 30]})"));
    EXPECT_EQ(json["elements"][2]["camera"]["fieldOfView"], 30);
    EXPECT_EQ(json["box"], sheet["box"]);

    Store(fFolder / "bare.obj", "o Bare\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    const Answer bare = Run("scene bare.obj");
    EXPECT_THAT(bare.out, HasSubstr("; no UV; "));
    EXPECT_THAT(bare.error, HasSubstr("\"Bare\" has no UV"));
    EXPECT_THAT(
        Run("scene missing.obj").error, HasSubstr("missing.obj can't be read: there is no such file"));
    Store(fFolder / "flat.json", R"({"shaders": {"a": {"source": "color"}}, "output": "a"})");
    EXPECT_THAT(Run("scene flat.json").error, HasSubstr("flat.json: the document has no \"scene\""));
}

TEST_F(SceneTest, MaterialsGetShadersAndAFileIsTurnedScaledAndPlaced)
{
    const auto colors = [this](const std::string& scene) {
        Store(fFolder / "render.json", Graph(scene));
        const Answer answer = Run("render render.json --size 3x4 --samples 1 -o a.exr");
        EXPECT_EQ(answer.out + answer.error, "") << scene;
        const fernwick::Picture picture = ReadBack(fFolder / "a.exr", 3, 4);
        std::string names; // at the lower right and the upper left of the sheet, and beside it
        for (const auto& [x, y] : {std::pair(1, 3), std::pair(1, 1), std::pair(0, 1)})
            names += picture.At(x, y).fRed > 0.5f ? 'r' : picture.At(x, y).fBlue > 0.5f ? 'b' : '-';
        return names;
    };
    const std::string sheet = R"("file": {"path": "sheet.obj", "position": [0.3, 0, 0]}, )";
    EXPECT_EQ(colors(sheet), "rr-");
    EXPECT_EQ(colors(sheet + R"("materials": {"Blue": "blue"}, )"), "rb-");
    EXPECT_EQ(colors(sheet + R"("materials": {"Red": "blue", "Blue": "red"}, )"), "br-");
    EXPECT_EQ(colors(sheet + R"("materials": {"Red": "blue", "Blue": "blue"}, )"), "bb-");
    EXPECT_EQ(colors(sheet + R"("materials": {"Red": "red"}, "nodes": {"Sheet": "blue"}, )"), "rb-")
        << "a material counts before a node";

    const auto boxOf = [this](const std::string& file) {
        Store(fFolder / "placed.json", Graph("\"file\": " + file + ", "));
        return Json::parse(Run("scene placed.json --json").out)["box"];
    };
    EXPECT_EQ(boxOf(R"({"path": "sheet.obj", "scale": 0.5, "position": [1, 0, 0]})"),
        Json::parse(R"({"min": [1, 0, 0], "max": [2, 2, 0]})"));
    const Json turned = boxOf(R"({"path": "sheet.obj", "up": "Z", "position": [0, 0, 5]})");
    const double low[] = {0, 0, 1};
    const double high[] = {2, 0, 5};
    for (size_t axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(turned["min"][axis].get<double>(), low[axis], 1e-5);
        EXPECT_NEAR(turned["max"][axis].get<double>(), high[axis], 1e-5);
    }

    const std::pair<std::string, std::string> cases[] = {
        {R"("file": {"up": "Y"},)", "scene.file: it needs a \"path\""},
        {R"("file": {"path": "sheet.obj", "up": "X"},)", "scene.file.up: there is no axis \"X\", only Y, Z"},
        {R"("file": {"path": "none.obj"},)", "scene.file.path: "},
        {R"("file": {"path": "sheet.obj", "scale": 0},)", "scene.file.scale: expected a length above 0"},
        {R"("file": "sheet.obj", "materials": {"Bleu": "blue"},)",
            "scene.materials.Bleu: there is no material \"Bleu\"; did you mean \"Blue\"?"},
        {R"("file": "sheet.obj", "materials": {"Blue": "bleu"},)", "there is no shader \"bleu\""},
        {R"("materials": {"Blue": "blue"},)", "scene.materials: only a \"file\" has materials"},
    };
    for (const auto& [scene, text] : cases) {
        Store(fFolder / "wrong.json", Graph(scene));
        const Answer answer = Run("scene wrong.json");
        EXPECT_EQ(answer.status, 1) << scene;
        EXPECT_THAT(answer.error, HasSubstr(text));
    }
}

TEST_F(SceneTest, ASceneWithoutAnyLightIsLitFromBesideTheCamera)
{
    const auto render = [this](const std::string& lamp) {
        Store(fFolder / "dark.json",
            R"({"shaders": {"lit": {"class": "Lit", "fLightName": "Lamp", "fAngleRange": [0, 1.5708]}},
            "output": "lit", "scene": {"file": "sheet.obj", "elements": [)"
                + lamp + R"({"name": "Eye", "position": [1, 2, 9], "camera": {"fieldOfView": 30}}]}})");
        const Answer answer = Run("render dark.json --size 3x3 --samples 1 -o a.exr");
        return std::pair(answer.error, ReadBack(fFolder / "a.exr", 3, 3).At(1, 1).fRed);
    };
    const auto [told, red] = render("");
    EXPECT_EQ(told, "fernwick: the scene has no light; \"Lamp\" shines from beside the camera\n");
    EXPECT_GT(red, 0.3f);
    const auto [reported, dark] = render(R"({"name": "Sun", "light": {}}, )");
    EXPECT_THAT(reported, HasSubstr("by lit (Lit, fLightName \"Lamp\")"))
        << "a light of another name is a slip";
    EXPECT_EQ(dark, 0);
}

TEST_F(SceneTest, AModelIsShadedInTheMiddleOfThePicture)
{
    const std::string white = "color --set color=1,1,1 --size 33x33 -o a.png --on ";
    Store(fFolder / "far.obj",
        "o Far\nv 1000 70 5\nv 3000 70 5\nv 3000 4070 5\nv 1000 4070 5\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
        "f 1/1 2/2 3/3 4/4\n");
    EXPECT_EQ(Run("shade " + white + "far.obj").error, "");
    const fernwick::Picture picture = ReadBack(fFolder / "a.png", 33, 33);
    EXPECT_FLOAT_EQ(picture.At(16, 16).fRed, 1);
    EXPECT_FLOAT_EQ(picture.At(16, 4).fRed, 1) << "as high as the picture, nearly";
    EXPECT_LT(picture.At(16, 0).fRed, 0.5f);
    EXPECT_LT(picture.At(4, 16).fRed, 0.5f) << "half as wide as high";
    EXPECT_EQ(Run("shade Curvature --size 9x9 --on far.obj -o a.png").error, "") << "its surface is found";
    EXPECT_EQ(ReadBack(fFolder / "a.png", 9, 9).At(4, 4).fGreen, 0);
    EXPECT_EQ(Run("shade Lit --set fAngleRange=[0,1.57] --size 9x9 --on far.obj -o a.png").error, "");
    EXPECT_GT(ReadBack(fFolder / "a.png", 9, 9).At(4, 4).fGreen, 0);

    const Answer unknown = Run("shade " + white + "spere");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.error, HasSubstr("there is no shape or model \"spere\"; did you mean \"sphere\"?"));
    Store(fFolder / "broken.gltf", "{");
    const Answer broken = Run("shade " + white + "broken.gltf");
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.error, testing::StartsWith("fernwick: --on: "));
}

} // namespace
