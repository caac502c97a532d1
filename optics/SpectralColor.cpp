#include "optics/SpectralColor.h"
#include "frame/Numbers.h"
#include "optics/ColorSystems.h"
#include "optics/SpectralTables.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The ends of the tables and of an integration, nm.
constexpr double kFirstLambda = 380;
constexpr double kLastLambda = 825;

// Planck's curve over that of 6500 K, made 1 at 555 nm. Kept to these digits: published colours hang on their bits.
constexpr double kSecondRadiation = 1.43879e7;       // the second radiation constant, nm K
constexpr double kSecondRadiationOver555 = 25924.1;  // K
constexpr double kSecondRadiationOver6500 = 2213.52; // nm
constexpr double kPlanckOf6500At555 = 0.0188807;     // 1 / (e^(25924.1 / 6500) - 1)

/// Kept like them: e to these digits and a general power.
double PowerOfE(double exponent) { return std::pow(2.718281828459, exponent); }

/// Where a wavelength lies in the tables. Past its ends a table goes on with its end entry; NaN stays NaN.
double PlaceInTables(float lambda)
{
    constexpr int kLastEntry = kSpectralEntries - 1;
    const double place = (lambda - kFirstLambda) * kLastEntry / (kLastLambda - kFirstLambda);
    if (place < 0)
        return 0;
    return place > kLastEntry ? kLastEntry : place;
}

/// A wavelength in nm, with what doesn't depend on the illuminant.
struct Wavelength {
    float fLambda;
    float fD65;
    Float3 fMatching;     ///< x, y and z of the observer
    double fExponent6500; ///< of Planck's curve of 6500 K
    double fPower6500;

    Wavelength() = default;
    explicit Wavelength(float lambda)
        : fLambda(lambda), fExponent6500(kSecondRadiationOver6500 / lambda),
          fPower6500(PowerOfE(fExponent6500))
    {
        const double place = PlaceInTables(lambda);
        const int32_t below = std::max(CutToInt32(place), 0); // NaN begins at entry 0 and stays NaN
        const auto index = static_cast<size_t>(below);
        const size_t next = std::min<size_t>(index + 1, kSpectralEntries - 1);
        const float fraction = static_cast<float>(place) - static_cast<float>(below);
        const auto in = [=](const SpectralTable& table) {
            return table[index] + (table[next] - table[index]) * fraction;
        };
        fD65 = in(SpectralTables::D65Array);
        fMatching = {in(SpectralTables::XBar), in(SpectralTables::YBar), in(SpectralTables::ZBar)};
    }
};

/// The next step of an integration over the spectrum, nm. Its rounding is part of the stepping.
constexpr float NextLambda(float lambda) { return static_cast<float>(lambda + 0.1); }
constexpr size_t CountSteps()
{
    size_t count = 0;
    for (float lambda = static_cast<float>(kFirstLambda); lambda <= kLastLambda; lambda = NextLambda(lambda))
        ++count;
    return count;
}

using Steps = std::array<Wavelength, CountSteps()>;

Steps ComputeSteps()
{
    Steps steps;
    float lambda = static_cast<float>(kFirstLambda);
    for (Wavelength& step : steps) {
        step = Wavelength(lambda);
        lambda = NextLambda(lambda);
    }
    return steps;
}

/// Filled while the library loads, some 180 KB: made at its first use it would take a lock.
const Steps kSteps = ComputeSteps();

/// An illuminant together with what depends on its temperature alone.
class Spectrum {
public:
    explicit Spectrum(const Illuminant& illuminant)
        : fIlluminant(illuminant), fExponent(kSecondRadiationOver555 / illuminant.fTemperature),
          fPower(PowerOfE(fExponent))
    { }

    float Weight(const Wavelength& wave) const
    {
        const float ratio = PlanckRatio(wave);
        return fIlluminant.fCustomIlluminant ? ratio : ratio * wave.fD65;
    }

    Float3 XYZ(const Wavelength& wave) const
    {
        const float weight = Weight(wave);
        const auto [x, y, z] = wave.fMatching;
        return {x * weight, y * weight, z * weight};
    }

private:
    float PlanckRatio(const Wavelength& wave) const
    {
        constexpr double k = kPlanckOf6500At555;
        const double upper
            = k + k * PowerOfE(fExponent + wave.fExponent6500) - k * wave.fPower6500 - k * fPower;
        const float temperatureLambda = fIlluminant.fTemperature * wave.fLambda;
        return static_cast<float>(upper / (PowerOfE(kSecondRadiation / temperatureLambda) - 1));
    }

