#pragma once
#include "frame/Colors.h"
#include "frame/Numbers.h"
#include "frame/TMCBool.h"
#include "frame/Vectors.h"

/// Three colours with levels. It only travels: no shader of the pack interprets it.
struct ShadingTripleBlock {
    TMCColorRGB fColors[3];
    int32_t fSampleCount;
    float fFirstLevel;
    float fSecondLevel;
    uint8_t fSwitch; ///< neither summed nor scaled
    uint8_t fPadding[3];
    float fThirdLevel;
    float fFourthLevel;
    int32_t fMode; ///< four-character code, neither summed nor scaled

    void SetDefaults();
    void Clear();
    ShadingTripleBlock& operator+=(const ShadingTripleBlock& other);
    ShadingTripleBlock& operator*=(float weight);
};
static_assert(offsetof(ShadingTripleBlock, fColors) == 0 && offsetof(ShadingTripleBlock, fSampleCount) == 36);
static_assert(
    offsetof(ShadingTripleBlock, fFirstLevel) == 40 && offsetof(ShadingTripleBlock, fSecondLevel) == 44);
static_assert(offsetof(ShadingTripleBlock, fSwitch) == 48 && offsetof(ShadingTripleBlock, fThirdLevel) == 52);
static_assert(offsetof(ShadingTripleBlock, fFourthLevel) == 56 && offsetof(ShadingTripleBlock, fMode) == 60);
static_assert(sizeof(ShadingTripleBlock) == 64);

/// One colour with counts and levels. It only travels.
struct ShadingSingleBlock {
    TMCColorRGB fColor;
    int32_t fSampleCount;
    float fLevel;
    uint8_t fSwitch; ///< summed as a byte
    uint8_t fPadding[3];
    int32_t fCount;
    float fSecondLevel;
    float fThirdLevel;

    void SetDefaults();
    void Clear();
    ShadingSingleBlock& operator+=(const ShadingSingleBlock& other);
    ShadingSingleBlock& operator*=(float weight);
};
static_assert(offsetof(ShadingSingleBlock, fColor) == 0 && offsetof(ShadingSingleBlock, fSampleCount) == 12);
static_assert(offsetof(ShadingSingleBlock, fLevel) == 16 && offsetof(ShadingSingleBlock, fSwitch) == 20);
static_assert(offsetof(ShadingSingleBlock, fCount) == 24 && offsetof(ShadingSingleBlock, fSecondLevel) == 28);
static_assert(offsetof(ShadingSingleBlock, fThirdLevel) == 32 && sizeof(ShadingSingleBlock) == 36);

/// Two triples with levels, in local or world coordinates. It only travels.
struct ShadingVectorBlock {
    TVector3 fFirst;
    TVector3 fSecond;
    float fLevels[2];
    float fThirdLevel;
    TMCBool fLocal; ///< neither summed nor scaled
    uint8_t fPadding[3];

    void SetDefaults();
    void Clear();
    /// Blocks whose `fLocal` differ raise "fLocal == param.fLocal" and are summed all the same.
    ShadingVectorBlock& operator+=(const ShadingVectorBlock& param);
    ShadingVectorBlock& operator*=(float weight);
};
static_assert(offsetof(ShadingVectorBlock, fFirst) == 0 && offsetof(ShadingVectorBlock, fSecond) == 12);
static_assert(offsetof(ShadingVectorBlock, fLevels) == 24 && offsetof(ShadingVectorBlock, fThirdLevel) == 32);
static_assert(offsetof(ShadingVectorBlock, fLocal) == 36 && sizeof(ShadingVectorBlock) == 40);

