#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include "host/validation/Probes.h"
#include "host/validation/Sheet.h"
#include "host/validation/Specimen.h"
#include "host/validation/Statements.h"
#include <fmt/format.h>

// What every class states of itself, and what it answers where it has nothing of its own.

namespace fernwick::validation {

namespace {

bool Same(const TMCColorRGBA& color, const TMCColorRGBA& other) { return color.Equals(other); }

void RequireReservedShaderAnswers(Inspection& inspection, I3DExShader& shader, Subject& subject)
{
    constexpr MCErr kNot = kMCNotImplemented;
    void* a = &shader;
    const auto require = [&](bool holds, const char* operation) {
        inspection.Require(holds, std::string(operation) + " doesn't answer its default");
    };
    require(!shader.ReservedFalseA(a), "ReservedFalseA");
    require(shader.ReservedNotImplementedA(a, a, a) == kNot, "ReservedNotImplementedA");
    for (const auto operation : {&I3DExShader::ObsoleteCallA, &I3DExShader::ObsoleteCallB}) {
        subject.utilities->Debug().Clear();
        (shader.*operation)(a, a);
        const auto reports = subject.utilities->Debug().Reports();
        require(reports.size() == 1 && reports[0].message == "Should not be called", "ObsoleteCallA or B");
    }
    subject.utilities->Debug().Clear();
    shader.ReservedNoOpA(a, a);
    shader.ReservedNoOpB(a, a);
    require(shader.ReservedNotImplementedB(a, a) == kNot, "ReservedNotImplementedB");
    shader.ReservedNoOpC(a);
    require(shader.ReservedTrueA(), "ReservedTrueA");
    require(!shader.ReservedFalseB(a, a), "ReservedFalseB");
    void* out = a;
    require(shader.ClearOutPointer(a, a, &out) == 1 && out == nullptr, "ClearOutPointer");

    const auto object = MakeCounted<ProbeUnknown>();
    IMCUnknown* stored = nullptr;
    require(shader.StoreCountedOut(&stored, object.Get(), a) && stored == object.Get()
            && ReferencesOf(*object) == 2,
        "StoreCountedOut");
    require(
        shader.ClearCountedOut(0, a, &stored) == nullptr && stored == nullptr && ReferencesOf(*object) == 1,
        "ClearCountedOut");
    require(!shader.ReservedFalseC(1), "ReservedFalseC");
    require(shader.ReservedMinusOne(1) == -1, "ReservedMinusOne");
    require(shader.ReservedZeroA() == 0, "ReservedZeroA");
    require(shader.ReservedZeroB(1) == 0, "ReservedZeroB");
    require(shader.ReservedNotImplementedC(a, a) == kNot, "ReservedNotImplementedC");
    shader.ReservedNoOpD(a, a);
    for (const auto operation :
        {&I3DExShader::ReservedNoOpE, &I3DExShader::ReservedNoOpF, &I3DExShader::ReservedNoOpG,
            &I3DExShader::ReservedNoOpH, &I3DExShader::ReservedNoOpI, &I3DExShader::ReservedNoOpJ})
        (shader.*operation)(a, a, a);
    require(subject.utilities->Debug().Reports().empty(), "ReservedNoOp");
    require(shader.ReservedTrueB(1), "ReservedTrueB");
    require(!shader.IsDependencyBitSet(a, 1), "IsDependencyBitSet without a wrapper");
    require(shader.ReservedNotImplementedD(a, a, a) == kNot, "ReservedNotImplementedD");
    require(!shader.ReservedFalseD(1, a, a), "ReservedFalseD");
    require(shader.ReservedNotImplementedE(a) == kNot, "ReservedNotImplementedE");
    const TMCColorRGB white = shader.GetWhite();
    require(white.fRed == 1 && white.fGreen == 1 && white.fBlue == 1, "GetWhite");
    require(shader.GetUnitScale() == 1, "GetUnitScale");
    require(shader.ReservedNotImplementedF(a) == kNot, "ReservedNotImplementedF");
}

void RequireReservedExchangerAnswers(Inspection& inspection, IExDataExchanger& exchanger)
{
    constexpr MCErr kNot = kMCNotImplemented;
    void* a = &exchanger;
    const auto require = [&](bool holds, const char* operation) {
        inspection.Require(holds, std::string(operation) + " doesn't answer its default");
    };
    void* out = a;
    exchanger.CloneExtension(&out, a);
    require(out == nullptr, "CloneExtension");
    require(exchanger.ReservedExchangeTrue(a), "ReservedExchangeTrue");
    require(exchanger.ReservedExchangeA(1, a) == kNot, "ReservedExchangeA");
    require(exchanger.ReservedExchangeB(1, a) == kNot, "ReservedExchangeB");
    require(exchanger.ReservedExchangeC(1, a, a) == kNot, "ReservedExchangeC");
    out = a;
    require(exchanger.ReservedExchangeOut(&out) == &out && out == nullptr, "ReservedExchangeOut");
    require(exchanger.ReservedExchangeZeroA() == 0, "ReservedExchangeZeroA");
    require(exchanger.ReservedExchangeZeroB() == 0, "ReservedExchangeZeroB");
    require(exchanger.ReservedExchangeD() == kNot, "ReservedExchangeD");
    require(exchanger.ReservedExchangeE() == kMCNotSupported, "ReservedExchangeE");
    require(exchanger.ReservedExchangeF(a) == kMCNotSupported, "ReservedExchangeF");
}

} // namespace

void CheckStatedAnswers(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    const Statement& stated = StatementOf(table);
    const int32_t kinds = object.Shader().GetOutputKinds();
    inspection.Require(kinds == table.fOutputKinds,
        fmt::format("GetOutputKinds answers {}, {} is stated", kinds, table.fOutputKinds));
    inspection.Require(
        object.Shader().QueryBooleanTrait() == stated.trait, "QueryBooleanTrait isn't as stated");
    for (const uint16_t before : {0, 0x8001, 0xFFFF}) { // what a caller set stays
        ShadingFlags flags;
        flags.fNeeds = before;
        const MCErr status = object.Shader().ReportNeeds(flags);
        inspection.Require(status == MC_S_OK && flags.fNeeds == (before | stated.needs),
            fmt::format("ReportNeeds makes {:#06x} of {:#06x}, {:#06x} is stated", flags.fNeeds, before,
                stated.needs));
        inspection.Require(flags.fDependencyBits == 0, "ReportNeeds doesn't store 0 as dependencies");
    }
}

void CheckReservedSlots(Inspection& inspection, const ParameterTable& table)
{
    constexpr std::string_view kHasEvents = "Fresnel";
    Subject subject(inspection.fJob.library);
    {
        const Specimen object(subject.library, table);
        inspection.Doing("calling the reserved operations of I3DExShader");
        RequireReservedShaderAnswers(inspection, object.Shader(), subject);
        inspection.Doing("calling the reserved operations of IExDataExchanger");
        RequireReservedExchangerAnswers(inspection, object.Exchanger());
        if (table.fName != kHasEvents)
            inspection.Require(
                object.Exchanger().HandleEvent(1, nullptr, nullptr) == 1, "HandleEvent doesn't answer 1");
    }
    inspection.Require(subject.Remains().empty(), "after all operations " + subject.Remains());
}

void CheckAbsentKinds(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    object.Changed();
    const Statement& stated = StatementOf(table);
    Random random(inspection.fJob.seed);
    for (const bool fullArea : {false, true}) {
        const ShadingIn sample = RandomSample(random, nullptr);
        const Sheet before(sample, fullArea);
        Sheet sheet(sample, fullArea);
        inspection.Doing("shading");
        sheet.Ask(object.Shader());
        inspection.Require(
            sheet.WildWrite(stated.sampleChanges).empty(), sheet.WildWrite(stated.sampleChanges));

        const auto require = [&](int32_t kind, Sheet::Operation operation, bool holds) {
            if ((table.fOutputKinds & kind) != 0)
                return;
            inspection.Require(std::memcmp(&sheet.fIn[operation].fRecord, &sample, sizeof sample) == 0,
                std::string(Sheet::NameOf(operation)) + " is absent, but changes ShadingIn");
            inspection.Require(
                holds, std::string(Sheet::NameOf(operation)) + " is absent, but doesn't answer its default");
        };
        require(kOutputValue, Sheet::kValue,
            sheet.fValue.fRecord == before.fValue.fRecord && sheet.fValueFullArea.fRecord == fullArea
                && sheet.fCoverage[Sheet::kValue] == 1);
        require(kOutputColor, Sheet::kColor,
            Same(sheet.fColor.fRecord, TMCColorRGBA::kOpaqueBlack) && sheet.fColorFullArea.fRecord == fullArea
                && sheet.fCoverage[Sheet::kColor] == 1);
        require(kOutputVector, Sheet::kVector,
            std::memcmp(&sheet.fVector.fRecord, &before.fVector.fRecord, sizeof(TVector3)) == 0
                && sheet.fCoverage[Sheet::kVector] == 1);
        const ShadingOut& result = sheet.fResult.fRecord;
        Sheet expected = before; // without a wrapper there is no colour either
        expected.fResult.fRecord.fShadingNormal = sample.fNormalLocal;
        require(kOutputSurface, Sheet::kSurface,
            SameResult(result, expected.fResult.fRecord) && sheet.fProduced == 0);
    }
}

} // namespace fernwick::validation
