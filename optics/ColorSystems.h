#pragma once
#include "optics/ColorSystem.h"

/// Published RGB systems and a few displays. Only sRGBSystem enters a calculation.
namespace ColorSystems {

// clang-format off
inline constexpr ColorSystem AdobeRGB = {"Adobe RGB",
    {0.64f, 0.33f, 0.297361f}, {0.21f, 0.71f, 0.627355f}, {0.15f, 0.06f, 0.075285f},
    {0.312713f, 0.329016f, 1}, {0, 0, 0}, 2.2f};
inline constexpr ColorSystem sRGBSystem = {"sRGB     ",
    {0.64f, 0.33f, 0.212656f}, {0.3f, 0.6f, 0.715158f}, {0.15f, 0.06f, 0.072186f},
    {0.312713f, 0.329016f, 1}, {0, 0, 0}, 1};
inline constexpr ColorSystem NTSCsystem = {"NTSC",
    {0.67f, 0.33f, 0.298839f}, {0.21f, 0.71f, 0.586811f}, {0.14f, 0.08f, 0.11435f},
    {0.3101f, 0.3162f, 1}, {0, 0, 0}, 0};
inline constexpr ColorSystem SMPTEsystem = {"SMPTE",
    {0.63f, 0.34f, 0.212395f}, {0.31f, 0.595f, 0.701049f}, {0.155f, 0.07f, 0.086556f},
    {0.312713f, 0.329016f, 1}, {0, 0, 0}, 0};
inline constexpr ColorSystem CIEsystem = {"CIE",
    {0.735f, 0.265f, 0.176204f}, {0.274f, 0.717f, 0.812985f}, {0.167f, 0.009f, 0.010811f},
    {0.33333334f, 0.358562f, 1}, {0, 0, 0}, 0};
inline constexpr ColorSystem MyMonitor = {"Apple 17",
    {0.64208f, 0.356442f, 0.2653f}, {0.314654f, 0.588295f, 0.6383f}, {0.150953f, 0.100531f, 0.09665f},
    {0.316f, 0.328f, 1}, {0, 0, 0}, 2.2f};
inline constexpr ColorSystem AppleRGB = {"Apple RGB",
    {0.625f, 0.34f, 0.244634f}, {0.28f, 0.595f, 0.672034f}, {0.155f, 0.07f, 0.083332f},
    {0.312713f, 0.329016f, 1}, {0, 0, 0}, 1.8f};
inline constexpr ColorSystem Source = {"Source CS",
    {0.735f, 0.265f, 0.176204f}, {0.274f, 0.717f, 0.812985f}, {0.167f, 0.009f, 0.010811f},
    {0.345741f, 0.358666f, 1}, {0, 0, 0}, 2.2f};
inline constexpr ColorSystem Destination = {"Destination CS",
    {0.64208f, 0.356442f, 0.2653f}, {0.314654f, 0.588295f, 0.6383f}, {0.150953f, 0.100531f, 0.09665f},
    {0.345741f, 0.358666f, 1}, {0, 0, 0}, 2.2f};
inline constexpr ColorSystem MyMonitorsRGB = {"Apple 17",
    {0.642f, 0.358f, 0.222885f}, {0.318f, 0.596f, 0.63057f}, {0.153f, 0.103f, 0.135747f},
    {0.316f, 0.328f, 1}, {0, 0, 0}, 1};
inline constexpr ColorSystem TalunSystem = {"TalunsRGB",
    {0.625012f, 0.339979f, 0.244545f}, {0.279967f, 0.594953f, 0.672102f}, {0.154908f, 0.069936f, 0.083296f},
    {0.312636f, 0.328931f, 1}, {0, 0, 0}, 1};
// clang-format on

} // namespace ColorSystems
