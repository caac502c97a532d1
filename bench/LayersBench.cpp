#include "bench/Bench.h"
#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Shadow_pass.h"
#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"

namespace {

constexpr int kLayers = kMixerSlotCount - kFirstLayerSlot;

/// The ranges of a mixer, faded by half a sine. `Real` is the type in which the sine is taken.
template <class Real, class Params> struct PlainRanges {
    Params p;
    float value = 0, last = 0, weight = 1, edge = 0;
    int32_t active = 0;

    static float HalfSine(float edge, double phase)
    {
        return static_cast<float>(0.5 * std::sin(static_cast<Real>(edge * kPi + phase)) + 0.5);
    }
    void Start(float control)
    {
        value = control > 1.0f ? last : control * 100.0f;
        last = value;
        active = 0;
    }
    bool Takes(int layer)
    {
        const float low = p.fRange[layer][0], high = p.fRange[layer][1];
        if (!(value >= low && high >= value))
            return false;
        weight = 1;
        ++active;
        if (!p.fSmooth)
            return true;
        const float middle = (low + high) / 2.0f;
        const float width = (high - low) * static_cast<float>(p.fSmoothWidth) / 100.0f;
        if (value > middle && high != 100.0f) {
            edge = (high - value) / width;
            edge = edge > 1.0f ? 0.0f : 1.0f - edge;
            weight = HalfSine(edge, kHalfPi);
        } else if (middle > value && low != 0.0f) {
            edge = (value - low) / width;
            edge = edge > 1.0f ? 1.0f : edge;
            weight = HalfSine(edge, -kHalfPi);
        }
        return true;
    }
};

/// Plugged into another one it keeps the alpha that it is handed, as a shader does.
template <class Layer> struct PlainMixer {
    PlainRanges<float, Super_mixerParams> ranges;
    Source control;
    std::vector<Layer> layers;
    TMCColorRGBA layer{};

    void Color(TMCColorRGBA& color, ShadingIn& in)
    {
        TMCColorRGBA sum{0, 0, 0, color.fAlpha};
        if (ranges.p.fCombineMode == Code("ADMD"))
            for (Layer& source : layers) {
                source.Color(layer, in);
                TMCColorRGBA added = layer;
                added.fAlpha *= ranges.weight;
                sum += added;
            }
        else
            Mix(sum, in);
        color = sum;
    }
    void Mix(TMCColorRGBA& sum, ShadingIn& in)
    {
        ranges.Start(control.Value(in));
        for (size_t i = 0; i < layers.size(); ++i)
            if (ranges.Takes(static_cast<int>(i))) {
                layers[i].Color(layer, in);
                TMCColorRGBA weighted = layer;
                weighted *= ranges.weight;
                sum += weighted;
            }
    }
};

struct PlainTop {
    PlainRanges<double, Super_mixer_topParams> ranges;
    Source control;
    std::vector<Source> layers;

