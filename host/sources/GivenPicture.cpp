#include "host/sources/GivenPicture.h"
#include <OpenImageIO/imageio.h>

namespace fernwick {

namespace {

/// Integers as the decoders of files make floats of them.
template <class Number> std::vector<float> FloatsOf(std::span<const Number> numbers)
{
    std::vector<float> floats(numbers.size());
    constexpr size_t kAtATime = 1 << 20; // they are counted by an int
    for (size_t i = 0; i < numbers.size(); i += kAtATime)
        OIIO::convert_pixel_values(OIIO::BaseTypeFromC<Number>::value, &numbers[i], OIIO::TypeDesc::FLOAT,
            &floats[i], static_cast<int>(std::min(kAtATime, numbers.size() - i)));
    return floats;
}

} // namespace

GivenPicture::GivenPicture(int width, int height, int channels, std::span<const uint8_t> numbers)
    : fWidth(width), fHeight(height), fChannels(channels), fIsOfFloats(false), fNumbers(FloatsOf(numbers))
{ }

GivenPicture::GivenPicture(int width, int height, int channels, std::span<const uint16_t> numbers)
    : fWidth(width), fHeight(height), fChannels(channels), fIsOfFloats(false), fNumbers(FloatsOf(numbers))
{ }

GivenPicture::GivenPicture(int width, int height, int channels, std::span<const float> numbers)
    : fWidth(width), fHeight(height), fChannels(channels), fIsOfFloats(true),
      fNumbers(numbers.begin(), numbers.end())
{ }

} // namespace fernwick
