#include "shaders/optics/Fresnel.h"
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

using ColorSystems::sRGBSystem;

namespace {

constexpr double kTolerance = 1e-6;
constexpr double kWavelengthStep = 0.001; // nm
constexpr int32_t kGamutDepth = 7;
constexpr float kSwatchAnchor = 0.5f; // of the illuminant's own L*
constexpr uint32_t kOffsetStyle = Code("SHMX");
constexpr uint32_t kColorKinds = kOutputColor | kOutputSurface;
constexpr float kEyeOfNone[3] = {30.46f, 30.46f, 31.2f}; // where the eye stands without its element

/// The numbers that optics depend on, of a record or of what was seen of it.
template <class Values> std::array<float, 14> OpticalNumbers(const Values& values)
{
    return {values.fIndex1Re, values.fIndex1Im, values.fIndex2Re, values.fIndex2Im, values.fPermeability1,
        values.fPermeability2, values.fPolarization, values.fIndex2ReOffset, values.fIndex2ImOffset,
        values.fPermeability2Offset, values.fWavelength, values.fDispersion, values.fIndex2ReAtWavelength,
        values.fIndex2ImAtWavelength};
}

double Difference(float left, float right) { return std::fabs(static_cast<double>(left) - right); }

/// NaN is close to nothing.
template <class Left, class Right> bool AllClose(const Left& left, const Right& right)
{
    const auto isClose = [](float a, float b) { return Difference(a, b) < kTolerance; };
    const auto numbers = OpticalNumbers(left);
    return std::equal(numbers.begin(), numbers.end(), OpticalNumbers(right).begin(), isClose);
}

/// NaN is not far: it leaves the tables as they are.
template <class Left, class Right> bool AnyFar(const Left& left, const Right& right)
{
    const auto isNotFar = [](float a, float b) { return !(Difference(a, b) >= kTolerance); };
    const auto numbers = OpticalNumbers(left);
    return !std::equal(numbers.begin(), numbers.end(), OpticalNumbers(right).begin(), isNotFar);
}

/// Compares the bits of the temperatures: -0 isn't 0, and a NaN is the same as itself.
bool SameIlluminant(const Illuminant& left, const Illuminant& right)
{
    return std::bit_cast<uint32_t>(left.fTemperature) == std::bit_cast<uint32_t>(right.fTemperature)
        && left.fCustomIlluminant == right.fCustomIlluminant;
}

bool IsIlluminantRow(int32_t preset) { return preset >= 1 && preset <= kLastIlluminantPreset; }

/// Encodes linear R, G, B for display; the alpha stays.
void ShowEncoded(const Float3& linear, TMCColorRGBA& color)
{
    auto [r, g, b] = linear;
    EncodeColor(sRGBSystem, r, g, b);
    color.SetRGB(r, g, b);
}

/// The angle between two vectors of any length in radians, 0 to pi.
float ViewAngle(const TVector3& toCamera, const TVector3& normal)
{
    const float dot = static_cast<float>(Dot(toCamera, normal));
    const float squaredDot = dot * dot;
    const double squaredCross = Dot(toCamera, toCamera) * Dot(normal, normal) - squaredDot;
    // Rounding can bring parallel vectors below 0.
    const float cross = static_cast<float>(std::sqrt(squaredCross < 0 ? 0 : squaredCross));
    return std::fabs(std::atan2(cross, dot));
}

/// NaN stays.
float ClampedShare(float share)
{
    if (share < 0)
        return 0;
    return share > 1 ? 1 : share;
}

} // namespace

const Fresnel::FineAdjustment Fresnel::kFineAdjustments[] = {
    {&FresnelParams::fIndex2Re, &FresnelParams::fIndex2ReOffset, &Seen::fIndex2Re, &Seen::fIndex2ReOffset,
        &Fresnel::fIndex2ReBase, Code("N2rs"), Code("N2Re")},
    {&FresnelParams::fIndex2Im, &FresnelParams::fIndex2ImOffset, &Seen::fIndex2Im, &Seen::fIndex2ImOffset,
        &Fresnel::fIndex2ImBase, Code("N2is"), Code("N2Im")},
    {&FresnelParams::fPermeability2, &FresnelParams::fPermeability2Offset, &Seen::fPermeability2,
        &Seen::fPermeability2Offset, &Fresnel::fPermeability2Base, Code("N2Ms"), Code("N2Mr")},
};

bool Fresnel::SameParams(const FresnelParams& other) const
{
    // kept: fPreset2 isn't compared
    return fParams.fCameraName == other.fCameraName && fParams.fMixStyle == other.fMixStyle
        && fParams.fSubShader == other.fSubShader && fParams.fPreset1 == other.fPreset1
        && fParams.fIlluminantPreset == other.fIlluminantPreset && AllClose(fParams, other)
        && fParams.fMode == other.fMode && fParams.fColored == other.fColored
        && Difference(fParams.fTemperature, other.fTemperature) < kTolerance;
}

