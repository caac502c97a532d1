#include "host/shading/Render.h"
#include "host/scene/Placement.h"
#include "tests/support/BakeText.h"
#include <OpenImageIO/imageio.h>
#include <cstring>
#include <map>

using namespace fernwick;

namespace {

const std::string kEye = R"({"name": "Eye", "position": [0, 0, 4], "camera": {"fieldOfView": 60}})";
const std::string kRed = R"("red": {"source": "color", "color": [1, 0, 0]})";

std::string Document(const std::string& shaders, const std::string& scene)
{
    return R"({"shaders": {)" + shaders + R"(}, "output": "output", "scene": {)" + scene + "}}";
}

std::string Elements(const std::string& elements) { return "\"elements\": [" + elements + "]"; }

/// The channels of a picture file by name.
std::map<std::string, std::vector<float>> ReadChannels(const std::filesystem::path& file)
{
    OIIO::ImageSpec layout;
    const auto input = OIIO::ImageInput::create(file.string());
    EXPECT_TRUE(input->open(file.string(), layout));
    std::map<std::string, std::vector<float>> channels;
    for (int i = 0; i < layout.nchannels; ++i) {
        std::vector<float>& values = channels[layout.channelnames[static_cast<size_t>(i)]];
        values.resize(layout.image_pixels());
        input->read_image(0, 0, i, i + 1, OIIO::TypeDesc::FLOAT, values.data());
    }
    return channels;
}

class RenderTest : public ShaderTest {
protected:
    static Picture Shown(const std::string& document, RenderJob job)
    {
        auto picture = Render(TestedLibrary(), GraphDocument::Parse(document, "/nowhere"), job);
        EXPECT_TRUE(picture);
        return *std::move(picture);
    }
    /// The pixel in the middle.
    static TMCColorRGBA Middle(const std::string& document)
    {
        return Shown(document, {.width = 1, .height = 1, .samples = 1}).At(0, 0);
    }
    static std::string ErrorOf(const std::string& document, const std::string& camera = "")
    {
        try {
            Shown(document, {.width = 1, .height = 1, .camera = camera});
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "rendered";
    }
};

TEST_F(RenderTest, ThePictureIsTheSameForAnyNumberOfThreadsAndInRegions)
{
    // A ring that keeps the number of the last sample, seen through a sheet with holes.
    const std::string document = Document(
        R"("output": {"class": "Location", "fAxes[0].fEdgeB": 1, "fAxes[0].fEnabled": true, "fAxes[0].fDirection": "LESS",
           "fUseSubShader": true, "fDisturbPercent": 9, "fSubShader": "ramp"},
           "ramp": {"source": "ramp", "from": 0.5, "to": 1.5},
           "holes": {"source": "checker", "even": [1, 1, 1, 0.25], "odd": [0, 0, 1, 0]})",
        Elements(R"({"name": "Ring", "rotation": [40, 0, 0], "shape": {"kind": "torus", "radius": 1.2}},
                    {"name": "Sheet", "position": [0, 0, 1], "shader": "holes", "shading": "lit", "shape": {"kind": "saddle"}}, )"
            + kEye)
            + R"(, "background": [0.1, 0.2, 0.3])");
    RenderJob job{.width = 150,
        .height = 140,
        .samples = 3,
        .layers = SurfaceLayersOf(SurfaceLayerGroups()),
        .threads = 1};
    const Picture once = Shown(document, job);
    job.threads = 2;
    const Picture again = Shown(document, job);
    EXPECT_EQ(std::memcmp(&once.At(0, 0), &again.At(0, 0), sizeof(TMCColorRGBA) * 150 * 140), 0);
    for (const PictureRegion region : {PictureRegion{70, 66, 150, 101}, {0, 139, 3, 140}, {63, 63, 65, 65}}) {
        job.region = region;
        const Picture part = Shown(document, job);
        ASSERT_EQ(part.Width(), region.Width());
        ASSERT_EQ(part.Height(), region.Height());
        for (int y = 0; y < part.Height(); ++y)
            EXPECT_EQ(std::memcmp(&part.At(0, y), &once.At(region.left, region.top + y),
                          sizeof(TMCColorRGBA) * static_cast<size_t>(part.Width())),
                0)
                << y;
    }
    EXPECT_THAT(once.At(0, 0), IsColor(0.1f, 0.2f, 0.3f, 1));
}

