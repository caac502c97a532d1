#include "tests/support/BakeText.h"
#include <cstring>

using namespace fernwick;

namespace {

using Pixels = std::vector<TMCColorRGBA>;

/// A surface mixed by a control that goes on with a number of the samples before, so that others in between would show.
const GraphDocument& Mixed()
{
    static const GraphDocument document = GraphDocument::Parse(R"({"output": "mix", "shaders": {
        "mix": {"class": "Super_mixer_top", "fSubShader[0]": "control", "fSubShader[3]": "surface", "fRange[1]": [20, 60],
            "fSmooth": true, "fSmoothWidth": 50, "fLinearEdge": true},
        "surface": {"source": "surface", "color": [1, 0.5, 0.25, 0.5], "second": [0, 1, 0]},
        "control": {"class": "Location", "fAxes[0].fEdgeB": 1, "fAxes[0].fEnabled": true,
            "fAxes[0].fDirection": "LESS", "fUseSubShader": true, "fDisturbPercent": 20, "fSubShader": "ramp"},
        "ramp": {"source": "ramp", "from": 1.5, "to": 0.5}}})",
        "/nowhere");
    return document;
}

const GraphDocument& Cloth()
{
    static const GraphDocument document = GraphDocument::Parse(R"({"output": "cloth", "shaders": {
        "cloth": {"class": "Weave", "fRoundAcross": true, "fWarpSubShader[0]": "ramp", "fGapSubShader": "clear"},
        "clear": {"source": "color", "color": [0, 1, 0, 0.25]}, "ramp": {"source": "ramp"}}})",
        "/nowhere");
    return document;
}

class BakeBandsTest : public ShaderTest {
protected:
    /// All pictures of a job, put together from its bands.
    static std::vector<Pixels> FromBands(const GraphDocument& document, const BakeJob& job)
    {
        std::vector<Pixels> pictures(job.channels.size());
        int next = RegionOf(job).top;
        EXPECT_TRUE(Bake(TestedLibrary(), document, job, [&](const BakeBand& band) {
            EXPECT_EQ(band.fTop, next);
            next += band.fRows;
            LayOverGrounds(band);
            for (size_t i = 0; i < pictures.size(); ++i) {
                EXPECT_EQ(band.fPictures[i].size(), static_cast<size_t>(band.fRows * RegionOf(job).Width()));
                pictures[i].insert(pictures[i].end(), band.fPictures[i].begin(), band.fPictures[i].end());
            }
        }));
        EXPECT_EQ(next, RegionOf(job).bottom);
        return pictures;
    }

    static Pixels Alone(const GraphDocument& document, BakeJob job, BakeChannel channel)
    {
        job.channels = {channel};
        const Picture picture = *Bake(TestedLibrary(), document, job);
        return {&picture.At(0, 0), &picture.At(0, 0) + picture.Width() * picture.Height()};
    }

    static bool SameBits(const Pixels& left, const Pixels& right)
    {
        return left.size() == right.size()
            && std::memcmp(left.data(), right.data(), left.size() * sizeof left[0]) == 0;
    }
};

TEST_F(BakeBandsTest, ChannelsTogetherAreWhatEachIsAlone)
{
    const struct {
        const GraphDocument& document;
        std::vector<BakeChannel> channels;
    } cases[] = {
        {Mixed(),
            {BakeChannel::kSecond, BakeChannel::kColor, BakeChannel::kMain, BakeChannel::kAlpha,
                BakeChannel::kCoverage, BakeChannel::kNormal}},
        {Cloth(), {BakeChannel::kLit, BakeChannel::kNormal, BakeChannel::kColor, BakeChannel::kAlpha}},
    };
    for (const auto& [document, channels] : cases)
        for (const int samples : {1, 3}) {
            const BakeJob job{
                .width = 150, .height = 270, .channels = channels, .samples = samples, .threads = 3};
            const std::vector<Pixels> together = FromBands(document, job);
            for (size_t i = 0; i < channels.size(); ++i)
                EXPECT_TRUE(SameBits(together[i], Alone(document, job, channels[i])))
                    << NameOf(channels[i]) << ' ' << samples;
        }
}

TEST_F(BakeBandsTest, ARegionIsWhatTheWholePictureHasThere)
{
    const PictureRegion regions[]
        = {{0, 0, 300, 1}, {100, 100, 290, 260}, {128, 128, 256, 256}, {299, 269, 300, 270}};
    for (const int samples : {1, 2}) {
        BakeJob job{.width = 300, .height = 270, .samples = samples, .threads = 2};
        const Picture whole = *Bake(TestedLibrary(), Mixed(), job);
        for (const PictureRegion& region : regions) {
            job.region = region;
            const Pixels part = FromBands(Mixed(), job)[0];
            ASSERT_TRUE(SameBits(part, Alone(Mixed(), job, BakeChannel::kColor)));
            for (int y = region.top; y < region.bottom; ++y)
                EXPECT_EQ(std::memcmp(&part[static_cast<size_t>((y - region.top) * region.Width())],
                              &whole.At(region.left, y),
                              static_cast<size_t>(region.Width()) * sizeof(TMCColorRGBA)),
                    0)
                    << region.left << ' ' << y;
        }
    }
}

