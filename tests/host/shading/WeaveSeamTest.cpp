#include "tests/support/BakeText.h"

using namespace fernwick;

namespace {

constexpr int kTileSide = 256; // pixels; two tiles a picture each way

/// A cloth of two tiles each way.
Picture Baked(const std::string& parameters, BakeChannel channel)
{
    const std::string shaders = R"("output": {"class": "Weave", "fRepeatU": 2, "fRepeatV": 2, )" + parameters
        + R"(}, "warp": {"source": "color", "color": [0.9, 0.5, 0.2]},
            "weft": {"source": "color", "color": [0.1, 0.4, 0.8]},
            "ramp": {"source": "ramp", "along": "v"}, "half": {"source": "color", "color": [0.5, 0.5, 0.5]})";
    return BakeText(shaders, {.width = 2 * kTileSide, .height = 2 * kTileSide, .channels = {channel}});
}

/// The pixel at (x, y), or at (y, x) when turned, of the picture repeated forever.
const TMCColorRGBA& Repeated(const Picture& picture, int x, int y, bool turned)
{
    const auto wrapped = [](int place) { return (place + 2 * kTileSide) % (2 * kTileSide); };
    return turned ? picture.At(wrapped(y), wrapped(x)) : picture.At(wrapped(x), wrapped(y));
}

struct Steps {
    float largest = 0; ///< over the seam
    float odd = 0;     ///< the largest difference of a step over the seam from those on both sides of it
};

/// Looks from the last column to the first, or from the last row to the first when turned.
Steps StepsOverSeam(const Picture& picture, bool turned)
{
    Steps steps;
    for (int y = 0; y < 2 * kTileSide; ++y)
        for (uint32_t channel = 0; channel < 3; ++channel) {
            const auto step = [&](int x) {
                return Repeated(picture, x, y, turned)[channel]
                    - Repeated(picture, x - 1, y, turned)[channel];
            };
            steps.largest = std::max(steps.largest, std::fabs(step(0)));
            steps.odd = std::max(steps.odd, std::fabs(step(0) - (step(-1) + step(1)) / 2));
        }
    return steps;
}

TEST(WeaveSeamTest, PicturesOfClothContinueOverTheirBorders)
{
    const std::string round = R"("fRoundAcross": true, "fRoundAlong": true, )";
    const std::string plain = R"("fWarpSubShader[0]": "warp", "fWeftSubShader[0]": "weft")";
    const std::string twill = R"("fWeaveMode": "Free", "fPattern": [[true, true, false, false, false],
        [false, true, true, false, false], [false, false, true, true, false], [false, false, false, true, true],
        [true, false, false, false, true]], "fWarpWidth": [5, 4, 3, 4, 2], )";
    const std::string five = R"("fWarpSubShader": ["warp", "weft", "warp", "warp", "weft"],
        "fWeftSubShader": ["weft", "warp", "weft", "weft", "warp"])";
    const std::string along = R"("fAlongUV": true, "fWarpSubShader[0]": "ramp", "fWeftSubShader[0]": "ramp")";
    const std::string moved
        = R"("fDisplaceBefore": 20, "fDisplaceBeforeSubShader": "half", )"; // into a thread
    for (const std::string& cloth : {round + plain, round + twill + five, along, moved + round + plain})
        for (const BakeChannel channel : {BakeChannel::kColor, BakeChannel::kNormal}) {
            const Picture picture = Baked(cloth, channel);
            int different = 0; // from one tile to the next
            for (int y = 0; y < 2 * kTileSide; ++y)
                for (int x = 0; x < 2 * kTileSide; ++x)
                    for (const bool turned : {false, true})
                        different += !Repeated(picture, x, y, turned)
                                          .Equals(Repeated(picture, x + kTileSide, y, turned), 1e-5f);
            EXPECT_EQ(different, 0) << cloth;
            const bool isFlat = channel == BakeChannel::kNormal && cloth == along;
            for (const bool turned : {false, true}) {
                const Steps steps = StepsOverSeam(picture, turned);
                EXPECT_LT(steps.odd, 0.001f) << cloth;
                EXPECT_EQ(steps.largest > 0.002f, !isFlat) << cloth << steps.largest; // a slope crosses it
            }
        }
}

} // namespace
