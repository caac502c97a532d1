#include "tests/support/Shell.h"
#include <OpenImageIO/imagebufalgo.h>
#include <gtest/gtest.h>
#include <set>

namespace {

namespace fs = std::filesystem;
using namespace OIIO;

/// What compilers and mathematics libraries may differ by: a pixel fails beyond two of its 255 steps, and a hundredth
/// of the pixels may, where an edge falls to the other side.
constexpr float kTolerance = 2.5f / 255;
constexpr double kEdges = 0.01;

std::set<std::string> PicturesIn(const fs::path& folder)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".png")
            names.insert(entry.path().filename().string());
    return names;
}

/// The absolute difference, eight times as bright, so that a small one is seen.
void WriteDifference(const ImageBuf& shown, const ImageBuf& golden, const fs::path& file)
{
    ImageBuf difference = ImageBufAlgo::mul(ImageBufAlgo::absdiff(shown, golden), 8.0f);
    if (difference.nchannels() == 4)
        difference = ImageBufAlgo::channels(difference, 3, {});
    ASSERT_TRUE(difference.write(file.string(), TypeDesc::UINT8)) << difference.geterror();
}

TEST(GalleryTest, EveryPictureIsStillTheGoldenOne)
{
    const fs::path golden = fs::path(FERNWICK_SOURCE) / "tests/golden";
    const fs::path work = fs::current_path() / "gallery";
    fs::remove_all(work);
    fs::create_directories(work / "differences");
    const std::string command = "GALLERY_SIZE=64x64 GALLERY_FOLDER='" + work.string()
        + "' FERNWICK='" FERNWICK_COMMAND "' " FERNWICK_SOURCE "/scripts/gallery";
    const ShellAnswer answer = Shell(command);
    ASSERT_EQ(answer.status, 0) << answer.text;
    ASSERT_EQ(PicturesIn(work), PicturesIn(golden))
        << "a new picture becomes golden with\n  GALLERY_SIZE=64x64 GALLERY_FOLDER=tests/golden "
           "scripts/gallery";
    for (const std::string& name : PicturesIn(golden)) {
        const ImageBuf shown((work / name).string()), expected((golden / name).string());
        const auto result = ImageBufAlgo::compare(shown, expected, kTolerance, kTolerance);
        const auto pixels = static_cast<double>(expected.roi().npixels());
        if (!result.error && static_cast<double>(result.nfail) <= kEdges * pixels)
            continue;
        const fs::path difference = work / "differences" / name;
        WriteDifference(shown, expected, difference);
        ADD_FAILURE() << name << ": " << result.nfail << " of " << pixels << " pixels differ, the most by "
                      << result.maxerror * 255 << " of 255; see " << difference;
    }
}

} // namespace
