#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/RuntimeAllocations.h"
#include "host/validation/Sheet.h"
#include <fmt/format.h>

// What holds for every class while it shades, whatever is plugged in and whoever the host is.

namespace fernwick::validation {

namespace {

constexpr int kSamples = 20;
constexpr int kCases = 50;
constexpr uint32_t kAllKinds = kOutputValue | kOutputColor | kOutputSurface;

void ShadeSome(const Specimen& object, uint64_t seed, IMCUnknown* instance = nullptr)
{
    Random random(seed);
    for (int i = 0; i < kSamples; ++i)
        Sheet(RandomSample(random, instance)).Ask(object.Shader());
}

/// Plugs, empties and plugs wrongly one slot, shading in between.
void UseSlot(Inspection& inspection, const Specimen& object, const Field& slot, ProbeShader& shader,
    ProbeUnknown& nothing)
{
    const struct {
        const char* name;
        IMCUnknown* plugged;
        bool isShader;
    } steps[] = {{"empty", nullptr, true}, {"plugged", &shader, true}, {"empty again", nullptr, true},
        {"holding no shader", &nothing, false}, {"plugged again", &shader, true}};
    for (const auto& step : steps) {
        inspection.Doing(fmt::format("{} is {}", slot.fName, step.name).c_str());
        object.Slot(slot) = step.plugged;
        const MCErr status = object.Changed();
        inspection.Require((status == MC_S_OK) == step.isShader,
            fmt::format("{} {}: ExtensionDataChanged answers {:#010x}", slot.fName, step.name, status));
        ShadeSome(object, inspection.fJob.seed);
    }
}

} // namespace

void CheckSlots(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const std::vector<const Field*> slots = SlotsOf(table);
    for (const uint32_t kinds : {0u, 2u, 4u, 16u, kAllKinds}) {
        const auto shader = MakeCounted<ProbeShader>(kinds);
        const auto nothing = MakeCounted<ProbeUnknown>();
        {
            const Specimen object(subject.library, table);
            for (const Field* const slot : slots)
                UseSlot(inspection, object, *slot, *shader, *nothing); // and leaves it plugged for the next
            for (const Field* const slot : slots)
                object.Slot(*slot) = nullptr;
            inspection.Doing("all slots are empty again");
            inspection.Require(object.Changed() == MC_S_OK, "emptied slots are refused");
            ShadeSome(object, inspection.fJob.seed);
        }
        inspection.Require(ReferencesOf(*shader) == 1 && ReferencesOf(*nothing) == 1,
            "references to what was plugged are left over");
    }
    inspection.Require(subject.Remains().empty(), "after the last release " + subject.Remains());
}

void CheckHosts(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const auto nothing = MakeCounted<ProbeUnknown>();
    Random random(inspection.fJob.seed);
    for (const Hospitality hospitality :
        {Hospitality::kGives, Hospitality::kGivesNull, Hospitality::kLeavesUntouched}) {
        ProbeScene scene(hospitality, random);
        inspection.Doing("shading in a scene that gives, or answers null or nothing");
        for (int i = 0; i < kCases; ++i) {
            FuzzCase fuzz(table, inspection.fJob.seed + static_cast<uint64_t>(i));
            const Specimen object(subject.library, table);
            if (i > 0) // the first time as it is new
                fuzz.Apply(object);
            object.Changed();
            for (IMCUnknown* const instance : {scene.Instance(), static_cast<IMCUnknown*>(nothing.Get()),
                     static_cast<IMCUnknown*>(nullptr)})
                ShadeSome(object, inspection.fJob.seed, instance);
        }
        if (!inspection.Require(scene.IsLetGo(), "references to the scene are left over"))
            return; // the scene is about to go
        subject.utilities->Debug().Clear();
    }
    inspection.Require(ReferencesOf(*nothing) == 1, "references to an instance are left over");
    inspection.Require(subject.Remains().empty(), "after the last release " + subject.Remains());
}

void CheckNoAllocation(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    WatchRuntimeAllocations(inspection.fJob.library);
    const auto allocations = [&] { return subject.Memory().Allocations() + RuntimeAllocations(); };
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kCases; ++seed) {
        FuzzCase fuzz(table, seed);
        const Specimen object(subject.library, table);
        fuzz.Apply(object);
        int64_t before = allocations();
        inspection.Doing("changing");
        object.Changed();
        if (!inspection.Require(allocations() == before, "ExtensionDataChanged asks for memory"))
            return;
        before = allocations();
        inspection.Doing("shading");
        for (int i = 0; i < kSamples; ++i)
            Sheet(fuzz.NextSample()).Ask(object.Shader());
        if (!inspection.Require(allocations() == before, "shading asks for memory"))
            return;
        subject.utilities->Debug().Clear();
    }
}

void CheckLeaks(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kCases; ++seed) {
        inspection.Doing("living a life with plugged shaders and a scene");
        FuzzCase fuzz(table, seed);
        {
            const Specimen object(subject.library, table);
            fuzz.Apply(object);
            object.Changed();
            for (int i = 0; i < kSamples; ++i)
                Sheet(fuzz.NextSample()).Ask(object.Shader());
        }
        if (!inspection.Require(fuzz.IsLetGo(), "references to plugged shaders or the scene are left over")
            || !inspection.Require(subject.Remains().empty(), "after the last release " + subject.Remains()))
            return;
        subject.utilities->Debug().Clear();
    }
}

} // namespace fernwick::validation
