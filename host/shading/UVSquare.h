#pragma once
#include "frame/ShadingIn.h"

namespace fernwick {

class Graph;

/// The UV square from (0, 0, 0) to (1, 1, 0) on the shaded object, where the graph's scene has put it.
class UVSquare {
public:
    /// @param graph  outlives the square and its samples
    explicit UVSquare(const Graph& graph);

    /// The sample at U and V: the point (U, V, 0) with the normal (0, 0, 1) and the X and Y axes as derivatives.
    ShadingIn SampleAt(float u, float v) const;

    /// The coordinate of the centre of a pixel, of `count` along a side.
    static float CenterOf(int pixel, int count) { return static_cast<float>((pixel + 0.5) / count); }

private:
    IMCUnknown* fInstance;
    TTransform3D fToWorld;

    TVector3 Turned(const TVector3& vector) const;
};

} // namespace fernwick
