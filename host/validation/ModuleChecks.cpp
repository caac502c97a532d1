#include "frame/Query.h"
#include "host/library/Module.h"
#include "host/validation/Checks.h"
#include "host/validation/ElfSymbols.h"
#include "host/validation/Inspection.h"
#include "host/validation/Probes.h"
#include "host/validation/Sheet.h"
#include "host/validation/Specimen.h"
#include "module/ClassIDs.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick::validation {

namespace {

constexpr int kLives = 1000;

/// What the library still holds of a host that it has been cleaned up with, or has released too often; empty for
/// nothing.
std::string HeldOf(Utilities& utilities)
{
    if (std::string held = Held(utilities.Memory(), "the memory service"); !held.empty())
        return held;
    if (std::string held = Held(utilities.Debug(), "the debug service"); !held.empty())
        return held;
    if (const int64_t blocks = utilities.Memory().LiveBlocks(); blocks != 0)
        return fmt::format("blocks of memory: expected none, came {}", blocks);
    return "";
}

/// Makes one object of each class, changes it and shades with it. @return how many were made
int UseAll(const Library& library)
{
    int made = 0;
    for (const ParameterTable& table : AllClasses())
        for (const GUID& classID : table.fClassIDs) {
            void* face = nullptr;
            if (library.CreateInstance(classID, nullptr, IID_I3DExShader, &face) != MC_S_OK)
                continue;
            ++made;
            MCCountedPtr<I3DExShader> shader;
            *shader.Address() = static_cast<I3DExShader*>(face);
            MCCountedPtr<IExDataExchanger> exchanger;
            Query(*shader, IID_IExDataExchanger, exchanger);
            exchanger->ExtensionDataChanged();
            Sheet({}).Ask(*shader);
        }
    return made;
}

} // namespace

void CheckExports(Inspection& inspection)
{
    constexpr std::string_view kWanted[] = {"MCDllInit", "MCDllCleanUp", "MCDllInitExceptionTranslator",
        "MCDllCleanUpExceptionTranslator", "MCDllGetClassObject", "MCDllCanUnloadNow"};
    const std::vector<std::string> names = ExportedNames(inspection.fJob.library);
    for (const std::string_view wanted : kWanted)
        inspection.Expect(
            fmt::format("exports of the name {}", wanted), 1, std::ranges::count(names, wanted));
    for (const std::string& name : names)
        if (!name.starts_with("__")) // the sanitizers' own
            inspection.Require(std::ranges::count(kWanted, name) == 1,
                "exports beside the six: expected none, came " + name);
}

void CheckLifeCycle(Inspection& inspection)
{
    const auto& classes = AllClasses();
    for (int life = 0; life < kLives; ++life) {
        const auto utilities = MakeCounted<Utilities>();
        {
            inspection.Doing("loading");
            const Library library(inspection.fJob.library, utilities);
            const ParameterTable& table = classes[static_cast<size_t>(life) % classes.size()];
            inspection.Doing("making an object");
            if (!table.fClassIDs.empty())
                Specimen(library, table).Changed();
            if (!inspection.Expect(fmt::format("live components after {} came and went", table.fName), false,
                    library.HasLiveComponents()))
                return;
            inspection.Doing("cleaning up and unloading");
        }
        const std::string held = HeldOf(*utilities);
        const std::string after = fmt::format("after life {} of the module, ", life + 1);
        if (!inspection.Require(held.empty(), after + held)
            || !inspection.RequireNone(Held(*utilities, after + "the utilities object"))
            || !inspection.Expect(
                after + "the module in the process", false, IsModuleLoaded(inspection.fJob.library)))
            return;
    }
}

void CheckCleanUpTwice(Inspection& inspection)
{
    const auto utilities = MakeCounted<Utilities>();
    const Library library(inspection.fJob.library, utilities);
    for (const char* const time : {"first", "second"}) {
        inspection.Doing("cleaning up");
        inspection.Expect(
            fmt::format("the {} clean-up", time), StatusText(MC_S_OK), StatusText(library.fCleanUp()));
        const std::string held = HeldOf(*utilities);
        inspection.Require(held.empty(), fmt::format("after the {} clean-up, {}", time, held));
    }
}

void CheckWithheldServices(Inspection& inspection)
{
    constexpr int32_t kMemory = 8;
    constexpr int32_t kAll = kServiceCount + 1;
    constexpr int32_t kNoUtilities = kServiceCount + 2;
    for (int32_t number = 1; number <= kNoUtilities; ++number) {
        auto utilities = number == kNoUtilities ? MCCountedPtr<Utilities>() : MakeCounted<Utilities>();
        if (number <= kServiceCount)
            utilities->Withhold(number);
        else if (number == kAll)
            utilities->WithholdAll();
        const std::string withheld = number == kNoUtilities ? "with no object of services"
            : number == kAll                                ? "with all services withheld"
                                                            : fmt::format("with service {} withheld", number);
        inspection.Doing(("using all classes " + withheld).c_str());
        const Library library(inspection.fJob.library, utilities);
        const int made = UseAll(library);
        const bool hasMemory = number != kMemory && number <= kServiceCount;
        inspection.Require((made != 0) == hasMemory,
            fmt::format(
                "objects made {}: expected {}, came {}", withheld, hasMemory ? "some" : "none", made));
        inspection.Expect("live components " + withheld, false, library.HasLiveComponents());
    }
}

void CheckRefusals(Inspection& inspection)
{
    const Subject subject(inspection.fJob.library);
    std::vector<GUID> unknown = {GUID{}, kUnknownID, kUnusedClassID, IID_IMCUnknown, IID_I3DExShader};
    for (const ParameterTable& table : AllClasses())
        for (const GUID& classID : table.fClassIDs)
            for (size_t byte = 0; byte < sizeof(GUID); ++byte) { // near misses of every class
                GUID near = classID;
                reinterpret_cast<uint8_t*>(&near)[byte] ^= 0x10;
                unknown.push_back(near);
            }
    for (const GUID& id : unknown) {
        void* out = &unknown;
        const MCErr status = subject.library.CreateInstance(id, nullptr, IID_IMCUnknown, &out);
        inspection.Expect(fmt::format("CreateInstance of {}, which is no class", GuidText(id)),
            AnswerText(kMCNoSuchClass, nullptr), AnswerText(status, out));
    }
    void* out = &unknown;
    const MCErr noFactory = subject.library.fGetClassObject(kUnknownID, kUnknownID, &out);
    inspection.Expect("MCDllGetClassObject for an unknown interface", AnswerText(kMCNoInterface, nullptr),
        AnswerText(noFactory, out));
    inspection.Doing("asking for a factory without a place for it");
    const MCErr noPlace = subject.library.fGetClassObject(kUnknownID, IID_IExClassFactory, nullptr);
    inspection.Expect("MCDllGetClassObject without a place for the factory", StatusText(kMCNoInterface),
        StatusText(noPlace));
    for (const ParameterTable& table : AllClasses())
        for (const GUID& classID : table.fClassIDs) {
            out = &unknown;
            const MCErr status = subject.library.CreateInstance(classID, nullptr, kUnknownID, &out);
            inspection.Expect(fmt::format("CreateInstance of {} for an unknown interface", table.fName),
                AnswerText(kMCNoInterface, nullptr), AnswerText(status, out));
        }
    inspection.RequireNone(subject.Remains("after refusals"));
}

} // namespace fernwick::validation
