#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include "host/validation/Probes.h"
#include "host/validation/Sheet.h"
#include "host/validation/Specimen.h"
#include "host/validation/Statements.h"
#include "host/validation/SurfaceFields.h"
#include <algorithm>
#include <fmt/format.h>

// What every class states of itself, and what it answers where it has nothing of its own.

namespace fernwick::validation {

namespace {

void RequireReservedShaderAnswers(Inspection& inspection, I3DExShader& shader, Subject& subject)
{
    void* a = &shader;
    const auto expect = [&](const char* operation, const auto& expected, const auto& came) {
        inspection.Expect(operation, expected, came);
    };
    const auto expectNot = [&](const char* operation, MCErr came) {
        expect(operation, StatusText(kMCNotImplemented), StatusText(came));
    };
    expect("ReservedFalseA", false, shader.ReservedFalseA(a));
    expectNot("ReservedNotImplementedA", shader.ReservedNotImplementedA(a, a, a));
    for (const bool isFirst : {true, false}) {
        subject.utilities->Debug().Clear();
        isFirst ? shader.ObsoleteCallA(a, a) : shader.ObsoleteCallB(a, a);
        std::string reports;
        for (const Report& report : subject.utilities->Debug().Reports())
            reports += '"' + report.message + '"';
        expect(isFirst ? "reports of ObsoleteCallA" : "reports of ObsoleteCallB",
            std::string("\"Should not be called\""), reports);
    }
    subject.utilities->Debug().Clear();
    shader.ReservedNoOpA(a, a);
    shader.ReservedNoOpB(a, a);
    expectNot("ReservedNotImplementedB", shader.ReservedNotImplementedB(a, a));
    shader.ReservedNoOpC(a);
    expect("ReservedTrueA", true, shader.ReservedTrueA());
    expect("ReservedFalseB", false, shader.ReservedFalseB(a, a));
    void* out = a;
    const int32_t cleared = shader.ClearOutPointer(a, a, &out);
    expect("ClearOutPointer", AnswerText(1, nullptr), AnswerText(static_cast<MCErr>(cleared), out));

    const auto object = MakeCounted<ProbeUnknown>();
    IMCUnknown* stored = nullptr;
    expect("StoreCountedOut", true, shader.StoreCountedOut(&stored, object.Get(), a));
    expect("StoreCountedOut stores the object", true, stored == object.Get());
    expect("references to what StoreCountedOut has stored", 2u, ReferencesOf(*object));
    expect("ClearCountedOut answers null", true, shader.ClearCountedOut(0, a, &stored) == nullptr);
    expect("ClearCountedOut stores null", true, stored == nullptr);
    expect("references to what ClearCountedOut has cleared", 1u, ReferencesOf(*object));
    expect("ReservedFalseC", false, shader.ReservedFalseC(1));
    expect("ReservedMinusOne", -1, shader.ReservedMinusOne(1));
    expect("ReservedZeroA", 0, shader.ReservedZeroA());
    expect("ReservedZeroB", 0, shader.ReservedZeroB(1));
    expectNot("ReservedNotImplementedC", shader.ReservedNotImplementedC(a, a));
    shader.ReservedNoOpD(a, a);
    for (const auto operation :
        {&I3DExShader::ReservedNoOpE, &I3DExShader::ReservedNoOpF, &I3DExShader::ReservedNoOpG,
            &I3DExShader::ReservedNoOpH, &I3DExShader::ReservedNoOpI, &I3DExShader::ReservedNoOpJ})
        (shader.*operation)(a, a, a);
    expect("reports of ReservedNoOpA to J", 0u, subject.utilities->Debug().Reports().size());
    expect("ReservedTrueB", true, shader.ReservedTrueB(1));
    expect("IsDependencyBitSet without a wrapper", false, shader.IsDependencyBitSet(a, 1));
    expectNot("ReservedNotImplementedD", shader.ReservedNotImplementedD(a, a, a));
    expect("ReservedFalseD", false, shader.ReservedFalseD(1, a, a));
    expectNot("ReservedNotImplementedE", shader.ReservedNotImplementedE(a));
    const TMCColorRGB white = shader.GetWhite();
    expect("GetWhite", std::string("[1, 1, 1]"),
        fmt::format("[{}, {}, {}]", white.fRed, white.fGreen, white.fBlue));
    expect("GetUnitScale", 1.0f, shader.GetUnitScale());
    expectNot("ReservedNotImplementedF", shader.ReservedNotImplementedF(a));
}

void RequireReservedExchangerAnswers(Inspection& inspection, IExDataExchanger& exchanger)
{
    void* a = &exchanger;
    const auto expect = [&](const char* operation, const auto& expected, const auto& came) {
        inspection.Expect(operation, expected, came);
    };
    const auto expectStatus = [&](const char* operation, MCErr expected, MCErr came) {
        expect(operation, StatusText(expected), StatusText(came));
    };
    void* out = a;
    exchanger.CloneExtension(&out, a);
    expect("CloneExtension stores null", true, out == nullptr);
    expect("ReservedExchangeTrue", true, exchanger.ReservedExchangeTrue(a));
    expectStatus("ReservedExchangeA", kMCNotImplemented, exchanger.ReservedExchangeA(1, a));
    expectStatus("ReservedExchangeB", kMCNotImplemented, exchanger.ReservedExchangeB(1, a));
    expectStatus("ReservedExchangeC", kMCNotImplemented, exchanger.ReservedExchangeC(1, a, a));
    out = a;
    expect("ReservedExchangeOut answers its pointer", true, exchanger.ReservedExchangeOut(&out) == &out);
    expect("ReservedExchangeOut stores null", true, out == nullptr);
    expect("ReservedExchangeZeroA", 0, exchanger.ReservedExchangeZeroA());
    expect("ReservedExchangeZeroB", 0, exchanger.ReservedExchangeZeroB());
    expectStatus("ReservedExchangeD", kMCNotImplemented, exchanger.ReservedExchangeD());
    expectStatus("ReservedExchangeE", kMCNotSupported, exchanger.ReservedExchangeE());
    expectStatus("ReservedExchangeF", kMCNotSupported, exchanger.ReservedExchangeF(a));
}

/// What operations that the class doesn't offer make of a sheet.
void RequireAbsent(
    Inspection& inspection, const ParameterTable& table, const Sheet& before, const Sheet& sheet)
{
    inspection.RequireNone(sheet.WildWrite(StatementOf(table).sampleChanges));
    Sheet expected = before;
    expected.fColor.fRecord = TMCColorRGBA::kOpaqueBlack;
    expected.fResult.fRecord.fShadingNormal = before.fSample.fNormalLocal;
    std::ranges::fill(expected.fCoverage, 1.0f);
    for (const Sheet::Operation operation : Sheet::kOperations) {
        if ((table.fOutputKinds & Sheet::KindOf(operation)) != 0)
            continue;
        const std::string name = fmt::format("{}, which the class doesn't offer", Sheet::NameOf(operation));
        inspection.Expect(name, expected.AnswerText(operation), sheet.AnswerText(operation));
        const bool isChanged
            = std::memcmp(&sheet.fIn[operation].fRecord, &before.fSample, sizeof before.fSample) != 0;
        inspection.Expect(name + ", changes ShadingIn", false, isChanged);
    }
}

} // namespace

void CheckStatedAnswers(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    const Statement& stated = StatementOf(table);
    const int32_t kinds = object.Shader().GetOutputKinds();
    inspection.Expect("GetOutputKinds", table.fOutputKinds, kinds);
    inspection.Expect("QueryBooleanTrait", stated.trait, object.Shader().QueryBooleanTrait());
    for (const uint16_t before : {0, 0x8001, 0xFFFF}) { // what a caller set stays
        ShadingFlags flags;
        flags.fNeeds = before;
        const MCErr status = object.Shader().ReportNeeds(flags);
        const auto answer = [](MCErr error, int needs, uint16_t dependencies) {
            return fmt::format("{:#x}, fNeeds {:#06x} and fDependencyBits {:#x}", error, needs, dependencies);
        };
        inspection.Expect(fmt::format("ReportNeeds after fNeeds {:#06x}", before),
            answer(MC_S_OK, before | stated.needs, 0), answer(status, flags.fNeeds, flags.fDependencyBits));
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
            inspection.Expect("HandleEvent", 1, object.Exchanger().HandleEvent(1, nullptr, nullptr));
    }
    inspection.RequireNone(subject.Remains("after all operations"));
}

void CheckAbsentKinds(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    object.Changed();
    Random random(inspection.fJob.seed);
    for (int i = 0; i < 2; ++i) {
        const ShadingIn sample = RandomSample(random, nullptr);
        Sheet usual(sample);
        Sheet other(sample, true, -3);
        for (Sheet* const sheet : {&usual, &other}) {
            const Sheet before = *sheet;
            inspection.Doing("shading");
            sheet->Ask(object.Shader());
            RequireAbsent(inspection, table, before, *sheet);
        }
        if ((table.fOutputKinds & kOutputSurface) == 0) // without a wrapper there is no colour either
            inspection.RequireNone(usual.WrongSurface(other, surface_fields::kDefault));
    }
}

} // namespace fernwick::validation
