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

constexpr GUID kUnknownID = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

/// What the library still holds of a host that it has been cleaned up with, or has released too often; empty for
/// nothing.
std::string Held(Utilities& utilities)
{
    if (ReferencesOf(utilities.Memory()) != 1)
        return "the memory service isn't counted as before";
    if (ReferencesOf(utilities.Debug()) != 1)
        return "the debug service isn't counted as before";
    if (utilities.Memory().LiveBlocks() != 0)
        return "blocks are not freed";
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
        inspection.Require(std::ranges::count(names, wanted) == 1, fmt::format("{} isn't exported", wanted));
    for (const std::string& name : names)
        if (!name.starts_with("__")) // the sanitizers' own
            inspection.Require(
                std::ranges::count(kWanted, name) == 1, fmt::format("{} is exported too", name));
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
            if (!inspection.Require(!library.HasLiveComponents(),
                    fmt::format("components are alive after {} came and went", table.fName)))
                return;
            inspection.Doing("cleaning up and unloading");
        }
        const std::string held = Held(*utilities);
        if (!inspection.Require(held.empty(), fmt::format("after {} lives {}", life + 1, held))
            || !inspection.Require(ReferencesOf(*utilities) == 1, "the utilities object is still counted")
            || !inspection.Require(
                !IsModuleLoaded(inspection.fJob.library), "the module stays in the process"))
            return;
    }
}

void CheckCleanUpTwice(Inspection& inspection)
{
    const auto utilities = MakeCounted<Utilities>();
    const Library library(inspection.fJob.library, utilities);
    for (const char* const time : {"first", "second"}) {
        inspection.Doing("cleaning up");
        inspection.Require(library.fCleanUp() == MC_S_OK, fmt::format("the {} clean-up fails", time));
        const std::string held = Held(*utilities);
        inspection.Require(held.empty(), fmt::format("after the {} clean-up {}", time, held));
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
        inspection.Doing(fmt::format("service {} is withheld", number).c_str());
        const Library library(inspection.fJob.library, utilities);
        const int made = UseAll(library);
        const bool hasMemory = number != kMemory && number <= kServiceCount;
        inspection.Require((made != 0) == hasMemory,
            fmt::format("with service {} withheld {} objects are made", number, made));
        inspection.Require(!library.HasLiveComponents(),
            fmt::format("with service {} withheld components stay alive", number));
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
        inspection.Require(status == kMCNoSuchClass && out == nullptr,
            fmt::format("{} is no class, but CreateInstance answers {:#010x}", GuidText(id), status));
    }
    void* out = &unknown;
    inspection.Require(
        subject.library.fGetClassObject(kUnknownID, kUnknownID, &out) == kMCNoInterface && out == nullptr,
        "a factory gives an unknown interface");
    inspection.Doing("asking for a factory without a place for it");
    const MCErr noPlace = subject.library.fGetClassObject(kUnknownID, IID_IExClassFactory, nullptr);
    inspection.Require(noPlace == kMCNoInterface,
        fmt::format("MCDllGetClassObject without a place for the factory: expected {:#x}, came {:#x}",
            kMCNoInterface, noPlace));
    for (const ParameterTable& table : AllClasses())
        for (const GUID& classID : table.fClassIDs) {
            out = &unknown;
            const MCErr status = subject.library.CreateInstance(classID, nullptr, kUnknownID, &out);
            inspection.Require(status == kMCNoInterface && out == nullptr,
                fmt::format("{} is made with an unknown interface: {:#010x}", table.fName, status));
        }
    inspection.Require(subject.Remains().empty(), "after refusals " + subject.Remains());
}

} // namespace fernwick::validation
