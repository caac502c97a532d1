#include "host/validation/Sheet.h"
#include "host/validation/Statements.h"
#include "host/validation/SurfaceFields.h"
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <span>

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

/// The field of a sample that a shader changed though it isn't its to change, with both values; empty for none.
std::string ChangeOf(const ShadingIn& sample, const ShadingIn& changed, uint32_t allowed)
{
    std::string change; // the first
    const auto require = [&](const char* name, const auto& before, const auto& after) {
        const auto numbers = [](const auto& record) {
            return std::span(reinterpret_cast<const float*>(&record), sizeof record / sizeof(float));
        };
        if (change.empty() && !SameBits(before, after))
            change = fmt::format("{}: expected [{}], came [{}]", name, fmt::join(numbers(before), ", "),
                fmt::join(numbers(after), ", "));
    };
    if ((allowed & kChangesPoints) == 0) {
        require("fPointGlobal", sample.fPointGlobal, changed.fPointGlobal);
        require("fPointLocal", sample.fPointLocal, changed.fPointLocal);
    }
    if ((allowed & kChangesUV) == 0)
        require("fUV", sample.fUV, changed.fUV);
    require("fNormalGlobal", sample.fNormalGlobal, changed.fNormalGlobal);
    require("fNormalLocal", sample.fNormalLocal, changed.fNormalLocal);
    require("fDerivU", sample.fDerivU, changed.fDerivU);
    require("fDerivV", sample.fDerivV, changed.fDerivV);
    if (!change.empty())
        return change;
    if ((allowed & kChangesChannelMask) == 0 && sample.fChannelMask != changed.fChannelMask)
        return fmt::format(
            "fChannelMask: expected {:#x}, came {:#x}", sample.fChannelMask, changed.fChannelMask);
    if (!SameBits(sample.fHostDataA, changed.fHostDataA) || !SameBits(sample.fHostDataB, changed.fHostDataB))
        return "host data: expected the host's, came other bytes";
    if (sample.fInstance != changed.fInstance)
        return "fInstance: expected the host's, came another";
    return "";
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

int32_t Sheet::KindOf(Operation operation)
{
    constexpr int32_t kKinds[] = {kOutputValue, kOutputColor, kOutputVector, kOutputSurface};
    return kKinds[operation];
}

Sheet::Sheet(const ShadingIn& sample, bool fullArea, float number) : fSample(sample)
{
    for (Walled<ShadingIn>& in : fIn)
        in.fRecord = sample;
    fValue.fRecord = number;
    fColor.fRecord = {number * 2, number, number / 2, number * 3};
    // The host hands over the normal that is to be bent.
    fVector.fRecord = number == kUsualNumber ? sample.fNormalGlobal : TVector3(number, number, number);
    fValueFullArea.fRecord = fullArea;
    fColorFullArea.fRecord = fullArea;
    if (number != kUsualNumber)
        fResultBefore = ResultHolding(number);
    fResult.fRecord = fResultBefore;
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
    for (const Operation operation : kOperations)
        Ask(shader, operation);
}

std::string Sheet::WildWrite(uint32_t sampleChanges) const
{
    std::string wild; // the first
    const auto require = [&](Operation operation, const char* what, const auto& walled) {
        if (const std::optional<WallDamage> damage = walled.Damage(); wild.empty() && damage)
            wild = fmt::format("{} writes beside {}: expected {:#x} at byte {} from its start, came {:#x}",
                NameOf(operation), what, walled.kBrick, damage->place, damage->byte);
    };
    for (const Operation operation : kOperations) {
        const Walled<ShadingIn>& in = fIn[operation];
        require(operation, "ShadingIn", in);
        if (const std::string change = ChangeOf(fSample, in.fRecord, sampleChanges);
            wild.empty() && !change.empty())
            wild = fmt::format("{} changes ShadingIn's {}", NameOf(operation), change);
    }
    require(kValue, "its result", fValue);
    require(kValue, "its fullArea", fValueFullArea);
    require(kColor, "its result", fColor);
    require(kColor, "its fullArea", fColorFullArea);
    require(kVector, "its result", fVector);
    require(kSurface, "ShadingOut", fResult);
    return wild;
}

std::string Sheet::LeftUnset(const Sheet& other, int32_t kinds, uint32_t left) const
{
    std::string text; // of the first
    const auto require = [&](Operation operation, const char* result, const auto& own, const auto& others) {
        if (text.empty() && !SameBits(own, others))
            text = fmt::format("{} leaves its {}: expected one result whatever was there, came {} and {}",
                NameOf(operation), result, own, others);
    };
    if ((kinds & kOutputValue) != 0 && fCoverage[kValue] != 0) {
        require(kValue, "value", fValue.fRecord, other.fValue.fRecord);
        if ((left & kLeavesValueFullArea) == 0)
            require(kValue, "fullArea", fValueFullArea.fRecord, other.fValueFullArea.fRecord);
    }
    if ((kinds & kOutputColor) != 0 && fCoverage[kColor] != 0) {
        const TMCColorRGBA& own = fColor.fRecord;
        const TMCColorRGBA& others = other.fColor.fRecord;
        require(kColor, "fullArea", fColorFullArea.fRecord, other.fColorFullArea.fRecord);
        if ((left & kLeavesColor) == 0) {
            require(kColor, "red", own.fRed, others.fRed);
            require(kColor, "green", own.fGreen, others.fGreen);
            require(kColor, "blue", own.fBlue, others.fBlue);
        }
        if ((left & kLeavesAlpha) == 0)
            require(kColor, "alpha", own.fAlpha, others.fAlpha);
    }
    if ((kinds & kOutputVector) != 0 && (left & kLeavesVector) == 0)
        for (const uint32_t i : {0u, 1u, 2u})
            require(kVector, "vector", fVector.fRecord[i], other.fVector.fRecord[i]);
    return text;
}

std::string Sheet::WrongSurface(const Sheet& other, std::string_view written) const
{
    if (fProduced != other.fProduced)
        return fmt::format("ShadeSurface: expected one answer whatever its result held, came {} and {}",
            fProduced, other.fProduced);
    return WrongField(
        written, {fResultBefore, fResult.fRecord}, {other.fResultBefore, other.fResult.fRecord});
}

std::optional<Sheet::Operation> Sheet::DifferentOperation(const Sheet& other) const
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
    for (const Operation operation : kOperations) {
        const bool sameCoverage
            = operation == kSurface || SameBits(fCoverage[operation], other.fCoverage[operation]);
        if (!same[operation] || !sameCoverage
            || std::memcmp(&fIn[operation].fRecord, &other.fIn[operation].fRecord, kBeforeInstance) != 0)
            return operation;
    }
    return std::nullopt;
}

