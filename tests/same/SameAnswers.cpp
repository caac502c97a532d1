// Compares two builds of the library to the bit: what every class answers to the same random records and samples,
// what it makes of them, and what it asks of the shaders plugged into it and of its scene.
#include "frame/Query.h"
#include "frame/TMCException.h"
#include "module/UnroutedClassIDs.h"
#include "shaders/scene/INormalGrid.h"
#include "tests/same/Comparison.h"
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <fmt/core.h>

using namespace fernwick;
using namespace fernwick::validation;
using namespace fernwick::same;

namespace {

constexpr int kChanges = 4;   // records that one object is given
constexpr int kSamples = 500; // of one record
constexpr int kObjectSamples = kChanges * kSamples;

std::filesystem::path ModuleAt(const std::filesystem::path& path)
{
    if (!std::filesystem::is_directory(path))
        return path;
    return path / "Fernwick_shaders.so";
}

/// One of the two builds, with what it was heard to ask and report.
class Side {
public:
    explicit Side(const std::filesystem::path& path) : fSubject(ModuleAt(path))
    {
        fSubject.utilities->Debug().fListener = [this](const Report& report) {
            fReports.push_back(report.message); // files and lines are the sources' business
        };
    }

    const Library& LibraryOf(const ParameterTable& table) const
    {
        return table.fClassIDs.empty() ? fSubject.library.Unrouted() : fSubject.library;
    }
    /// Takes over what was heard since the last time.
    void Hear(CallLog& log)
    {
        std::swap(fCalls, log);
        log.Clear();
    }
    void Forget()
    {
        fReports.clear();
        fSubject.utilities->Debug().Clear();
    }

    Subject fSubject;
    CallLog fCalls;
    std::vector<std::string> fReports;
};

std::string DifferenceInReports(const Side& left, const Side& right)
{
    if (left.fReports == right.fReports)
        return "";
    const auto first
        = [](const Side& side) { return side.fReports.empty() ? "none" : side.fReports.front(); };
    return fmt::format("{} and {} reports, first {} and {}", left.fReports.size(), right.fReports.size(),
        first(left), first(right));
}

std::string SizeText(IExDataExchanger& exchanger)
{
    try {
        return std::to_string(exchanger.GetParamsBufferSize());
    } catch (const TMCException& exception) {
        return fmt::format("exception {:#010x}", exception.fErrorCode);
    }
}

/// What a class states of itself.
std::string StatementsOf(const Specimen& object)
{
    ShadingFlags flags;
    const MCErr status = object.Shader().ReportNeeds(flags);
    return fmt::format("needs {:#x} {:#06x} {:#06x}, kinds {}, trait {}, size {}", status, flags.fNeeds,
        flags.fDependencyBits, object.Shader().GetOutputKinds(), object.Shader().QueryBooleanTrait(),
        SizeText(object.Exchanger()));
}

/// Lays random normals out in the grid of Corners, which asks the host for nothing. Beside a build whose grid has
/// another edge, or can't be reached, both keep an empty one.
void FillGrids(const ParameterTable& table, uint64_t seed, const Specimen& left, const Specimen& right)
{
    constexpr int kFilled = 256; // cells along an edge; most probes lie at its low end
    constexpr uint32_t kNormals = 997;
    if (table.fName != "Corners")
        return;
    MCCountedPtr<INormalGrid> leftGrid;
    MCCountedPtr<INormalGrid> rightGrid;
    if (Query(left.Shader(), IID_INormalGrid, leftGrid) != MC_S_OK
        || Query(right.Shader(), IID_INormalGrid, rightGrid) != MC_S_OK)
        return;
    const int edge = leftGrid->GetEdge();
    if (edge != rightGrid->GetEdge())
        return;
    Random random(seed);
    std::vector<TVector3> normals;
    for (uint32_t i = 0; i < kNormals; ++i)
        normals.push_back(random.Vector());
    for (int u = 0; u < std::min(edge, kFilled); ++u)
        for (int v = 0; v < std::min(edge, kFilled); ++v) {
            const TVector3& normal = normals[static_cast<uint32_t>(u * 31 + v * 17) % kNormals];
            leftGrid->SetNormal(u, v, normal);
            rightGrid->SetNormal(u, v, normal);
        }
}

/// The comparison of one class. Every operation is made by both builds, with what is heard of each, and compared.
class ClassComparison {
public:
    ClassComparison(const ParameterTable& table, Side& left, Side& right)
        : fTable(table), fSpans(table), fLeft(left), fRight(right),
          fClassID(table.fClassIDs.empty() ? *UnroutedClassID(table.fName) : table.fClassIDs.front()),
          fTwins{{left.LibraryOf(table), fClassID}, {right.LibraryOf(table), fClassID}},
          fStrangers{{left.LibraryOf(table), fClassID}, {right.LibraryOf(table), fClassID}}
    { }

