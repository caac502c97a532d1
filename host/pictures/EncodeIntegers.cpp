#include "host/pictures/EncodeIntegers.h"
#include "host/pictures/Clamped.h"
#include "host/pictures/SRGBBytes.h"
#include <OpenImageIO/color.h>
#include <limits>

namespace fernwick {

namespace {

float Encoded(float number, PictureContent content)
{
    switch (content) {
    case PictureContent::kColor:
        return OIIO::linear_to_sRGB(Clamped(number));
    case PictureContent::kNormal:
        return (number + 1) / 2;
    case PictureContent::kValue:
        break;
    }
    return number;
}

template <class Integer> Integer IntegerOf(float number)
{
    constexpr auto kGreatest = static_cast<float>(std::numeric_limits<Integer>::max());
    return static_cast<Integer>(Clamped(number) * kGreatest + 0.5f);
}

/// @param encode  makes a number of the file of a red, green or blue
template <class Integer, class Encode>
void PutEncoded(std::span<const TMCColorRGBA> pixels, const Encode& encode, Integer* numbers)
{
    for (const TMCColorRGBA& color : pixels) {
        for (const float channel : {color.fRed, color.fGreen, color.fBlue})
            *numbers++ = encode(channel);
        *numbers++ = IntegerOf<Integer>(color.fAlpha);
    }
}

template <class Integer>
void PutIntegers(std::span<const TMCColorRGBA> pixels, PictureContent content, Integer* numbers)
{
    PutEncoded(
        pixels, [content](float number) { return IntegerOf<Integer>(Encoded(number, content)); }, numbers);
}

} // namespace

void EncodeBytes(std::span<const TMCColorRGBA> pixels, PictureContent content, uint8_t* numbers)
{
    if (content != PictureContent::kColor)
        return PutIntegers(pixels, content, numbers);
    PutEncoded(
        pixels, [&bytes = SRGBBytes::Get()](float number) { return bytes.Of(number); }, numbers);
}

void EncodeUint16s(std::span<const TMCColorRGBA> pixels, PictureContent content, uint16_t* numbers)
{
    PutIntegers(pixels, content, numbers);
}

} // namespace fernwick
