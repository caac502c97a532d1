#include "bench/Bench.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include <algorithm>
#include <array>

namespace {

struct PlainKey {
    KeyParams p;
    Source source;
    TVector2 boxes[3] = {Box(p.fRedRange, p.fKeyColor.fRed), Box(p.fGreenRange, p.fKeyColor.fGreen),
        Box(p.fBlueRange, p.fKeyColor.fBlue)};
    TMCColorRGBA sub{}, fallback{};

    static TVector2 Box(const TVector2& range, float channel)
    {
        return {
            static_cast<float>(range[0] / 100.0 + channel), static_cast<float>(range[1] / 100.0 + channel)};
    }
    static bool Holds(const TVector2& box, float channel) { return channel >= box[0] && box[1] >= channel; }

    TMCColorRGBA operator()(ShadingIn& in)
    {
        fallback = {1, 0, 0, 1};
        source.Color(sub, in);
        const bool inside
            = Holds(boxes[0], sub.fRed) && Holds(boxes[1], sub.fGreen) && Holds(boxes[2], sub.fBlue);
        const float mask = inside ? 0.0f : 1.0f;
        if (p.fMode == Code("KEYM"))
            return {mask, mask, mask, sub.fAlpha};
        return {sub.fRed, sub.fGreen, sub.fBlue, mask};
    }
};

void AddKey(const Samples& samples)
{
    for (const bool mask : {true, false}) {
        const MeasuredShader<KeyParams> key("Key");
        const Source source(kOutputColor);
        KeyParams& params = key.Record();
        params.fKeyColor = {0.5f, 0.5f, 0.25f, 1};
        params.fRedRange = params.fGreenRange = {-40, 40};
        params.fMode = mask ? Code("KEYM") : 0;
        params.fSubShader = source.Face();
        key.Changed();
        AddComparison(
            Section::kShading, mask ? "Key ShadeColor, mask" : "Key ShadeColor, colour",
            [=](size_t i) { return key.Color((*samples)[i]); },
            [=, plain = PlainKey{params, source}](size_t i) mutable { return plain((*samples)[i]); });
    }
}

struct PlainGray {
    GrayParams p;
    Source source;
    float red = Fraction(p.fRedShift), green = Fraction(p.fGreenShift), blue = Fraction(p.fBlueShift);
    float luminance = 0;
    TMCColorRGBA scratch{}, fallback{};

    static float Fraction(float percent) { return static_cast<float>(percent / 100.0); }
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
    template <class Color> void Shift(Color& color) const
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
        saturation = ForHue(saturation + p.fSaturationShift / 100.0f, hue);
        if (saturation <= 0) {
            color.fRed = color.fGreen = color.fBlue = lightness;
            return;
        }
        const float high = 0.5 >= lightness ? lightness * (1.0f + saturation)
                                            : lightness + saturation - lightness * saturation;
        const float low = 2.0f * lightness - high;
        color.fRed = Channel(low, high, hue + 120.0f);
        color.fGreen = Channel(low, high, hue);
        color.fBlue = Channel(low, high, hue - 120.0f);
    }
    TMCColorRGBA Color(ShadingIn& in)
    {
        fallback = {0, 0, 0, 1};
        source.Color(scratch, in);
        if (p.fMode == Code("GRSC")) {
            luminance = Luminance(scratch);
            return {luminance, luminance, luminance, scratch.fAlpha};
        }
        TMCColorRGBA color = scratch;
        Shift(color);
        return color;
    }
    template <class Channel> void Filter(Channel& channel)
    {
        if (p.fMode != Code("GRSC"))
            return Shift(channel);
        scratch = {channel.fRed, channel.fGreen, channel.fBlue, scratch.fAlpha};
        channel.fRed = channel.fGreen = channel.fBlue = Luminance(scratch);
    }
    Channels Surface(ShadingIn& in)
    {
        ShadingOut result;
        source->ShadeSurface(result, in);
        in.fChannelMask = kAllChannels;
        Filter(result.fColor);
        Filter(result.fThirdColor);
        Filter(result.fSecondColor);
        Filter(result.fFourthColor);
        return ChannelsOf(result);
    }
};

void AddGray(const Samples& samples)
{
    for (const std::string mode : {"luminance", "saturation"}) {
        const MeasuredShader<GrayParams> gray("Gray");
        const Source source(kOutputColor | kOutputSurface);
        GrayParams& params = gray.Record();
        params.fSubShader = source.Face();
        std::fill_n(params.fColorSwitches, 4, true);
        params.fMode = mode == "luminance" ? Code("GRSC") : 0;
        params.fSaturationShift = 20;
        params.fRedShift = -30;
        params.fBlueShift = 40;
        gray.Changed();
        PlainGray plain{params, source};
        AddComparison(
            Section::kShading, "Gray ShadeColor, " + mode,
            [=](size_t i) { return gray.Color((*samples)[i]); },
            [=](size_t i) mutable { return plain.Color((*samples)[i]); });
        AddComparison(
            Section::kShading, "Gray ShadeSurface, " + mode + " of four channels",
            [=](size_t i) { return gray.Surface((*samples)[i]); },
            [=](size_t i) mutable { return plain.Surface((*samples)[i]); });
    }
}

struct PlainLocation {
    struct Ramp {
        float first, second;
        bool enabled, falling;
    };
    LocationParams p;
    Source source;
    Ramp ramps[3] = {RampOf(p.fAxes[0]), RampOf(p.fAxes[1]), RampOf(p.fAxes[2])};
    float disturbance = 0, last = 0;