    /// Lives the life of one object: several records, many samples. @return false at the first difference
    bool Live(uint64_t seed)
    {
        fSeed = seed;
        std::deque<FuzzCase> cases; // the layer classes keep what was plugged before
        {
            const Specimen left(fLeft.LibraryOf(fTable), fClassID);
            const Specimen right(fRight.LibraryOf(fTable), fClassID);
            if (!CompareTexts("statements", StatementsOf(left), StatementsOf(right))
                || !Differs("a new object", fSpans.DifferenceOf(left.Record(), right.Record())))
                return false;
            for (uint64_t change = 0; change < kChanges; ++change) {
                FuzzCase& fuzz = cases.emplace_back(fTable, seed * kChanges + change);
                if (!Change(fuzz, left, right) || !CompareSameness(left, right))
                    return false;
                FillGrids(fTable, seed, left, right);
                for (fSample = 1; fSample <= kSamples; ++fSample)
                    if (!Shade(fuzz.NextSample(), left, right))
                        return false;
                fSample = 0;
                fuzz.Listen(nullptr);
            }
        }
        fLeft.Forget();
        fRight.Forget();
        for (FuzzCase& fuzz : cases)
            if (const std::string held = fuzz.Held(); !held.empty())
                return Differs("release", held);
        return true;
    }

    const std::string& Difference() const { return fDifference; }
    /// The first one in how shaders are connected, from which no answer follows; empty for none.
    const std::string& ConnectingDifference() const { return fConnectingDifference; }

private:
    const ParameterTable& fTable;
    RecordSpans fSpans;
    Side& fLeft;
    Side& fRight;
    GUID fClassID;
    Specimen fTwins[2]; // that objects are compared with
    Specimen fStrangers[2];
    uint64_t fSeed = 0;
    int fSample = 0;
    CallLog fLog;
    std::string fDifference;
    std::string fConnectingDifference;

    std::string Told(const char* operation, const std::string& difference) const
    {
        const std::string sample = fSample != 0 ? fmt::format(", sample {}", fSample) : "";
        return fmt::format("{}: {} with seed {}{}: {}", fTable.fName, operation, fSeed, sample, difference);
    }

    /// Keeps a difference, the first of the class. @return true when there is none
    bool Differs(const char* operation, const std::string& difference)
    {
        if (!difference.empty())
            fDifference = Told(operation, difference);
        return difference.empty();
    }

    bool CompareTexts(const char* operation, const std::string& left, const std::string& right)
    {
        return left == right || Differs(operation, fmt::format("{} and {}", left, right));
    }

    /// Lets both builds do `action` and compares what was heard of them.
    template <class Action>
    bool CompareCalls(const char* operation, const Specimen& left, const Specimen& right, Action&& action)
    {
        fLog.Clear();
        action(left, 0);
        fLeft.Hear(fLog);
        action(right, 1);
        fRight.Hear(fLog);
        if (fConnectingDifference.empty()) {
            const std::string connecting = DifferenceOf(fLeft.fCalls.fConnecting, fRight.fCalls.fConnecting);
            if (!connecting.empty())
                fConnectingDifference = Told(operation, connecting);
        }
        return Differs(operation, DifferenceOf(fLeft.fCalls.fShading, fRight.fCalls.fShading))
            && Differs(operation, DifferenceInReports(fLeft, fRight))
            && Differs(operation, fSpans.DifferenceOf(left.Record(), right.Record()));
    }

    bool Change(FuzzCase& fuzz, const Specimen& left, const Specimen& right)
    {
        fLeft.Forget();
        fRight.Forget();
        fuzz.Apply(left);
        fuzz.Apply(right);
        fuzz.Listen(&fLog);
        MCErr statuses[2] = {};
        const bool same = CompareCalls("ExtensionDataChanged", left, right,
            [&](const Specimen& object, int side) { statuses[side] = object.Changed(); });
        return same
            && CompareTexts(
                "ExtensionDataChanged", fmt::format("{:#x}", statuses[0]), fmt::format("{:#x}", statuses[1]))
            && CompareTexts("statements", StatementsOf(left), StatementsOf(right));
    }

