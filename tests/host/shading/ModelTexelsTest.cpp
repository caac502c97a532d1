#include "host/shading/ModelTexels.h"
#include "host/documents/ModelScene.h"
#include "host/pictures/Margin.h"
#include "host/scene/Placement.h"
#include "host/scene/World.h"
#include "host/shading/MarginStage.h"
#include "host/shading/Render.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <cmath>
#include <cstring>
#include <fmt/format.h>

using namespace fernwick;

namespace {

constexpr const char* kSquare
    = "o Square\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 1\nvt 0 0\nvt 1 0\nvt 1 1\n"
      "vt 0 1\nf 1/1/1 2/2/1 3/3/1 4/4/1\n";

/// A round sheet, bent to a bowl, that covers a disc of the UV square.
std::string Bowl()
{
    constexpr int kRings = 8;
    constexpr int kAround = 24;
    std::string text = "o Bowl\nv 0 0 0\nvt 0.5 0.5\nvn 0 0 1\n";
    for (int ring = 1; ring <= kRings; ++ring)
        for (int i = 0; i < kAround; ++i) {
            const double angle = 2 * M_PI * i / kAround;
            const double x = 1.5 * ring / kRings * std::cos(angle);
            const double y = 1.5 * ring / kRings * std::sin(angle);
            text += fmt::format("v {} {} {}\nvn {} {} 1\nvt {} {}\n", x, y, 0.3 * (x * x + y * y), -0.6 * x,
                -0.6 * y, 0.5 + 0.3 * x, 0.5 + 0.3 * y);
        }
    const auto at = [](int ring, int i) { return ring == 0 ? 1 : 2 + (ring - 1) * kAround + i % kAround; };
    for (int ring = 0; ring < kRings; ++ring)
        for (int i = 0; i < kAround; ++i) {
            const int corners[] = {at(ring, i), at(ring + 1, i), at(ring + 1, i + 1), at(ring, i),
                at(ring + 1, i + 1), at(ring, i + 1)};
            for (const int first : {0, 3})
                if (first == 0 || ring > 0)
                    text += fmt::format("f {0}/{0}/{0} {1}/{1}/{1} {2}/{2}/{2}\n", corners[first],
                        corners[first + 1], corners[first + 2]);
        }
    return text;
}

class ModelTexelsTest : public ShaderTest {
protected:
    const FreshFolder fFolder;

    void SetUp() override
    {
        Store(fFolder / "square.obj", kSquare);
        Store(fFolder / "bowl.obj", Bowl());
    }

    OntoModel Onto(const std::string& shaders, const std::string& scene, const std::string& model) const
    {
        const auto document = GraphDocument::Parse(R"({"shaders": {)" + shaders + R"(}, "output": "output")"
                + (scene.empty() ? "" : ", \"scene\": " + scene) + '}',
            fFolder.Path());
        DocumentFiles files;
        return PutOnto(document, files, fFolder / model, "");
    }

    static ModelTexels Texels(const OntoModel& onto, const BakeJob& job)
    {
        return {TestedLibrary(), onto, 0, {}, job.width, job.height};
    }

    static Picture Baked(const OntoModel& onto, BakeJob job)
    {
        const ModelTexels texels = Texels(onto, job);
        job.surface = &texels;
        return *Bake(TestedLibrary(), onto.fDocument, job);
    }

