#include "host/pictures/Picture.h"
#include "host/pictures/LayOver.h"

namespace fernwick {

Picture::Picture(int width, int height, PictureContent content)
    : Picture(PictureShape::Whole(width, height, content))
{ }

Picture::Picture(const PictureShape& shape)
    : fShape(shape),
      fPixels(static_cast<size_t>(Width()) * static_cast<size_t>(Height()), TMCColorRGBA{0, 0, 0, 0})
{ }

void Picture::AddChannel(std::string name, std::vector<float> values)
{
    fShape.channels.push_back(std::move(name));
    fChannels.push_back(std::move(values));
}

void Picture::LayOver(const Picture& ground) { fernwick::LayOver(fPixels, ground.fPixels); }

} // namespace fernwick
