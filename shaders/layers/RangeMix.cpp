#include "shaders/layers/RangeMix.h"
#include <cmath>

int32_t ColorLevel(const TMCColorRGBA& color) { return CutToInt32(100.0 * ExactLuminance(color)); }

float HalfSineInFloat(float edge, double phase)
{
    const float argument = static_cast<float>(edge * kPi + phase);
    const float sine = std::sin(argument);
    return static_cast<float>(0.5 * sine + 0.5);
}

float HalfSineInDouble(float edge, double phase)
{
    const double sine = std::sin(edge * kPi + phase);
    return static_cast<float>(0.5 * sine + 0.5);
}

float EdgeFade::Weight(const TVector2& range, float value, float& edge) const
{
    const float low = range[0];
    const float high = range[1];
    const float middle = (low + high) / 2.0f;
    const float width = (high - low) * static_cast<float>(fSmoothWidth) / 100.0f;
    if (value > middle && high != 100.0f) {
        edge = (high - value) / width;
        edge = edge > 1.0f ? 0.0f : 1.0f - edge;
        return fLinearEdge ? 1.0f - edge : fCurve(edge, kHalfPi);
    }
    if (middle > value && low != 0.0f) {
        edge = (value - low) / width;
        if (edge > 1.0f)
            edge = 1.0f;
        return fLinearEdge ? edge : fCurve(edge, -kHalfPi);
    }
    return 1.0f;
}

int32_t DistributeRanges(std::span<TVector2> ranges, std::span<const ConnectedShader> layers)
{
    const auto count = static_cast<int32_t>(
        std::ranges::count_if(layers, [](const ConnectedShader& layer) { return static_cast<bool>(layer); }));
    int32_t passed = 0;
    for (size_t layer = 0; layer < layers.size(); ++layer)
        if (layers[layer]) {
            const int32_t low = passed * 100 / count;
            ++passed;
            const int32_t high = passed * 100 / count;
            ranges[layer] = {static_cast<float>(low), static_cast<float>(high)};
        }
    return count;
}
