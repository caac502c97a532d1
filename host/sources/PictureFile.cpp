#include "host/sources/PictureFile.h"

namespace fernwick {

PictureSource::PictureSource(const Settings& settings)
{
    FilePicture picture = ReadPictureFile(settings);
    fWidth = picture.fWidth;
    fHeight = picture.fHeight;
    fPixels = std::move(picture.fPixels);
}

} // namespace fernwick
