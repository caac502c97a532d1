#include "frame/ShadingOut.h"
#include "frame/DebugReport.h"

namespace {

/// Adds two counts; a sum past the int32 range wraps.
int32_t SumOfCounts(int32_t left, int32_t right)
{
    return static_cast<int32_t>(static_cast<uint32_t>(left) + static_cast<uint32_t>(right));
}

int32_t ScaledCount(int32_t count, float weight) { return CutToInt32(static_cast<float>(count) * weight); }

} // namespace

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
