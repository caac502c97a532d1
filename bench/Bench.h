#pragma once
#include "frame/I3DExShader.h"
#include "frame/Query.h"
#include "frame/SubShader.h"
#include "host/library/Library.h"
#include "host/library/ShaderWrapper.h"
#include "host/parameters/ParameterTable.h"
#include "module/UnroutedClassIDs.h"
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// The library that is measured, opened once.
fernwick::Library& MeasuredLibrary();

/// Allocations so far: of the program's `operator new`, which the library shares, and of the memory service.
int64_t Allocations();

constexpr size_t kSampleCount = 1024;

/// Samples with varied coordinates, points and normals, the same in every run. Shaders may change them.
using Samples = std::shared_ptr<std::vector<ShadingIn>>;
Samples MakeSamples(IMCUnknown* instance = nullptr);

/// What is compared of a surface: a channel of each kind. All others count as read too.
struct Channels {
    TMCColorRGBA fColor;
    TMCColorRGB fThirdColor;
    int32_t fSampleCount;
};
inline Channels ChannelsOf(ShadingOut& surface)
{
    benchmark::DoNotOptimize(surface);
    return {surface.fColor, surface.fThirdColor, surface.fSampledBlock.fSampleCount};
}

/// A shader made by the library's own factory inside the host's wrapper, with its record. A class without a route
/// comes from the module that has one to it.
template <class Params> class MeasuredShader {
public:
    explicit MeasuredShader(const char* name) : fWrapper(Make(name)), fShader(&fWrapper->Shader()) { }

    I3DExShader* operator->() const { return fShader; }
    IShellShader* Wrapper() const { return fWrapper.Get(); }
    Params& Record() const { return fWrapper->template Record<Params>(); }
    void Changed() const { fWrapper->Exchanger().ExtensionDataChanged(); }

    float Value(ShadingIn& in) const
    {
        float value;
        bool fullArea;
        fShader->ShadeValue(value, fullArea, in);
        return value;
    }
    TMCColorRGBA Color(ShadingIn& in) const
    {
        TMCColorRGBA color{0, 0, 0, 1};
        bool fullArea;
        fShader->ShadeColor(color, fullArea, in);
        return color;
    }
    TVector3 Vector(ShadingIn& in) const
    {
        TVector3 vector;
        fShader->ShadeVector(vector, in);
        return vector;
    }
    Channels Surface(ShadingIn& in) const
    {
        ShadingOut result;
        fShader->ShadeSurface(result, in);
        return ChannelsOf(result);
    }

private:
    MCCountedPtr<fernwick::ShaderWrapper> fWrapper;
    I3DExShader* fShader;

    static MCCountedPtr<fernwick::ShaderWrapper> Make(const char* name)
    {
        if (const GUID* const id = UnroutedClassID(name))
            return fernwick::ShaderWrapper::Make(MeasuredLibrary().Unrouted(), *id);
        return fernwick::ShaderWrapper::Make(MeasuredLibrary(), fernwick::FindClass(name)->fClassIDs.front());
    }
};

/// The least that a host plugs into a slot: its colour follows the UV coordinate, its value is U. Plain loops ask
/// it as shaders do, by a call through its interface.
class Source {
public:
    explicit Source(uint32_t kinds);

    IShellShader* operator->() const { return fFace; }
    IShellShader* Face() const { return fFace; }
    void Color(TMCColorRGBA& color, ShadingIn& in) const
    {
        bool fullArea;
        fFace->ShadeColor(color, fullArea, in);
    }
    float Value(ShadingIn& in) const
    {
        float value;
        bool fullArea;
        fFace->ShadeValue(value, fullArea, in);
        return value;
    }

private:
    IShellShader* fFace;
    MCCountedPtr<IShellShader> fOwner;
};

/// Tables of the report; a row's name is section/row/column.
namespace Section {
inline const std::string kShading = "shading";
inline const std::string kHost = "host";
inline const std::string kDispatch = "dispatch";
inline const std::string kProximity = "proximity";
inline const std::string kChange = "change";
inline const std::string kGamut = "gamut";
inline const std::string kShare = "share"; ///< in real time, on one thread
inline const std::string kThroughput = "throughput";
inline const std::string kWork = "work"; ///< the processor time of `kThroughput`, written by the report
} // namespace Section

inline const std::string kMeasured = "/measured";
inline const std::string kReference = "/reference";

/// Registers a pass over all samples as one column of a row. Before the time is taken a pass warms, and another
/// one counts allocations.
/// @param shade  answers a sample by its number
template <class Shade> void AddPass(const std::string& name, Shade shade)
{
    benchmark::RegisterBenchmark(name.c_str(), [shade = std::move(shade)](benchmark::State& state) {
        auto work = shade;
        auto* const known = &work;
        benchmark::DoNotOptimize(known);
        std::vector<decltype(work(0))> answers(kSampleCount);
        const auto pass = [&] {
            for (size_t i = 0; i < kSampleCount; ++i) {
                answers[i] = work(i);
                benchmark::
                    ClobberMemory(); // a record may change between two samples: a plain loop reads it anew
            }
        };
        pass();
        const int64_t before = Allocations();
        pass();
        state.counters["counted"] = static_cast<double>(Allocations() - before);
        for (auto _ : state)
            pass();
        state.counters["items"] = kSampleCount;
    });
}

/// Registers a shading operation beside a plain loop of the same arithmetic. Throws when the two don't agree to
/// the bit on every sample.
template <class Shade, class Plain>
void AddComparison(const std::string& section, const std::string& row, Shade shade, Plain plain)
{
    Shade checkedShade = shade;
    Plain checkedPlain = plain;
    for (size_t i = 0; i < kSampleCount; ++i) {
        const auto answer = checkedShade(i);
        const auto expected = checkedPlain(i);
        if (std::memcmp(&answer, &expected, sizeof answer) != 0)
            throw std::logic_error(row + ": the plain loop computes something else");
    }
    AddPass(section + "/" + row + kMeasured, std::move(shade));
    AddPass(section + "/" + row + kReference, std::move(plain));
}

/// Registers one call of `work` as an iteration.
/// @param count  put beside the time in the report
template <class Work> void AddWork(const std::string& name, Work work, double count = 0)
{
    benchmark::RegisterBenchmark(name.c_str(), [work = std::move(work), count](benchmark::State& state) {
        auto own = work;
        own();
        for (auto _ : state)
            own();
        state.counters["counted"] = count;
        state.counters["items"] = 1;
    });
}

void AddThroughput();
void AddShare();
void AddLayers();
void AddMapping();
void AddOptics();
void AddPatterns();
void AddScene();
void AddWeave();