    static Ramp RampOf(const LocationAxis& axis)
    {
        const bool falling = axis.fDirection == Code("GRTR");
        return {
            falling ? axis.fEdgeA : axis.fEdgeB, falling ? axis.fEdgeB : axis.fEdgeA, axis.fEnabled, falling};
    }
    static float Height(const Ramp& ramp, float x)
    {
        const auto [first, second, enabled, falling] = ramp;
        if (falling ? x >= second : second >= x)
            return 0;
        if (falling && x > first)
            return 1.0f - (x - first) / (second - first);
        if (!falling && first > x)
            return (x - second) / (first - second);
        return 1;
    }
    float operator()(ShadingIn& in)
    {
        disturbance = 0;
        if (p.fUseSubShader) {
            disturbance = source.Value(in);
            if (disturbance > 1)
                disturbance = last;
            disturbance *= static_cast<float>(p.fDisturbPercent);
            last = disturbance;
        }
        const TVector3& point = p.fSpace == Code("GLBL") ? in.fPointGlobal : in.fPointLocal;
        float value = 1;
        for (uint32_t k = 0; k < 3; ++k) {
            const Ramp& ramp = ramps[k];
            if (!ramp.enabled)
                continue;
            float x = point[k];
            if (p.fUseSubShader)
                x = static_cast<float>(x + std::fabs(ramp.first - ramp.second) * disturbance / 100.0);
            const float height = Height(ramp, x);
            if (p.fCombine == Code("ORMD")) {
                if (value > height)
                    value = height;
            } else if (1 > height) {
                value = height;
            } else {
                return 1;
            }
        }
        return value;
    }
};

void AddLocation(const Samples& samples)
{
    for (const bool disturbed : {false, true}) {
        const MeasuredShader<LocationParams> location("Location");
        const Source source(kOutputValue);
        LocationParams& params = location.Record();
        for (LocationAxis& axis : params.fAxes) {
            axis.fEnabled = true;
            axis.fEdgeA = -8;
            axis.fEdgeB = 9;
        }
        params.fAxes[1].fDirection = Code("LSTR");
        params.fUseSubShader = disturbed;
        params.fDisturbPercent = 20;
        params.fSubShader = source.Face();
        location.Changed();
        AddComparison(
            Section::kShading,
            disturbed ? "Location ShadeValue, disturbed" : "Location ShadeValue, three axes",
            [=](size_t i) { return location.Value((*samples)[i]); },
            [=, plain = PlainLocation{params, source}](size_t i) mutable { return plain((*samples)[i]); });
    }
}

void AddShift(const Samples& samples)
{
    const MeasuredShader<Coordinate_ShiftParams> shift("Coordinate_Shift");
    const Source source(kOutputSurface | kOutputColor);
    shift.Record().fOffset = {1e-3f, 0, -1e-3f};
    shift.Record().fSubShader = source.Face();
    shift.Changed();
    const auto places = std::make_shared<std::vector<TVector3>>();
    for (const ShadingIn& in : *samples)
        places->push_back(in.fPointGlobal);
    const auto sampleAt = [=](size_t i) -> ShadingIn& {
        ShadingIn& in = (*samples)[i];
        in.fPointGlobal = (*places)[i]; // the shader moves it
        return in;
    };
    const auto plain = [=](size_t i) {
        ShadingIn& in = sampleAt(i);
        in.fPointGlobal -= TVector3(1e-3f, 0, -1e-3f);
        ShadingOut result;
        source->ShadeSurface(result, in);
        return ChannelsOf(result);
    };
    AddComparison(
        Section::kShading, "Coordinate_Shift ShadeSurface, offset",
        [=](size_t i) { return shift.Surface(sampleAt(i)); }, plain);
}

/// What every class answers where it offers nothing of its own.
void AddDefaults(const Samples& samples)
{
    const MeasuredShader<KeyParams> key("Key");
    const MeasuredShader<LocationParams> location("Location");
    key.Changed();
    location.Changed();
    const Source source(kOutputColor);
    const auto sampleAt = [=](size_t i) -> ShadingIn& { return (*samples)[i]; };
    AddComparison(
        Section::kDispatch, "a virtual call inside the program, the least there is",
        [=](size_t) { return source->GetOutputKinds(); }, [](size_t) { return uint32_t{kOutputColor}; });
    AddComparison(
        Section::kDispatch, "the default ShadeValue",
        [=](size_t i) {
            float value;
            bool fullArea;
            return key->ShadeValue(value, fullArea, sampleAt(i));
        },
        [](size_t) { return kFullCoverage; });
    AddComparison(
        Section::kDispatch, "the default ShadeVector",
        [=](size_t i) {
            TVector3 vector;
            return key->ShadeVector(vector, sampleAt(i));
        },
        [](size_t) { return kFullCoverage; });
    AddComparison(
        Section::kDispatch, "the default ShadeColor", [=](size_t i) { return location.Color(sampleAt(i)); },
        [](size_t) {
            return TMCColorRGBA{0, 0, 0, 1};
        });
    const auto surface = [=](size_t i) {
        MCCountedPtr<IShellShader> face;
        Query(*key.Wrapper(), IID_IShellShader, face);
        ShadingOut result;
        result.fShadingNormal = sampleAt(i).fNormalLocal;
        result.fCoverage = 1;
        face->ShadeColor(result.fColor, result.fFullArea, sampleAt(i));
        return ChannelsOf(result);
    };
    AddComparison(
        Section::kHost, "the default ShadeSurface", [=](size_t i) { return key.Surface(sampleAt(i)); },
        surface);
}

} // namespace

void AddMapping()
{
    const Samples samples = MakeSamples();
    AddKey(samples);
    AddGray(samples);
    AddLocation(samples);
    AddShift(MakeSamples());
    AddDefaults(samples);
}
