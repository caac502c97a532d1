#include "shaders/patterns/Weave.h"

namespace {

// The fields of the record by group, warp then weft.
constexpr SubShaderSlot (WeaveParams::*kSubShaders[])[5]
    = {&WeaveParams::fWarpSubShader, &WeaveParams::fWeftSubShader};
constexpr int32_t (WeaveParams::*kWidths[])[5] = {&WeaveParams::fWarpWidth, &WeaveParams::fWeftWidth};
constexpr int32_t WeaveParams::*kGap[] = {&WeaveParams::fWarpGap, &WeaveParams::fWeftGap};
constexpr int32_t WeaveParams::*kRepeat[] = {&WeaveParams::fRepeatU, &WeaveParams::fRepeatV};

/// Asked for a colour, a value shader too (kept: the order of the tests makes it so).
constexpr uint32_t kAskedForColor = kOutputValue | kOutputColor | kOutputSurface;

/// None of the output kinds; asked for a value all the same (kept).
constexpr uint32_t kAskedForValue = 1;

/// Where the walk along doesn't run.
constexpr ThreadProbe kNoSpan = {.fT = 1};

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

} // namespace

MCErr Weave::ExtensionDataChanged()
{
    const MCErr status = ConnectAll();
    int32_t counts[2] = {CountThreads(kWarp), CountThreads(kWeft)};
    if (IsBasic()) {
        MakeBasicCloth();
        counts[kWarp] = counts[kWeft] = 2; // whatever is connected
    }
    for (const Group group : kGroups) {
        fTable[group].Build(counts[group], fParams.*kWidths[group], fParams.*kGap[group], fWidthSum);
        fInvRepeat[group] = static_cast<float>(1.0 / fParams.*kRepeat[group]);
    }
    for (const Group group : kGroups)
        BuildSpans(group);
    fAcrossScale = fParams.fProfileAcross;
    fAlongScale = fParams.fProfileAlong;
    return status;
}

MCErr Weave::ConnectAll()
{
    bool failed = false;
    const auto connect = [&failed](const SubShaderSlot& slot, ConnectedShader& shader, uint32_t& kinds) {
        if (ConnectSubShader(slot, shader, kinds) != MC_S_OK)
            failed = true;
    };
    for (int i = 0; i < kThreadsPerGroup; ++i)
        for (const Group group : kGroups)
            connect((fParams.*kSubShaders[group])[i], fShader[group][i], fShaderKinds[group][i]);
    connect(fParams.fDisplaceBeforeSubShader, fDisplaceBeforeShader, fDisplaceBeforeShaderKinds);
    connect(fParams.fDisplaceAfterSubShader, fDisplaceAfterShader, fDisplaceAfterShaderKinds);
    connect(fParams.fGapSubShader, fGapShader, fGapShaderKinds);
    return failed ? 1 : MC_S_OK;
}

/// A thread connected after a hole isn't used.
int32_t Weave::CountThreads(Group group) const
{
    int32_t count = 0;
    while (count < kThreadsPerGroup && fShader[group][count])
        ++count;
    return count;
}

void Weave::MakeBasicCloth()
{
    for (const Group group : kGroups) {
        fShaderKinds[group][1] = fShaderKinds[group][0];
        int32_t(&widths)[5] = fParams.*kWidths[group];
        widths[1] = widths[0];
    }
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i)
            fParams.fPattern[j][i] = i != j;
}

void Weave::BuildSpans(Group group)
{
    const ThreadTable& crossing = fTable[OtherGroup(group)];
    for (int thread = 0; thread < fTable[group].fCount; ++thread) {
        bool dives[kThreadsPerGroup];
        for (int other = 0; other < kThreadsPerGroup; ++other) {
            const bool warpOnTop
                = group == kWarp ? fParams.fPattern[other][thread] : fParams.fPattern[thread][other];
            dives[other] = warpOnTop == (group == kWeft);
        }
        fSpans[group][thread].Build(crossing, dives);
    }
}

