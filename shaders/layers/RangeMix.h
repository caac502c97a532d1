#pragma once
#include "frame/ShaderOf.h"
#include "shaders/layers/LayerSlots.h"
#include <algorithm>
#include <cmath>
#include <span>

/// Slots of a range mixer. Layer slot i goes with `fRange[i - kFirstLayerSlot]`.
constexpr int kControlSlot = 0;
constexpr int kShiftSlot = 1;
constexpr int kFirstLayerSlot = 2;
constexpr int kMixerSlotCount = 12;

/// What `fColorLevel` tells of `fColor`: its luminance in percent, in double, cut toward zero.
int32_t ColorLevel(const TMCColorRGBA& color);

/// Half a sine wave between 0 and 1 over `edge` 0 to 1: rising for the phase -pi/2, falling for pi/2.
using EdgeCurve = float (*)(float edge, double phase);

/// The sine's argument rounded to float, and the float sine.
inline float HalfSineInFloat(float edge, double phase)
{
    const float argument = static_cast<float>(edge * kPi + phase);
    const float sine = std::sin(argument);
    return static_cast<float>(0.5 * sine + 0.5);
}

/// All in double, the result alone rounded to float.
inline float HalfSineInDouble(float edge, double phase)
{
    const double sine = std::sin(edge * kPi + phase);
    return static_cast<float>(0.5 * sine + 0.5);
}

/// How the edges of a layer's range fade.
template <EdgeCurve kCurve> struct EdgeFade {
    int32_t fSmoothWidth; ///< percent of the range's width
    bool fLinearEdge;     ///< a straight ramp, else `kCurve`

    /// The weight of a layer at `value` percent. Edges at exactly 0 and 100 never fade. A width of 0 cuts hard
    /// inside the range and gives NaN on its very edge.
    /// @param edge  receives the position inside the fade; untouched where nothing fades
    float Weight(const TVector2& range, float value, float& edge) const
    {
        const float low = range[0];
        const float high = range[1];
        const float middle = (low + high) / 2.0f;
        const float width = (high - low) * static_cast<float>(fSmoothWidth) / 100.0f;
        if (value > middle && high != 100.0f) {
            edge = (high - value) / width;
            edge = edge > 1.0f ? 0.0f : 1.0f - edge;
            return fLinearEdge ? 1.0f - edge : kCurve(edge, kHalfPi);
        }
        if (middle > value && low != 0.0f) {
            edge = (value - low) / width;
            if (edge > 1.0f)
                edge = 1.0f;
            return fLinearEdge ? edge : kCurve(edge, -kHalfPi);
        }
        return 1.0f;
    }
};

int32_t CountConnected(std::span<const ConnectedShader> layers);

/// Cuts 0 to 100 percent into equal ranges for the connected layers, in slot order and whole percents. Ranges
/// of the others stay.
/// @param layers  the shaders of the layer slots, as many as there are ranges
/// @return the number of connected layers
int32_t DistributeRanges(std::span<TVector2> ranges, std::span<const ConnectedShader> layers);

