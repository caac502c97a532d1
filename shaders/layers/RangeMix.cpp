#include "shaders/layers/RangeMix.h"

int32_t ColorLevel(const TMCColorRGBA& color) { return CutToInt32(100.0 * ExactLuminance(color)); }

int32_t CountConnected(std::span<const ConnectedShader> layers)
{
    return static_cast<int32_t>(
        std::ranges::count_if(layers, [](const ConnectedShader& layer) { return static_cast<bool>(layer); }));
}

int32_t DistributeRanges(std::span<TVector2> ranges, std::span<const ConnectedShader> layers)
{
    const int32_t count = CountConnected(layers);
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
