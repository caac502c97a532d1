#include "shaders/scene/Lit.h"
#include "frame/Query.h"

namespace {

constexpr int32_t kBrightness = Code("brit");

constexpr int32_t kUnlimitedLight = 1; ///< no range and no cone
constexpr int32_t kConeLight = 3;      ///< a range and a cone; any other kind has a range alone

/// A right angle stays, larger angles count back from it and smaller ones on from it.
float Folded(float angle)
{
    const double wide = angle;
    return static_cast<float>(wide >= kHalfPi ? kHalfPi - (wide - kHalfPi) : wide + kHalfPi);
}

/// Full up to the near range, then falling to 0 at the far range.
float RangeShare(const LightState& state, float distance)
{
    if (state.fNearRange >= distance)
        return 1;
    const float share = (distance - state.fNearRange) / (state.fFarRange - state.fNearRange);
    return static_cast<float>(1.0 - share);
}

/// Full inside the inner cone, then falling to 0 at the outer one. The angle is that between the way to the
/// light and the way it points, so the middle of the cone is at 180 degrees.
float ConeShare(const LightState& state, const TTransform3D& transform, const TVector3& direction)
{
    const TVector3 axis = Transformed(transform.fMatrix, {0, 0, -1});
    const float angle = static_cast<float>(AngleBetween(direction, axis) * kDegreesPerRadian);
    if (!(angle > 180 - state.fOuterAngle))
        return 0;
    if (angle > 180 - state.fInnerAngle)
        return 1;
    const float share = ((180 - angle) - state.fInnerAngle) / (state.fOuterAngle - state.fInnerAngle);
    return static_cast<float>(1.0 - share);
}

/// What range and cone let through.
float LimitedAmount(
    const LightState& state, const TTransform3D& transform, const TVector3& direction, float distance)
{
    if (state.fKind == kUnlimitedLight)
        return 1;
    if (!(state.fFarRange >= distance))
        return 0;
    const float amount = RangeShare(state, distance);
    const float spot = state.fKind == kConeLight ? ConeShare(state, transform, direction) : 1;
    return amount * spot;
}

} // namespace

bool Lit::SameParams(const LitParams& other) const
{
    return fParams.fInvert == other.fInvert && fParams.fUseLightColor == other.fUseLightColor
        && fParams.fLightName == other.fLightName && fParams.fReference == other.fReference
        && fParams.fFoldAngle == other.fFoldAngle && fParams.fUseMinAngle == other.fUseMinAngle
        && fParams.fAngleRange == other.fAngleRange;
}

float Lit::ShadeValue(float& value, bool&, ShadingIn& in)
{
    value = 0;
    TMCColorRGBA dropped;
    const float amount = Amount(in, dropped);
    if (!fParams.fUseLightColor)
        value = amount;
    return kFullCoverage;
}

float Lit::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    color = TMCColorRGBA::kOpaqueBlack; // the light's colour without a light
    const float amount = Amount(in, color);
    if (!fParams.fUseLightColor)
        color = {amount, amount, amount, 1};
    return kFullCoverage;
}

/// The grey amount; the light's colour, which is never inverted, goes to `color` when the light counts.
float Lit::Amount(const ShadingIn& in, TMCColorRGBA& color)
{
    const float amount = LightAmount(in, color);
    return fParams.fInvert ? 1 - amount : amount;
}

float Lit::LightAmount(const ShadingIn& in, TMCColorRGBA& color)
{
    MCCountedPtr<ILight> light;
    if (!FindLight(in, light))
        return 0;
    TTransform3D transform;
    light->GetLightTransform(transform);
    TVector3 direction;
    float distance = 0;
    light->GetDirection(fLocation, direction, distance);
    LightState state;
    light->GetLightState(state);
    float brightness = 0;
    light->GetLightParameter(kBrightness, brightness);

    float angle = AngleBetween(direction, in.fNormalGlobal);
    if (fParams.fFoldAngle)
        angle = Folded(angle);
    if (!AngleCounts(angle))
        return 0;

    const TVector2& range = fParams.fAngleRange;
    const float ramp = 1 - (angle - range[0]) / (range[1] - range[0]); // not clamped, and may exceed 1
    const float amount = LimitedAmount(state, transform, direction, distance) * ramp;
    const TMCColorRGB& lightColor = state.fLightColor;
    color.SetRGB(lightColor.fRed / brightness * amount, lightColor.fGreen / brightness * amount,
        lightColor.fBlue / brightness * amount);
    return amount;
}

/// Finds the named light and sets `fLocation`. An element that is no light is passed over in silence.
bool Lit::FindLight(const ShadingIn& in, MCCountedPtr<ILight>& light)
{
    const SamplePlace place(in);
    if (!HasScene(place.fScene))
        return false;
    const SeenTree named = FindTreeFromReference(place, fParams.fLightName, fParams.fReference);
    fLocation = named.fLocation;
    if (named.fTree)
        Query(*named.fTree, IID_ILight, light);
    return bool(light);
}

/// Without `fUseMinAngle` the lower bound is where the ramp starts and nothing more. NaN never counts.
bool Lit::AngleCounts(float angle) const
{
    const TVector2& range = fParams.fAngleRange;
    return range[1] >= angle && (!fParams.fUseMinAngle || angle >= range[0]);
}
