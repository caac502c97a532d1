#include "optics/ColorSystems.h"
#include "optics/FresnelOptics.h"
#include "optics/SpectralColor.h"
#include "tests/optics/Mark.h"
#include <gtest/gtest.h>

// Other tests hold the results against published equations, within what float allows. Here each rounding counts: which
// sums, squares and roots are formed in float and which in double. The bits are those of the C library's maths.
#ifndef _WIN32

namespace {

using ColorSystems::sRGBSystem;

class Numbers {
public:
    void Add(float number) { fNumbers.push_back(number); }
    void Add(const Float3& three) { fNumbers.insert(fNumbers.end(), three.begin(), three.end()); }
    void Add(Complex number) { fNumbers.insert(fNumbers.end(), {number.re, number.im}); }
    uint32_t Mark() const { return ::Mark(fNumbers); }

private:
    std::vector<float> fNumbers;
};

TEST(Bits, OfComplexFunctions)
{
    Numbers numbers;
    std::vector<float> heights = {0, 2e-5f, -0.013f};
    for (float y = -2.9f; y < 3; y += 0.0913f)
        heights.push_back(y);
    for (float x = -2.9f; x < 3; x += 0.0371f)
        for (const float y : heights) {
            const Complex z = {x, y};
            for (const Complex result :
                {Arcsine(z), Sine(z), Cosine(z), z / Complex{1.3f, -y}, Arcsine(z * z)})
                numbers.Add(result);
        }
    for (const Complex z : {Complex{0.687100232f, 0.214599803f}, {0.812900841f, 0.530800164f},
             {0.853601038f, 0.248699725f}, {0.909101307f, 0.540100098f}, {0.990501702f, 0.16809991f}})
        numbers.Add(Arcsine(z)); // where the order of a sum tells
    EXPECT_EQ(numbers.Mark(), 3671817463u);
}

TEST(Bits, OfFresnelEquations)
{
    Numbers numbers;
    const OpticalInterface metal = {{1.1f, 0.01f}, {0.47f, 2.81f}, 1.2f, 3.7f};
    const OpticalInterface glass = {{1, 0}, {1.51673f, 1e-5f}, 1, 1};
    for (float angle = 0; angle < 3.14f; angle += 0.0071f)
        for (const OpticalInterface& boundary : {metal, glass})
            for (const PolarizedShares shares :
                {Reflectance(boundary, {angle, 0}), Transmittance(boundary, {angle, 0})}) {
                numbers.Add(shares.fS);
                numbers.Add(shares.fP);
            }
    for (float wavelength = 381; wavelength < 825; wavelength += 1.37f)
        numbers.Add(DispersedIndex(wavelength, 1 + wavelength / 700, 0.043f));
    AngleTables tables;
    for (float wavelength = 381; wavelength < 825; wavelength += 0.31f) {
        const DerivedOptics derived
            = DeriveOptics({1.1f, 0, 1, 0}, {1.62f, 7.3f, 0.94f, 0.71f}, wavelength, 0, tables);
        numbers.Add(Complex{derived.fIndex2ReAtWavelength, derived.fIndex2ImAtWavelength});
    }
    DeriveOptics({1.1f, 0, 1, 0}, {1.62f, 0.3f, 0.94f, 0.014f}, 471.3f, kReflectanceMode, tables);
    for (float angle = 0; angle < 3.1f; angle += 0.0013f)
        numbers.Add(FresnelLookup(tables, kReflectanceMode, angle * 43, angle));
    EXPECT_EQ(numbers.Mark(), 4262035788u);
}

TEST(Bits, OfColours)
{
    Numbers numbers;
    const Float3 white = XyYToXYZ(ColorSystems::Source.xyYWhite);
    for (int i = 1; i < 2000; ++i) {
        const float step = static_cast<float>(i);
        const float x = 0.2f + 0.0002f * step, y = 0.6f - 0.00015f * step, Y = 0.0003f * step * step / 1500;
        const Float3 lab = XYZToLab(XyYToXYZ({x, y, Y}), white);
        numbers.Add(lab);
        numbers.Add(LabToXYZ(lab, white));
        numbers.Add(AdaptToWhite(ColorSystems::Source, sRGBSystem, x, y, Y));
        Float3 rgb = XyYToRGB(ColorSystems::AdobeRGB, ColorSystems::Source, x, y, Y);
        numbers.Add(rgb);
        const ColorHSL hsl = RGBToHSL(rgb);
        numbers.Add({hsl.fHue, hsl.fLightness, hsl.fSaturation});
        numbers.Add(HSLToRGB({hsl.fHue, hsl.fLightness, 0.37f}));
        EncodeColor(i % 2 == 0 ? sRGBSystem : ColorSystems::AppleRGB, rgb[0], rgb[1], rgb[2]);
        numbers.Add(rgb);
        float temperature = 0;
        CorrelatedTemperature(0.9f + 0.0004f * step, 1, 1.7f - 0.0008f * step, temperature);
        numbers.Add(temperature);
    }
    EXPECT_EQ(numbers.Mark(), 49502216u);
}

TEST(Bits, OfWavelengths)
{
    Numbers numbers;
    for (const Illuminant& illuminant :
        {Illuminant{6500, false}, {3000, false}, {4321, true}, {9300, true}}) {
        const ColorSystem source = SystemWithIlluminant(sRGBSystem, illuminant);
        numbers.Add(source.xyYWhite);
        const auto [whiteX, whiteY, whiteLuminance] = source.xyYWhite;
        for (float lambda = 380; lambda <= 825; lambda += 8.9f) {
            const Stimulus stimulus = MonochromaticStimulus(lambda, illuminant);
            numbers.Add(stimulus.xyz);
            numbers.Add(stimulus.XYZ);
            GamutSearch search;
            const WavelengthColors colors
                = WavelengthColor(source, sRGBSystem, lambda, illuminant, whiteX, whiteY, 0.9f, 7, search);
            for (const Float3& color : {colors.fRGB, colors.fShadeLab})
                numbers.Add(color);
            if (search.fFound)
                numbers.Add(colors.fShadeRGB);
        }
    }
    EXPECT_EQ(numbers.Mark(), 23890806u);
}

} // namespace

#endif