TEST_F(RenderTest, PixelsSeeWhatLiesInTheirDirection)
{
    const std::string document
        = Document(R"("output": {"source": "checker", "even": [1, 0, 0], "odd": [0, 1, 0],
        "countU": 1, "countV": 2})",
            Elements(R"({"name": "Wall", "shape": {"kind": "plane", "size": [4.6188, 4.6188]}}, )" + kEye));
    const Picture wide = Shown(document, {.width = 8, .height = 4, .samples = 4});
    EXPECT_THAT(wide.At(1, 0), IsColor(0, 0, 0, 0)); // the wall fills the height; beside it is nothing
    EXPECT_THAT(wide.At(2, 3), IsColor(1, 0, 0, 1)); // V upwards
    EXPECT_THAT(wide.At(5, 0), IsColor(0, 1, 0, 1));
    EXPECT_THAT(wide.At(6, 0), IsColor(0, 0, 0, 0));
}

TEST_F(RenderTest, ElementsTakeTheirShaderFromThemselvesTheirParentOrTheOutput)
{
    const auto seen = [](const std::string& group, const std::string& ball, const std::string& rest = "") {
        return Middle(Document(
            R"("output": {"source": "value", "value": 0.5}, "blue": {"source": "color", "color": [0, 0, 1]}, )"
                + kRed,
            Elements(R"({"name": "Group")" + group + R"(, "children": [
                {"name": "Ball")"
                + ball + R"(, "shape": {"kind": "sphere"}}]}, )" + kEye)
                + rest));
    };
    EXPECT_THAT(seen("", ""), IsColor(0.5f, 0.5f, 0.5f, 1));
    EXPECT_THAT(seen(R"(, "shader": "red")", ""), IsColor(1, 0, 0, 1));
    EXPECT_THAT(seen(R"(, "shader": "red")", R"(, "shader": "blue")"), IsColor(0, 0, 1, 1));
    EXPECT_THAT(seen(R"(, "shader": "red")", "", R"(, "nodes": {"Ball": "blue"})"), IsColor(0, 0, 1, 1));
    // The lamp stands to the upper left of the camera.
    const float lamp = static_cast<float>(0.12 + 0.88 / std::sqrt(0.25 + 0.49 + 1));
    EXPECT_NEAR(
        seen(R"(, "shader": "red")", "", R"(, "nodes": {"Group": {"shading": "lit"}})").fRed, lamp, 1e-6);
}

TEST_F(RenderTest, AlphaShowsWhatLiesBehindAndThenTheBackground)
{
    const std::string shaders = R"("output": {"source": "color", "color": [0, 1, 0, 0.5]},
        "hole": {"source": "color", "color": [0.7, 0.7, 0.7, 0]})";
    const auto seen = [&](const std::string& rest) {
        return Middle(Document(shaders,
            Elements(R"({"name": "Near", "position": [0, 0, 2], "shader": "hole", "shape": {"kind": "plane"}},
                {"name": "Sphere", "shape": {"kind": "sphere"}}, )"
                + kEye)
                + rest));
    };
    EXPECT_THAT(seen(""), IsColor(0, 1, 0, 0.75f)); // through both sides of the sphere
    EXPECT_THAT(seen(R"(, "background": [1, 0, 0])"), IsColor(0.25f, 0.75f, 0, 1));
}

TEST_F(RenderTest, VectorShadersBendTheNormalUnderTheLamp)
{
    const auto seen = [](const std::string& round, const std::string& shading) {
        const Picture picture = Shown(
            Document(
                R"("output": {"class": "Weave", "fRepeatU": 2, "fRepeatV": 2, "fWarpGap": 0, "fWeftGap": 0,
            "fWarpSubShader": ["red", "red", "red", "red", "red"], "fWeftSubShader": ["red", "red", "red", "red", "red"],
            "fRoundAcross": )"
                    + round + "}, " + kRed,
                Elements(R"({"name": "Cloth", "shading": ")" + shading + R"(", "shape": {"kind": "plane"}}, )"
                    + kEye)),
            {.width = 64, .height = 64, .samples = 1});
        std::pair<float, float> range(1, 0);
        for (int x = 26; x < 38; ++x) {
            range.first = std::min(range.first, picture.At(x, 30).fRed);
            range.second = std::max(range.second, picture.At(x, 30).fRed);
        }
        return range.second - range.first;
    };
    EXPECT_LT(seen("false", "lit"), 0.01f);
    EXPECT_GT(seen("true", "lit"), 0.1f);
}

