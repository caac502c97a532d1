#include "bench/Bench.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include <algorithm>
#include <array>

namespace {

constexpr GUID kKeyID = {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}};
constexpr GUID kGrayID = {0xB30CC03F, 0x243F, 0x4F88, {0x9E, 0x16, 0x8B, 0x05, 0x71, 0x77, 0x1D, 0xBC}};
constexpr GUID kLocationID = {0xD959106B, 0x78CD, 0x48E4, {0x94, 0x75, 0x29, 0x49, 0x03, 0x92, 0xEA, 0x46}};
constexpr GUID kShiftID = {0x4BFCBC62, 0x98F5, 0x4537, {0x8C, 0xAE, 0x77, 0xAD, 0x79, 0x54, 0x90, 0xFF}};

void AddKey(const Samples& samples)
{
    const MeasuredShader<KeyParams> key(kKeyID);
    const Source source(kOutputColor);
    KeyParams& params = key.Record();
    params.fKeyColor = {0.5f, 0.5f, 0.25f, 1};
    params.fRedRange = params.fGreenRange = {-40, 40};
    params.fSubShader = source.Face();
    key.Changed();

    const auto bound
        = [](float percent, float channel) { return static_cast<float>(percent / 100.0 + channel); };
    const float low = bound(-40, 0.5f), high = bound(40, 0.5f);
    const float lowBlue = bound(-1, 0.25f), highBlue = bound(1, 0.25f);
    const auto plain = [=](size_t i) {
        const TMCColorRGBA sub = source.Color((*samples)[i]);
        // Without branches, as the shader's is compiled: no order of tests is lost.
        const bool inside = (sub.fRed >= low) & (high >= sub.fRed) & (sub.fGreen >= low)
            & (high >= sub.fGreen) & (sub.fBlue >= lowBlue) & (highBlue >= sub.fBlue);
        const float mask = inside ? 0.0f : 1.0f;
        return TMCColorRGBA{mask, mask, mask, sub.fAlpha};
    };
    AddComparison(
        Section::kShading, "Key ShadeColor, mask", [=](size_t i) { return key.Color((*samples)[i]); }, plain);

    const auto coverage = [=](size_t i) { // the default of a shader without a value
        float value;
        bool fullArea;
        return key->ShadeValue(value, fullArea, (*samples)[i]);
    };
    AddComparison(
        Section::kDispatch, "an operation that returns a constant", coverage, [](size_t) { return 1.0f; });
    AddComparison(
        Section::kDispatch, "a virtual call inside the program, the least there is",
        [=](size_t) { return source->GetOutputKinds(); }, [](size_t) { return uint32_t{kOutputColor}; });
}

struct PlainSaturation {
    float shift, red, green, blue; // fractions

    float ForHue(float saturation, float hue) const
    {
        const auto between
            = [=](float own, float other, float way) { return saturation + own + way * other; };
        return hue >= 0 && hue <= 60.0f     ? between(red, green, hue / 60.0f)
            : hue > 60.0f && hue <= 120.0f  ? between(green, red, (60.0f - (hue - 60.0f)) / 60.0f)
            : hue > 120.0f && hue <= 180.0f ? between(green, blue, (hue - 120.0f) / 60.0f)
            : hue > 180.0f && hue <= 240.0f ? between(blue, green, (60.0f - (hue - 180.0f)) / 60.0f)
            : hue > 240.0f && hue <= 300.0f ? between(blue, red, (hue - 240.0f) / 60.0f)
            : hue > 300.0f && hue <= 360.0f ? between(red, blue, (60.0f - (hue - 300.0f)) / 60.0f)
                                            : saturation;
    }
    static float Channel(float low, float high, float hue)
    {
        if (hue < 0)
            hue += 360.0f;
        if (hue > 360.0f)
            hue -= 360.0f;
        return hue < 60.0f ? low + (high - low) * hue / 60.0f
            : hue < 180.0f ? high
            : hue < 240.0f ? low + (high - low) * (240.0f - hue) / 60.0f
                           : low;
    }
    TMCColorRGBA operator()(TMCColorRGBA color) const
    {
        const float r = color.fRed, g = color.fGreen, b = color.fBlue;
        const float largest = std::max({g, r, b}), smallest = std::min({g, r, b});
        const float lightness = (largest + smallest) / 2.0f;
        float saturation = 0, hue = 1000;
        if (largest != smallest) {
            const float spread = largest - smallest;
            saturation
                = 0.5 >= lightness ? spread / (largest + smallest) : spread / (2.0f - largest - smallest);
            hue = r == largest ? (g - b) / spread * 60.0f
                : g == largest ? (2.0f + (b - r) / spread) * 60.0f
                               : (4.0f + (r - g) / spread) * 60.0f;
            if (hue < 0)
                hue += 360.0f;
        }
        saturation = ForHue(saturation + shift, hue);
        if (saturation <= 0) {
            color.SetRGB(lightness);
            return color;
        }
        const float high = 0.5 >= lightness ? lightness * (1.0f + saturation)
                                            : lightness + saturation - lightness * saturation;
        const float low = 2.0f * lightness - high;
        color.SetRGB(
            Channel(low, high, hue + 120.0f), Channel(low, high, hue), Channel(low, high, hue - 120.0f));
        return color;
    }
};