MCErr Fresnel::ExtensionDataChanged()
{
    if (!IsUnchanged()) {
        TakeTypedTemperature();
        TakeChosenPreset();
        RefreshWavelengthColor();
        ApplyFineAdjustments();
        RefreshOptics();
        StoreSeen();
    }
    return RefreshSubShader();
}

bool Fresnel::IsUnchanged() const
{
    return AllClose(fParams, fSeen) && fParams.fMode == fSeen.fMode && fParams.fPreset1 == fSeen.fPreset1
        && fParams.fPreset2 == fSeen.fPreset2 && fParams.fIlluminantPreset == fSeen.fIlluminantPreset
        && fParams.fColored == fSeen.fColored
        && Difference(fParams.fTemperature, fSeen.fTemperature) <= kTolerance;
}

void Fresnel::TakeTypedTemperature()
{
    if (fParams.fTemperature == fSeen.fTemperature || fParams.fIlluminantPreset != fSeen.fIlluminantPreset)
        return;
    fParams.fIlluminantPreset = kCustomIlluminantPreset;
    SetIlluminant(true);
}

void Fresnel::TakeChosenPreset()
{
    const int32_t preset = fParams.fIlluminantPreset;
    const int32_t seen = fSeen.fIlluminantPreset;
    const bool seenValid = seen >= 1 && seen <= kCustomIlluminantPreset;
    if (preset == seen || !IsIlluminantRow(preset) || !seenValid)
        return;
    SetIlluminant(false);
    // The temperature of the computed white, not the row's round number; kept as it is when there is none.
    const Float3 white = XyYToXYZ(fIlluminantSystem.xyYWhite);
    CorrelatedTemperature(white[0], white[1], white[2], fParams.fTemperature);
}

void Fresnel::RefreshWavelengthColor()
{
    if (!(Difference(fParams.fWavelength, fSeen.fWavelength) >= kWavelengthStep)
        && fParams.fTemperature == fSeen.fTemperature && fParams.fColored == fSeen.fColored)
        return;
    fSearch.fFound = false;
    RefreshIlluminantSystem(IlluminantTemperature());
    const WavelengthColors colors = WavelengthColor(fIlluminantSystem, sRGBSystem, fParams.fWavelength,
        {fParams.fTemperature, fCustomIlluminant}, fParams.fWhiteX, fParams.fWhiteY, fAnchorFactor,
        kGamutDepth, fSearch);
    fShadeRGB = colors.fShadeRGB;
    fShadeLab = colors.fShadeLab;
    fShadeHue = RGBToHSL(fShadeRGB).fHue;
    fParams.fWavelengthLinear = colors.fRGB;
    ShowEncoded(colors.fRGB, fParams.fWavelengthColor);
}

/// A new value starts its fine adjustment anew; else a new offset moves the value from its base.
void Fresnel::ApplyFineAdjustments()
{
    for (const FineAdjustment& fine : kFineAdjustments) {
        float& value = fParams.*fine.fValue;
        float& offset = fParams.*fine.fOffset;
        float& base = this->*fine.fBase;
        if (value != fSeen.*fine.fSeenValue) {
            offset = 0;
            base = value;
        }
        if (offset != fSeen.*fine.fSeenOffset)
            value = base + offset;
    }
}

void Fresnel::RefreshOptics()
{
    // kept: a change of fMode alone fills no table
    if (!AnyFar(fParams, fSeen) && fParams.fPreset1 == fSeen.fPreset1 && fParams.fPreset2 == fSeen.fPreset2)
        return;
    const OpticalMedium medium1 = {fParams.fIndex1Re, fParams.fIndex1Im, fParams.fPermeability1, 0};
    const OpticalMedium medium2
        = {fParams.fIndex2Re, fParams.fIndex2Im, fParams.fPermeability2, fParams.fDispersion};
    const DerivedOptics found = DeriveOptics(medium1, medium2, fParams.fWavelength, fParams.fMode, fTables);
    fParams.fIndex2ReAtWavelength = found.fIndex2ReAtWavelength;
    fParams.fIndex2ImAtWavelength = found.fIndex2ImAtWavelength;
    fParams.fPreset1 = found.fPreset1;
    fParams.fPreset2 = found.fPreset2;
}

void Fresnel::StoreSeen()
{
    fSeen = {fParams.fIndex1Re, fParams.fIndex1Im, fParams.fIndex2Re, fParams.fIndex2Im,
        fParams.fPermeability1, fParams.fPermeability2, fParams.fPolarization, fParams.fMode,
        fParams.fIndex2ReOffset, fParams.fIndex2ImOffset, fParams.fPermeability2Offset, fParams.fWavelength,
        fParams.fDispersion, fParams.fIndex2ReAtWavelength, fParams.fIndex2ImAtWavelength, fParams.fPreset1,
        fParams.fPreset2, fParams.fIlluminantPreset, fParams.fColored, fParams.fTemperature};
    fPercentP = 100 - fParams.fPolarization;
}

