#include "tests/support/BakeText.h"

using namespace fernwick;

namespace {

class PictureTest : public ShaderTest {
protected:
    const FreshFolder fFolder;
};

TEST_F(PictureTest, IntegersFollowTheContentAndAreClamped)
{
    const auto file = fFolder / "integers.PNG";
    const float numbers[] = {-1, 0, 0.5f, 1, 2, kNaN};
    const struct {
        PictureContent content;
        int bits;
        int greatest;
        int integers[6];
    } cases[] = {{PictureContent::kColor, 0, 255, {0, 0, 188, 255, 255, 0}},
        {PictureContent::kValue, 8, 255, {0, 0, 128, 255, 255, 0}},
        {PictureContent::kNormal, 8, 255, {0, 128, 191, 255, 255, 0}},
        {PictureContent::kColor, 16, 65535, {0, 0, 48192, 65535, 65535, 0}},
        {PictureContent::kValue, 0, 65535, {0, 0, 32768, 65535, 65535, 0}},
        {PictureContent::kNormal, 0, 65535, {0, 32768, 49151, 65535, 65535, 0}}};
    for (const auto& [content, bits, greatest, integers] : cases) {
        Picture picture(6, 1, content);
        for (int x = 0; x < 6; ++x)
            picture.At(x, 0) = {numbers[x], 0, numbers[x], numbers[x]};
        picture.Save(file, {.bits = bits});
        const Picture read = ReadBack(file, 6, 1);
        const int half = (greatest + 1) / 2;
        const int alphas[] = {0, 0, half, greatest, greatest, 0};
        for (int x = 0; x < 6; ++x) {
            EXPECT_EQ(std::lround(read.At(x, 0).fRed * greatest), integers[x]) << x;
            EXPECT_EQ(std::lround(read.At(x, 0).fBlue * greatest), integers[x]) << x;
            EXPECT_EQ(std::lround(read.At(x, 0).fAlpha * greatest), alphas[x]) << x;
        }
    }
}

TEST_F(PictureTest, WhatWasWrittenIsReadBackUnlessToldOtherwise)
{
    const auto read = [this](const std::string& name, const std::string& settings = "") {
        return BakeText(
            R"("output": {"source": "picture", "file": ")" + (fFolder / name).string() + '"' + settings + '}',
            {.width = 1, .height = 2});
    };
    Picture picture(1, 2, PictureContent::kColor);
    picture.At(0, 0) = {-0.25f, 7, 0.5f, 0};
    picture.At(0, 1) = {0.5f, 0.25f, 1, 0.5f};
    picture.Save(fFolder / "usual.exr");
    EXPECT_THAT(read("usual.exr").At(0, 0), IsColor(0, 0, 0, 0)); // nothing is left of what is hidden
    EXPECT_THAT(read("usual.exr").At(0, 1), IsColor(0.5f, 0.25f, 1, 0.5f));
    EXPECT_THAT(read("usual.exr", R"(, "alpha": "straight")").At(0, 1), IsColor(0.25f, 0.125f, 0.5f, 0.5f));
    picture.Save(fFolder / "straight.exr", {.straight = true});
    EXPECT_THAT(read("straight.exr").At(0, 0), IsColor(-0.25f, 7, 0.5f, 0));
    EXPECT_THAT(read("straight.exr").At(0, 1), IsColor(0.5f, 0.25f, 1, 0.5f));
    EXPECT_THAT(read("straight.exr", R"(, "alpha": "premultiplied")").At(0, 1), IsColor(1, 0.5f, 2, 0.5f));

    Picture values(1, 2, PictureContent::kValue);
    values.At(0, 0) = {0.001f, 0.001f, 0.001f, 1};
    values.At(0, 1) = {0.7f, 0.7f, 0.7f, 1};
    for (const int bits : {8, 16}) {
        values.Save(fFolder / "values.png", {.bits = bits});
        for (const int y : {0, 1})
            EXPECT_NEAR(read("values.png").At(0, y).fRed, values.At(0, y).fRed, bits == 8 ? 2e-3 : 8e-6);
    }
    EXPECT_GT(read("values.png", R"(, "encoding": "sRGB")").At(0, 1).fRed, 0.4f);
    EXPECT_LT(read("values.png", R"(, "encoding": "sRGB")").At(0, 1).fRed, 0.5f);
}

TEST_F(PictureTest, LiesOverAGroundByItsAlpha)
{
    const struct {
        TMCColorRGBA above, ground, sum;
    } cases[] = {
        {{1, 0, 0, 0.25f}, {0, 1, 0, 1}, {0.25f, 0.75f, 0, 1}},
        {{1, 0, 0, 0.5f}, {0, 1, 0, 0.5f}, {2 / 3.0f, 1 / 3.0f, 0, 0.75f}},
        {{1, 0, 0, 2}, {kNaN, 1, 0, 1}, {1, 0, 0, 1}},
        {{kNaN, 0, 0, kNaN}, {0, 1, 0, 0.5f}, {0, 1, 0, 0.5f}},
        {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 1, 0, 0}},
    };
    for (const auto& [above, ground, sum] : cases) {
        Picture picture(1, 1, PictureContent::kColor);
        Picture below(1, 1, PictureContent::kColor);
        picture.At(0, 0) = above;
        below.At(0, 0) = ground;
        picture.LayOver(below);
        EXPECT_THAT(picture.At(0, 0), IsColor(sum.fRed, sum.fGreen, sum.fBlue, sum.fAlpha));
    }
}

TEST_F(PictureTest, IsSavedUnderNamesThatTellTheFormat)
{
    const Picture picture(3, 3, PictureContent::kColor);
    picture.Save(fFolder / "new" / "folder" / "picture.png");
    picture.Save(fFolder / "new" / "folder" / "picture.png"); // takes the place of the old one
    picture.Save("/dev/null");                                // has no ending and needs none
    EXPECT_THAT(FilesIn(fFolder / "new" / "folder"), testing::ElementsAre("picture.png"));

    std::filesystem::create_directory(fFolder / "folder.png");
    for (const auto& bad : {fFolder / "folder.png", fFolder / "picture.gif", fFolder / "picture"}) {
        try {
            picture.Save(bad);
            ADD_FAILURE() << bad;
        } catch (const PictureError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(bad.string() + ": "));
        }
    }
    EXPECT_THAT(FilesIn(fFolder.Path()), testing::UnorderedElementsAre("new", "folder.png"));
}

} // namespace
