#pragma once
#include "frame/Layout.h"
#include "frame/Numbers.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"
#include "shaders/patterns/ThreadWalks.h"

/// Parameters of Weave, as the host writes and saves them. Widths and gaps are relative to each other.
struct WeaveParams {
    int32_t fWeaveMode = Code("BSCM"); ///< "BSCM": a plain weave of two equal threads; any other: as stored
    TMCBool fPattern[5][5] = {         ///< row: weft thread, column: warp thread; true: the warp lies on top
        {false, true, false, true, false}, {true, false, true, false, true},
        {false, true, false, true, false}, {true, false, true, false, true},
        {false, true, false, true, false}};
    int32_t fDisplaceBefore = 0; ///< percent of UV; moves the sample before tiling
    int32_t fDisplaceAfter = 0;  ///< percent of the tile; moves the sample inside the tile
    TMCBool fRoundAcross;        ///< threads are rounded across their width
    TMCBool fRoundAlong;         ///< threads are rounded along each span
    float fProfileAcross = 1.5f; ///< flatness: divides the darkening and the bend
    float fProfileAlong = 1.5f;
    int32_t fWarpGap = 1;
    int32_t fWeftGap = 1;
    int32_t fRepeatU = 1; ///< tiles per unit of U; 0 stays on the tile's start
    int32_t fRepeatV = 1;
    int32_t fWarpWidth[5] = {1, 1, 1, 1, 1};
    int32_t fWeftWidth[5] = {1, 1, 1, 1, 1};
    TMCBool fMask;       ///< paints threads white and gaps black
    TMCBool fMaskInvert; ///< the other way round
    SubShaderSlot fDisplaceBeforeSubShader;
    SubShaderSlot fDisplaceAfterSubShader;
    SubShaderSlot fGapSubShader;
    SubShaderSlot fWarpSubShader[5];
    SubShaderSlot fWeftSubShader[5];
    TMCBool fAlongUV;  ///< a thread's sub-shader gets the place along the span as its V, 0 to 1
    TMCBool fAcrossUV; ///< a thread's sub-shader gets the place across the thread as its U, 0 to 1
};
static_assert(offsetof(WeaveParams, fWeaveMode) == 0 && offsetof(WeaveParams, fPattern) == 4);
static_assert(offsetof(WeaveParams, fDisplaceBefore) == 32 && offsetof(WeaveParams, fDisplaceAfter) == 36);
static_assert(offsetof(WeaveParams, fRoundAcross) == 40 && offsetof(WeaveParams, fRoundAlong) == 41);
static_assert(offsetof(WeaveParams, fProfileAcross) == 44 && offsetof(WeaveParams, fProfileAlong) == 48);
static_assert(offsetof(WeaveParams, fWarpGap) == 52 && offsetof(WeaveParams, fWeftGap) == 56);
static_assert(offsetof(WeaveParams, fRepeatU) == 60 && offsetof(WeaveParams, fRepeatV) == 64);
static_assert(offsetof(WeaveParams, fWarpWidth) == 68 && offsetof(WeaveParams, fWeftWidth) == 88);
static_assert(offsetof(WeaveParams, fMask) == 108 && offsetof(WeaveParams, fMaskInvert) == 109);
static_assert(offsetof(WeaveParams, fDisplaceBeforeSubShader) == 112);
static_assert(offsetof(WeaveParams, fDisplaceAfterSubShader) == BySize(120, 116));
static_assert(offsetof(WeaveParams, fGapSubShader) == BySize(128, 120));
static_assert(offsetof(WeaveParams, fWarpSubShader) == BySize(136, 124)
    && offsetof(WeaveParams, fWeftSubShader) == BySize(176, 144));
static_assert(offsetof(WeaveParams, fAlongUV) == BySize(216, 164)
    && offsetof(WeaveParams, fAcrossUV) == BySize(217, 165));
static_assert(sizeof(WeaveParams) == BySize(224, 168));

/// Woven cloth in UV space: warp threads along V, weft threads along U, and a matrix that says which lies on top
/// at each crossing. Threads and gaps take their colour from sub-shaders; the second output bends the normal to
/// give each thread a rounded profile.
class Weave final : public ShaderOf<Weave, WeaveParams> {
public:
    /// Kept: the rows of the matrix are compared by their addresses, so no other object is ever the same.
    bool SameParams(const WeaveParams& other) const { return &fParams == &other; }
    MCErr ReportNeeds(ShadingFlags& flags) override
    {
        return Ask(flags, kNeedsUV | kNeedsNormalGlobal | kNeedsDerivatives);
    }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputColor | kOutputVector; }
    /// Basic mode also writes the second widths and the matrix's corner into the record.
    /// @return 1 when a plugged shader refused, else 0
    MCErr ExtensionDataChanged() override;
    /// Leaves in `in.fUV` what the thread's sub-shader was given: hosts rely on it.
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;
    /// Leaves `vector` as it is when threads aren't rounded.
    float ShadeVector(TVector3& vector, ShadingIn& in) override;

private:
    ConnectedShader fWarpShader[kThreadsPerGroup];
    ConnectedShader fWeftShader[kThreadsPerGroup];
    ConnectedShader fDisplaceBeforeShader;
    ConnectedShader fDisplaceAfterShader;
    ConnectedShader fGapShader;
    TMCColorRGBA fLayerColor = {0, 0, 0, 0}; ///< scratch of the sub-shaders
    uint32_t fWarpShaderKinds[kThreadsPerGroup] = {};
    uint32_t fWeftShaderKinds[kThreadsPerGroup] = {};
    uint32_t fDisplaceBeforeShaderKinds = 0;
    uint32_t fDisplaceAfterShaderKinds = 0;
    uint32_t fGapShaderKinds = 0;
    float fU = 0; ///< the sample in its tile
    float fV = 0;
    float fInvRepeatU = 0; ///< a tile's size
    float fInvRepeatV = 0;
    int32_t fWarpHit = 0; ///< the thread under the sample, from 1; 0 for a gap
    int32_t fWeftHit = 0;
    ThreadProbe fWarpAcross; ///< the place across that thread, from its centre line
    ThreadProbe fWeftAcross;
    int32_t fTopThread = 0; ///< from 1; 0 for a gap
    bool fTopIsWarp = false;
    float fAcrossScale = 0;
    float fAlongScale = 0;
    ThreadTable fWarpTable;
    ThreadTable fWeftTable;
    ThreadSpans fWarpSpans[kThreadsPerGroup];
    ThreadSpans fWeftSpans[kThreadsPerGroup];

    bool IsBasic() const { return fParams.fWeaveMode == Code("BSCM"); }

    MCErr QueryAll();
    void CacheKinds();
    void MakeBasicCloth();
    void BuildSpans();

    void FindTileUV(bool& fullArea, ShadingIn& in);
    void Displace(
        int32_t strength, const ConnectedShader& shader, uint32_t kinds, bool& fullArea, ShadingIn& in);
    void FindThreads();
    void ChooseTop();
    ThreadProbe ProbeAlongTop() const;

    void PaintGap(TMCColorRGBA& color, bool& fullArea, ShadingIn& in);
    void PaintThread(TMCColorRGBA& color, bool& fullArea, ShadingIn& in);
    float Darkening(ThreadProbe across, ThreadProbe along) const;
};