TEST_F(RenderTest, ALightThatMovesTakesEffectAtTheNextSample)
{
    const GraphDocument document = GraphDocument::Parse(
        Document(R"("output": {"class": "Lit", "fLightName": "Lamp", "fAngleRange": [0, 100]})",
            Elements(R"({"name": "Holder", "children": [
                {"name": "Lamp", "position": [0, 0, 3], "light": {"range": [1, 5]}}]})")),
        "/nowhere");
    const auto scene = MakeCounted<Scene>(*document.Scene());
    const Graph graph(TestedLibrary(), document, scene);
    ShadingIn in;
    in.fNormalGlobal = {0, 0, 1};
    in.fInstance = &scene->ShadedObject();
    const auto value = [&] {
        float number = 9;
        bool fullArea = false;
        graph.Output().ShadeValue(number, fullArea, in);
        return number;
    };
    EXPECT_FLOAT_EQ(value(), 0.5f);
    scene->Elements()[1]->MoveBy({0, 0, -1});
    EXPECT_FLOAT_EQ(value(), 0.75f);
    scene->Elements()[1]->MoveBy({0, 0, 9});
    EXPECT_FLOAT_EQ(value(), 0);
}

TEST_F(RenderTest, LightsOfEachKindAnswerAsLitExpects)
{
    const auto seen = [](const std::string& light, const std::string& place) {
        return Middle(Document(
            R"("output": {"class": "Lit", "fLightName": "Lamp", "fAngleRange": [0, 1000], "fUseLightColor": true})",
            Elements(R"({"name": "Wall", "shape": {"kind": "plane"}}, {"name": "Lamp", )" + place
                + R"(, "light": )" + light + "}, " + kEye)));
    };
    const std::string front = R"("position": [0, 0, 2])";
    const std::string aside = R"("position": [2, 0, 2])"; // its axis passes the middle by 45 degrees
    EXPECT_THAT(seen(R"({"color": [1, 0.5, 0], "brightness": 4})", front), IsColor(1, 0.5f, 0, 1));
    EXPECT_THAT(seen(R"({"range": [1, 3]})", front), IsColor(0.5f, 0.5f, 0.5f, 1));
    EXPECT_THAT(seen(R"({"kind": "spot", "cone": [10, 20]})", front), IsColor(1, 1, 1, 1));
    EXPECT_THAT(seen(R"({"kind": "spot", "cone": [10, 40]})", aside), IsColor(0, 0, 0, 1));
    EXPECT_NEAR(seen(R"({"kind": "spot", "cone": [40, 50]})", aside).fRed, 0.5, 1e-3);
    EXPECT_NEAR(seen(R"({"kind": "spot"})", aside + R"(, "lookAt": [0, 0, 0])").fRed, 1, 1e-3);
    EXPECT_NEAR(
        seen(R"({"kind": "distant"})", R"("position": [0, 0, -9])").fRed, 1, 1e-3); // only its axis counts
}

TEST_F(RenderTest, CurvatureIsRedOutsideATorusAndBlueInside)
{
    const auto seen = [](const std::string& camera) {
        return Middle(
            Document(R"("output": {"class": "Curvature", "fObjectName": "Eye", "fSurfaceName": "Ring"})",
                Elements(R"({"name": "Ring", "shape": {"kind": "torus", "radius": 2, "tube": 1}},
                {"name": "Eye", "camera": {}, )"
                    + camera + "}")));
    };
    const TMCColorRGBA outside = seen(R"("position": [9, 0, 0], "lookAt": [0, 0, 0])");
    EXPECT_NEAR(outside.fRed, 1 / 3.0, 1e-3);
    EXPECT_EQ(outside.fBlue, 0);
    const TMCColorRGBA inside = seen(R"("position": [0, 0, 0], "lookAt": [1, 0, 0])");
    EXPECT_EQ(inside.fRed, 0);
    EXPECT_NEAR(inside.fBlue, 1, 1e-3);
    EXPECT_EQ(inside.fGreen, 0);
}

TEST_F(RenderTest, CornersLooksAtTheNormalsOfWhatItShades)
{
    // Its probes lie at the start of the UV square and wrap to the end: the faces +X and -X of the box.
    const auto seen = [](const std::string& shape, const std::string& rotation) {
        return Middle(Document(R"("output": {"class": "Corners"})",
                          Elements(R"({"name": "A", "rotation": )" + rotation + R"(, "shape": {"kind": ")"
                              + shape + "\"}}, " + kEye)))
            .fRed;
    };
    EXPECT_EQ(seen("plane", "[0, 0, 0]"), 0);
    EXPECT_NEAR(seen("box", "[0, 0, 0]"), 1.5707963 / 3.14, 1e-5);
    EXPECT_NEAR(seen("box", "[0, 90, 0]"), 3.14159265 / 3.14, 1e-5);
}

