#include "host/geometry/TangentFrame.h"
#include "tests/support/BakeText.h"
#include <cstring>

using namespace fernwick;

namespace {

class BakeTest : public ShaderTest {
protected:
    static std::string ErrorOf(const std::string& output, BakeChannel channel)
    {
        try {
            BakeText("\"output\": " + output, {.width = 1, .height = 1, .channels = {channel}});
        } catch (const BakeError& error) {
            return error.what();
        }
        return "baked";
    }

    /// A Location that rises along X from 0 to 1 and shifts by a hundredth of the plugged `ramp`; above 1 the
    /// ramp counts as the shift of the sample before, so this one carries a number from sample to sample.
    static std::string DisturbedLocation(const std::string& ramp)
    {
        return R"("output": {"class": "Location", "fAxes[0].fEdgeB": 1, "fAxes[0].fEnabled": true, "fAxes[0].fDirection": "LESS",
                  "fUseSubShader": true, "fDisturbPercent": 1, "fSubShader": "ramp"}, "ramp": )"
            + ramp;
    }
};

TEST_F(BakeTest, PixelsAreShadedAtTheirCentresWithUToTheRightAndVUp)
{
    const BakeJob job{.width = 4, .height = 2};
    const Picture u = BakeText(R"("output": {"source": "ramp", "along": "u"})", job);
    const Picture v = BakeText(R"("output": {"source": "ramp", "along": "v"})", job);
    EXPECT_THAT(u.At(0, 1), IsColor(0.125f, 0.125f, 0.125f, 1));
    EXPECT_THAT(u.At(3, 0), IsColor(0.875f, 0.875f, 0.875f, 1));
    EXPECT_EQ(v.At(3, 0).fRed, 0.75f);
    EXPECT_EQ(v.At(0, 1).fRed, 0.25f);
}

TEST_F(BakeTest, TheShadedObjectsPlaceMakesWorldCoordinates)
{
    const std::string scene = R"(, "scene": {"shaded": {"position": [0.25, 0, 0], "rotation": [0, 0, 90]}})";
    for (const bool inWorld : {true, false}) {
        const std::string location
            = R"("output": {"class": "Location", "fAxes[0].fEdgeB": 1, "fAxes[0].fEnabled": true,
            "fAxes[0].fDirection": "LESS", "fSpace": ")"
            + std::string(inWorld ? "GLBL" : "LOCL") + "\"}";
        const Picture picture = BakeText(location, {.width = 8, .height = 8}, scene);
        EXPECT_NEAR(
            picture.At(1, 7).fRed, inWorld ? 0.25 - 0.0625 : 0.1875, 1e-6); // X in the world: 0.25 - V
    }
}

TEST_F(BakeTest, EveryTileStartsAnewSoThreadsDontShow)
{
    const std::string document = DisturbedLocation(R"({"source": "ramp", "from": 0.5, "to": 1.5})");
    BakeJob job{.width = 300, .height = 140, .channels = {BakeChannel::kValue}, .threads = 1};
    const Picture once = BakeText(document, job);
    EXPECT_GT(once.At(200, 0).fRed, 200.5 / 300 + 0.009); // goes on with the shift of the last ramp below 1
    EXPECT_EQ(once.At(256, 5).fRed, static_cast<float>(256.5 / 300)); // its tile has no such shift
    for (const int threads : {3, 0}) {
        job.threads = threads;
        const Picture again = BakeText(document, job);
        EXPECT_EQ(std::memcmp(&once.At(0, 0), &again.At(0, 0), sizeof(TMCColorRGBA) * 300 * 140), 0);
    }
}