TEST_F(BakeBandsTest, AGroundLiesUnderColoursOnly)
{
    const GraphDocument ground
        = GraphDocument::Parse(R"({"shaders": {"a": {"source": "checker"}}, "output": "a"})", "/nowhere");
    BakeJob job{.width = 40, .height = 140, .channels = {BakeChannel::kAlpha, BakeChannel::kLit}};
    Picture lit
        = *Bake(TestedLibrary(), Cloth(), {.width = 40, .height = 140, .channels = {BakeChannel::kLit}});
    lit.LayOver(*Bake(TestedLibrary(), ground, {.width = 40, .height = 140}));
    const Pixels alpha = Alone(Cloth(), job, BakeChannel::kAlpha);
    job.ground = &ground;
    const std::vector<Pixels> pictures = FromBands(Cloth(), job);
    EXPECT_TRUE(SameBits(pictures[0], alpha));
    EXPECT_TRUE(SameBits(pictures[1], Pixels(&lit.At(0, 0), &lit.At(0, 0) + 40 * 140)));
    EXPECT_TRUE(SameBits(pictures[1], Alone(Cloth(), job, BakeChannel::kLit)));
}

TEST_F(BakeBandsTest, SamplesAreAveraged)
{
    const auto pixel = [](const std::string& output, BakeChannel channel, int samples) {
        return BakeText(
            "\"output\": " + output, {.width = 1, .height = 1, .channels = {channel}, .samples = samples})
            .At(0, 0);
    };
    const std::string checker = R"({"source": "checker", "countU": 2, "countV": 2, "even": [1, 0.5, 0, 1],
        "odd": [0, 0, 9, 0]})";
    EXPECT_THAT(
        pixel(checker, BakeChannel::kColor, 4), IsColor(1, 0.5f, 0, 0.5f)); // what is hidden doesn't count
    EXPECT_THAT(pixel(checker, BakeChannel::kAlpha, 4), IsColor(0.5f, 0.5f, 0.5f, 1));
    EXPECT_THAT(
        pixel(R"({"source": "ramp", "from": -8, "to": 0})", BakeChannel::kValue, 4), IsColor(-4, -4, -4, 1));

    const BakeJob job{.width = 4, .height = 4, .channels = {BakeChannel::kNormal}, .samples = 5};
    Picture normals(4, 4, PictureContent::kNormal);
    TMCColorRGBA* const room[] = {&normals.At(0, 0)};
    ASSERT_TRUE(BakeInto(TestedLibrary(), Cloth(), job, room));
    for (int x = 0; x < 4; ++x) {
        const TMCColorRGBA& normal = normals.At(x, 2);
        EXPECT_NEAR(Length({normal.fRed, normal.fGreen, normal.fBlue}), 1, 1e-6);
        EXPECT_EQ(normal.fAlpha, 1);
    }
}

/// The UV square with every other column and all tiles but the first cut out.
class Grid : public TexelSurface {
public:
    std::unique_ptr<TexelTile> Open(const Tile& tile) const override
    {
        return tile.fTop == 0 ? std::make_unique<GridTile>() : nullptr;
    }

private:
    class GridTile : public TexelTile {
    public:
        void Use(const Graph&) override { }
        void MoveTo(const PixelPlace& place) override { fIsRight = place.fRight > 0.5; }
        bool SampleAt(int x, int y, ShadingIn& in) override
        {
            in.fUV = {static_cast<float>(x), static_cast<float>(y)};
            return x % 2 == 0 || fIsRight;
        }

    private:
        bool fIsRight = false;
    };
};

TEST_F(BakeBandsTest, WhereThereIsNoSurfacePicturesAreTransparent)
{
    const GraphDocument two = GraphDocument::Parse(
        R"({"shaders": {"a": {"source": "ramp", "from": 2, "to": 2}}, "output": "a"})", "/nowhere");
    const Grid grid;
    BakeJob job{
        .width = 3, .height = 129, .channels = {BakeChannel::kColor, BakeChannel::kValue}, .surface = &grid};
    for (const int samples : {1, 2}) {
        job.samples = samples;
        for (const Pixels& picture : FromBands(two, job)) {
            EXPECT_THAT(picture[2], IsColor(2, 2, 2, 1));
            if (samples == 1)
                EXPECT_THAT(picture[1], IsColor(0, 0, 0, 0));
            else
                EXPECT_THAT(picture[1], IsColor(2, 2, 2, 0.5f)); // the mean of what there is
            EXPECT_THAT(picture[128 * 3], IsColor(0, 0, 0, 0));
        }
    }
}

TEST_F(BakeBandsTest, EndsWhenItIsCancelledOrTheReceiverFails)
{
    std::atomic<bool> cancel = false;
    BakeJob job{.width = 128, .height = 12800, .threads = 2, .cancel = &cancel};
    int bands = 0;
    EXPECT_FALSE(Bake(TestedLibrary(), Mixed(), job, [&](const BakeBand&) {
        if (++bands == 3)
            cancel = true;
    }));
    EXPECT_LT(bands, 3 + 5); // those that were shaded already

    cancel = false;
    EXPECT_THROW(Bake(TestedLibrary(), Mixed(), job,
                     [&](const BakeBand& band) {
                         if (band.fTop == 1280)
                             throw FileError("full");
                     }),
        FileError);
}

} // namespace
