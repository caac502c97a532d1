#include "frame/Query.h"
#include "frame/TMCException.h"
#include "host/library/ShaderWrapper.h"
#include "host/validation/Checks.h"
#include "host/validation/Inspection.h"
#include "host/validation/Probes.h"
#include "host/validation/Sheet.h"
#include "host/validation/Specimen.h"
#include "host/validation/SurfaceFields.h"
#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>

// What holds for every class as a component, whatever it shades.

namespace fernwick::validation {

namespace {

constexpr int kSteps = 2000;
constexpr int kClassSamples = 50;

/// The first operation in which two objects of the class differ on random samples, with both answers; empty for none.
/// @param which  what is asked of which objects
std::string DifferenceInShading(
    const std::string& which, const Specimen& left, const Specimen& right, uint64_t seed)
{
    Random random(seed);
    for (int i = 0; i < kClassSamples; ++i) {
        const ShadingIn sample = RandomSample(random, nullptr);
        Sheet leftSheet(sample);
        Sheet rightSheet(sample);
        leftSheet.Ask(left.Shader());
        rightSheet.Ask(right.Shader());
        if (const char* const operation = leftSheet.DifferenceFrom(rightSheet))
            return fmt::format("{} {}: expected one answer, came two on sample {}: {} and {}", operation,
                which, i + 1, leftSheet.AnswerUnlike(rightSheet), rightSheet.AnswerUnlike(leftSheet));
    }
    return "";
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
        inspection.RequireNone(
            DifferenceInShading(fmt::format("of {} {}", whose, when), left, right, inspection.fJob.seed));
        left.Changed();
        right.Changed();
    }
}

std::string Refused() { return AnswerText(kMCNoInterface, nullptr); }

std::string AnswerOf(IMCUnknown& object, const GUID& id)
{
    void* out = &object;
    const MCErr status = object.QueryInterface(id, &out);
    return AnswerText(status, out);
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
            const std::string asked = "QueryInterface for " + GuidText(kIDs[choice]);
            const MCErr status = from->QueryInterface(kIDs[choice], &out);
            if (status != MC_S_OK || out == nullptr)
                return fmt::format(
                    "{} from each face: expected {}, came {}", asked, kMade, AnswerText(status, out));
            if (faces.try_emplace(choice, out).first->second != out)
                return asked + " from two faces: expected one face, came two";
            held.push_back(static_cast<IMCUnknown*>(out));
        } else if (choice == 3) {
            const std::string answer = AnswerOf(*from, kUnknownID);
            if (answer != Refused())
                return fmt::format(
                    "QueryInterface for an unknown identifier: expected {}, came {}", Refused(), answer);
        } else if (count > 1) {
            const uint32_t counts[] = {from->AddRef(), held.back()->Release(), held.back()->Release()};
            const uint32_t expected[] = {count + 1, count, count - 1};
            if (!std::ranges::equal(counts, expected))
                return fmt::format("AddRef, Release and Release on {} references: expected {}, came {}",
                    count, fmt::join(expected, ", "), fmt::join(counts, ", "));
            held.pop_back();
        }
    }
    for (; held.size() > 1; held.pop_back())
        held.back()->Release();
    return Held(*start, fmt::format("an object after {} queries and releases, seed {}", kSteps, seed));
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

/// The surface of a class that has none is its wrapper's colour on the local normal.
void RequireDefaultSurface(Inspection& inspection, I3DExShader& inner)
{
    constexpr const char* kWhere = "of ShadeSurface inside a wrapper";
    ShadingIn in;
    in.fNormalLocal = {1, 2, 3};
    Sheet sheet(in);
    Sheet other(in, true, -3);
    const ShadingOut& result = sheet.fResult.fRecord;
    for (Sheet* const asked : {&sheet, &other}) {
        asked->Ask(inner, Sheet::kSurface);
        asked->fResult.fRecord.fColor = asked->fResultBefore.fColor; // the wrapper's to fill, as the flag
        asked->fResult.fRecord.fFullArea = asked->fResultBefore.fFullArea;
    }
    inspection.Expect(fmt::format("answer {}", kWhere), 0, sheet.fProduced);
    inspection.Expect(fmt::format("fCoverage {}", kWhere), 1.0f, result.fCoverage);
    inspection.Expect(fmt::format("fShadingNormal {} is fNormalLocal", kWhere), true,
        result.fShadingNormal == in.fNormalLocal);
    inspection.RequireNone(sheet.WrongSurface(other, surface_fields::kWrapped));
}

} // namespace