    Illuminant fIlluminant;
    double fExponent;
    double fPower;
};

Float3 Chromaticity(const Float3& xyz)
{
    const auto [X, Y, Z] = xyz;
    const float sum = X + Y + Z;
    return {X / sum, Y / sum, Z / sum};
}

// A light colour is shaded bluer than it is shown, by this much in a* and b*. Below kFullShift in L* that fades out,
// down to kNoShift. Kept to the digit, with no tie to the illuminant.
constexpr double kShiftA = -4.98;
constexpr double kShiftB = -38.84;
constexpr double kNoShift = 30;
constexpr double kFullShift = 45;
constexpr double kLightest = 100; // L* of white

Float3 ShiftForShading(const Float3& lab)
{
    return {lab[0], static_cast<float>(lab[1] + kShiftA), static_cast<float>(lab[2] + kShiftB)};
}

Float3 DisplayRGB(const Float3& lab, float whiteX, float whiteY)
{
    const Float3 white = {whiteX / whiteY, 1, (1 - whiteX - whiteY) / whiteY};
    const Float3 xyz = LabToXYZ(lab, white);
    const auto [x, y, z] = Chromaticity(xyz);
    return XyYToRGB(ColorSystems::sRGBSystem, ColorSystems::sRGBSystem, x, y, xyz[1]);
}

constexpr double kSecondTry = 0.01; // nm below a wavelength that meets no face

float Mix(double weight, float full, float none)
{
    return static_cast<float>(weight * full + (1 - weight) * none);
}

} // namespace

float SpectralWeight(float lambda, const Illuminant& illuminant)
{
    return Spectrum(illuminant).Weight(Wavelength(lambda));
}

Stimulus MonochromaticStimulus(float lambda, const Illuminant& illuminant)
{
    const Float3 xyz = Spectrum(illuminant).XYZ(Wavelength(lambda));
    return {Chromaticity(xyz), xyz};
}

ColorSystem SystemWithIlluminant(const ColorSystem& base, const Illuminant& illuminant)
{
    const Spectrum spectrum(illuminant);
    Float3 sum = {0, 0, 0};
    for (const Wavelength& step : kSteps)
        sum = sum + spectrum.XYZ(step);

    const auto [x, y, z] = Chromaticity(sum);
    ColorSystem system = base;
    system.xyYWhite[0] = x;
    system.xyYWhite[1] = y;
    return system;
}

WavelengthColors WavelengthColor(const ColorSystem& source, const ColorSystem& destination, float lambda,
    const Illuminant& illuminant, float whiteX, float whiteY, float anchor, int32_t depth,
    GamutSearch& search)
{
    const auto project = [&](float wavelength) {
        const Stimulus stimulus = MonochromaticStimulus(wavelength, illuminant);
        search.fFound = false;
        search.fCellCount = 0;
        const Float3 spectral
            = AdaptToWhite(source, destination, stimulus.xyz[0], stimulus.xyz[1], stimulus.XYZ[1]);
        return ProjectToGamut(destination, spectral, anchor, 0, 0, depth, search);
    };
    Residue projected = project(lambda);
    if (!search.fFound)
        projected = project(static_cast<float>(lambda - kSecondTry));

    const Float3 onSurface = FaceColor(projected);
    const float L = projected.fLab[0];
    if ((L > kFullShift && L <= kLightest) || !search.fFound) {
        const Float3 lab = ShiftForShading(projected.fLab);
        return {onSurface, DisplayRGB(lab, whiteX, whiteY), lab};
    }
    if (L >= kNoShift && L <= kFullShift) {
        const Float3 lab = ShiftForShading(projected.fLab);
        const Float3 shifted = DisplayRGB(lab, whiteX, whiteY);
        const double weight = (L - kNoShift) / (kFullShift - kNoShift);
        return {onSurface,
            {Mix(weight, shifted[0], onSurface[0]), Mix(weight, shifted[1], onSurface[1]),
                Mix(weight, shifted[2], onSurface[2])},
            lab};
    }
    return {onSurface, onSurface, projected.fLab};
}
