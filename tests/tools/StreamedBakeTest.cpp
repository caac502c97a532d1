#include "tests/support/CommandTest.h"
#include <OpenImageIO/imageio.h>

namespace {

class StreamedBakeTest : public CommandTest {
protected:
    /// Starts a bake of a picture that is far from done when its first rows are in the file, and then sends a signal.
    /// @return the status of the command; 99 when no row was ever written
    int StatusOfBakeCutBy(const std::string& signal, const std::string& picture) const
    {
        const std::string bake = "bake '" + fKey + "' -o " + picture + " --size 8192x32768 >/dev/null 2>&1";
        return Shell("cd '" + fFolder.string() + "'; env --default-signal=INT '" FERNWICK_COMMAND "' " + bake
            + " & bake=$!; status=99; for i in $(seq 600); do sleep 0.1;"
              " if [ -n \"$(find . -name '*.part' -size +0)\" ]; then status=; break; fi; done;"
              " kill -"
            + signal + " $bake; wait $bake; exit ${status:-$?}")
            .status;
    }

    struct Window {
        OIIO::ImageSpec fLayout; // with the data window
        std::vector<float> fPixels;
    };
    Window Read(const std::string& file) const
    {
        const auto input = OIIO::ImageInput::open((fFolder / file).string());
        Window window;
        if (input != nullptr) {
            window.fLayout = input->spec();
            window.fPixels.resize(
                window.fLayout.image_pixels() * static_cast<size_t>(window.fLayout.nchannels));
            input->read_image(
                0, 0, 0, window.fLayout.nchannels, OIIO::TypeDesc::FLOAT, window.fPixels.data());
        }
        return window;
    }
};

TEST_F(StreamedBakeTest, ASignalInTheMiddleLeavesNeitherThePictureNorAPartOfIt)
{
    for (const std::string picture : {"new.png", "new.exr", "new.tif"}) {
        EXPECT_EQ(StatusOfBakeCutBy("INT", picture), 130) << picture;
        EXPECT_THAT(FilesIn(fFolder), testing::IsEmpty()) << picture;
        EXPECT_EQ(StatusOfBakeCutBy("TERM", picture), 143) << picture;
        EXPECT_THAT(FilesIn(fFolder), testing::IsEmpty()) << picture;
    }
}

TEST_F(StreamedBakeTest, RegionsJoinedByTheirDataWindowsAreTheWholePicture)
{
    const std::string bake
        = "bake '" FERNWICK_EXAMPLES "/weave-rounded.json' --size 300x270 --bits 32 --samples 3 -o ";
    ASSERT_EQ(Run(bake + "whole.exr").error, "");
    const Window whole = Read("whole.exr");
    ASSERT_EQ(whole.fLayout.width, 300);
    const auto channels = static_cast<size_t>(whole.fLayout.nchannels);
    std::vector<float> joined(whole.fPixels.size());
    for (const std::string region : {"0,0,300,1", "0,1,131,270", "131,1,300,129", "131,129,300,270"}) {
        ASSERT_EQ(Run(bake + "part.exr --region " + region).error, "");
        const Window part = Read("part.exr");
        EXPECT_EQ(part.fLayout.full_width, 300);
        EXPECT_EQ(part.fLayout.full_height, 270);
        const size_t length = static_cast<size_t>(part.fLayout.width) * channels;
        for (int y = 0; y < part.fLayout.height; ++y)
            std::copy_n(part.fPixels.begin() + static_cast<std::ptrdiff_t>(static_cast<size_t>(y) * length),
                length,
                joined.begin()
                    + static_cast<std::ptrdiff_t>(
                        static_cast<size_t>((part.fLayout.y + y) * 300 + part.fLayout.x) * channels));
    }
    EXPECT_EQ(std::memcmp(joined.data(), whole.fPixels.data(), joined.size() * sizeof(float)), 0);
}

} // namespace