TEST_F(RenderTest, AnExrHoldsTheChannelsOfTheSurfaceAsLayers)
{
    const FreshFolder place;
    const Picture picture = Shown(
        Document(R"("output": {"source": "color", "color": [0.25, 0.5, 1]})",
            Elements(R"({"name": "Ball", "rotation": [0, 90, 0], "shape": {"kind": "sphere"}}, )" + kEye)),
        {.width = 3, .height = 3, .samples = 2, .layers = SurfaceLayersOf(SurfaceLayerGroups())});
    picture.Save(place / "layers.exr");
    std::map<std::string, std::vector<float>> channels = ReadChannels(place / "layers.exr");
    for (const char* const name : {"R", "second.G", "scalar.D", "vector.Z", "sampled.third.B",
             "sampled.count", "single.samples", "vectors.local", "fourth.R", "fullArea"})
        EXPECT_EQ(channels.count(name), 1u) << name;
    EXPECT_EQ(channels["B"][4], 1);
    EXPECT_EQ(channels["coverage"][4], 1);
    EXPECT_EQ(channels["coverage"][0], 0);
    EXPECT_NEAR(channels["normal.X"][4], -1, 0.1); // the ball's own
    EXPECT_EQ(channels["second.R"][4], 0);
    const std::string groups[] = {"normal", "fullArea", "coverage"};
    std::vector<std::string> names;
    for (const SurfaceLayer& layer : SurfaceLayersOf(groups))
        names.push_back(layer.fName);
    EXPECT_THAT(names, testing::ElementsAre("coverage", "fullArea", "normal.X", "normal.Y", "normal.Z"));
}

TEST_F(RenderTest, WrongScenesAndCamerasAreRefusedWithThePlace)
{
    const std::string output = R"("output": {"source": "value"})";
    const std::string other = R"({"name": "Other", "camera": {}}, {"name": "Ball"})";
    const auto element = [&](const std::string& rest) {
        return Document(output, Elements(R"({"name": "A", )" + rest + "}"));
    };
    const struct {
        std::string document;
        const char* camera;
        const char* error;
    } rows[] = {
        {R"({"shaders": {"output": {"source": "value"}}, "output": "output"})", "",
            "the document has no \"scene\" to render"},
        {Document(output, ""), "", "the scene has no camera; give an element a \"camera\""},
        {Document(output, Elements(kEye + ", " + other)), "Ey",
            "there is no camera \"Ey\"; the scene has Eye, Other"},
        {Document(output, Elements(kEye + ", " + other)), "Ball",
            "there is no camera \"Ball\"; the scene has Eye, Other"},
        {Document(output, "\"file\": \"none.gltf\""), "",
            "scene.file: /nowhere/none.gltf can't be read: there is no such file"},
        {Document(output, R"("nodes": {"Bal": "output"}, )" + Elements(other)), "",
            "scene.nodes.Bal: there is no element \"Bal\"; did you mean \"Ball\"?"},
        {Document(output, R"("nodes": {"Ball": "outputs"}, )" + Elements(other)), "",
            "scene.nodes.Ball: there is no shader \"outputs\"; did you mean \"output\"?"},
        {element(R"("shape": {"kind": "cube"})"), "",
            "scene.elements[0].shape.kind: there is no shape \"cube\", only sphere, torus, saddle, plane, "
            "box, model"},
        {element(R"("shape": {"kind": "torus", "radius": 1, "tube": 1})"), "",
            "scene.elements[0].shape: the radius of the ring must be larger than that of its tube"},
        {element(R"("shape": {"kind": "sphere", "radius": 0})"), "",
            "scene.elements[0].shape.radius: expected a length above 0, got 0"},
        {element(R"("light": {"kind": "point", "cone": [1, 2]})"), "",
            "scene.elements[0].light.cone: only a spot has a cone"},
        {element(R"("light": {"range": [2, 1]})"), "",
            "scene.elements[0].light.range: expected two numbers from 0, in ascending order, got [2,1]"},
        {element(R"("rotation": [0, 0, 0], "lookAt": [0, 0, 1])"), "",
            "scene.elements[0].lookAt: an element has either a \"rotation\" or a \"lookAt\""},
        {element(R"("position": [1, 2, 3], "lookAt": [1, 2, 3])"), "",
            "scene.elements[0].lookAt: it is where the element lies, and no direction; move it or the "
            "\"position\""},
        {Document(output, Elements(kEye)), "",
            "the scene has no shape to see; give an element a \"shape\", or the scene a \"file\" that holds "
            "some"},
    };
    for (const auto& [document, camera, error] : rows)
        EXPECT_EQ(ErrorOf(document, camera), error);
}

} // namespace
