#include "shaders/mapping/Location.h"
#include <cmath>

namespace {

/// The height of a ramp at `x`. Equal ends give 1 there, and NaN gives 1 too.
/// @param disturbance  moves `x`, in percent of the ramp's width
float RampValue(float first, float second, float x, bool falling, float disturbance)
{
    // 0 unless disturbed; NaN (infinity times 0) for an endless ramp, whose samples then get 1.
    const float moved = std::fabs(first - second) * disturbance;
    if (moved != 0)
        x = static_cast<float>(x + moved / 100.0);
    const float lower = falling ? first : second;
    const float upper = falling ? second : first;
    if (upper > x && x > lower) {
        const float way = (x - lower) / (upper - lower);
        return falling ? 1.0f - way : way;
    }
    const bool beyondFirst = falling ? first >= x : x >= first;
    const bool beyondSecond = falling ? x >= second : second >= x;
    return beyondSecond && !beyondFirst ? 0.0f : 1.0f;
}

} // namespace

bool Location::SameParams(const LocationParams& other) const
{
    return &fParams == &other // kept: two objects never count as the same
        && fParams.fSpace == other.fSpace && fParams.fDisturbPercent == other.fDisturbPercent
        && fParams.fCombine == other.fCombine && fParams.fUseSubShader == other.fUseSubShader
        && fParams.fSubShader == other.fSubShader;
}

MCErr Location::ExtensionDataChanged()
{
    for (int i = 0; i < 3; ++i) {
        const LocationAxis& axis = fParams.fAxes[i];
        // A NaN edge counts as the other one. Libraries differ in what `fmin` makes of a signalling one.
        const float edgeA = std::isnan(axis.fEdgeA) ? axis.fEdgeB : axis.fEdgeA;
        const float edgeB = std::isnan(axis.fEdgeB) ? edgeA : axis.fEdgeB;
        const float lower = edgeB < edgeA ? edgeB : edgeA;
        const float upper = edgeA < edgeB ? edgeB : edgeA;
        const bool falling = axis.fDirection == Code("GRTR");
        LocationRamp& ramp = fRamps[i];
        ramp.fEnabled = axis.fEnabled;
        ramp.fFalling = falling ? 1 : 0;
        ramp.fFirst = falling ? lower : upper;
        ramp.fSecond = falling ? upper : lower;
    }
    return ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
}

float Location::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    value = 1;
    fullArea = false;
    fDisturbance = fParams.fUseSubShader ? Disturb(fullArea, in) : 0;

    const TVector3& point = fParams.fSpace == Code("GLBL") ? in.fPointGlobal : in.fPointLocal;
    const bool takeSmallest = fParams.fCombine == Code("ORMD");
    const float disturbance = fDisturbance;
    float mask = 1;
    for (uint32_t i = 0; i < 3; ++i) {
        const LocationRamp& ramp = fRamps[i];
        if (!ramp.fEnabled)
            continue;
        const float result = RampValue(ramp.fFirst, ramp.fSecond, point[i], ramp.fFalling != 0, disturbance);
        if (takeSmallest) {
            if (mask > result)
                mask = result;
        } else if (1.0 > result) {
            mask = result;
        } else {
            mask = 1;
            break;
        }
    }
    value = mask;
    return kFullCoverage;
}

float Location::Disturb(bool& fullArea, ShadingIn& in)
{
    float disturbance = 0;
    TMCColorRGBA subColor = {0, 0, 0, 0};
    ReadNumber(fShader, fShaderKinds, kOutputColor, disturbance, subColor, fullArea, in);
    if (disturbance > 1.0)
        disturbance = fLastDisturbance;
    disturbance *= static_cast<float>(fParams.fDisturbPercent);
    fLastDisturbance = disturbance; // kept: the scaled amount, so a repeated one is scaled once more
    return disturbance;
}
