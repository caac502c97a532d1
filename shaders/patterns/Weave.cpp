#include "shaders/patterns/Weave.h"
#include "frame/FloatRemainder.h"

namespace {

/// Asked for a colour, a value shader too (kept: the order of the tests makes it so).
constexpr uint32_t kAskedForColor = kOutputValue | kOutputColor | kOutputSurface;

/// None of the output kinds; asked for a value all the same (kept).
constexpr uint32_t kAskedForValue = 1;

/// A thread connected after a hole isn't used.
int32_t CountThreads(const ConnectedShader (&shaders)[kThreadsPerGroup])
{
    int32_t count = 0;
    while (count < kThreadsPerGroup && shaders[count])
        ++count;
    return count;
}

/// The remainder keeps the sign: below 0 there are no threads. A repeat of 0 gives the tile's start.
float InTile(float coordinate, float inverseRepeat, int32_t repeat)
{
    return coordinate != 0 ? FloatRemainder(coordinate, inverseRepeat) * static_cast<float>(repeat)
                           : coordinate;
}

float Squared(float number) { return number * number; }

/// Rodrigues' rotation about `axis`, whose length scales the effect, by the angle whose sine is given.
TVector3 Rotate(const TVector3& axis, const TVector3& vector, float sine)
{
    const float cosine = std::cos(std::asin(sine));
    const float rest = static_cast<float>(1.0 - cosine);
    const float ax = axis[0], ay = axis[1], az = axis[2];
    const float vx = vector[0], vy = vector[1], vz = vector[2];
    return {(cosine + rest * ax * ax) * vx + (rest * ax * ay - az * sine) * vy
            + (rest * ax * az + ay * sine) * vz,
        (rest * ax * ay + az * sine) * vx + (cosine + rest * ay * ay) * vy
            + (rest * ay * az - ax * sine) * vz,
        (rest * ax * az - ay * sine) * vx + (rest * ay * az + ax * sine) * vy
            + (cosine + rest * az * az) * vz};
}

/// Tilts `normal` along U about the derivative along V, or along V about that along U. The offset, a length in
/// tiles, serves directly as the sine.
TVector3 Bent(const TVector3& normal, bool alongU, float offset, float scale, const ShadingIn& in)
{
    TVector3 axis = alongU ? in.fDerivV : in.fDerivU; // not normalised: its length scales the effect
    axis *= 1.0f / scale;
    axis *= 2.0f;
    return Rotate(axis, normal, alongU ? -offset : offset);
}

} // namespace

MCErr Weave::ExtensionDataChanged()
{
    const MCErr status = QueryAll();
    CacheKinds();
    int32_t warpCount = CountThreads(fWarpShader);
    int32_t weftCount = CountThreads(fWeftShader);
    if (IsBasic()) {
        MakeBasicCloth();
        warpCount = weftCount = 2; // whatever is connected
    }
    fWarpTable.Build(warpCount, fParams.fWarpWidth, fParams.fWarpGap);
    fWeftTable.Build(weftCount, fParams.fWeftWidth, fParams.fWeftGap);
    BuildSpans();
    fInvRepeatU = static_cast<float>(1.0 / fParams.fRepeatU);
    fInvRepeatV = static_cast<float>(1.0 / fParams.fRepeatV);
    fAcrossScale = fParams.fProfileAcross;
    fAlongScale = fParams.fProfileAlong;
    return status;
}

MCErr Weave::QueryAll()
{
    bool failed = false;
    const auto query = [&failed](const SubShaderSlot& slot, ConnectedShader& shader) {
        if (QuerySubShader(slot, shader) != MC_S_OK)
            failed = true;
    };
    for (int i = 0; i < kThreadsPerGroup; ++i) {
        query(fParams.fWarpSubShader[i], fWarpShader[i]);
        query(fParams.fWeftSubShader[i], fWeftShader[i]);
    }
    query(fParams.fDisplaceBeforeSubShader, fDisplaceBeforeShader);
    query(fParams.fDisplaceAfterSubShader, fDisplaceAfterShader);
    query(fParams.fGapSubShader, fGapShader);
    return failed ? 1 : MC_S_OK;
}

