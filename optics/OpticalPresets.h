#pragma once
#include <cstdint>

/// A medium at the reference wavelength of 589.3 nm.
struct OpticalMedium {
    float fIndexRe;
    float fIndexIm;
    float fPermeability; ///< relative magnetic permeability
    float fDispersion;   ///< strength of the dispersion, see DispersedIndex
};

inline constexpr int32_t kNoPreset = 31;

inline constexpr OpticalMedium kOpticalPresets[kNoPreset] = {
    {1.33283f, 1e-5f, 1, 0.01794f},
    {1.00027f, 0, 1, 0.01119f},
    {1.51673f, 1e-5f, 1, 0.0089f},
    {2.414f, 1e-5f, 0.999979f, 0.044f},
    {1.805f, 1e-5f, 1, 0.032f},
    {1.56f, 1e-5f, 1, 0.02f},
    {1.58523f, 1e-5f, 1, 0.025776f},
    {0.121f, 3.5f, 0.999974f, 0.01136f},
    {0.25f, 2.84f, 0.999962f, -1.08f},
    {0.93f, 5.85f, 1.000022f, 10},
    {0.46818f, 2.80877f, 0.99999f, 0.95525f},
    {1.18f, 2.5f, 1, 0.8f},
    {2.93f, 2, 300, -0.1088f},
    {1.51673f, 2, 2000, -1},
    {1.36f, 1e-5f, 1, 0.02f},
    {1.54f, 1e-5f, 1, 0.09f},
    {1.554f, 0.05f, 0.94f, 0.013f},
    {1.605f, 0.04f, 1, 0.044f},
    {1.309f, 0.1f, 1, 0.04f},
    {1.779f, 0.4f, 1, 0.044f},
    {1.516f, 0.1f, 1, 0.04f},
    {1.62f, 0.1f, 0.94f, 0.014f},
    {1.65f, 3.5f, 0.999974f, 0.02f},
    {1.39f, 7.1f, 4.000022f, -1.182f},
    {2.33f, 3.5f, 0.999974f, 0.02f},
    {2.16f, 7.1f, 1.000022f, -1.182f},
    {1.488f, 1, 1.000022f, 0.08f},
    {1.5f, 2.5f, 1.000022f, 0.8f},
    {1.37f, 1e-5f, 1, 0.04f},
    {1.34f, 1e-5f, 1, 0.02f},
    {1.34f, 1e-5f, 1, 0.01f},
};
