#include "bench/Bench.h"
#include "host/scene/Scene.h"
#include "shaders/optics/Fresnel.h"
#include "shaders/optics/Iridescent.h"
#include <algorithm>

namespace {

using ColorSystems::sRGBSystem;

constexpr float kTemperatures[] = {4321, 7654};

/// The powers of one integration over the spectrum that a temperature moves: two in each of its steps.
double PowersOfSpectrum(float temperature)
{
    double sum = 0;
    for (float lambda = 380; lambda <= 825; lambda = static_cast<float>(lambda + 0.1)) {
        const float temperatureLambda = temperature * lambda;
        sum += std::pow(2.718281828459, 25924.1 / temperature + 2213.52 / lambda);
        sum += std::pow(2.718281828459, 1.43879e7 / temperatureLambda);
    }
    return sum;
}

/// Takes one of two temperatures in turn.
template <class Work> auto Alternating(Work work)
{
    return [work, next = size_t{0}]() mutable { work(kTemperatures[next ^= 1]); };
}

void AddChanges()
{
    const auto fresnel = MeasuredShader<FresnelParams>("Fresnel");
    fresnel.Record().fColored = true;
    fresnel.Changed();
    const auto add = [&](const std::string& row, auto change) {
        AddWork(Section::kChange + "/" + row + kMeasured, Alternating([=](float temperature) {
            change(fresnel.Record(), temperature);
            fresnel.Changed();
        }));
        AddWork(Section::kChange + "/" + row + kReference,
            Alternating([](float temperature) { benchmark::DoNotOptimize(PowersOfSpectrum(temperature)); }));
    };
    add("Fresnel coloured, another temperature",
        [](FresnelParams& params, float temperature) { params.fTemperature = temperature; });
    add("Fresnel coloured, another illuminant", [](FresnelParams& params, float temperature) {
        params.fIlluminantPreset = temperature == kTemperatures[0] ? 3 : 10;
    });
    const auto alone = [&](const std::string& row, auto change) {
        AddWork(Section::kChange + "/" + row + kMeasured, Alternating([=](float temperature) {
            change(fresnel.Record(), temperature == kTemperatures[0]);
            fresnel.Changed();
        }));
    };
    alone("Fresnel, colour on or off", [](FresnelParams& params, bool first) { params.fColored = first; });
    alone("Fresnel coloured, another wavelength",
        [](FresnelParams& params, bool first) { params.fWavelength = first ? 450 : 589.3f; });
    alone("Fresnel, another index",
        [](FresnelParams& params, bool first) { params.fIndex2Re = first ? 1.3f : 1.6f; });
    const auto spectrum = Section::kChange + "/the spectrum alone, another temperature";
    AddWork(spectrum + kMeasured, Alternating([](float temperature) {
        benchmark::DoNotOptimize(SystemWithIlluminant(sRGBSystem, {temperature, true}));
    }));
    AddWork(spectrum + kReference,
        Alternating([](float temperature) { benchmark::DoNotOptimize(PowersOfSpectrum(temperature)); }));
}

void AddGamut()
{
    const Illuminant illuminant = {6500, false};
    const ColorSystem system = SystemWithIlluminant(sRGBSystem, illuminant);
    const auto search = [=](float wavelength) {
        GamutSearch state;
        benchmark::DoNotOptimize(WavelengthColor(system, sRGBSystem, wavelength, illuminant,
            system.xyYWhite[0], system.xyYWhite[1], 0.9f, 7, state));
        return state.fCellCount;
    };
    for (const float wavelength : {430.0f, 480.0f, 530.0f, 589.3f, 650.0f}) {
        char name[32];
        std::snprintf(name, sizeof name, "colour of %g nm", static_cast<double>(wavelength));
        AddWork(
            Section::kGamut + "/" + name + kMeasured, [=] { search(wavelength); }, search(wavelength));
    }
}

struct PlainFresnel {
    AngleTables tables;
    TMCString255 camera{"Camera"};
    TVector3 toCamera;
    float angle = 0;

