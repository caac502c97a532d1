#include "frame/Query.h"
#include "frame/TMCException.h"
#include "host/library/ShaderWrapper.h"
#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include "host/validation/Probes.h"
#include "host/validation/Sheet.h"
#include "host/validation/Specimen.h"
#include <fmt/format.h>
#include <map>

// What holds for every class as a component, whatever it shades.

namespace fernwick::validation {

namespace {

constexpr GUID kUnknownID = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr int kSteps = 2000;
constexpr int kSamples = 50;

/// The first operation in which two objects of the class differ on random samples; null for none.
const char* DifferenceInShading(const Specimen& left, const Specimen& right, uint64_t seed)
{
    Random random(seed);
    for (int i = 0; i < kSamples; ++i) {
        const ShadingIn sample = RandomSample(random, nullptr);
        Sheet leftSheet(sample);
        Sheet rightSheet(sample);
        leftSheet.Ask(left.Shader());
        rightSheet.Ask(right.Shader());
        if (const char* const operation = leftSheet.DifferenceFrom(rightSheet))
            return operation;
    }
    return nullptr;
}

/// Two new objects, whose memory held different bytes, have the same record and shade alike.
void CompareNew(Inspection& inspection, const ParameterTable& table, const Specimen& left,
    const Specimen& right, const char* whose)
{
    for (const char* const when : {"before the first change", "after it"}) {
        const std::string difference = DifferenceOf(table, left.Record(), right.Record());
        if (!inspection.Require(difference.empty(),
                fmt::format("{} {}: expected one record, came {}", whose, when, difference)))
            return;
        inspection.Doing(fmt::format("shading {}", when).c_str());
        const char* const operation = DifferenceInShading(left, right, inspection.fJob.seed);
        inspection.Require(operation == nullptr,
            fmt::format("{} of {} {}: expected one answer, came two", operation != nullptr ? operation : "",
                whose, when));
        left.Changed();
        right.Changed();
    }
}

/// Queries, counts and releases at random, beginning with one reference. Every identifier leads from every face
/// to one and the same face, and all faces share one count.
std::string WalkFaces(I3DExShader* start, uint64_t seed)
{
    constexpr GUID kIDs[] = {IID_I3DExShader, IID_IExDataExchanger, IID_IMCUnknown};
    Random random(seed);
    std::vector<IMCUnknown*> held{start};
    std::map<uint32_t, void*> faces;
    for (int step = 0; step < kSteps; ++step) {
        const auto count = static_cast<uint32_t>(held.size());
        IMCUnknown* const from = held[random.Below(count)];
        const uint32_t choice = random.Below(6);
        void* out = &random;
        if (choice < 3) {
            if (from->QueryInterface(kIDs[choice], &out) != MC_S_OK || out == nullptr)
                return GuidText(kIDs[choice]) + " isn't reached from every face";
            if (faces.try_emplace(choice, out).first->second != out)
                return GuidText(kIDs[choice]) + " leads to two faces";
            held.push_back(static_cast<IMCUnknown*>(out));
        } else if (choice == 3) {
            if (from->QueryInterface(kUnknownID, &out) != kMCNoInterface || out != nullptr)
                return "an unknown identifier gives a face";
        } else if (count > 1) {
            if (from->AddRef() != count + 1)
                return fmt::format("AddRef on {} references miscounts", count);
            if (held.back()->Release() != count || held.back()->Release() != count - 1)
                return fmt::format("Release on {} references miscounts", count);
            held.pop_back();
        }
    }
    for (; held.size() > 1; held.pop_back())
        held.back()->Release();
    return ReferencesOf(*start) == 1 ? "" : "references are left over";
}

/// A query without a place for the answer gives none, and counts nothing.
void RequireNoPlace(Inspection& inspection, I3DExShader& shader)
{
    constexpr GUID kIDs[] = {IID_I3DExShader, IID_IExDataExchanger, IID_IMCUnknown, kUnknownID};
    inspection.Doing("calling QueryInterface without a place for the answer");
    for (const GUID& from : {IID_I3DExShader, IID_IExDataExchanger, IID_IMCUnknown})
        for (const GUID& id : kIDs) {
            void* face = nullptr;
            shader.QueryInterface(from, &face);
            auto* const object = static_cast<IMCUnknown*>(face);
            const MCErr status = object->QueryInterface(id, nullptr);
            inspection.Require(status == kMCNoInterface && ReferencesOf(*object) == 2,
                fmt::format(
                    "QueryInterface for {} without a place for the answer: expected {:#x} and 2 references, "
                    "came {:#x} and {}",
                    GuidText(id), kMCNoInterface, status, ReferencesOf(*object)));
            object->Release();
        }
}

} // namespace

void CheckRoutes(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (const GUID& classID : table.fClassIDs) {
        for (const GUID& face : {IID_IMCUnknown, IID_I3DExShader, IID_IExDataExchanger}) {
            void* out = nullptr;
            const MCErr status = subject.library.CreateInstance(classID, nullptr, face, &out);
            if (inspection.Require(status == MC_S_OK && out != nullptr,
                    fmt::format("{} isn't made as {}", GuidText(classID), GuidText(face))))
                inspection.Require(
                    static_cast<IMCUnknown*>(out)->Release() == 0, "a new object is counted twice");
        }
        CompareNew(inspection, table, subject.MakeIn(0, table.fClassIDs.front()), subject.MakeIn(0, classID),
            "twins");
    }
}

void CheckBufferSizes(Inspection& inspection, const ParameterTable& table)
{
    constexpr ptrdiff_t kFaces = 40; // bytes: three tables, a count and an outer object
    const Subject subject(inspection.fJob.library);
    const Specimen object(subject.library, table);
    const uint32_t size = object.Exchanger().GetParamsBufferSize();
    inspection.Require(size == table.fRecordSize,
        fmt::format("GetParamsBufferSize answers {}, documents hold {}", size, table.fRecordSize));
    const ptrdiff_t place = object.Record() - reinterpret_cast<char*>(&object.Shader());
    inspection.Require(
        place == kFaces, fmt::format("the record lies {} bytes behind the object's start", place));
}

void CheckDefaults(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    const GUID& classID = table.fClassIDs.front();
    CompareNew(
        inspection, table, subject.MakeIn(0x00, classID), subject.MakeIn(0xFF, classID), "two new objects");
}

void CheckComponentLaws(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    {
        const Specimen object(subject.library, table);
        void* extra = nullptr;
        object.Shader().QueryInterface(IID_I3DExShader, &extra); // a reference beside the specimen's own two
        auto* const shader = static_cast<I3DExShader*>(extra);
        inspection.Require(shader->Release() == 2, "a query doesn't count one reference");
        inspection.Require(object.Shader().SameParameters(nullptr) == 0, "null counts as a shader alike");
        inspection.Require(
            object.Shader().SameParameters(&object.Shader()) != 0, "an object isn't the same as itself");
    }
    void* face = nullptr;
    subject.library.CreateInstance(table.fClassIDs.front(), nullptr, IID_I3DExShader, &face);
    auto* const shader = static_cast<I3DExShader*>(face);
    const std::string broken = WalkFaces(shader, inspection.fJob.seed);
    if (inspection.Require(broken.empty(), broken))
        RequireNoPlace(inspection, *shader);
    inspection.Require(shader->Release() == 0, "the last release doesn't answer 0");
    inspection.Require(subject.Remains().empty(), "after the last release " + subject.Remains());
}

void CheckAggregation(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    auto wrapper = ShaderWrapper::Make(subject.library, table.fClassIDs.front());
    if (!inspection.Require(static_cast<bool>(wrapper), "isn't made inside a wrapper"))
        return;
    I3DExShader& inner = wrapper->Shader();
    inspection.Require(inner.AddRef() == 2 && inner.Release() == 1, "counting doesn't go to the wrapper");
    for (const GUID& id : {IID_IShellShader, IID_IShellDataComponent}) {
        void* out = nullptr;
        const MCErr status = inner.QueryInterface(id, &out);
        if (inspection.Require(
                status == MC_S_OK && out != nullptr, GuidText(id) + " of the wrapper isn't reached"))
            inspection.Require(static_cast<IMCUnknown*>(out)->Release() == 1, "the wrapper is counted twice");
    }
    void* out = &wrapper;
    inspection.Require(inner.QueryInterface(kUnknownID, &out) == kMCNoInterface && out == nullptr,
        "an unknown identifier gives a face");
    inner.ForwardToDataComponent(&out);
    inspection.Require(wrapper->Forwarded() == &out, "ForwardToDataComponent doesn't reach the wrapper");

    wrapper->Exchanger().ExtensionDataChanged();
    if ((table.fOutputKinds & kOutputSurface) == 0) { // the default surface is the wrapper's colour
        ShadingIn in;
        in.fNormalLocal = {1, 2, 3};
        ShadingOut result;
        const int32_t produced = inner.ShadeSurface(result, in);
        inspection.Require(produced == 0 && result.fCoverage == 1 && result.fShadingNormal == in.fNormalLocal,
            "the default ShadeSurface isn't the wrapper's colour on the local normal");
    }
    inspection.Require(ReferencesOf(*wrapper) == 1, "references to the wrapper are left over");
    wrapper = nullptr;
    inspection.Require(subject.Remains().empty(), "after the wrapper's end " + subject.Remains());
    try {
        Specimen(subject.library, table).Shader().ForwardToDataComponent(nullptr);
        inspection.Found("ForwardToDataComponent without a wrapper doesn't throw");
    } catch (const TMCException& exception) {
        inspection.Require(exception.fErrorCode == kMCNoComponent,
            fmt::format("ForwardToDataComponent without a wrapper throws {:#010x}", exception.fErrorCode));
    }
}

void CheckRefusedMemory(Inspection& inspection, const ParameterTable& table)
{
    constexpr int64_t kMost = 1000;
    const Subject subject(inspection.fJob.library);
    for (int64_t granted = 0; granted < kMost; ++granted) {
        inspection.Doing(fmt::format("allocation {} is refused", granted + 1).c_str());
        void* out = &inspection;
        subject.Memory().RefuseAfter(granted);
        const MCErr status
            = subject.library.CreateInstance(table.fClassIDs.front(), nullptr, IID_I3DExShader, &out);
        subject.Memory().RefuseAfter(-1);
        if (status == MC_S_OK) {
            static_cast<IMCUnknown*>(out)->Release();
            inspection.Require(subject.Remains().empty(), "after a success " + subject.Remains());
            inspection.Require(granted >= 2, "a factory and an object take less than two allocations");
            return;
        }
        inspection.Require(status == kMCNoSuchClass && out == nullptr,
            fmt::format("allocation {} refused answers {:#010x}", granted + 1, status));
        inspection.Require(subject.Remains().empty(),
            fmt::format("after allocation {} was refused {}", granted + 1, subject.Remains()));
    }
    inspection.Found("making an object never ends asking for memory");
}

} // namespace fernwick::validation
