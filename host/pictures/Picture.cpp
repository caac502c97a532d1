#include "host/pictures/Picture.h"
#include "host/pictures/LayOver.h"
#include "host/pictures/PictureWriter.h"

namespace fernwick {

Picture::Picture(int width, int height, PictureContent content)
    : fWidth(width), fHeight(height), fContent(content),
      fPixels(static_cast<size_t>(width) * static_cast<size_t>(height), TMCColorRGBA{0, 0, 0, 0})
{ }

void Picture::AddChannel(std::string name, std::vector<float> values)
{
    fChannelNames.push_back(std::move(name));
    fChannels.push_back(std::move(values));
}

void Picture::LayOver(const Picture& ground)
{
    fernwick::LayOver(fPixels, ground.fPixels);
}

void Picture::Save(const std::filesystem::path& path, const PictureLayout& layout, int threads) const
{
    PictureShape shape = PictureShape::Whole(fWidth, fHeight, fContent);
    shape.channels = fChannelNames;
    PictureWriter writer(path, shape, layout, threads);
    writer.Write(fPixels, fChannels);
    writer.Finish();
}

} // namespace fernwick