const char* Sheet::DifferenceFrom(const Sheet& other) const
{
    const std::optional<Operation> operation = DifferentOperation(other);
    return operation ? NameOf(*operation) : nullptr;
}

std::string Sheet::AnswerUnlike(const Sheet& other) const
{
    const std::optional<Operation> operation = DifferentOperation(other);
    if (!operation)
        return "";
    const std::string text = *operation == kSurface
        ? fmt::format("{} with {}", fProduced, DifferentField(fResult.fRecord, other.fResult.fRecord))
        : AnswerText(*operation);
    const uint32_t mask = fIn[*operation].fRecord.fChannelMask; // differs where nothing else needs to
    return mask == other.fIn[*operation].fRecord.fChannelMask
        ? text
        : fmt::format("{}, leaving fChannelMask {:#x}", text, mask);
}

std::string Sheet::AnswerText(Operation operation) const
{
    const TMCColorRGBA& color = fColor.fRecord;
    const auto triple
        = [](const TVector3& vector) { return fmt::format("[{}, {}, {}]", vector[0], vector[1], vector[2]); };
    switch (operation) {
    case kValue:
        return fmt::format(
            "{} with fullArea {} and coverage {}", fValue.fRecord, fValueFullArea.fRecord, fCoverage[kValue]);
    case kColor:
        return fmt::format("[{}, {}, {}, {}] with fullArea {} and coverage {}", color.fRed, color.fGreen,
            color.fBlue, color.fAlpha, fColorFullArea.fRecord, fCoverage[kColor]);
    case kVector:
        return fmt::format("{} with coverage {}", triple(fVector.fRecord), fCoverage[kVector]);
    default:
        return fmt::format("{} with fShadingNormal {}", fProduced, triple(fResult.fRecord.fShadingNormal));
    }
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
