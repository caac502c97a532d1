#include "host/validation/Sheet.h"
#include <fmt/format.h>

namespace fernwick::validation {

namespace {

template <class Record> bool SameBits(const Record& left, const Record& right)
{
    return std::memcmp(static_cast<const void*>(&left), static_cast<const void*>(&right), sizeof left) == 0;
}

ShadingOut WithoutPadding(ShadingOut result)
{
    std::memset(result.fPadding, 0, sizeof result.fPadding);
    std::memset(result.fSampledBlock.fPadding, 0, sizeof result.fSampledBlock.fPadding);
    std::memset(result.fSingleBlock.fPadding, 0, sizeof result.fSingleBlock.fPadding);
    std::memset(result.fVectorBlock.fPadding, 0, sizeof result.fVectorBlock.fPadding);
    return result;
}

/// What a shader may change of a sample on its way: the points, the UV and the channel mask.
ShadingIn WithChangesOf(ShadingIn sample, const ShadingIn& changed)
{
    sample.fPointGlobal = changed.fPointGlobal;
    sample.fPointLocal = changed.fPointLocal;
    sample.fUV = changed.fUV;
    sample.fChannelMask = changed.fChannelMask;
    return sample;
}

} // namespace

bool SameResult(const ShadingOut& left, const ShadingOut& right)
{
    return SameBits(WithoutPadding(left), WithoutPadding(right));
}

const char* Sheet::NameOf(Operation operation)
{
    constexpr const char* kNames[] = {"ShadeValue", "ShadeColor", "ShadeVector", "ShadeSurface"};
    return kNames[operation];
}

Sheet::Sheet(const ShadingIn& sample, bool fullArea) : fSample(sample)
{
    for (Walled<ShadingIn>& in : fIn)
        in.fRecord = sample;
    fValue.fRecord = 0.25f;
    fColor.fRecord = {0.5f, 0.25f, 0.125f, 0.75f};
    fVector.fRecord = sample.fNormalGlobal;
    fValueFullArea.fRecord = fullArea;
    fColorFullArea.fRecord = fullArea;
}

void Sheet::Ask(I3DExShader& shader, Operation operation)
{
    ShadingIn& in = fIn[operation].fRecord;
    switch (operation) {
    case kValue:
        fCoverage[kValue] = shader.ShadeValue(fValue.fRecord, fValueFullArea.fRecord, in);
        break;
    case kColor:
        fCoverage[kColor] = shader.ShadeColor(fColor.fRecord, fColorFullArea.fRecord, in);
        break;
    case kVector:
        fCoverage[kVector] = shader.ShadeVector(fVector.fRecord, in);
        break;
    default:
        fProduced = shader.ShadeSurface(fResult.fRecord, in);
    }
}

void Sheet::Ask(I3DExShader& shader)
{
    for (const Operation operation : {kValue, kColor, kVector, kSurface})
        Ask(shader, operation);
}

std::string Sheet::WildWrite() const
{
    for (const Operation operation : {kValue, kColor, kVector, kSurface}) {
        const Walled<ShadingIn>& in = fIn[operation];
        if (!in.IsWhole())
            return fmt::format("{} writes beside ShadingIn", NameOf(operation));
        if (!SameBits(WithChangesOf(fSample, in.fRecord), in.fRecord))
            return fmt::format("{} changes a field of ShadingIn that is the host's", NameOf(operation));
    }
    if (!fValue.IsWhole() || !fValueFullArea.IsWhole())
        return "ShadeValue writes beside its result";
    if (!fColor.IsWhole() || !fColorFullArea.IsWhole())
        return "ShadeColor writes beside its result";
    if (!fVector.IsWhole())
        return "ShadeVector writes beside its result";
    if (!fResult.IsWhole())
        return "ShadeSurface writes beside ShadingOut";
    return "";
}

const char* Sheet::DifferenceFrom(const Sheet& other) const
{
    constexpr size_t kBeforeInstance
        = offsetof(ShadingIn, fInstance); // scenes that are alike are two objects
    const bool same[] = {
        SameBits(fValue.fRecord, other.fValue.fRecord)
            && SameBits(fValueFullArea.fRecord, other.fValueFullArea.fRecord),
        SameBits(fColor.fRecord, other.fColor.fRecord)
            && SameBits(fColorFullArea.fRecord, other.fColorFullArea.fRecord),
        SameBits(fVector.fRecord, other.fVector.fRecord),
        SameResult(fResult.fRecord, other.fResult.fRecord) && fProduced == other.fProduced,
    };
    for (const Operation operation : {kValue, kColor, kVector, kSurface}) {
        const bool sameCoverage
            = operation == kSurface || SameBits(fCoverage[operation], other.fCoverage[operation]);
        if (!same[operation] || !sameCoverage
            || std::memcmp(&fIn[operation].fRecord, &other.fIn[operation].fRecord, kBeforeInstance) != 0)
            return NameOf(operation);
    }
    return nullptr;
}

ShadingIn RandomSample(Random& random, IMCUnknown* instance)
{
    ShadingIn in;
    in.fPointGlobal = random.Vector();
    in.fNormalGlobal = random.Vector();
    in.fPointLocal = random.Vector();
    in.fNormalLocal = random.Vector();
    const bool plainUV = random.OneIn(2); // most is to be seen in the unit square
    for (const uint32_t i : {0u, 1u})
        in.fUV[i] = plainUV ? random.Share() : random.Float();
    in.fDerivU = random.Vector();
    in.fDerivV = random.Vector();
    for (uint8_t& byte : in.fHostDataA)
        byte = static_cast<uint8_t>(random.Bits(1));
    for (uint8_t& byte : in.fHostDataB)
        byte = static_cast<uint8_t>(random.Bits(1));
    in.fChannelMask = static_cast<uint32_t>(random.Bits(4));
    in.fInstance = instance;
    return in;
}

} // namespace fernwick::validation