TEST_F(BakeTest, ChannelsAreReadFromWhatTheOutputOffers)
{
    const auto bake = [](const std::string& output, BakeChannel channel) {
        return BakeText("\"output\": " + output, {.width = 1, .height = 1, .channels = {channel}}).At(0, 0);
    };
    const std::string color = R"({"source": "color", "color": [0.1, 0.2, 0.3, 0.4]})";
    EXPECT_THAT(bake(color, BakeChannel::kColor), IsColor(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_THAT(bake(color, BakeChannel::kAlpha), IsColor(0.4f, 0.4f, 0.4f, 1));
    EXPECT_THAT(bake(R"({"class": "Key"})", BakeChannel::kCoverage), IsColor(0, 0, 0, 1));
    EXPECT_THAT(bake(R"({"source": "value", "value": 3})", BakeChannel::kColor), IsColor(3, 3, 3, 1));

    EXPECT_EQ(ErrorOf(color, BakeChannel::kSecond),
        "the output shader has no channel \"second\": it offers a colour");
    EXPECT_EQ(ErrorOf(R"({"source": "ramp"})", BakeChannel::kNormal),
        "the output shader has no channel \"normal\": it offers a value and a colour");
    EXPECT_EQ(ErrorOf(R"({"source": "value"})", BakeChannel::kAlpha),
        "the output shader has no channel \"alpha\": it offers a value");
}

TEST_F(BakeTest, EveryChannelOfASurfaceCanBeAskedFor)
{
    const std::string grey = R"("output": {"class": "Gray", "fSubShader": "surface"},
        "surface": {"class": "Coordinate_Shift", "fSubShader": "color"},
        "color": {"source": "color", "color": [0.1, 0.2, 0.3, 0.4]})";
    const std::string empty = R"("output": {"class": "Coordinate_Shift"})";
    const std::string faded = R"("output": {"class": "Super_mixer_top", "fSubShader[0]": "control",
        "fSubShader[3]": "surface", "fRange[1]": [20, 40], "fSmooth": true, "fSmoothWidth": 50, "fLinearEdge": true},
        "control": {"source": "value", "value": 0.25}, "surface": {"source": "surface", "color": [1, 0, 0, 0.5],
        "second": [0, 1, 0], "third": [0, 0, 1], "fourth": [1, 1, 0]})"; // weighs a half
    const std::string whole = R"("output": {"source": "surface"})";
    const struct {
        const std::string& shaders;
        BakeChannel channel;
        TMCColorRGBA color;
    } cases[] = {
        {grey, BakeChannel::kColor, {0, 0, 0, 1}}, // Gray takes no colour from a surface
        {grey, BakeChannel::kMain, {0.1f, 0.2f, 0.3f, 0.4f}},
        {grey, BakeChannel::kThird, {0, 0, 0, 1}},
        {empty, BakeChannel::kColor, {0, 0, 0, 0}}, // nothing is produced
        {faded, BakeChannel::kColor, {0.5f, 0, 0, 0.25f}},
        {faded, BakeChannel::kAlpha, {0.25f, 0.25f, 0.25f, 1}},
        {faded, BakeChannel::kSecond, {0, 0.5f, 0, 1}},
        {faded, BakeChannel::kThird, {0, 0, 0.25f, 1}},
        {faded, BakeChannel::kFourth, {0.5f, 0.5f, 0, 1}},
        {faded, BakeChannel::kNormal, {0, 0, 1, 1}}, // of length 1 again
        {whole, BakeChannel::kCoverage, {1, 1, 1, 1}},
        {whole, BakeChannel::kNormal, {0, 0, 1, 1}},
    };
    for (const auto& [shaders, channel, color] : cases) {
        const Picture picture = BakeText(shaders, {.width = 1, .height = 1, .channels = {channel}});
        EXPECT_THAT(picture.At(0, 0), IsColor(color.fRed, color.fGreen, color.fBlue, color.fAlpha));
    }
}

/// A cloth without gaps, of threads half a tile wide; warp and weft are coloured by the place across.
std::string RoundCloth(const std::string& parameters = R"("fRoundAcross": true, "fRoundAlong": true)")
{
    return R"("output": {"class": "Weave", "fAcrossUV": true, "fWarpGap": 0, "fWeftGap": 0,
        "fWarpSubShader[0]": "warp", "fWeftSubShader[0]": "weft", )"
        + parameters
        + R"(}, "warp": {"source": "ramp", "from": 0.1}, "weft": {"source": "ramp", "from": 0.7})";
}

TEST_F(BakeTest, NormalMapsBulgeTowardTheViewerHoweverTheObjectLies)
{
    BakeJob job{.width = 64, .height = 64, .channels = {BakeChannel::kNormal}};
    const Picture map = BakeText(RoundCloth(), job);
    // The weft lies on top in the lower left quarter, up to a quarter on both sides of its middle.
    EXPECT_LT(map.At(2, 48).fRed, -0.2f);
    EXPECT_GT(map.At(30, 48).fRed, 0.2f);
    EXPECT_GT(map.At(16, 34).fGreen, 0.2f); // upward
    EXPECT_LT(map.At(16, 62).fGreen, -0.2f);

    const Picture turned = BakeText(
        RoundCloth(), job, R"(, "scene": {"shaded": {"position": [9, 8, 7], "rotation": [30, 100, -50]}})");
    job.green = GreenDirection::kDown;
    const Picture down = BakeText(RoundCloth(), job);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const TMCColorRGBA normal = map.At(x, y);
            EXPECT_NEAR(Length({normal.fRed, normal.fGreen, normal.fBlue}), 1, 1e-6);
            EXPECT_TRUE(turned.At(x, y).Equals(normal, 1e-5f)) << x << ' ' << y;
            EXPECT_THAT(down.At(x, y), IsColor(normal.fRed, -normal.fGreen, normal.fBlue, 1));
        }
}