void Weave::CacheKinds()
{
    for (int i = 0; i < kThreadsPerGroup; ++i) {
        fWarpShaderKinds[i] = KindsOf(fWarpShader[i]);
        fWeftShaderKinds[i] = KindsOf(fWeftShader[i]);
    }
    fDisplaceBeforeShaderKinds = KindsOf(fDisplaceBeforeShader);
    fDisplaceAfterShaderKinds = KindsOf(fDisplaceAfterShader);
    fGapShaderKinds = KindsOf(fGapShader);
}

void Weave::MakeBasicCloth()
{
    fWarpShaderKinds[1] = fWarpShaderKinds[0];
    fWeftShaderKinds[1] = fWeftShaderKinds[0];
    fParams.fWarpWidth[1] = fParams.fWarpWidth[0];
    fParams.fWeftWidth[1] = fParams.fWeftWidth[0];
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i)
            fParams.fPattern[j][i] = i != j;
}

void Weave::BuildSpans()
{
    bool dives[kThreadsPerGroup];
    for (int i = 0; i < fWarpTable.fCount; ++i) {
        for (int j = 0; j < kThreadsPerGroup; ++j)
            dives[j] = !fParams.fPattern[j][i];
        fWarpSpans[i].Build(fWeftTable, dives);
    }
    for (int j = 0; j < fWeftTable.fCount; ++j) {
        for (int i = 0; i < kThreadsPerGroup; ++i)
            dives[i] = fParams.fPattern[j][i];
        fWeftSpans[j].Build(fWarpTable, dives);
    }
}

float Weave::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    color.SetRGB(0);
    fullArea = false;
    if (fWarpTable.fCount == 0 && fWeftTable.fCount == 0)
        return kFullCoverage;

    FindTileUV(fullArea, in);
    FindThreads();
    ChooseTop();

    const bool isGap = fTopThread == 0;
    if (fParams.fMask)
        color.SetRGB(isGap == fParams.fMaskInvert ? 1.0f : 0.0f);
    else if (isGap)
        PaintGap(color, fullArea, in);
    else
        PaintThread(color, fullArea, in);
    return kFullCoverage;
}

// What every sample on a thread runs is inline: each step would cost a call.

inline void Weave::FindTileUV(bool& fullArea, ShadingIn& in)
{
    fU = in.fUV[0];
    fV = in.fUV[1];
    Displace(fParams.fDisplaceBefore, fDisplaceBeforeShader, fDisplaceBeforeShaderKinds, fullArea, in);
    fU = InTile(fU, fInvRepeatU, fParams.fRepeatU);
    fV = InTile(fV, fInvRepeatV, fParams.fRepeatV);
    Displace(fParams.fDisplaceAfter, fDisplaceAfterShader, fDisplaceAfterShaderKinds, fullArea, in);
}

inline void Weave::Displace(
    int32_t strength, const ConnectedShader& shader, uint32_t kinds, bool& fullArea, ShadingIn& in)
{
    if (strength == 0)
        return;
    const auto share = [strength](float luma) { return luma * static_cast<float>(strength) / 100.0f; };
    float distance = 0; // added all the same: it turns -0 into 0
    if ((kinds & kAskedForColor) != 0) {
        distance = share(AskLuminance(*shader, fLayerColor, fullArea, in));
    } else if ((kinds & kAskedForValue) != 0) {
        float luma = 0;
        shader->ShadeValue(luma, fullArea, in);
        distance = share(luma);
    }
    fV += distance;
    fU += distance;
}

inline void Weave::FindThreads()
{
    fWarpHit = WalkAcross(fWarpTable, fU, fParams.fRoundAcross, fWarpAcross);
    fWeftHit = WalkAcross(fWeftTable, fV, fParams.fRoundAcross, fWeftAcross);
}

