#include "shaders/mapping/Location.h"
#include <cmath>

namespace {

/// The height of a ramp at `x`; a later test overrides an earlier one, so equal ends give 1 there.
/// @param disturbance  moves `x`, in percent of the ramp's width
float RampValue(float first, float second, float x, bool falling, float disturbance)
{
    const float moved = std::fabs(first - second) * disturbance;
    x = static_cast<float>(x + moved / 100.0);

    float value = 1;
    if (falling) {
        if (x >= second)
            value = 0;
        if (first >= x)
            value = 1;
        if (second > x && x > first)
            value = 1.0f - (x - first) / (second - first);
    } else {
        if (second >= x)
            value = 0;
        if (x >= first)
            value = 1;
        if (x > second && first > x)
            value = (x - second) / (first - second);
    }
    return value;
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
        const float lower = std::fmin(axis.fEdgeA, axis.fEdgeB); // a NaN edge counts as the other one
        const float upper = std::fmax(axis.fEdgeA, axis.fEdgeB);
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
    fDisturbance = 0;
    if (fParams.fUseSubShader)
        Disturb(fullArea, in);

    const TVector3& point = fParams.fSpace == Code("GLBL") ? in.fPointGlobal : in.fPointLocal;
    float results[3] = {};
    for (uint32_t i = 0; i < 3; ++i) {
        const LocationRamp& ramp = fRamps[i];
        if (ramp.fEnabled)
            results[i] = RampValue(ramp.fFirst, ramp.fSecond, point[i], ramp.fFalling != 0, fDisturbance);
    }

    const bool takeSmallest = fParams.fCombine == Code("ORMD");
    for (int i = 0; i < 3; ++i) {
        if (!fRamps[i].fEnabled)
            continue;
        if (takeSmallest) {
            if (value > results[i])
                value = results[i];
        } else if (1.0 > results[i]) {
            value = results[i];
        } else {
            value = 1;
            break;
        }
    }
    return kFullCoverage;
}

void Location::Disturb(bool& fullArea, ShadingIn& in)
{
    TMCColorRGBA subColor = {0, 0, 0, 0};
    ReadNumber(fShader, fShaderKinds, kOutputColor, fDisturbance, subColor, fullArea, in);
    if (fDisturbance > 1.0)
        fDisturbance = fLastDisturbance;
    fDisturbance *= static_cast<float>(fParams.fDisturbPercent);
    fLastDisturbance = fDisturbance; // kept: the scaled amount, so a repeated one is scaled once more
}
