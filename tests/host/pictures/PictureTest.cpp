#include "tests/support/BakeText.h"
#include <fstream>

using namespace fernwick;

namespace {

class PictureTest : public ShaderTest {
protected:
    const FreshFolder fFolder;
};

TEST_F(PictureTest, BytesFollowTheContentAndAreClamped)
{
    const auto file = fFolder / "bytes.PNG";
    const float numbers[] = {-1, 0, 0.5f, 1, 2, kNaN};
    const struct {
        PictureContent content;
        int bytes[6];
    } cases[] = {{PictureContent::kColor, {0, 0, 188, 255, 255, 0}},
        {PictureContent::kValue, {0, 0, 128, 255, 255, 0}},
        {PictureContent::kNormal, {0, 128, 191, 255, 255, 0}}};
    for (const auto& [content, bytes] : cases) {
        Picture picture(6, 1, content);
        for (int x = 0; x < 6; ++x)
            picture.At(x, 0) = {numbers[x], 0, numbers[x], numbers[x]};
        picture.Save(file);
        const Picture read = ReadBack(file, 6, 1);
        for (int x = 0; x < 6; ++x) {
            EXPECT_EQ(std::lround(read.At(x, 0).fRed * 255), bytes[x]) << x;
            EXPECT_EQ(std::lround(read.At(x, 0).fBlue * 255), bytes[x]) << x;
            EXPECT_EQ(std::lround(read.At(x, 0).fAlpha * 255),
                x == 2                 ? 128
                    : x == 3 || x == 4 ? 255
                                       : 0)
                << x;
        }
    }
}

TEST_F(PictureTest, FloatsStayAsTheyAreWithTheColourUnderATransparentPixel)
{
    const auto file = fFolder / "floats.exr";
    Picture picture(1, 2, PictureContent::kColor);
    picture.At(0, 0) = {-0.25f, 7, 0.5f, 0};
    picture.At(0, 1) = {0.5f, 0.25f, 1, 0.5f};
    picture.Save(file);
    const Picture read = ReadBack(file, 1, 2);
    EXPECT_THAT(read.At(0, 0), IsColor(-0.25f, 7, 0.5f, 0));
    EXPECT_THAT(read.At(0, 1), IsColor(0.5f, 0.25f, 1, 0.5f));
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

TEST_F(PictureTest, AFileAppearsWholeOrNotAtAll)
{
    const Picture picture(3, 3, PictureContent::kColor);
    picture.Save(fFolder / "new" / "folder" / "picture.png");
    picture.Save(fFolder / "new" / "folder" / "picture.png"); // takes the place of the old one
    EXPECT_THAT(FilesIn(fFolder / "new" / "folder"), testing::ElementsAre("picture.png"));

    std::ofstream(fFolder / "file") << "no folder";
    std::filesystem::create_directory(fFolder / "folder.png");
    for (const auto& bad :
        {fFolder / "file" / "picture.png", fFolder / "folder.png", fFolder / "picture.gif"}) {
        try {
            picture.Save(bad);
            ADD_FAILURE() << bad;
        } catch (const PictureError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(bad.string() + ": "));
        }
    }
    EXPECT_THAT(FilesIn(fFolder.Path()), testing::UnorderedElementsAre("new", "file", "folder.png"));
}

} // namespace