    /// Compares each object with a twin that differs in nothing, and then in each field by itself.
    bool CompareSameness(const Specimen& left, const Specimen& right)
    {
        const FuzzCase other(fTable, ~fSeed);
        const std::string leftText = SamenessOf(left, fTwins[0], fStrangers[0], other);
        const std::string rightText = SamenessOf(right, fTwins[1], fStrangers[1], other);
        if (leftText == rightText)
            return true;
        const auto place
            = static_cast<size_t>(std::ranges::mismatch(leftText, rightText).in1 - leftText.begin());
        const std::string whose = place == 0 ? "twins"
            : place > fTable.fFields.size()  ? "null"
                                             : "twins but for " + fTable.fFields[place - 1].fName;
        return Differs("SameParameters",
            fmt::format("of {} answers {} and {}", whose, leftText[place], rightText[place]));
    }

    /// All answers, each a digit.
    std::string SamenessOf(
        const Specimen& object, const Specimen& twin, const Specimen& stranger, const FuzzCase& other) const
    {
        other.Apply(stranger);
        std::string text;
        const auto ask
            = [&](I3DExShader* shader) { text += object.Shader().SameParameters(shader) != 0 ? '1' : '0'; };
        for (const Field& field : fTable.fFields)
            RecordSpans::Copy(field, object.Record(), twin.Record());
        ask(&twin.Shader());
        for (const Field& field : fTable.fFields) {
            RecordSpans::Copy(field, stranger.Record(), twin.Record());
            ask(&twin.Shader());
            RecordSpans::Copy(field, object.Record(), twin.Record());
        }
        ask(nullptr);
        for (const Field* const slot : SlotsOf(fTable))
            twin.Slot(*slot) = nullptr;
        return text;
    }

    bool Shade(const ShadingIn& sample, const Specimen& left, const Specimen& right)
    {
        Sheet sheets[2] = {Sheet(sample), Sheet(sample)};
        for (const Sheet::Operation operation : Sheet::kOperations) {
            const char* const name = Sheet::NameOf(operation);
            const bool same = CompareCalls(name, left, right,
                [&](const Specimen& object, int side) { sheets[side].Ask(object.Shader(), operation); });
            if (!same || !Differs(name, DifferenceOf(operation, sheets[0], sheets[1])))
                return false;
            if (!fLeft.fReports.empty()) {
                fLeft.Forget();
                fRight.Forget();
            }
        }
        return true;
    }
};

struct Request {
    std::filesystem::path oldBuild;
    std::filesystem::path newBuild;
    int64_t samples = 1'000'000;
    std::string className; ///< empty for all
    uint64_t seed = 1;
};

/// @return true when the answers are the same
bool Compare(const Request& request, const ParameterTable& table, Side& left, Side& right)
{
    ClassComparison comparison(table, left, right);
    int64_t samples = 0;
    for (uint64_t seed = request.seed; samples < request.samples; ++seed, samples += kObjectSamples)
        if (!comparison.Live(seed)) {
            fmt::print("{}\n", comparison.Difference());
            return false;
        }
    fmt::print("{:<17} {} samples, {} records: the same\n", table.fName, samples, samples / kSamples);
    if (!comparison.ConnectingDifference().empty())
        fmt::print("  connected otherwise: {}\n", comparison.ConnectingDifference());
    return true;
}

bool CompareAll(const Request& request)
{
    Side left(request.oldBuild);
    Side right(request.newBuild);
    bool same = true;
    for (const ParameterTable& table : AllClasses()) {
        if (!request.className.empty() && table.fName != request.className)
            continue;
        same = Compare(request, table, left, right) && same;
        std::fflush(stdout);
    }
    return same;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || argc > 6) {
        fmt::print(stderr,
            "usage: SameAnswers OLD NEW [SAMPLES [CLASS [SEED]]]\n"
            "OLD and NEW are folders of builds, or their Fernwick_shaders.so\n");
        return 2;
    }
    Request request;
    request.oldBuild = argv[1];
    request.newBuild = argv[2];
    if (argc > 3)
        request.samples = std::atoll(argv[3]);
    if (argc > 4)
        request.className = argv[4];
    if (argc > 5)
        request.seed = std::strtoull(argv[5], nullptr, 10);
    if (request.samples <= 0 || (!request.className.empty() && FindClass(request.className) == nullptr)) {
        fmt::print(stderr, "SAMPLES are a number above 0, and CLASS is one of the nineteen\n");
        return 2;
    }
    try {
        return CompareAll(request) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const LibraryError& error) {
        fmt::print(stderr, "{}\n", error.what());
        return EXIT_FAILURE;
    }
}
