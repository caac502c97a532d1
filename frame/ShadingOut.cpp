#include "frame/ShadingOut.h"
#include "frame/DebugReport.h"

namespace {

constexpr int32_t kAverageMode = Code("avrg");

/// Adds two counts; a sum past the int32 range wraps.
int32_t SumOfCounts(int32_t left, int32_t right)
{
    return static_cast<int32_t>(static_cast<uint32_t>(left) + static_cast<uint32_t>(right));
}

int32_t ScaledCount(int32_t count, float weight) { return CutToInt32(static_cast<float>(count) * weight); }

} // namespace

void ShadingTripleBlock::SetDefaults()
{
    Clear();
    fSampleCount = 4;
    fFirstLevel = 0.85f;
    fThirdLevel = 1;
}

void ShadingTripleBlock::Clear()
{
    *this = ShadingTripleBlock{};
    fMode = kAverageMode;
}

ShadingTripleBlock& ShadingTripleBlock::operator+=(const ShadingTripleBlock& other)
{
    for (int i = 0; i < 3; ++i)
        fColors[i] += other.fColors[i];
    fSampleCount = SumOfCounts(fSampleCount, other.fSampleCount);
    fFirstLevel += other.fFirstLevel;
    fSecondLevel += other.fSecondLevel;
    fThirdLevel += other.fThirdLevel;
    fFourthLevel += other.fFourthLevel;
    return *this;
}

ShadingTripleBlock& ShadingTripleBlock::operator*=(float weight)
{
    for (TMCColorRGB& color : fColors)
        color *= weight;
    fSampleCount = ScaledCount(fSampleCount, weight);
    fFirstLevel *= weight;
    fSecondLevel *= weight;
    fThirdLevel *= weight;
    fFourthLevel *= weight;
    return *this;
}

void ShadingSingleBlock::SetDefaults()
{
    Clear();
    fSampleCount = 2;
    fLevel = 0.85f;
    fSecondLevel = 1;
}

void ShadingSingleBlock::Clear() { *this = ShadingSingleBlock{}; }

ShadingSingleBlock& ShadingSingleBlock::operator+=(const ShadingSingleBlock& other)
{
    fColor += other.fColor;
    fSampleCount = SumOfCounts(fSampleCount, other.fSampleCount);
    fLevel += other.fLevel;
    fSwitch = static_cast<uint8_t>(fSwitch + other.fSwitch);
    fCount = SumOfCounts(fCount, other.fCount);
    fSecondLevel += other.fSecondLevel;
    fThirdLevel += other.fThirdLevel;
    return *this;
}

ShadingSingleBlock& ShadingSingleBlock::operator*=(float weight)
{
    fColor *= weight;
    fSampleCount = ScaledCount(fSampleCount, weight);
    fLevel *= weight;
    fSwitch = static_cast<uint8_t>(ScaledCount(fSwitch, weight));
    fCount = ScaledCount(fCount, weight);
    fSecondLevel *= weight;
    fThirdLevel *= weight;
    return *this;
}

void ShadingVectorBlock::SetDefaults()
{
    Clear();
    fThirdLevel = 1;
}

void ShadingVectorBlock::Clear() { *this = ShadingVectorBlock{}; }

ShadingVectorBlock& ShadingVectorBlock::operator+=(const ShadingVectorBlock& param)
{
    if (fLocal != param.fLocal)
        MC_REPORT("fLocal == param.fLocal");
    fFirst += param.fFirst;
    fSecond += param.fSecond;
    fLevels[0] += param.fLevels[0];
    fLevels[1] += param.fLevels[1];
    fThirdLevel += param.fThirdLevel;
    return *this;
}

ShadingVectorBlock& ShadingVectorBlock::operator*=(float weight)
{
    fFirst *= weight;
    fSecond *= weight;
    fLevels[0] *= weight;
    fLevels[1] *= weight;
    fThirdLevel *= weight;
    return *this;
}

void ShadingOut::SetDefaults()
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

void ShadingOut::Clear()
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

ShadingOut& ShadingOut::operator+=(const ShadingOut& other)
{
    fColor += other.fColor;
    fSecondColor += other.fSecondColor;
    fScalarA += other.fScalarA;
    fScalarB += other.fScalarB;
    fScalarC += other.fScalarC;
    fScalarD += other.fScalarD;
    fThirdColor += other.fThirdColor;
    fVectorChannel += other.fVectorChannel;
    fSampledBlock += other.fSampledBlock;
    fSingleBlock += other.fSingleBlock;
    fVectorBlock += other.fVectorBlock;
    fFourthColor += other.fFourthColor;
    fShadingNormal += other.fShadingNormal;
    return *this;
}

ShadingOut& ShadingOut::operator*=(float weight)
{
    fColor *= weight;
    fSecondColor *= weight;
    fScalarA *= weight;
    fScalarB *= weight;
    fScalarC *= weight;
    fScalarD *= weight;
    fThirdColor *= weight;
    fVectorChannel *= weight;
    fSampledBlock *= weight;
    fSingleBlock *= weight;
    fVectorBlock *= weight;
    fFourthColor *= weight;
    fShadingNormal *= weight;
    return *this;
}
