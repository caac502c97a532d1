#include "tools/PictureOption.h"
#include "host/Picture.h"

namespace {

std::string CheckPicture(const std::string& picture)
{
    try {
        fernwick::Picture::RequireSavable(picture);
    } catch (const fernwick::PictureError& error) {
        return error.what();
    }
    return "";
}

} // namespace

void AddPictureOption(CLI::App& command, std::string& picture)
{
    command
        .add_option("-o,--picture", picture, "The picture: .png (8 bits, colours as sRGB) or .exr (floats)")
        ->required()
        ->type_name("FILE")
        ->check(CheckPicture);
}
