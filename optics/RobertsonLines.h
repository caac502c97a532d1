#pragma once

// Isotemperature lines of A. R. Robertson, "Computation of Correlated Color Temperature and Distribution
// Temperature", J. Opt. Soc. Am. 58 (1968), with the corrected u 0.24792 at 325 mired.
namespace Robertson {

inline constexpr int kLines = 31;

/// Reciprocal temperatures, 1/K. The first stands for 0 and keeps its reciprocal finite.
inline constexpr float rt[kLines] = {
    1e-37f,
    10e-6f,
    20e-6f,
    30e-6f,
    40e-6f,
    50e-6f,
    60e-6f,
    70e-6f,
    80e-6f,
    90e-6f,
    100e-6f,
    125e-6f,
    150e-6f,
    175e-6f,
    200e-6f,
    225e-6f,
    250e-6f,
    275e-6f,
    300e-6f,
    325e-6f,
    350e-6f,
    375e-6f,
    400e-6f,
    425e-6f,
    450e-6f,
    475e-6f,
    500e-6f,
    525e-6f,
    550e-6f,
    575e-6f,
    600e-6f,
};

/// CIE 1960 u and v on the Planckian locus, and the slope of the isotemperature line through them.
struct IsotemperatureLine {
    float u, v, t;
};
// clang-format off
inline constexpr IsotemperatureLine uvt[kLines] = {
    {0.18006f, 0.26352f, -0.24341f}, {0.18066f, 0.26589f, -0.25479f}, {0.18133f, 0.26846f, -0.26876f},
    {0.18208f, 0.27119f, -0.28539f}, {0.18293f, 0.27407f, -0.30470f}, {0.18388f, 0.27709f, -0.32675f},
    {0.18494f, 0.28021f, -0.35156f}, {0.18611f, 0.28342f, -0.37915f}, {0.18740f, 0.28668f, -0.40955f},
    {0.18880f, 0.28997f, -0.44278f}, {0.19032f, 0.29326f, -0.47888f}, {0.19462f, 0.30141f, -0.58204f},
    {0.19962f, 0.30921f, -0.70471f}, {0.20525f, 0.31647f, -0.84901f}, {0.21142f, 0.32312f, -1.0182f},
    {0.21807f, 0.32909f, -1.2168f}, {0.22511f, 0.33439f, -1.4512f}, {0.23247f, 0.33904f, -1.7298f},
    {0.24010f, 0.34308f, -2.0637f}, {0.24792f, 0.34655f, -2.4681f}, {0.25591f, 0.34951f, -2.9641f},
    {0.26400f, 0.35200f, -3.5814f}, {0.27218f, 0.35407f, -4.3633f}, {0.28039f, 0.35577f, -5.3762f},
    {0.28863f, 0.35714f, -6.7262f}, {0.29685f, 0.35823f, -8.5955f}, {0.30505f, 0.35907f, -11.324f},
    {0.31320f, 0.35968f, -15.628f}, {0.32129f, 0.36011f, -23.325f}, {0.32931f, 0.36038f, -40.770f},
    {0.33724f, 0.36051f, -116.45f},
};
// clang-format on

} // namespace Robertson