/// A whole surface result. The caller owns it; exchanged byte for byte.
///
/// Summing and scaling touch every field but `fCoverage`, `fFullArea` and what the nested blocks leave out.
/// Counts and switches are scaled through float and cut toward zero.
struct ShadingOut {
    TMCColorRGBA fColor;
    TMCColorRGB fSecondColor;
    float fScalarA;
    float fScalarB;
    float fScalarC;
    float fScalarD;
    TMCColorRGB fThirdColor;
    TVector3 fVectorChannel;
    float fCoverage; ///< the default `ShadeSurface` writes 1.0
    ShadingTripleBlock fSampledBlock;
    ShadingSingleBlock fSingleBlock;
    ShadingVectorBlock fVectorBlock;
    TMCColorRGB fFourthColor;
    bool fFullArea; ///< the `fullArea` flag of the default `ShadeSurface`
    uint8_t fPadding[3];
    TVector3 fShadingNormal; ///< the default `ShadeSurface` copies `fNormalLocal` here

    ShadingOut() { SetDefaults(); }

    /// Opaque black and the neutral levels that a new record has.
    void SetDefaults();
    /// Zero everywhere, alpha included; the start of a sum.
    void Clear();
    ShadingOut& operator+=(const ShadingOut& other);
    ShadingOut& operator*=(float weight);
};
static_assert(offsetof(ShadingOut, fColor) == 0 && offsetof(ShadingOut, fSecondColor) == 16);
static_assert(offsetof(ShadingOut, fScalarA) == 28 && offsetof(ShadingOut, fScalarB) == 32);
static_assert(offsetof(ShadingOut, fScalarC) == 36 && offsetof(ShadingOut, fScalarD) == 40);
static_assert(offsetof(ShadingOut, fThirdColor) == 44 && offsetof(ShadingOut, fVectorChannel) == 56);
static_assert(offsetof(ShadingOut, fCoverage) == 68 && offsetof(ShadingOut, fSampledBlock) == 72);
static_assert(offsetof(ShadingOut, fSingleBlock) == 136 && offsetof(ShadingOut, fVectorBlock) == 172);
static_assert(offsetof(ShadingOut, fFourthColor) == 212 && offsetof(ShadingOut, fFullArea) == 224);
static_assert(offsetof(ShadingOut, fShadingNormal) == 228 && sizeof(ShadingOut) == 240);

// Inline, so that the compiler can drop defaults that are overwritten at once.

inline void ShadingTripleBlock::Clear()
{
    *this = ShadingTripleBlock{};
    fMode = Code("avrg");
}

inline void ShadingTripleBlock::SetDefaults()
{
    Clear();
    fSampleCount = 4;
    fFirstLevel = 0.85f;
    fThirdLevel = 1;
}

inline void ShadingSingleBlock::Clear() { *this = ShadingSingleBlock{}; }

inline void ShadingSingleBlock::SetDefaults()
{
    Clear();
    fSampleCount = 2;
    fLevel = 0.85f;
    fSecondLevel = 1;
}

inline void ShadingVectorBlock::Clear() { *this = ShadingVectorBlock{}; }

inline void ShadingVectorBlock::SetDefaults()
{
    Clear();
    fThirdLevel = 1;
}

inline void ShadingOut::Clear()
{
    fColor = {0, 0, 0, 0};
    fSecondColor = TMCColorRGB::kBlack;
    fScalarA = 0;
    fScalarB = 0;
    fScalarC = 0;
    fScalarD = 0;
    fThirdColor = TMCColorRGB::kBlack;
    fVectorChannel = TVector3::kZero;
    fCoverage = 0;
    fSampledBlock.Clear();
    fSingleBlock.Clear();
    fVectorBlock.Clear();
    fFourthColor = TMCColorRGB::kBlack;
    fFullArea = false;
    fPadding[0] = fPadding[1] = fPadding[2] = 0;
    fShadingNormal = TVector3::kZero;
}

inline void ShadingOut::SetDefaults()
{
    Clear();
    fColor.fAlpha = 1;
    fScalarA = 0.5f;
    fScalarB = 1;
    fScalarC = 1;
    fSampledBlock.SetDefaults();
    fSingleBlock.SetDefaults();
    fVectorBlock.SetDefaults();
}