float Weave::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    color.SetRGB(0);
    fullArea = false;
    if (fTable[kWarp].fCount == 0 && fTable[kWeft].fCount == 0)
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
    fTileUV[0] = in.fUV[0];
    fTileUV[1] = in.fUV[1];
    Displace(fParams.fDisplaceBefore, fDisplaceBeforeShader, fDisplaceBeforeShaderKinds, fullArea, in);
    // The remainder keeps the sign: below 0 there are no threads. A repeat of 0 gives the tile's start.
    for (const Group group : kGroups)
        if (fTileUV[group] != 0)
            fTileUV[group] = std::fmod(fTileUV[group], fInvRepeat[group]) * fParams.*kRepeat[group];
    Displace(fParams.fDisplaceAfter, fDisplaceAfterShader, fDisplaceAfterShaderKinds, fullArea, in);
}

inline void Weave::Displace(
    int32_t strength, const ConnectedShader& shader, uint32_t kinds, bool& fullArea, ShadingIn& in)
{
    if (strength == 0)
        return;
    float luma = 0;
    if ((kinds & kAskedForColor) != 0)
        luma = AskLuminance(*shader, fLayerColor, fullArea, in);
    else if ((kinds & kAskedForValue) != 0)
        shader->ShadeValue(luma, fullArea, in);
    else
        strength = 0; // a move by 0 all the same: it turns -0 into 0
    const float distance = luma * static_cast<float>(strength) / 100.0f;
    fTileUV[1] += distance;
    fTileUV[0] += distance;
}

inline void Weave::FindThreads()
{
    for (const Group group : kGroups)
        fAcross[group] = WalkAcross(fTable[group], fTileUV[group], fParams.fRoundAcross);
}

inline void Weave::ChooseTop()
{
    const int32_t warp = fAcross[kWarp].fThread;
    const int32_t weft = fAcross[kWeft].fThread;
    if (warp == 0 && weft == 0) {
        fTopThread = 0;
        return;
    }
    fTopIsWarp = weft == 0 || (warp != 0 && fParams.fPattern[weft - 1][warp - 1]);
    fTopThread = fTopIsWarp ? warp : weft;
}

/// The place along the thread on top.
inline ThreadProbe Weave::ProbeAlongTop() const
{
    return WalkAlong(fTopThread, fSpans[TopGroup()], fTileUV[OtherGroup(TopGroup())]);
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
    const Group top = TopGroup();
    const ThreadProbe& across = fAcross[top];
    const ThreadProbe along = fParams.fRoundAlong || fParams.fAlongUV ? ProbeAlongTop() : kNoSpan;
    if (top == kWeft)
        in.fUV = {in.fUV[1], in.fUV[0]}; // U across the thread, V along it
    if (fParams.fAcrossUV)
        in.fUV[0] = across.fT;
    if (fParams.fAlongUV)
        in.fUV[1] = along.fT;

    const int32_t thread = fTopThread - 1;
    const ConnectedShader& shader = fShader[top][IsBasic() ? 0 : thread];
    TMCColorRGBA paint = {0, 0, 0, color.fAlpha};
    if (shader && fShaderKinds[top][thread] != 0) { // whatever they are
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
inline float Weave::Darkening(const ThreadProbe& across, const ThreadProbe& along) const
{
    const float sum = Squared(along.fOffset) / Squared(along.fHalf * fAlongScale)
        + Squared(across.fOffset) / Squared(across.fHalf * fAcrossScale);
    return static_cast<float>(1.0 - sum);
}

/// Tilts `normal` along a coordinate, about the derivative of the other one. The offset, a length in tiles,
/// serves directly as the sine.
/// @param alongCoordinate  the coordinate that `offset` is measured along
inline TVector3 Weave::Bent(
    const TVector3& normal, int alongCoordinate, float offset, float scale, const ShadingIn& in) const
{
    const bool alongU = alongCoordinate == 0;
    TVector3 axis = alongU ? in.fDerivV : in.fDerivU; // not normalised: its length scales the effect
    axis *= 1.0f / scale;
    axis *= 2.0f;
    return Rotate(axis, normal, alongU ? -offset : offset);
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

    const Group top = TopGroup();
    TVector3 bent = in.fNormalGlobal;
    if (fParams.fRoundAlong)
        bent = Bent(bent, OtherGroup(top), ProbeAlongTop().fOffset, fAlongScale, in);
    if (fParams.fRoundAlong && fParams.fRoundAcross)
        Normalize(bent);
    if (fParams.fRoundAcross)
        bent = Bent(bent, top, fAcross[top].fOffset, fAcrossScale, in);
    vector = bent;
    return kFullCoverage;
}
