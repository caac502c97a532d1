#include "host/validation/Checks.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Inspection.h"
#include "host/validation/RuntimeAllocations.h"
#include "host/validation/Sheet.h"
#include <fmt/format.h>

// What holds for every class while it shades, whatever is plugged in and whoever the host is.

namespace fernwick::validation {

namespace {

constexpr int kShadingSamples = 20;
constexpr int kShadingCases = 50;
constexpr uint32_t kAllKinds = kOutputValue | kOutputColor | kOutputSurface;

void ShadeSome(const Specimen& object, uint64_t seed, IMCUnknown* instance = nullptr)
{
    Random random(seed);
    for (int i = 0; i < kShadingSamples; ++i)
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
            fmt::format("ExtensionDataChanged with {} {}: expected {}, came {:#x}", slot.fName, step.name,
                step.isShader ? "0x0" : "a failure", status));
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
            inspection.Expect("ExtensionDataChanged with all slots empty again", StatusText(MC_S_OK),
                StatusText(object.Changed()));
            ShadeSome(object, inspection.fJob.seed);
        }
        inspection.RequireNone(Held(*shader, fmt::format("a plugged shader of kinds {}", kinds)));
        inspection.RequireNone(Held(*nothing, "what was plugged and is no shader"));
    }
    inspection.RequireNone(subject.Remains());
}

void CheckHosts(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const auto nothing = MakeCounted<ProbeUnknown>();
    Random random(inspection.fJob.seed);
    const struct {
        Hospitality hospitality;
        const char* name;
    } hosts[] = {{Hospitality::kGives, "gives what it is asked for"},
        {Hospitality::kGivesNull, "answers null"}, {Hospitality::kLeavesUntouched, "answers nothing"}};
    for (const auto& host : hosts) {
        ProbeScene scene(host.hospitality, random);
        for (int i = 0; i < kShadingCases; ++i) {
            const uint64_t seed = inspection.fJob.seed + static_cast<uint64_t>(i);
            inspection.Doing(fmt::format("shading in a scene that {}, seed {}", host.name, seed).c_str());
            FuzzCase fuzz(table, seed);
            const Specimen object(subject.library, table);
            if (i > 0) // the first time as it is new
                fuzz.Apply(object);
            object.Changed();
            for (IMCUnknown* const instance : {scene.Instance(), static_cast<IMCUnknown*>(nothing.Get()),
                     static_cast<IMCUnknown*>(nullptr)})
                ShadeSome(object, inspection.fJob.seed, instance);
        }
        const std::string held = scene.Held();
        if (!inspection.Require(held.empty(), fmt::format("in a scene that {}, {}", host.name, held)))
            return; // the scene is about to go
        subject.utilities->Debug().Clear();
    }
    inspection.RequireNone(Held(*nothing, "an instance that is no element"));
    inspection.RequireNone(subject.Remains());
}

void CheckNoAllocation(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    WatchRuntimeAllocations(inspection.fJob.library);
    const auto allocations = [&] { return subject.Memory().Allocations() + RuntimeAllocations(); };
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kShadingCases; ++seed) {
        FuzzCase fuzz(table, seed);
        const Specimen object(subject.library, table);
        fuzz.Apply(object);
        const auto watch = [&](const char* operation, const auto& action) {
            const std::string what = fmt::format("{}, seed {}", operation, seed);
            inspection.Doing(what.c_str());
            const int64_t before = allocations();
            action();
            return inspection.Expect("allocations of " + what, 0, allocations() - before);
        };
        if (!watch("ExtensionDataChanged", [&] { object.Changed(); }))
            return;
        for (int i = 0; i < kShadingSamples; ++i) {
            Sheet sheet(fuzz.NextSample());
            for (const Sheet::Operation operation : Sheet::kOperations)
                if (!watch(Sheet::NameOf(operation), [&] { sheet.Ask(object.Shader(), operation); }))
                    return;
        }
        subject.utilities->Debug().Clear();
    }
}

void CheckLeaks(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (uint64_t seed = inspection.fJob.seed; seed < inspection.fJob.seed + kShadingCases; ++seed) {
        const std::string life = fmt::format("a life with plugged shaders and a scene, seed {}", seed);
        inspection.Doing(("living " + life).c_str());
        FuzzCase fuzz(table, seed);
        {
            const Specimen object(subject.library, table);
            fuzz.Apply(object);
            object.Changed();
            for (int i = 0; i < kShadingSamples; ++i)
                Sheet(fuzz.NextSample()).Ask(object.Shader());
        }
        const std::string held = fuzz.Held();
        if (!inspection.Require(held.empty(), fmt::format("after {}, {}", life, held))
            || !inspection.RequireNone(subject.Remains("after " + life)))
            return;
        subject.utilities->Debug().Clear();
    }
}

} // namespace fernwick::validation