/// The integration is the dearest part of a change, so it is spared when nothing that enters it has changed.
void Fresnel::RefreshIlluminantSystem(float temperature)
{
    const Illuminant illuminant = {temperature, fCustomIlluminant};
    if (fIntegrated && SameIlluminant(*fIntegrated, illuminant))
        return;
    fIlluminantSystem = SystemWithIlluminant(sRGBSystem, illuminant);
    fIntegrated = illuminant;
}

/// Publishes the white and the colour of the illuminant that the record names.
void Fresnel::SetIlluminant(bool typed)
{
    fCustomIlluminant = typed;
    RefreshIlluminantSystem(IlluminantTemperature());
    fParams.fWhiteX = fIlluminantSystem.xyYWhite[0];
    fParams.fWhiteY = fIlluminantSystem.xyYWhite[1];
    RefreshIlluminantSwatch();
}

/// Of the chosen row, or as typed. A preset that is no row counts as typed here.
float Fresnel::IlluminantTemperature() const
{
    const int32_t preset = fParams.fIlluminantPreset;
    if (fCustomIlluminant || !IsIlluminantRow(preset))
        return fParams.fTemperature;
    return kIlluminantTemperatures[preset - 1];
}

void Fresnel::RefreshIlluminantSwatch()
{
    const Float3 white = XyYToXYZ(fIlluminantSystem.xyYWhite);
    fIlluminantLab = XYZToLab(white, XyYToXYZ(sRGBSystem.xyYWhite));
    fSearch.fFound = false;
    fSearch.fCellCount = 0;
    const Float3 color = {white[0] / white[1], white[1] / white[1], white[2] / white[1]};
    fSearch.fSkipBottomFace = true;
    const Residue projected = ProjectToGamut(
        sRGBSystem, color, kSwatchAnchor, fIlluminantLab[1], fIlluminantLab[2], kGamutDepth, fSearch);
    fSearch.fSkipBottomFace = false;
    fIlluminantLinear = FaceColor(projected);
    ShowEncoded(fIlluminantLinear, fParams.fIlluminantColor);
}

float Fresnel::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    color = TMCColorRGBA::kOpaqueBlack;
    fullArea = false;
    fToCamera = CameraPosition(in) - in.fPointGlobal;
    fViewAngle = ViewAngle(fToCamera, in.fNormalGlobal);
    if (fParams.fMixStyle == kOffsetStyle)
        OffsetAngle(fullArea, in);

    const float share = FresnelLookup(fTables, fParams.fMode, fParams.fPolarization, fViewAngle);
    const float value = ClampedShare(share);
    if (fParams.fColored) {
        const auto [r, g, b] = InHueOfWavelength(value);
        color.SetRGB(r, g, b);
    } else {
        color.SetRGB(value);
    }
    return kFullCoverage;
}

TVector3 Fresnel::CameraPosition(const ShadingIn& in)
{
    MCCountedPtr<ITreeElement> shaded;
    MCCountedPtr<IScene> scene;
    FindShadedTree(in, shaded, scene);
    if (fNeedCameraName && (fParams.fCameraName == "Rendering Camera" || fParams.fCameraName.IsEmpty()))
        FetchCameraName(scene);

    MCCountedPtr<ITreeElement> camera;
    if (!scene)
        MC_REPORT("objecttree"); // a missing scene has no element either
    else if (FindTreeByName(scene, fParams.fCameraName, "objecttree", camera))
        return GlobalPosition(*camera);
    return {kEyeOfNone[0], kEyeOfNone[1], kEyeOfNone[2]};
}

/// Happens once in the life of the object; until there is a module, each sample tries again.
void Fresnel::FetchCameraName(const MCCountedPtr<IScene>& scene)
{
    if (!HasScene(scene))
        return;
    MCCountedPtr<IRenderingModule> renderingModule;
    scene->GetRenderingModule(renderingModule.Address());
    if (!renderingModule) {
        MC_REPORT("renderingModule");
        return;
    }
    ReadRenderingCameraName(*renderingModule, fParams.fCameraName);
    fNeedCameraName = false;
}

/// Moves the angle by what the sub-shader gives, half of a radian either way for 0 to 1.
void Fresnel::OffsetAngle(bool& fullArea, ShadingIn& in)
{
    if (!ReadNumber(fShader, fShaderKinds, kColorKinds, fSubValue, fSubColor, fullArea, in))
        fSubValue = 0;
    fSubValue = RepeatLastAboveOne(fSubValue, fLastSubValue);
    fViewAngle += fSubValue - 0.5f;
    if (!(fViewAngle > 0))
        fViewAngle = 0;
}

Float3 Fresnel::InHueOfWavelength(float value) const
{
    // kept: the wavelength's L* serves as the saturation
    const float saturation = static_cast<float>(fShadeLab[0] / 100.0);
    return HSLToRGB({fShadeHue, value, saturation});
}
