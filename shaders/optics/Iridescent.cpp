#include "shaders/optics/Iridescent.h"

namespace {

float AtMostOne(float channel) { return channel > 1.0f ? 1.0f : channel; }

} // namespace

bool Iridescent::SameParams(const IridescentParams& other) const
{
    return SameBands(fParams.fBands, other.fBands) && fParams.fAzimuth == other.fAzimuth
        && fParams.fElevation == other.fElevation && fParams.fHoldLastBand == other.fHoldLastBand
        && fParams.fSameWidth == other.fSameWidth && fParams.fGrey == other.fGrey
        && fParams.fInvertGrey == other.fInvertGrey && fParams.fMixStyle == other.fMixStyle
        && fParams.fSubShader == other.fSubShader && fParams.fObjectName == other.fObjectName;
}

MCErr Iridescent::ExtensionDataChanged()
{
    fReferenceVector = DirectionFromAngles(fParams.fElevation, fParams.fAzimuth, fRotation);
    return ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
}

float Iridescent::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    if (fParams.fReferenceMode == Code("OBJT"))
        FollowObject(in);
    fAngle = AngleBetween(fReferenceVector, in.fNormalGlobal);
    if (fParams.fMixStyle == Code("SHMX"))
        OffsetAngle(fullArea, in);

    if (fParams.fGrey) {
        float grey = static_cast<float>(fAngle / kPi);
        if (fParams.fInvertGrey)
            grey = 1.0f - grey;
        color.SetRGB(grey); // the alpha is the caller's, as with the bands
        return kFullCoverage;
    }

    WeighBands(fParams.fBands, fParams.fSameWidth, fParams.fHoldLastBand, fAngle, fWeights);
    const TMCColorRGB sum = SumBands(fParams.fBands, fWeights);
    color.SetRGB(AtMostOne(sum.fRed), AtMostOne(sum.fGreen), AtMostOne(sum.fBlue));
    return kFullCoverage;
}

/// Turns the reference to the named element, seen from the sample; without it the last reference stays.
void Iridescent::FollowObject(const ShadingIn& in)
{
    fObjectTree = nullptr;
    FindShadedTree(in, fTree, fScene);
    if (!HasScene(fScene) || !FindTreeByName(fScene, fParams.fObjectName, "objecttree", fObjectTree))
        return;
    fReferenceVector = GlobalPosition(*fObjectTree) - in.fPointGlobal;
    Normalize(fReferenceVector);
}

/// A sub-shader's 0.5 leaves the angle; 0 and 1 move it by half a radian.
void Iridescent::OffsetAngle(bool& fullArea, ShadingIn& in)
{
    if (!ReadNumber(fShader, fShaderKinds, kOutputColor, fSubValue, fSubColor, fullArea, in))
        fSubValue = 0;
    fSubValue = RepeatLastAboveOne(fSubValue, fLastSubValue);
    const float moved = fAngle + (fSubValue - 0.5f);
    fAngle = moved > 0 ? moved : 0; // NaN becomes 0 too
}