    PlainFresnel()
    {
        DeriveOptics({1, 0, 1, 0}, {1.51673f, 1e-5f, 1, 0.017f}, 589.3f, kReflectanceMode, tables);
    }
    TVector3 CameraPosition(const ShadingIn& in) const
    {
        MCCountedPtr<ITreeElement> shaded, found;
        MCCountedPtr<IScene> scene;
        FindShadedTree(in, shaded, scene);
        FindTreeByName(scene, camera, "", found);
        return GlobalPosition(*found);
    }
    float Lookup() const
    {
        return std::clamp(FresnelLookup(tables, kReflectanceMode, 50, angle), 0.0f, 1.0f);
    }
    TMCColorRGBA Grey(const ShadingIn& in)
    {
        toCamera = CameraPosition(in) - in.fPointGlobal;
        const float dot = static_cast<float>(Dot(toCamera, in.fNormalGlobal));
        const double cross = Dot(toCamera, toCamera) * Dot(in.fNormalGlobal, in.fNormalGlobal) - dot * dot;
        angle = std::fabs(std::atan2(static_cast<float>(std::sqrt(std::max(cross, 0.0))), dot));
        const float grey = Lookup();
        return {grey, grey, grey, 1};
    }
    TMCColorRGBA Colored(const ShadingIn& in)
    {
        const auto [red, green, blue] = HSLToRGB({0.13f, Grey(in).fRed, 0.7f}); // any hue takes as long
        return {red, green, blue, 1};
    }
};

/// A `Fresnel` that looks at the camera of a scene.
void AddFresnel()
{
    fernwick::SceneDescription description;
    description.fElements.push_back({.fName = "Camera", .fPlace = {.fTranslation = {3, 4, 20}}});
    description.fCamera = "Camera";
    const auto scene = fernwick::MakeCounted<fernwick::Scene>(description);
    const Samples samples = MakeSamples(static_cast<ITreeElement*>(&scene->ShadedObject()));
    const auto shade = [&](bool colored) {
        const MeasuredShader<FresnelParams> fresnel("Fresnel");
        fresnel.Record().fColored = colored;
        fresnel.Changed();
        return [=, keep = scene](size_t i) { return fresnel.Color((*samples)[i]); };
    };
    AddComparison(Section::kHost, "Fresnel ShadeColor, grey", shade(false),
        [samples, plain = PlainFresnel()](size_t i) mutable { return plain.Grey((*samples)[i]); });
    const std::string colored = Section::kHost + "/Fresnel ShadeColor, coloured";
    AddPass(colored + kMeasured, shade(true));
    AddPass(colored + kReference,
        [samples, plain = PlainFresnel()](size_t i) mutable { return plain.Colored((*samples)[i]); });
    AddPass(Section::kHost + "/the host calls of Fresnel alone" + kMeasured,
        [samples, plain = PlainFresnel()](size_t i) { return plain.CameraPosition((*samples)[i]); });
    AddPass(Section::kHost + "/the table lookup of Fresnel alone" + kMeasured,
        [plain = PlainFresnel()](size_t i) mutable {
            plain.angle = static_cast<float>(i) * 1.5f / kSampleCount;
            return plain.Lookup();
        });
}

struct PlainIridescent {
    IridescentParams p;
    TVector3 reference{1, 0, 0}; // of azimuth and elevation 0
    float angle = 0;
    float weights[kAngleBandCount] = {};

    TMCColorRGBA operator()(const ShadingIn& in)
    {
        angle = AngleBetween(reference, in.fNormalGlobal);
        if (p.fGrey) {
            const float grey = static_cast<float>(angle / kPi);
            return {grey, grey, grey, 1};
        }
        float sum[3] = {};
        for (int i = 0; i < kAngleBandCount; ++i) {
            const AngleBand& band = p.fBands[i];
            const float center = static_cast<float>(band.fCenter * kRadiansPerDegree);
            const float rest = 1.0f - p.fBands[0].fWidth * std::fabs(angle - center);
            weights[i] = rest > 0 ? rest : 0;
            sum[0] += weights[i] * band.fColor.fRed;
            sum[1] += weights[i] * band.fColor.fGreen;
            sum[2] += weights[i] * band.fColor.fBlue;
        }
        return {std::min(sum[0], 1.0f), std::min(sum[1], 1.0f), std::min(sum[2], 1.0f), 1};
    }
};

void AddIridescent(const Samples& samples)
{
    for (const bool grey : {false, true}) {
        const MeasuredShader<IridescentParams> iridescent("Iridescent");
        iridescent.Record().fGrey = grey;
        iridescent.Changed();
        AddComparison(
            Section::kShading,
            grey ? "Iridescent ShadeColor, grey" : "Iridescent ShadeColor, fixed direction",
            [=](size_t i) { return iridescent.Color((*samples)[i]); },
            [=, plain = PlainIridescent{iridescent.Record()}](
                size_t i) mutable { return plain((*samples)[i]); });
    }
}

} // namespace

void AddOptics()
{
    AddIridescent(MakeSamples());
    AddFresnel();
    AddChanges();
    AddGamut();
}