/// What the two range mixers do alike: the control value, its shift, the ranges and the weights of the layers.
///
/// A sample's temporaries are members: one object serves one thread at a time.
template <class Class, class Params> class RangeMix : public ShaderOf<Class, Params> {
protected:
    RangeMix() { this->fParams.fColorLevel = ColorLevel(this->fParams.fColor); }
    ~RangeMix() = default;

    /// Compares what both mixers have. `fLinearEdge` is left out on purpose: mixers that differ only there count
    /// as the same.
    bool SameMix(const Params& other) const
    {
        const Params& own = this->fParams;
        return std::ranges::equal(own.fRange, other.fRange)
            && std::ranges::equal(own.fSubShader, other.fSubShader) && own.fMixStyle == other.fMixStyle
            && own.fSmooth == other.fSmooth && own.fSmoothWidth == other.fSmoothWidth
            && own.fShiftAmount == other.fShiftAmount && own.fDistribution == other.fDistribution
            && own.fLastIsDefault == other.fLastIsDefault && own.fBypass == other.fBypass
            && own.fColorLevel == other.fColorLevel && own.fColor.Equals(other.fColor);
    }

    /// Connects the slots, forgets the last sample and derives the ranges and the colour level.
    MCErr RefreshMix()
    {
        Params& params = this->fParams;
        const MCErr status = ConnectLayers(params.fSubShader, fShader, fShaderKinds);
        fLastValue = 0;
        if (params.fDistribution == Code("AUDI"))
            fActiveCount = DistributeRanges(params.fRange, Layers());
        params.fColorLevel = ColorLevel(params.fColor);
        return status;
    }

    /// The bypass: the control's colour into `fLayerColor`, whatever its kinds. An empty slot raises the counted
    /// pointer's report.
    /// @return false for an empty slot
    bool AskControlColor(bool& fullArea, ShadingIn& in)
    {
        IShellShader* const control = fShader[kControlSlot].operator->();
        if (control == nullptr)
            return false;
        control->ShadeColor(fLayerColor, fullArea, in);
        return true;
    }

    /// Finds the sample's control value in percent, shifted if the mixer shifts, and starts the count of layers.
    /// @param colorKinds  the kinds for which control and shift are asked for their colour
    /// @return false when the control gives no number
    bool ReadControl(uint32_t colorKinds, bool& fullArea, ShadingIn& in)
    {
        if (!ReadSlot(kControlSlot, colorKinds, fValue, fullArea, in))
            return false;
        fValue = fValue > 1.0f ? fLastValue : fValue * 100.0f;
        if (this->fParams.fMixStyle == Code("SHMX")) {
            if (!ReadSlot(kShiftSlot, colorKinds, fShift, fullArea, in))
                fShift = 0.5f;
            const double shifted = fValue + this->fParams.fShiftAmount * (fShift - 0.5);
            fValue = shifted > 0 ? static_cast<float>(shifted) : 0.0f;
            if (fValue > 100.0f)
                fValue = 100.0f;
        }
        fLastValue = fValue;
        fActiveCount = 0;
        return true;
    }

    /// Whether the layer takes part in the sample; if so it is counted, and `fWeight` is set. Both ends belong
    /// to a range, and the last layer may stand in for all.
    template <EdgeCurve kCurve> bool TakeLayer(int slot)
    {
        if (!fShader[slot])
            return false;
        const Params& params = this->fParams;
        const TVector2& range = params.fRange[slot - kFirstLayerSlot];
        const bool inside = fValue >= range[0] && range[1] >= fValue;
        if (!inside && !(fActiveCount == 0 && params.fLastIsDefault && slot == kMixerSlotCount - 1))
            return false;
        fWeight = 1.0f;
        if (params.fSmooth)
            fWeight = EdgeFade<kCurve>{params.fSmoothWidth, params.fLinearEdge}.Weight(range, fValue, fEdge);
        ++fActiveCount;
        return true;
    }

    std::span<const ConnectedShader> Layers() const { return std::span(fShader).subspan(kFirstLayerSlot); }

    ConnectedShader fShader[kMixerSlotCount];
    TMCColorRGBA fLayerColor = {0, 0, 0, 0};
    float fValue = 0; // the control in percent; value layers then overwrite it
    int32_t fActiveCount = 0;
    uint32_t fShaderKinds[kMixerSlotCount] = {};
    float fLastValue = 0; // percent, of the sample before
    float fShift = 0;
    float fWeight = 1; // a whole layer's, for an addition before any range mix
    float fEdge = 0;

private:
    bool ReadSlot(int slot, uint32_t colorKinds, float& number, bool& fullArea, ShadingIn& in)
    {
        return ReadNumber(fShader[slot], fShaderKinds[slot], colorKinds, number, fLayerColor, fullArea, in);
    }
};
