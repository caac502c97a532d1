#include "host/pictures/PictureEncoder.h"
#include <OpenImageIO/imagebufalgo.h>

namespace fernwick {

namespace {

/// Reads what was written last: the library doesn't look whether closing the file could write the rest.
void RequireWhole(const std::filesystem::path& texture)
{
    const auto input = OIIO::ImageInput::open(texture.string());
    int last = 0;
    while (input && input->seek_subimage(0, last + 1))
        ++last;
    std::vector<float> pixel(4);
    if (!input || !input->read_image(0, last, 0, 4, OIIO::TypeDesc::FLOAT, pixel.data()))
        throw PictureError("what was made of it is cut off");
}

} // namespace

void MakeTexture(const std::filesystem::path& picture, const std::filesystem::path& texture,
    const std::string& compression)
{
    OIIO::ImageSpec wishes;
    wishes.attribute("compression", compression.empty() ? "zip" : compression);
    wishes.attribute(
        "maketx:fileformatname", "openexr");  // TIFF has no halves, and no order in what pads its tiles
    wishes.attribute("maketx:updatemode", 1); // keeps the time
    wishes.attribute("wrapmodes", "periodic,periodic");
    if (!OIIO::ImageBufAlgo::make_texture(
            OIIO::ImageBufAlgo::MakeTxTexture, picture.string(), texture.string(), wishes))
        throw PictureError(OIIO::geterror());
    RequireWhole(texture);
}

} // namespace fernwick
