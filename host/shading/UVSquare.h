#pragma once
#include "frame/ShadingIn.h"

namespace fernwick {

class Graph;
class SceneElement;

/// The UV square from (0, 0, 0) to (1, 1, 0) on an element, where its scene has put it.
class UVSquare {
public:
    /// The square on the shaded object.
    /// @param graph  outlives the square and its samples
    explicit UVSquare(const Graph& graph);
    /// @param element  outlives the square and its samples; null for none, and the square lies in the world as it is
    explicit UVSquare(SceneElement* element);

    /// The sample at U and V: the point (U, V, 0) with the normal (0, 0, 1) and the X and Y axes as derivatives.
    ShadingIn SampleAt(float u, float v) const
    {
        ShadingIn in;
        Fill(u, v, in);
        return in;
    }

    /// Fills every field of a sample but the host's own spans.
    void Fill(float u, float v, ShadingIn& in) const
    {
        in.fPointGlobal = {PointAlong(0, u, v), PointAlong(1, u, v), PointAlong(2, u, v)};
        in.fNormalGlobal = fNormal;
        in.fPointLocal = {u, v, 0};
        in.fNormalLocal = {0, 0, 1};
        in.fUV = {u, v};
        in.fDerivU = fDerivU;
        in.fDerivV = fDerivV;
        in.fChannelMask = 0;
        in.fInstance = fInstance;
    }

    /// The coordinate of the centre of a pixel, of `count` along a side.
    static float CenterOf(int pixel, int count) { return static_cast<float>((pixel + 0.5) / count); }

private:
    IMCUnknown* fInstance;
    TTransform3D fToWorld;
    TVector3 fNormal; // and the derivatives, in world coordinates
    TVector3 fDerivU;
    TVector3 fDerivV;

    TVector3 Turned(const TVector3& vector) const;
    float PointAlong(uint32_t row, float u, float v) const
    {
        const auto& factors = fToWorld.fMatrix[row];
        return 0.0f + factors[0] * u + factors[1] * v + factors[2] * 0.0f + fToWorld.fTranslation[row];
    }
};

} // namespace fernwick