void AddGray(const Samples& samples)
{
    const Source source(kOutputColor);
    const MeasuredShader<GrayParams> luminance(kGrayID);
    luminance.Record().fSubShader = source.Face();
    luminance.Changed();
    const auto plainLuminance = [=](size_t i) {
        const TMCColorRGBA color = source.Color((*samples)[i]);
        const double red = color.fRed, green = color.fGreen, blue = color.fBlue;
        const float grey = static_cast<float>(0.3 * red + 0.59 * green + 0.11 * blue);
        return TMCColorRGBA{grey, grey, grey, color.fAlpha};
    };
    AddComparison(
        Section::kShading, "Gray ShadeColor, luminance",
        [=](size_t i) { return luminance.Color((*samples)[i]); }, plainLuminance);

    const MeasuredShader<GrayParams> saturation(kGrayID);
    GrayParams& params = saturation.Record();
    params.fSubShader = source.Face();
    params.fMode = Code("HSL ");
    params.fSaturationShift = 20;
    params.fRedShift = -30;
    params.fBlueShift = 40;
    saturation.Changed();
    const auto fraction = [](float percent) { return static_cast<float>(percent / 100.0); };
    const PlainSaturation plain
        = {params.fSaturationShift / 100.0f, fraction(-30), fraction(0), fraction(40)};
    AddComparison(
        Section::kShading, "Gray ShadeColor, saturation",
        [=](size_t i) { return saturation.Color((*samples)[i]); },
        [=](size_t i) { return plain(source.Color((*samples)[i])); });
}

void AddLocation(const Samples& samples)
{
    const MeasuredShader<LocationParams> location(kLocationID);
    LocationParams& params = location.Record();
    for (LocationAxis& axis : params.fAxes) {
        axis.fEnabled = true;
        axis.fEdgeA = -8;
        axis.fEdgeB = 9;
    }
    params.fAxes[1].fDirection = Code("LSTR");
    location.Changed();
    const auto plain = [=, axes = std::to_array(params.fAxes),
                           disturbance = static_cast<float>(params.fDisturbPercent)](size_t i) {
        float value = 1;
        for (uint32_t k = 0; k < 3; ++k) {
            const bool falling = k != 1;
            const float first = falling ? axes[k].fEdgeA : axes[k].fEdgeB;
            const float second = falling ? axes[k].fEdgeB : axes[k].fEdgeA;
            const float moved = std::fabs(first - second) * disturbance;
            const float x = static_cast<float>((*samples)[i].fPointGlobal[k] + moved / 100.0);
            float ramp = 1;
            if (falling ? x >= second : second >= x)
                ramp = 0;
            else if (falling && x > first)
                ramp = 1.0f - (x - first) / (second - first);
            else if (!falling && first > x)
                ramp = (x - second) / (first - second);
            if (value > ramp)
                value = ramp;
        }
        return value;
    };
    AddComparison(
        Section::kShading, "Location ShadeValue, three axes",
        [=](size_t i) { return location.Value((*samples)[i]); }, plain);
}

void AddShift(const Samples& samples)
{
    const MeasuredShader<Coordinate_ShiftParams> shift(kShiftID);
    const Source source(kOutputSurface | kOutputColor);
    shift.Record().fOffset = {1e-3f, 0, -1e-3f};
    shift.Record().fSubShader = source.Face();
    shift.Changed();
    const auto places = std::make_shared<std::vector<TVector3>>();
    for (const ShadingIn& in : *samples)
        places->push_back(in.fPointGlobal);
    const auto shade = [=](size_t i) {
        ShadingIn& in = (*samples)[i];
        in.fPointGlobal = (*places)[i]; // the shader moves it
        ShadingOut result;
        shift->ShadeSurface(result, in);
        return result.fColor;
    };
    const auto plain = [=](size_t i) {
        ShadingIn& in = (*samples)[i];
        in.fPointGlobal = (*places)[i] - TVector3(1e-3f, 0, -1e-3f);
        ShadingOut result;
        source->ShadeSurface(result, in);
        return result.fColor;
    };
    AddComparison(Section::kShading, "Coordinate_Shift ShadeSurface", shade, plain);
}

} // namespace

void AddMapping()
{
    const Samples samples = MakeSamples();
    AddKey(samples);
    AddGray(samples);
    AddLocation(samples);
    AddShift(MakeSamples());
}
