#include "host/sources/GivenPicture.h"
#include <algorithm>
#include <limits>

namespace fernwick {

namespace {

/// Integers as the decoders of files make floats of them.
template <class Number> std::vector<float> FloatsOf(std::span<const Number> numbers)
{
    constexpr float kScale = 1.0f / std::numeric_limits<Number>::max();
    std::vector<float> floats(numbers.size());
    std::transform(numbers.begin(), numbers.end(), floats.begin(),
        [](Number number) { return static_cast<float>(number) * kScale; });
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
