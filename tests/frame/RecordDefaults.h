#pragma once
#include "frame/ShadingFlags.h"
#include <cstdint>

/// What a new shader of a class asks of its host, and what its record holds: a line a field, the elements of an array
/// on one line, written as documents write values.
struct RecordDefaults {
    const char* fClass;
    int32_t fNeeds;
    bool fTrait;
    const char* fFields;
};

// clang-format off
inline constexpr RecordDefaults kRecordDefaults[] = {
    {"Weave", kNeedsNormalGlobal | kNeedsDerivatives | kNeedsUV, false, R"(
fWeaveMode "BSCM"
fPattern[0] false true false true false
fPattern[1] true false true false true
fPattern[2] false true false true false
fPattern[3] true false true false true
fPattern[4] false true false true false
fDisplaceBefore 0
fDisplaceAfter 0
fRoundAcross false
fRoundAlong false
fProfileAcross 1.5
fProfileAlong 1.5
fWarpGap 1
fWeftGap 1
fRepeatU 1
fRepeatV 1
fWarpWidth 5 of 1
fWeftWidth 5 of 1
fMask false
fMaskInvert false
fDisplaceBeforeSubShader null
fDisplaceAfterSubShader null
fGapSubShader null
fWarpSubShader 5 of null
fWeftSubShader 5 of null
fAlongUV false
fAcrossUV false
)"},
    {"Gray", kNeedsAll, false, R"(
fSaturationShift 0
fRedShift 0
fGreenShift 0
fBlueShift 0
fMode "GRSC"
fSubShader null
fColorSwitches 4 of false
)"},
    {"Super_mixer", kNeedsUV, false, R"(
fMixStyle "SMMX"
fCombineMode "MXMD"
fRange [0, 10] [10, 20] [20, 30] [30, 40] [40, 50] [50, 60] [60, 70] [70, 80] [80, 90] [90, 100]
fSmooth false
fLinearEdge false
fLastIsDefault false
fSmoothWidth 10
fDistribution "MADI"
fShiftAmount 10
fColorLevel 0
fColor [0, 0, 0, 0]
fBypass false
fSubShader 12 of null
)"},
    {"Super_mixer_top", kNeedsAll, false, R"(
fMixStyle "SMMX"
fRange [0, 10] [10, 20] [20, 30] [30, 40] [40, 50] [50, 60] [60, 70] [70, 80] [80, 90] [90, 100]
fSmooth false
fLinearEdge false
fLastIsDefault false
fSmoothWidth 10
fDistribution "MADI"
fShiftAmount 10
fColorLevel 0
fColor [0, 0, 0, 0]
fBypass false
fSubShader 12 of null
)"},
    {"Iridescent", kNeedsNormalGlobal | kNeedsUV, false, R"(
fObjectName ""
fBands.fColor [0.5, 0, 1, 0] [0, 0, 1, 0] [0, 1, 1, 0] [0, 1, 0, 0] [1, 1, 0, 0] [1, 0.5, 0, 0] [1, 0, 0, 0]
fBands.fCenter 0 15 30 45 60 75 90
fBands.fWidth 7 of 3
fHoldLastBand false
fSameWidth true
fGrey false
fInvertGrey false
fAzimuth 0
fElevation 0
fMixStyle "SMMX"
fReferenceMode "RFVT"
fSubShader null
)"},
    {"Location", kNeedsPointGlobal | kNeedsPointLocal, true, R"(
fAxes.fEdgeA 3 of 0
fAxes.fEdgeB 3 of 0
fAxes.fEnabled 3 of false
fAxes.fDirection 3 of "GRTR"
fCombine "ORMD"
fSpace "GLBL"
fUseSubShader false
fDisturbPercent 0
fSubShader null
)"},
    {"Fresnel", kNeedsNormalGlobal | kNeedsUV, false, R"(
fCameraName "Rendering Camera"
fMixStyle "SMMX"
fSubShader null
fIndex1Re 1
fIndex1Im 0
fIndex2Re 1.51673
fIndex2Im 1e-05
fPermeability1 1
fPermeability2 1
fPolarization 50
fMode "RSel"
fIndex2ReOffset 0
fIndex2ImOffset 0
fPermeability2Offset 0
fWavelength 589.3
fDispersion 0.017
fIndex2ReAtWavelength 1.51673
fIndex2ImAtWavelength 1e-05
fPreset1 31
fPreset2 31
fIlluminantPreset 8
fColored false
fWavelengthColor [0, 0, 0, 1]
fWavelengthLinear [0, 0, 0]
fIlluminantColor [0, 0, 0, 1]
fTemperature 6500
fWhiteX 0.312713
fWhiteY 0.329016
)"},
    {"Proximity", kNeedsPointGlobal | kNeedsUV | kNeedsPointLocal, true, R"(
fTargetName ""
fUseShader false
fShaderStrength 1
fReference "Opt1"
fAxisX true
fAxisY true
fAxisZ true
fMaxDistance 10
fFalloff 0
fOffset 0
fSingleObject true
fSubShader null
)"},
    {"Translucent", kNeedsNormalGlobal | kNeedsUV, false, R"(
fCameraName ""
fLightName ""
fInvert false
fFalloffMode "LINE"
fAngleRange [20, 160]
fReference "Opt1"
fCurveHandles [0, 100]
)"},
    {"Lit", kNeedsNormalGlobal | kNeedsUV, false, R"(
fLightName ""
fInvert false
fUseLightColor false
fFoldAngle false
fAngleRange [20, 160]
fReference "Opt1"
fUseMinAngle false
)"},
    {"Drip", kNeedsNormalGlobal | kNeedsDerivatives | kNeedsUV, false, R"(
fCenterU 0.5
fCenterV 0.5
fAmplitude 0.5
fRingWidth 0.1
fBaseLevel 0
fRingStart 0.2
fWaves 1
fRippled true
fProportional false
fSecondRing false
fSecondAmplitude 0.7
fSecondStart 0.5
fShowCenter false
)"},
    {"MultiPassControl", kNeedsUV, false, R"(
fPassName 10 of ""
fLevel "LREF"
fSubShader null
)"},
    {"MultiPassManager", kNeedsAll, false, R"(
fPassName 10 of ""
fSubShader 11 of null
)"},
    {"Coordinate_Shift", kNeedsAll, false, R"(
fMode "OFFM"
fObjectName ""
fOffset [0, 0, 0]
fShiftGlobal 3 of true
fShiftLocal 3 of false
fSubShader null
)"},
    {"Key", kNeedsUV, false, R"(
fRedRange [-1, 1]
fGreenRange [-1, 1]
fBlueRange [-1, 1]
fMode "KEYM"
fKeyColor [0, 1, 0, 0]
fSubShader null
)"},
    {"Spoke", kNeedsUV, false, R"(
fCenterU 0.5
fCenterV 0.5
fIntensity 1
fWidth 30
fCount 4
fRotation 0
fTaper 0
fSoftness 0.2
fInnerRadius 0.02
fOuterRadius 1
fInnerFade 0.1
fOuterFade 0.5
fConstantWidth false
fFillCenter false
)"},
    {"Curvature", kNeedsAll & ~kNeedsExtraC, false, R"(
fObjectName ""
fSurfaceName ""
fBands.fColor [0.5, 0, 1, 0] [0, 0, 1, 0] [0, 1, 1, 0] [0, 1, 0, 0] [1, 1, 0, 0] [1, 0.5, 0, 0] [1, 0, 0, 0]
fBands.fCenter 0 15 30 45 60 75 90
fBands.fWidth 7 of 3
fClampTop false
fSharedWidth true
fRawAngle false
fInvertRaw false
fAngleA 0
fAngleB 0
fMixStyle "SMMX"
fSubShader null
)"},
    {"Corners", kNeedsUV | kNeedsNormalLocal, true, R"(
fWidthPercent 5
fStepDivisor 5
fLevel 50
fCornerMode "INSD"
fGridOption "Opt1"
fSubShader null
)"},
    {"Shadow_pass", kNeedsAll, false, R"(
fSuppress false
fSubShader null
)"},
};
// clang-format on