inline void Weave::ChooseTop()
{
    if (fWarpHit == 0 && fWeftHit == 0) {
        fTopThread = 0;
        return;
    }
    fTopIsWarp = fWeftHit == 0 || (fWarpHit != 0 && fParams.fPattern[fWeftHit - 1][fWarpHit - 1]);
    fTopThread = fTopIsWarp ? fWarpHit : fWeftHit;
}

/// The place along the thread on top.
inline ThreadProbe Weave::ProbeAlongTop() const
{
    return WalkAlong(fTopThread, fTopIsWarp ? fWarpSpans : fWeftSpans, fTopIsWarp ? fV : fU);
}

void Weave::PaintGap(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    if ((fGapShaderKinds & kAskedForColor) != 0) {
        fGapShader->ShadeColor(fLayerColor, fullArea, in);
        color = fLayerColor;
    } else if ((fGapShaderKinds & kAskedForValue) != 0) {
        float luma = 0;
        fGapShader->ShadeValue(luma, fullArea, in);
        color.SetRGB(luma);
    }
}

inline void Weave::PaintThread(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    const ThreadProbe across = fTopIsWarp ? fWarpAcross : fWeftAcross;
    const ThreadProbe along = fParams.fRoundAlong || fParams.fAlongUV ? ProbeAlongTop() : ThreadProbe();
    if (!fTopIsWarp)
        in.fUV = {in.fUV[1], in.fUV[0]}; // U across the thread, V along it
    if (fParams.fAcrossUV)
        in.fUV[0] = across.fT;
    if (fParams.fAlongUV)
        in.fUV[1] = along.fT;

    const int32_t thread = fTopThread - 1;
    const ConnectedShader& shader = (fTopIsWarp ? fWarpShader : fWeftShader)[IsBasic() ? 0 : thread];
    const uint32_t kinds = (fTopIsWarp ? fWarpShaderKinds : fWeftShaderKinds)[thread];
    TMCColorRGBA paint = {0, 0, 0, color.fAlpha};
    if (shader && kinds != 0) { // whatever they are
        shader->ShadeColor(fLayerColor, fullArea, in);
        paint = fLayerColor;
    }
    if (fParams.fRoundAcross || fParams.fRoundAlong) {
        const float darkening = Darkening(across, along);
        paint.SetRGB(paint.fRed * darkening, paint.fGreen * darkening, paint.fBlue * darkening);
    }
    color = paint;
}

/// The elliptic cross-section of the top thread: 1 in the middle of a span. The term along counts whenever the
/// walk along ran, so `fAlongUV` alone brings it in too.
inline float Weave::Darkening(ThreadProbe across, ThreadProbe along) const
{
    const float sum = Squared(along.fOffset) / Squared(along.fHalf * fAlongScale)
        + Squared(across.fOffset) / Squared(across.fHalf * fAcrossScale);
    return static_cast<float>(1.0 - sum);
}

float Weave::ShadeVector(TVector3& vector, ShadingIn& in)
{
    bool fullArea = false;
    FindTileUV(fullArea, in);
    FindThreads();
    ChooseTop();
    if (fTopThread == 0) {
        vector = in.fNormalLocal; // kept: threads bend the global normal, a gap answers the local one
        return kFullCoverage;
    }
    if (!fParams.fRoundAcross && !fParams.fRoundAlong)
        return kFullCoverage;

    TVector3 bent = in.fNormalGlobal;
    if (fParams.fRoundAlong)
        bent = Bent(bent, !fTopIsWarp, ProbeAlongTop().fOffset, fAlongScale, in);
    if (fParams.fRoundAlong && fParams.fRoundAcross)
        Normalize(bent);
    if (fParams.fRoundAcross) {
        const ThreadProbe& across = fTopIsWarp ? fWarpAcross : fWeftAcross;
        bent = Bent(bent, fTopIsWarp, across.fOffset, fAcrossScale, in);
    }
    vector = bent;
    return kFullCoverage;
}
