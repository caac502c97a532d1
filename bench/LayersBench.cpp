#include "bench/Bench.h"
#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"

namespace {

constexpr GUID kMixerID = {0x2B82DA60, 0xA115, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}};
constexpr GUID kMixerTopID = {0x490D324B, 0xB207, 0x4B1D, {0xA2, 0xAF, 0xE8, 0xCA, 0xB3, 0xC9, 0xD1, 0x06}};
constexpr GUID kManagerID = {0x80B31898, 0xD5AD, 0x4532, {0xA9, 0x11, 0xBE, 0x90, 0x60, 0x48, 0xD6, 0xF9}};
constexpr GUID kControlID = {0xFDCF5228, 0x1C6A, 0x463B, {0x98, 0xC9, 0x97, 0x65, 0x39, 0x78, 0x4E, 0xE9}};

using Mixer = MeasuredShader<Super_mixerParams>;

/// A mixer of ten layers that is controlled by U.
/// @param layer  gives what is plugged into the next slot
template <class Params, class Layer> MeasuredShader<Params> MakeMixer(const GUID& classID, Layer layer)
{
    const MeasuredShader<Params> mixer(classID);
    mixer.Record().fSubShader[kControlSlot] = Source(kOutputValue).Face();
    for (int slot = kFirstLayerSlot; slot < kMixerSlotCount; ++slot)
        mixer.Record().fSubShader[slot] = layer();
    mixer.Changed();
    return mixer;
}

/// A range mix of ten layers whose edges fade as half a sine.
struct PlainMix {
    Source source{kOutputColor};
    TVector2 ranges[10];

    TMCColorRGBA operator()(ShadingIn& in) const
    {
        TMCColorRGBA color{0, 0, 0, 1};
        float value;
        bool fullArea;
        source->ShadeValue(value, fullArea, in);
        value *= 100.0f;
        for (const TVector2& range : ranges) {
            const float low = range[0], high = range[1];
            if (!(value >= low && high >= value))
                continue;
            const float middle = (low + high) / 2.0f, width = (high - low) * 50.0f / 100.0f;
            float weight = 1;
            if (value > middle && high != 100.0f) {
                const float edge = (high - value) / width;
                weight = HalfSine(edge > 1.0f ? 0.0f : 1.0f - edge, kHalfPi);
            } else if (middle > value && low != 0.0f) {
                const float edge = (value - low) / width;
                weight = HalfSine(edge > 1.0f ? 1.0f : edge, -kHalfPi);
            }
            TMCColorRGBA layer = source.Color(in);
            layer *= weight;
            color += layer;
        }
        return color;
    }
    static float HalfSine(float edge, double phase)
    {
        const float argument = static_cast<float>(edge * kPi + phase);
        return static_cast<float>(0.5 * std::sin(argument) + 0.5);
    }
};

/// The sum of ten layers, or of ten such sums. The alpha of a mixer in a mixer grows from sample to sample, so
/// colours are compared without it.
struct PlainSum {
    Source source{kOutputColor};

    TMCColorRGBA Ten(ShadingIn& in) const
    {
        TMCColorRGBA sum{0, 0, 0, 1};
        for (int layer = 0; layer < 10; ++layer)
            sum += source.Color(in);
        return sum;
    }
    TMCColorRGBA Hundred(ShadingIn& in) const
    {
        TMCColorRGBA sum{0, 0, 0, 1};
        for (int ten = 0; ten < 10; ++ten)
            sum += Ten(in);
        return sum;
    }
};

TMCColorRGB WithoutAlpha(const TMCColorRGBA& color) { return {color.fRed, color.fGreen, color.fBlue}; }

void AddMixers(const Samples& samples)
{
    const PlainMix plainMix;
    const Mixer mix = MakeMixer<Super_mixerParams>(kMixerID, [&] { return plainMix.source.Face(); });
    Super_mixerParams& params = mix.Record();
    params.fSmooth = true;
    params.fSmoothWidth = 50;
    mix.Changed();
    PlainMix plain = plainMix;
    std::copy_n(params.fRange, 10, plain.ranges);
    AddComparison(
        Section::kShading, "Super_mixer ShadeColor, range mix of 10 layers",
        [=](size_t i) { return mix.Color((*samples)[i]); }, [=](size_t i) { return plain((*samples)[i]); });

    const PlainSum plainSum;
    const auto makeSum = [](auto layer) {
        const Mixer sum = MakeMixer<Super_mixerParams>(kMixerID, layer);
        sum.Record().fCombineMode = Code("ADMD");
        sum.Changed();
        return sum;
    };
    const auto makeTen = [&] { return makeSum([&] { return plainSum.source.Face(); }); };
    const Mixer ten = makeTen();
    AddComparison(
        Section::kShading, "Super_mixer ShadeColor, sum of 10 layers",
        [=](size_t i) { return WithoutAlpha(ten.Color((*samples)[i])); },
        [=](size_t i) { return WithoutAlpha(plainSum.Ten((*samples)[i])); });
    const Mixer hundred = makeSum(
        [&, mixers = std::vector<Mixer>()]() mutable { return mixers.emplace_back(makeTen()).Wrapper(); });
    AddComparison(
        Section::kShading, "Super_mixer ShadeColor, sum of 100 layers in 11 mixers",
        [=](size_t i) { return WithoutAlpha(hundred.Color((*samples)[i])); },
        [=](size_t i) { return WithoutAlpha(plainSum.Hundred((*samples)[i])); });

    AddWork(Section::kChange + "/Super_mixer, another smooth width" + kMeasured, [mix] {
        mix.Record().fSmoothWidth = 101 - mix.Record().fSmoothWidth;
        mix.Changed();
    });
}

/// Those whose time goes into moving surface records: no plain loop is beside them.
template <class Shader> void AddSurface(const std::string& row, const Shader& shader, const Samples& samples)
{
    AddPass(Section::kShading + "/" + row + kMeasured, [=](size_t i) {
        ShadingOut result;
        shader->ShadeSurface(result, (*samples)[i]);
        return result.fColor;
    });
}

} // namespace

void AddLayers()
{
    const Samples samples = MakeSamples();
    AddMixers(samples);

    const Source surface(kOutputSurface | kOutputColor);
    const auto plug = [&] { return surface.Face(); };
    AddSurface("Super_mixer_top ShadeSurface, 10 surfaces",
        MakeMixer<Super_mixer_topParams>(kMixerTopID, plug), samples);

    const MeasuredShader<MultiPassManagerParams> manager(kManagerID);
    for (SubShaderSlot& slot : manager.Record().fSubShader)
        slot = plug();
    manager.Record().fSubShader[0] = Source(kOutputValue).Face();
    manager.Changed();
    AddSurface("MultiPassManager ShadeSurface", manager, samples);

    const MeasuredShader<MultiPassControlParams> control(kControlID);
    control.Record().fLevel = Code("LTEN");
    control.Changed();
    AddPass(Section::kShading + "/MultiPassControl ShadeValue, last level" + kMeasured,
        [=](size_t i) { return control.Value((*samples)[i]); });
}