    Channels operator()(ShadingIn& in)
    {
        ranges.Start(control.Value(in));
        ShadingOut sum, fetch;
        sum.Clear();
        for (int i = 0; i < kLayers; ++i)
            if (ranges.Takes(i)) {
                fetch.SetDefaults();
                layers[static_cast<size_t>(i)]->ShadeSurface(fetch, in);
                fetch *= ranges.weight;
                fetch.fThirdColor *= ranges.weight;
                sum += fetch;
                in.fChannelMask = kAllChannels;
            }
        if (ranges.active >= 2 && !ranges.p.fSmooth)
            sum *= static_cast<float>(1.0 / ranges.active);
        ShadingOut result = sum;
        return ChannelsOf(result);
    }
};

std::vector<Source> MakeSources(uint32_t kinds)
{
    std::vector<Source> sources;
    for (int i = 0; i < kLayers; ++i)
        sources.emplace_back(kinds);
    return sources;
}

/// A mixer of ten layers.
/// @param layer  gives what is plugged into the slot of this number, from 0
template <class Params, class Layer>
MeasuredShader<Params> MakeMixer(const char* name, const Source& control, Layer layer)
{
    const MeasuredShader<Params> mixer(name);
    mixer.Record().fSubShader[kControlSlot] = control.Face();
    for (int i = 0; i < kLayers; ++i)
        mixer.Record().fSubShader[kFirstLayerSlot + i] = layer(static_cast<size_t>(i));
    mixer.Record().fSmoothWidth = 50;
    mixer.Changed();
    return mixer;
}

void AddMixers(const Samples& samples)
{
    const Source control(kOutputValue);
    const std::vector<Source> sources = MakeSources(kOutputColor);
    const auto make = [&](int32_t mode, auto layer) {
        const auto mixer = MakeMixer<Super_mixerParams>("Super_mixer", control, layer);
        mixer.Record().fCombineMode = mode;
        mixer.Record().fSmooth = true;
        return mixer;
    };
    const auto makeTen
        = [&](int32_t mode) { return make(mode, [&](size_t i) { return sources[i].Face(); }); };
    const auto add = [&](const std::string& row, const auto& mixer, auto plain) {
        AddComparison(
            Section::kShading, "Super_mixer ShadeColor, " + row,
            [=](size_t i) { return mixer.Color((*samples)[i]); },
            [=](size_t i) mutable {
                TMCColorRGBA color{0, 0, 0, 1};
                plain.Color(color, (*samples)[i]);
                return color;
            });
    };
    for (const bool sums : {false, true}) {
        const int32_t mode = sums ? Code("ADMD") : Code("MXMD");
        const std::string what = sums ? "sum of " : "range mix of ";
        const auto ten = makeTen(mode);
        const PlainMixer<Source> plainTen{{ten.Record()}, control, sources};
        add(what + "10 layers", ten, plainTen);
        const auto hundred = make(mode, [&](size_t) { return SubShaderSlot(makeTen(mode).Wrapper()); });
        add(what + "100 layers in 11 mixers", hundred,
            PlainMixer<PlainMixer<Source>>{{hundred.Record()}, control, std::vector(kLayers, plainTen)});
    }

    const auto mix = makeTen(Code("MXMD"));
    AddWork(Section::kChange + "/Super_mixer, another smooth width" + kMeasured, [mix] {
        mix.Record().fSmoothWidth = 101 - mix.Record().fSmoothWidth;
        mix.Changed();
    });
    const auto laid = makeTen(Code("MXMD"));
    laid.Record().fDistribution = Code("AUDI");
    AddWork(Section::kChange + "/Super_mixer, ranges laid anew" + kMeasured, [laid] { laid.Changed(); });
}

void AddTop(const Samples& samples)
{
    const Source control(kOutputValue);
    const std::vector<Source> sources = MakeSources(kOutputSurface | kOutputColor);
    for (const bool overlap : {false, true}) {
        const auto top = MakeMixer<Super_mixer_topParams>(
            "Super_mixer_top", control, [&](size_t i) { return sources[i].Face(); });
        top.Record().fSmooth = !overlap;
        if (overlap)
            std::fill_n(top.Record().fRange, kLayers, TVector2(0, 100));
        PlainTop plain{{top.Record()}, control, sources};
        AddComparison(
            Section::kShading,
            overlap ? "Super_mixer_top ShadeSurface, 10 surfaces at once"
                    : "Super_mixer_top ShadeSurface, range mix of 10 surfaces",
            [=](size_t i) { return top.Surface((*samples)[i]); },
            [=](size_t i) mutable { return plain((*samples)[i]); });
    }
}

void AddPasses(const Samples& samples)
{
    const Source selector(kOutputValue);
    const Source surface(kOutputSurface | kOutputColor);
    const MeasuredShader<MultiPassManagerParams> manager("MultiPassManager");
    for (SubShaderSlot& slot : manager.Record().fSubShader)
        slot = surface.Face();
    manager.Record().fSubShader[0] = selector.Face();
    manager.Changed();
    std::vector<Source> passes(11, surface);
    passes[0] = selector;
    AddComparison(
        Section::kShading, "MultiPassManager ShadeSurface",
        [=](size_t i) { return manager.Surface((*samples)[i]); },
        [=, value = 0.0f](size_t i) mutable {
            ShadingIn& in = (*samples)[i];
            ShadingOut result;
            value = selector.Value(in);
            const int pass = CutToInt32((static_cast<double>(value) + 0.06) * 10.0);
            if (pass == 0) {
                result.SetDefaults();
                value = selector.Value(in);
                result.fColor.SetRGB(value);
                result.fColor.fAlpha = 0;
            } else {
                passes[static_cast<size_t>(pass)]->ShadeSurface(result, in);
                in.fChannelMask = kAllChannels;
            }
            return ChannelsOf(result);
        });

    const MeasuredShader<MultiPassControlParams> constant("MultiPassControl");
    constant.Record().fLevel = Code("LTEN");
    constant.Changed();
    AddComparison(
        Section::kShading, "MultiPassControl ShadeValue, last level",
        [=](size_t i) { return constant.Value((*samples)[i]); },
        [=, level = int32_t{Code("LTEN")}](size_t) {
            constexpr int32_t kCodes[] = {Code("LONE"), Code("LTWO"), Code("LTHR"), Code("LFOR"),
                Code("LFIV"), Code("LSIX"), Code("LSVN"), Code("LEGT"), Code("LNIN"), Code("LTEN")};
            constexpr float kLevels[]
                = {0.05f, 0.15f, 0.25f, 0.35f, 0.45f, 0.55f, 0.65f, 0.75f, 0.85f, 0.95f};
            for (int k = 0; k < 10; ++k)
                if (kCodes[k] == level)
                    return kLevels[k];
            return 0.0f;
        });
    const MeasuredShader<MultiPassControlParams> plugged("MultiPassControl");
    const Source color(kOutputColor);
    plugged.Record().fSubShader = color.Face();
    plugged.Changed();
    AddComparison(
        Section::kShading, "MultiPassControl ShadeValue, from a colour",
        [=](size_t i) { return plugged.Value((*samples)[i]); },
        [=, layer = TMCColorRGBA{}](size_t i) mutable {
            color.Color(layer, (*samples)[i]);
            return Luminance(layer);
        });

    const MeasuredShader<Shadow_passParams> shadow("Shadow_pass");
    shadow.Record().fSubShader = surface.Face();
    shadow.Changed();
    AddComparison(
        Section::kShading, "Shadow_pass ShadeSurface",
        [=](size_t i) { return shadow.Surface((*samples)[i]); },
        [=](size_t i) {
            ShadingOut result;
            surface->ShadeSurface(result, (*samples)[i]);
            (*samples)[i].fChannelMask = kAllChannels;
            return ChannelsOf(result);
        });
}

} // namespace

void AddLayers()
{
    const Samples samples = MakeSamples();
    AddMixers(samples);
    AddTop(samples);
    AddPasses(samples);
}