    /// By the stage, as one picture, and what it counted.
    static Picture WithMargin(
        const OntoModel& onto, BakeJob job, int margin, ModelCoverage* coverage = nullptr)
    {
        const ModelTexels texels = Texels(onto, job);
        job.surface = &texels;
        const PictureRegion all = RegionOf(job);
        Picture picture(all.Width(), all.Height(), PictureContent::kColor);
        const BakeSink sink = [&](const BakeBand& band) {
            std::copy(
                band.fPictures[0].begin(), band.fPictures[0].end(), &picture.At(0, band.fTop - all.top));
        };
        MarginStage stage(texels, job, margin, sink);
        EXPECT_TRUE(Bake(TestedLibrary(), onto.fDocument, stage.Job(),
            [&stage](const BakeBand& band) { stage.Take(band); }));
        if (coverage != nullptr)
            *coverage = stage.Coverage();
        return picture;
    }
};

bool AreSame(const Picture& one, const Picture& other)
{
    const auto pixels = static_cast<size_t>(one.Width() * one.Height());
    return one.Width() == other.Width() && one.Height() == other.Height()
        && std::memcmp(&one.At(0, 0), &other.At(0, 0), pixels * sizeof(TMCColorRGBA)) == 0;
}

TEST_F(ModelTexelsTest, ASquareBakesAsTheUVSquare)
{
    const std::string shaders[] = {
        R"("output": {"class": "Location", "fAxes[0].fEdgeB": 1, "fAxes[0].fEnabled": true, "fAxes[1].fEnabled": true,
            "fAxes[1].fEdgeB": 3, "fSpace": "LOCL"})",
        R"("output": {"class": "Weave", "fRepeatU": 4, "fRepeatV": 3, "fRoundAcross": true, "fWarpSubShader[0]": "red"},
            "red": {"source": "color", "color": [1, 0, 0]})",
    };
    for (const std::string& shader : shaders)
        for (const BakeChannel channel : {BakeChannel::kColor, BakeChannel::kNormal}) {
            if (channel == BakeChannel::kNormal && shader == shaders[0])
                continue;
            const BakeJob job{.width = 256, .height = 128, .channels = {channel}};
            const OntoModel onto = Onto(shader, "", "square.obj");
            EXPECT_TRUE(AreSame(Baked(onto, job), *Bake(TestedLibrary(), onto.fDocument, job)));
        }
}

/// A picture of one pixel whose ray meets the place of a texel.
TEST_F(ModelTexelsTest, TexelsAreWhatRaysSee)
{
    const struct {
        const char* shader;
        float slack;
    } cases[] = {
        {R"({"class": "Location", "fAxes[0].fEdgeB": 4, "fAxes[0].fEnabled": true, "fAxes[0].fDirection": "LESS", "fSpace": "GLBL"})",
            1e-5f},
        {R"({"class": "Location", "fAxes[1].fEdgeA": -2, "fAxes[1].fEdgeB": 2, "fAxes[1].fEnabled": true, "fAxes[1].fDirection": "LESS", "fSpace": "LOCL"})",
            1e-5f},
        {R"({"class": "Weave", "fRepeatU": 3, "fRepeatV": 3, "fWarpSubShader[0]": "ramp", "fWeftSubShader[0]": "ramp"})",
            1e-4f},
        {R"({"class": "Fresnel"})", 1e-3f},
        {R"({"class": "Lit", "fLightName": "Lamp", "fAngleRange": [0, 1.57]})", 1e-4f},
        {R"({"class": "Proximity", "fTargetName": "Lamp", "fMaxDistance": 6})", 1e-4f},
        {R"({"class": "Curvature", "fObjectName": "Lamp", "fSurfaceName": "Bowl"})", 1e-3f},
    };
    constexpr int kSide = 32;
    for (const auto& [shader, slack] : cases) {
        const auto sceneLookingAt = [](const TVector3& point) {
            return fmt::format(
                R"({{"elements": [{{"name": "Bowl", "position": [1, 0.5, -1], "rotation": [-20, 30, 10]}},
                {{"name": "Lamp", "position": [0, 3, 2], "light": {{"range": [1, 9]}}}},
                {{"name": "Eye", "position": [0, 0.5, 7], "lookAt": [{}, {}, {}], "camera": {{"fieldOfView": 1}}}}]}})",
                point[0], point[1], point[2]);
        };
        const std::string shaders = "\"output\": " + std::string(shader) + R"(, "ramp": {"source": "ramp"})";
        const BakeJob job{.width = kSide, .height = kSide};
        const OntoModel onto = Onto(shaders, sceneLookingAt({0, 0, 0}), "bowl.obj");
        const Picture baked = Baked(onto, job);
        const ModelTexels texels = Texels(onto, job);
        const auto tile = texels.Open({0, 0, kSide, kSide});
        const OwnGraph graph = texels.MakeGraphFor(TestedLibrary(), onto.fDocument);
        tile->Use(*graph);
        tile->MoveTo({0.5, 0.5});
        int seen = 0;
        float least = 1;
        float most = 0;
        for (int y = 6; y < kSide; y += 7)
            for (int x = 3; x < kSide; x += 6) {
                ShadingIn in;
                if (!tile->SampleAt(x, y, in)) {
                    EXPECT_EQ(baked.At(x, y).fAlpha, 0);
                    continue;
                }
                ++seen;
                const OntoModel seenThere = Onto(shaders, sceneLookingAt(in.fPointGlobal), "bowl.obj");
                const Picture rendered
                    = *Render(TestedLibrary(), seenThere.fDocument, {.width = 1, .height = 1, .samples = 1});
                const TMCColorRGBA& pixel = rendered.At(0, 0);
                const TMCColorRGBA& texel = baked.At(x, y);
                EXPECT_NEAR(pixel.fRed, texel.fRed, slack) << shader << x << ' ' << y;
                EXPECT_NEAR(pixel.fGreen, texel.fGreen, slack) << shader << x << ' ' << y;
                EXPECT_NEAR(pixel.fAlpha, texel.fAlpha, slack) << shader << x << ' ' << y;
                least = std::min(least, texel.fRed);
                most = std::max(most, texel.fRed);
            }
        EXPECT_GT(seen, 10);
        EXPECT_GT(most, least) << shader; // something is there to see
    }
}

