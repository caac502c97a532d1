#include "shaders/scene/Curvature.h"
#include "shaders/scene/SurfaceCurvature.h"

namespace {

constexpr int32_t kHitKind = -3;
constexpr float kFarLimit = 1.01f; // in lengths of the normal
constexpr int32_t kBoundingBoxMode = 2;

/// The host's calls for the place of the target; nothing reads the answers.
void AskForPlace(ITreeElement& target)
{
    TTreeTransform transform;
    target.GetTreeTransform(transform);
    TBBox3D box;
    target.GetBoundingBox(box, kBoundingBoxMode, true);
    TTransform3D global;
    target.GetGlobalTransform(global);
}

/// Casts a ray from the tip of the sample's normal back through the sample. The surface of the target nearest
/// along it counts, whichever object is shaded.
/// @return true for a hit; then `hit` is complete
bool CastAt(IInstance* target, const ShadingIn& in, RayHitRecord& hit)
{
    if (target == nullptr) // a target without a surface is missed
        return false;
    TRay3D ray;
    ray.fOrigin = in.fPointGlobal + in.fNormalGlobal;
    ray.fDirection = -in.fNormalGlobal;
    hit.fBlock.fShading.fInstance = target;
    RayHitParams params(ray, hit);
    params.fFarLimit = kFarLimit;
    if (!target->CastRay(params))
        return false;

    TVector3 way = ray.fDirection;
    way *= static_cast<float>(hit.fHitDistance);
    hit.fHitPoint = ray.fOrigin + way;
    if (hit.fFinishHit != nullptr) {
        hit.fNeedFinish = 1;
        hit.fFinishHit(&hit);
    }
    return true;
}

} // namespace

bool Curvature::SameParams(const CurvatureParams& other) const
{
    return SameBands(fParams.fBands, other.fBands) && fParams.fAngleA == other.fAngleA
        && fParams.fAngleB == other.fAngleB && fParams.fClampTop == other.fClampTop
        && fParams.fSharedWidth == other.fSharedWidth && fParams.fRawAngle == other.fRawAngle
        && fParams.fInvertRaw == other.fInvertRaw && fParams.fMixStyle == other.fMixStyle
        && fParams.fSubShader == other.fSubShader && fParams.fObjectName == other.fObjectName;
}

MCErr Curvature::ExtensionDataChanged()
{
    fDirectionVector = DirectionFromAngles(fParams.fAngleB, fParams.fAngleA, fRotation);
    return ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
}

float Curvature::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    AskForObject(in);
    MCCountedPtr<ITreeElement> target;
    if (fScene) // without a scene there is no target either
        fScene->GetTreeByName(target.Address(), TMCString255(fParams.fSurfaceName));
    if (!target)
        return kFullCoverage;

    void* face = nullptr;
    target->QueryInterface(IID_IInstance, &face); // kept: what is stored counts, whatever the status
    MCCountedPtr<IInstance> instance;
    *instance.Address() = static_cast<IInstance*>(face);
    AskForPlace(*target);
    RayHitRecord hit(kHitKind);
    const bool isHit = CastAt(instance.Get(), in, hit);
    const ShadingIn& surface = hit.fBlock.fShading;
    const float gaussian = MeasureCurvature(surface.fDerivU, surface.fDerivV, hit.fShapeMatrix).fGaussian;

    if (fParams.fMixStyle == Code("SHMX"))
        MoveRunningAngle(fullArea, in);
    if (fParams.fRawAngle) {
        const float grey = static_cast<float>(fRunningAngle / kPi);
        color.SetRGB(fParams.fInvertRaw ? 1 - grey : grey);
        return kFullCoverage;
    }

    // Kept: the bands are worked out and never shown. The curvature takes their place.
    WeighBands(fParams.fBands, fParams.fSharedWidth, fParams.fClampTop, fRunningAngle, fBandWeights);
    const TMCColorRGB bands = SumBands(fParams.fBands, fBandWeights);
    color.SetRGB(bands.fRed, bands.fGreen, bands.fBlue);

    color.SetRGB(0);
    if (!isHit)
        color.fGreen = 1;
    else if (gaussian >= 0)
        color.fRed = gaussian;
    else if (gaussian < 0) // NaN is neither, and stays black
        color.fBlue = -gaussian;
    for (uint32_t channel = 0; channel < 3; ++channel)
        if (color[channel] > 1)
            color[channel] = 1;
    return kFullCoverage;
}

/// Refreshes the scene of this sample and asks the named object for its place, of which nothing comes: the
/// ray goes along the normal.
void Curvature::AskForObject(const ShadingIn& in)
{
    fObjectTree = nullptr;
    FindShadedTree(in, fTree, fScene);
    if (HasScene(fScene) && FindTreeByName(fScene, fParams.fObjectName, "objecttree", fObjectTree))
        GlobalPosition(*fObjectTree);
}

/// A sub-shader's 0.5 leaves the angle. The angle adds up over the samples.
void Curvature::MoveRunningAngle(bool& fullArea, ShadingIn& in)
{
    if (!ReadNumber(fShader, fShaderKinds, kOutputColor, fShaderValue, fShaderColor, fullArea, in))
        fShaderValue = 0;
    fShaderValue = RepeatLastAboveOne(fShaderValue, fLastShaderValue);
    const double moved = fRunningAngle + (fShaderValue - 0.5);
    fRunningAngle = moved > 0 ? static_cast<float>(moved) : 0; // NaN starts again at 0
}
