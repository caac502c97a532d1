#include "shaders/scene/Translucent.h"

bool Translucent::SameParams(const TranslucentParams& other) const
{
    return fParams.fLightName == other.fLightName && fParams.fInvert == other.fInvert
        && fParams.fFalloffMode == other.fFalloffMode && fParams.fAngleRange == other.fAngleRange
        && fParams.fCurveHandles == other.fCurveHandles && fParams.fReference == other.fReference
        && fParams.fCameraName == other.fCameraName;
}

/// The power basis of the cubic Bezier curve through 0 and 1 with the two handles between.
MCErr Translucent::ExtensionDataChanged()
{
    fCurvePoints[0] = 0;
    fCurvePoints[1] = fParams.fCurveHandles[0];
    fCurvePoints[2] = fParams.fCurveHandles[1];
    fCurvePoints[3] = 1;
    const float k1 = static_cast<float>(3.0 * (fCurvePoints[1] - fCurvePoints[0]));
    const float k2 = static_cast<float>(3.0 * (fCurvePoints[2] - fCurvePoints[1]) - k1);
    const float k3 = fCurvePoints[3] - fCurvePoints[0] - k1 - k2;
    fCurveCoefficients[0] = k3;
    fCurveCoefficients[1] = k2;
    fCurveCoefficients[2] = k1;
    return MC_S_OK;
}

float Translucent::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    fLevel = Angle(in);
    fLevel = Level(fLevel);
    if (fParams.fInvert)
        fLevel = 1 - fLevel;
    color.SetRGB(fLevel);
    return kFullCoverage;
}

/// The angle between the two elements; 0 when one of them, or the scene, is missing.
float Translucent::Angle(const ShadingIn& in)
{
    const SamplePlace place(in);
    if (!HasScene(place.fScene))
        return 0;

    const SeenTree light = FindTreeFromReference(place, fParams.fLightName, fParams.fReference);
    fLocation = light.fLocation;
    TVector3 lightDirection;
    if (light.fTree)
        lightDirection = DirectionTo(*light.fTree);
    MCCountedPtr<ITreeElement> camera;
    TVector3 cameraDirection;
    if (FindTreeByName(place.fScene, fParams.fCameraName, "temp_tree", camera))
        cameraDirection = DirectionTo(*camera);
    return light.fTree && camera ? AngleBetween(cameraDirection, lightDirection) : 0;
}

/// The ramp over the range of angles, not clamped behind the curve. NaN goes through.
float Translucent::Level(float angle) const
{
    const TVector2& range = fParams.fAngleRange;
    if (range[0] >= angle)
        return 0;
    if (angle >= range[1])
        return 1;
    const float t = (angle - range[0]) / (range[1] - range[0]);
    if (fParams.fFalloffMode != Code("EXPO"))
        return t;
    const float t2 = t * t;
    const float t3 = t2 * t;
    return fCurveCoefficients[0] * t3 + fCurveCoefficients[1] * t2 + fCurveCoefficients[2] * t
        + fCurvePoints[0];
}

TVector3 Translucent::DirectionTo(ITreeElement& tree) const
{
    TVector3 direction = GlobalPosition(tree) - fLocation;
    ScaleByReciprocalLength(direction);
    return direction;
}
