#include "bench/Bench.h"
#include "host/Scene.h"
#include "optics/Fresnel.h"
#include "optics/Iridescent.h"
#include <algorithm>

namespace {

using ColorSystems::sRGBSystem;

constexpr GUID kFresnelID = {0xBE9FA2A5, 0x5FBE, 0x4558, {0x80, 0x09, 0x7A, 0x1F, 0x1D, 0x7A, 0x68, 0x02}};
constexpr GUID kIridescentID = {0x95066A60, 0x9909, 0x11D7, {0xA9, 0x26, 0x54, 0x55, 0x43, 0x44, 0x52, 0x00}};

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
    const auto fresnel = MeasuredShader<FresnelParams>(kFresnelID);
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

/// A `Fresnel` that looks at the camera of a scene, and the angles that its lookups get.
void AddFresnel()
{
    fernwick::SceneDescription description;
    description.fElements.push_back({.fName = "Camera", .fPlace = {.fTranslation = {3, 4, 20}}});
    description.fCamera = "Camera";
    const auto scene = fernwick::MakeCounted<fernwick::Scene>(description);
    const Samples samples = MakeSamples(static_cast<ITreeElement*>(&scene->ShadedObject()));

    const auto tables = std::make_shared<AngleTables>();
    RefreshOptics({1, 0, 1, 0}, {1.51673f, 1e-5f, 1, 0.017f}, 589.3f, kReflectanceMode, *tables);
    const auto angles = std::make_shared<std::vector<float>>();
    for (const ShadingIn& in : *samples) {
        const TVector3 toCamera = TVector3(3, 4, 20) - in.fPointGlobal;
        const float dot = static_cast<float>(Dot(toCamera, in.fNormalGlobal));
        const double cross = Dot(toCamera, toCamera) * Dot(in.fNormalGlobal, in.fNormalGlobal) - dot * dot;
        angles->push_back(std::fabs(std::atan2(static_cast<float>(std::sqrt(std::max(cross, 0.0))), dot)));
    }
    const auto lookup = [=](size_t i) {
        const float share = FresnelLookup(*tables, kReflectanceMode, 50, (*angles)[i]);
        const float grey = std::clamp(share, 0.0f, 1.0f);
        return TMCColorRGBA{grey, grey, grey, 1};
    };
    const auto shade = [&](bool colored) {
        const MeasuredShader<FresnelParams> fresnel(kFresnelID);
        fresnel.Record().fColored = colored;
        fresnel.Changed();
        return [=](size_t i) { return fresnel.Color((*samples)[i]); };
    };
    AddComparison(Section::kLookup, "grey", shade(false), lookup);
    const std::string colored = Section::kLookup + "/coloured";
    AddPass(colored + kMeasured, shade(true));
    AddPass(colored + kReference, lookup);
    AddPass(Section::kLookup + "/the host calls of it" + kMeasured, [scene, samples](size_t i) {
        MCCountedPtr<ITreeElement> shaded, camera;
        MCCountedPtr<IScene> found;
        FindShadedTree((*samples)[i], shaded, found);
        FindTreeByName(found, TMCString255("Camera"), "", camera);
        return GlobalPosition(*camera);
    });
}

void AddIridescent(const Samples& samples)
{
    const MeasuredShader<IridescentParams> iridescent(kIridescentID);
    iridescent.Changed();
    const IridescentParams params = iridescent.Record();
    const TVector3 reference(1, 0, 0); // of azimuth and elevation 0
    const auto plain = [=](size_t i) {
        const TVector3& normal = (*samples)[i].fNormalGlobal;
        const double quotient = Dot(reference, normal) / (Length(reference) * Length(normal));
        const float angle = static_cast<float>(std::acos(std::clamp(quotient, -1.0, 1.0)));
        float sum[3] = {};
        for (const AngleBand& band : params.fBands) {
            const float center = static_cast<float>(band.fCenter * kRadiansPerDegree);
            const float rest = 1.0f - params.fBands[0].fWidth * std::fabs(angle - center);
            const float weight = rest > 0 ? rest : 0;
            sum[0] += weight * band.fColor.fRed;
            sum[1] += weight * band.fColor.fGreen;
            sum[2] += weight * band.fColor.fBlue;
        }
        return TMCColorRGBA{std::min(sum[0], 1.0f), std::min(sum[1], 1.0f), std::min(sum[2], 1.0f), 1};
    };
    AddComparison(
        Section::kShading, "Iridescent ShadeColor, fixed direction",
        [=](size_t i) { return iridescent.Color((*samples)[i]); }, plain);
}

} // namespace

void AddOptics()
{
    AddIridescent(MakeSamples());
    AddFresnel();
    AddChanges();
    AddGamut();
}