TEST_F(ModelTexelsTest, NormalMapsLieInTheAxesOfTheirPicture)
{
    const std::string turned
        = R"({"elements": [{"name": "Bowl", "position": [1, 0, 0], "rotation": [40, 70, 20]}]})";
    for (const char* const shader :
        {R"("output": {"source": "surface"})", R"("output": {"class": "Weave"})"}) {
        const Picture flat = Baked(Onto(shader, turned, "bowl.obj"),
            {.width = 32, .height = 32, .channels = {BakeChannel::kNormal}});
        const TMCColorRGBA& normal = flat.At(20, 10);
        EXPECT_NEAR(normal.fRed, 0, 1e-6) << shader;
        EXPECT_NEAR(normal.fGreen, 0, 1e-6) << shader;
        EXPECT_EQ(normal.fBlue, 1) << shader;
    }
}

TEST_F(ModelTexelsTest, TheMarginIsFilledFromTheNearestAndComesOutAsTheWhole)
{
    const OntoModel onto
        = Onto(R"("output": {"class": "Location", "fAxes[0].fEdgeB": 3, "fAxes[0].fEnabled": true})", "",
            "bowl.obj");
    BakeJob job{.width = 300, .height = 300, .threads = 1};
    const Picture bare = Baked(onto, job);
    EXPECT_TRUE(AreSame(WithMargin(onto, job, 0), bare));

    CoveredRows covered{300, 0, {}};
    for (int i = 0; i < 300 * 300; ++i)
        covered.fIsCovered.push_back(bare.At(i % 300, i / 300).fAlpha > 0 ? 1 : 0);
    Picture expected = bare;
    for (const MarginPixel& pixel : FindMargin(covered, 0, 300, 40))
        expected.At(pixel.fX, pixel.fY) = bare.At(pixel.fFromX, pixel.fFromY);
    ModelCoverage coverage;
    const Picture filled = WithMargin(onto, job, 40, &coverage);
    EXPECT_TRUE(AreSame(filled, expected));
    EXPECT_EQ(coverage.fTexels, 300u * 300);
    EXPECT_EQ(static_cast<ptrdiff_t>(coverage.fCovered),
        std::count(covered.fIsCovered.begin(), covered.fIsCovered.end(), 1));
    EXPECT_EQ(coverage.fOverlapped, 0u);
    EXPECT_EQ(filled.At(0, 0).fAlpha, 0); // beyond the margin

    job.threads = 3;
    EXPECT_TRUE(AreSame(WithMargin(onto, job, 40), expected));
    job.region = PictureRegion{5, 10, 200, 290};
    const Picture part = WithMargin(onto, job, 40, &coverage);
    EXPECT_EQ(coverage.fTexels, 195u * 280);
    for (int y = 0; y < 280; ++y)
        EXPECT_EQ(std::memcmp(&part.At(0, y), &expected.At(5, y + 10), 195 * sizeof(TMCColorRGBA)), 0) << y;

    // At the rim a part of the samples is covered, which shows neither in the alpha nor in the colour.
    const OntoModel grey = Onto(R"("output": {"source": "value", "value": 0.5})", "", "bowl.obj");
    const Picture smooth = WithMargin(grey, {.width = 64, .height = 64, .samples = 5}, 3);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if (smooth.At(x, y).fAlpha != 0) {
                ASSERT_THAT(smooth.At(x, y), IsColor(0.5f, 0.5f, 0.5f, 1));
            }
}

} // namespace
