#pragma once
#include "optics/ColorSystem.h"
#include "optics/GamutSearch.h"

/// The light that a wavelength is part of.
struct Illuminant {
    float fTemperature;     ///< kelvin
    bool fCustomIlluminant; ///< the ratio of Planck curves, T over 6500 K; otherwise D65 tilted by it
};

/// Relative power at a wavelength in nanometres, near 1 at 555 nm. Past 380 to 825 nm the power
/// of D65 stays that of the nearer end.
float SpectralWeight(float lambda, const Illuminant& illuminant);

/// One wavelength as the observer sees it.
struct Stimulus {
    Float3 xyz; ///< chromaticity
    Float3 XYZ; ///< tristimulus values
};
/// Past 380 to 825 nm the matching functions stay those of the nearer end.
Stimulus MonochromaticStimulus(float lambda, const Illuminant& illuminant);

/// `base` with the chromaticity of the illuminant as its white.
ColorSystem SystemWithIlluminant(const ColorSystem& base, const Illuminant& illuminant);

struct WavelengthColors {
    Float3 fRGB;      ///< linear, on the surface of the gamut
    Float3 fShadeRGB; ///< linear, shifted in L*a*b* where the colour is light; not limited to 0 to 1
    Float3 fShadeLab;
};
/// The colour of a wavelength (nm) under an illuminant, adapted from the white of `source` to that of
/// `destination` and drawn in L*a*b* towards the grey of `anchor` times its lightness, to where it meets the
/// gamut of `destination`.
/// The shift for shading is against the white of chromaticity (whiteX, whiteY). `depth` as in ProjectToGamut.
/// `search` is left with `fFound` clear if the wavelength misses the gamut.
WavelengthColors WavelengthColor(const ColorSystem& source, const ColorSystem& destination, float lambda,
    const Illuminant& illuminant, float whiteX, float whiteY, float anchor, int32_t depth,
    GamutSearch& search);