void CheckRoutes(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    for (const GUID& classID : table.fClassIDs) {
        for (const GUID& face : {IID_IMCUnknown, IID_I3DExShader, IID_IExDataExchanger}) {
            const std::string made = fmt::format("making {} as {}", GuidText(classID), GuidText(face));
            inspection.Doing(made.c_str());
            void* out = nullptr;
            const MCErr status = subject.library.CreateInstance(classID, nullptr, face, &out);
            if (inspection.Expect(made, kMade, AnswerText(status, out)))
                inspection.Expect(made + ", after one release", 0u, static_cast<IMCUnknown*>(out)->Release());
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
    inspection.Expect("GetParamsBufferSize", table.fRecordSize, size_t{size});
    const ptrdiff_t place = object.Record() - reinterpret_cast<char*>(&object.Shader());
    inspection.Expect("bytes from the object's start to its record", kFaces, place);
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
        inspection.Expect("Release after a query, with two references beside", 2u, shader->Release());
        inspection.Expect(
            "SameParameters of an object and null", false, object.Shader().SameParameters(nullptr) != 0);
        inspection.Expect("SameParameters of an object and itself", true,
            object.Shader().SameParameters(&object.Shader()) != 0);
    }
    void* face = nullptr;
    subject.library.CreateInstance(table.fClassIDs.front(), nullptr, IID_I3DExShader, &face);
    auto* const shader = static_cast<I3DExShader*>(face);
    if (inspection.RequireNone(WalkFaces(shader, inspection.fJob.seed)))
        RequireNoPlace(inspection, *shader);
    inspection.Expect("the last Release", 0u, shader->Release());
    inspection.RequireNone(subject.Remains());
}

void CheckAggregation(Inspection& inspection, const ParameterTable& table)
{
    const Subject subject(inspection.fJob.library);
    auto wrapper = ShaderWrapper::Make(subject.library, table.fClassIDs.front());
    if (!inspection.Expect("an object made inside a wrapper", true, static_cast<bool>(wrapper)))
        return;
    I3DExShader& inner = wrapper->Shader();
    inspection.Expect("AddRef of an object inside a wrapper", 2u, inner.AddRef());
    inspection.Expect("Release of an object inside a wrapper", 1u, inner.Release());
    for (const GUID& id : {IID_IShellShader, IID_IShellDataComponent}) {
        void* out = nullptr;
        const MCErr status = inner.QueryInterface(id, &out);
        const std::string asked = "QueryInterface for the wrapper's " + GuidText(id);
        if (inspection.Expect(asked, kMade, AnswerText(status, out)))
            inspection.Expect(asked + ", after one release", 1u, static_cast<IMCUnknown*>(out)->Release());
    }
    inspection.Expect(
        "QueryInterface for an unknown identifier, inside a wrapper", Refused(), AnswerOf(inner, kUnknownID));
    inner.ForwardToDataComponent(&inner);
    inspection.Expect("ForwardToDataComponent reaches the wrapper", true, wrapper->Forwarded() == &inner);

    wrapper->Exchanger().ExtensionDataChanged();
    if ((table.fOutputKinds & kOutputSurface) == 0)
        RequireDefaultSurface(inspection, inner);
    inspection.RequireNone(Held(static_cast<IShellShader&>(*wrapper), "the wrapper"));
    wrapper = nullptr;
    inspection.RequireNone(subject.Remains("after the wrapper's end"));
    std::string thrown = "nothing";
    try {
        Specimen(subject.library, table).Shader().ForwardToDataComponent(nullptr);
    } catch (const TMCException& exception) {
        thrown = StatusText(exception.fErrorCode);
    }
    inspection.Expect(
        "thrown by ForwardToDataComponent without a wrapper", StatusText(kMCNoComponent), thrown);
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
            inspection.RequireNone(subject.Remains("after a success"));
            inspection.Require(granted >= 2,
                fmt::format("allocations of a factory and an object: expected 2 or more, came {}", granted));
            return;
        }
        const std::string refused = fmt::format("CreateInstance with allocation {} refused", granted + 1);
        inspection.Expect(refused, AnswerText(kMCNoSuchClass, nullptr), AnswerText(status, out));
        inspection.RequireNone(subject.Remains("after " + refused));
    }
    inspection.Found(
        fmt::format("allocations of a factory and an object: expected fewer than {}, came as many", kMost));
}

} // namespace fernwick::validation