TEST_F(BakeTest, AVectorWithoutADirectionIsFlat)
{
    const TangentFrame skewed({0, 0, 2}, {3, 0, 3}, {1, -1, 0}); // V is mirrored
    EXPECT_EQ(skewed.UnitOf({0, -5, 0}), TVector3(0, 1, 0));
    EXPECT_EQ(skewed.UnitOf({3e38f, 0, 0}), TVector3(1, 0, 0));
    EXPECT_EQ(skewed.UnitOf({0, 0, -1e-30f}), TVector3(0, 0, -1));
    for (const TVector3& none : {TVector3(), TVector3(0, kNaN, 1), TVector3(0, 1, -kInfinity)})
        EXPECT_EQ(skewed.UnitOf(none), TVector3(0, 0, 1));

    const BakeJob job{.width = 4, .height = 4, .channels = {BakeChannel::kNormal}};
    const std::string cases[] = {
        RoundCloth(R"("fRoundAcross": true, "fProfileAcross": 0)"), // NaN
        RoundCloth(R"("fRoundAlong": false)"),                      // left as it is
        R"("output": {"class": "Coordinate_Shift"})",               // no surface, so a zero normal
    };
    for (const std::string& shaders : cases)
        EXPECT_THAT(BakeText(shaders, job).At(1, 3), IsColor(0, 0, 1, 1)) << shaders;
}

TEST_F(BakeTest, ALitPictureIsTheColourTimesTheLightOnTheNormal)
{
    BakeJob job{.width = 64, .height = 64};
    const Picture color = BakeText(RoundCloth(), job);
    job.channels = {BakeChannel::kNormal};
    const Picture map = BakeText(RoundCloth(), job);
    job.channels = {BakeChannel::kLit};
    const Picture lit = BakeText(RoundCloth(), job);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const TMCColorRGBA& normal = map.At(x, y);
            const float light = LampLight({normal.fRed, normal.fGreen, normal.fBlue});
            const TMCColorRGBA& plain = color.At(x, y);
            EXPECT_THAT(
                lit.At(x, y), IsColor(plain.fRed * light, plain.fGreen * light, plain.fBlue * light, 1));
        }
    EXPECT_GT(lit.At(4, 36).fRed / color.At(4, 36).fRed, 1.1f); // the upper left of a thread
    EXPECT_LT(lit.At(28, 60).fRed / color.At(28, 60).fRed, 0.9f);

    EXPECT_FLOAT_EQ(LampLight({0, 0, 1}), 1);
    EXPECT_FLOAT_EQ(LampLight({0.6f, -0.8f, 0}), 0.2f); // turned away
    EXPECT_THAT(BakeText(R"("output": {"class": "Drip"})", job).At(16, 16), IsColor(0.5f, 0.5f, 0.5f, 1));
    EXPECT_EQ(ErrorOf(R"({"source": "color"})", BakeChannel::kLit),
        "the output shader has no channel \"lit\": it offers a colour");
}

TEST_F(BakeTest, StopsBetweenTilesAndTellsHowFarItIs)
{
    std::atomic<bool> cancel = false;
    std::vector<double> shares;
    BakeJob job{.width = 512, .height = 128, .threads = 1, .cancel = &cancel};
    job.onProgress = [&](double share) {
        shares.push_back(share);
        cancel = share == 0.5;
    };
    const auto document
        = GraphDocument::Parse(R"({"shaders": {"a": {"source": "color"}}, "output": "a"})", "/nowhere");
    EXPECT_FALSE(Bake(TestedLibrary(), document, job));
    EXPECT_THAT(shares, testing::ElementsAre(0.25, 0.5));
    job.onProgress = [&](double share) { cancel = share == 1; }; // too late to matter
    cancel = false;
    EXPECT_TRUE(Bake(TestedLibrary(), document, job));
}

} // namespace
