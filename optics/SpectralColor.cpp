#include "optics/SpectralColor.h"
#include "frame/Numbers.h"
#include "optics/ColorSystems.h"
#include "optics/SpectralTables.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Kept: e to these digits and a general power, so that published colours keep their bits.
double PowerOfE(double exponent) { return std::pow(2.718281828459, exponent); }

/// A wavelength in nm, with what doesn't depend on the illuminant.
struct Wavelength {
    float fLambda;
    float fD65;
    Float3 fMatching;     ///< x, y and z of the observer
    double fExponent6500; ///< of Planck's curve of 6500 K
    double fPower6500;

    Wavelength() = default;
    explicit Wavelength(float lambda)
        : fLambda(lambda), fExponent6500(2213.52 / lambda), fPower6500(PowerOfE(fExponent6500))
    {
        // Past its ends a table goes on with its end entry; NaN gives NaN from entry 0.
        const double place = std::clamp((lambda - 380.0) * 511.0 / 445.0, 0.0, kSpectralEntries - 1.0);
        const int32_t below = std::max(CutToInt32(place), 0);
        const auto index = static_cast<size_t>(below);
        const size_t next = std::min<size_t>(index + 1, kSpectralEntries - 1);
        const float fraction = static_cast<float>(place) - static_cast<float>(below);
        const auto in = [=](const SpectralTable& table) {
            return table[index] + (table[next] - table[index]) * fraction;
        };
        fD65 = in(D65Array);
        fMatching = {in(XBar), in(YBar), in(ZBar)};
    }
};

// The steps of an integration over the spectrum, in nm. The rounding of each is part of the stepping.
constexpr float kFirstLambda = 380;
constexpr float kLastLambda = 825;
constexpr float NextLambda(float lambda) { return static_cast<float>(lambda + 0.1); }
constexpr size_t CountSteps()
{
    size_t count = 0;
    for (float lambda = kFirstLambda; lambda <= kLastLambda; lambda = NextLambda(lambda))
        ++count;
    return count;
}

using Steps = std::array<Wavelength, CountSteps()>;

Steps ComputeSteps()
{
    Steps steps;
    float lambda = kFirstLambda;
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
        : fIlluminant(illuminant), fExponent(25924.1 / illuminant.fTemperature), fPower(PowerOfE(fExponent))
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
    /// Planck's curve over that of 6500 K, 1 at 555 nm. 1.43879e7 is the second radiation constant in nm K;
    /// 25924.1 and 2213.52 are that over 555 nm and over 6500 K; 0.0188807 is 1 / (e^(25924.1 / 6500) - 1).
    float PlanckRatio(const Wavelength& wave) const
    {
        const double upper = 0.0188807 + 0.0188807 * PowerOfE(fExponent + wave.fExponent6500)
            - 0.0188807 * wave.fPower6500 - 0.0188807 * fPower;
        const float temperatureLambda = fIlluminant.fTemperature * wave.fLambda;
        return static_cast<float>(upper / (PowerOfE(1.43879e7 / temperatureLambda) - 1));
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

Float3 ShiftForShading(const Float3& lab)
{
    return {lab[0], static_cast<float>(lab[1] + -4.98), static_cast<float>(lab[2] + -38.84)};
}

Float3 DisplayRGB(const Float3& lab, float whiteX, float whiteY)
{
    const Float3 white = {whiteX / whiteY, 1, (1 - whiteX - whiteY) / whiteY};
    const Float3 xyz = LabToXYZ(lab, white);
    const auto [x, y, z] = Chromaticity(xyz);
    return XyYToRGB(ColorSystems::sRGBSystem, ColorSystems::sRGBSystem, x, y, xyz[1]);
}

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
        projected = project(static_cast<float>(lambda - 0.01));

    const Float3 onSurface = FaceColor(projected);
    const float L = projected.fLab[0];
    if ((L > 45 && L <= 100) || !search.fFound) {
        const Float3 lab = ShiftForShading(projected.fLab);
        return {onSurface, DisplayRGB(lab, whiteX, whiteY), lab};
    }
    if (L >= 30 && L <= 45) {
        const Float3 lab = ShiftForShading(projected.fLab);
        const Float3 shifted = DisplayRGB(lab, whiteX, whiteY);
        const double weight = (L - 30.0) / 15.0;
        return {onSurface,
            {Mix(weight, shifted[0], onSurface[0]), Mix(weight, shifted[1], onSurface[1]),
                Mix(weight, shifted[2], onSurface[2])},
            lab};
    }
    return {onSurface, onSurface, projected.fLab};
}
