#include "bench/Bench.h"
#include "host/documents/GraphDocument.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"
#include "host/shading/Tiles.h"
#include "host/shading/UVSquare.h"
#include <algorithm>
#include <chrono>
#include <numeric>

namespace {

using fernwick::GraphDocument;

void IgnoreBand(const fernwick::BakeBand& band) { benchmark::DoNotOptimize(band.fPictures[0].data()); }

template <class Job> void AddPicture(const std::string& row, const GraphDocument& document, int side)
{
    const auto shared = std::make_shared<GraphDocument>(document);
    const auto add = [&](const std::string& column, int threads) {
        const std::string name = Section::kThroughput + "/" + row + column;
        benchmark::RegisterBenchmark(name.c_str(),
            [=](benchmark::State& state) {
                Job job;
                job.width = job.height = side;
                job.threads = threads;
                for (auto _ : state)
                    if constexpr (std::is_same_v<Job, fernwick::BakeJob>)
                        benchmark::DoNotOptimize(Bake(MeasuredLibrary(), *shared, job, IgnoreBand));
                    else
                        benchmark::DoNotOptimize(Render(MeasuredLibrary(), *shared, job));
                state.counters["items"] = side * side;
                state.counters["counted"] = 0;
            })
            ->UseRealTime()
            ->MeasureProcessCPUTime();
    };
    add(kMeasured, 2);
    add(kReference, 1);
}

/// The least time of each part of a job over many runs: a short part is sometimes left alone by all else that the
/// machine does.
class LeastTimes {
public:
    using Clock = std::chrono::steady_clock;

    void StartRun() { fNext = 0; }
    void StartPart() { fStart = Clock::now(); }
    void EndPart()
    {
        const Clock::duration time = Clock::now() - fStart;
        if (fNext == fLeast.size())
            fLeast.push_back(time);
        fLeast[fNext] = std::min(fLeast[fNext], time);
        ++fNext;
    }
    double Seconds() const
    {
        return std::chrono::duration<double>(std::accumulate(fLeast.begin(), fLeast.end(), Clock::duration()))
            .count();
    }

private:
    std::vector<Clock::duration> fLeast;
    size_t fNext = 0;
    Clock::time_point fStart;
};

constexpr int kShareSide = 1024;
constexpr int kTileSide = 128;

/// Bakes a column of tiles, each a part.
void BakeColumn(const GraphDocument& document, fernwick::BakeChannel channel, LeastTimes& times)
{
    const fernwick::BakeJob job{.width = kShareSide,
        .height = kShareSide,
        .channels = {channel},
        .region = fernwick::PictureRegion{0, 0, kTileSide, kShareSide},
        .threads = 1};
    times.StartPart();
    Bake(MeasuredLibrary(), document, job, [&times](const fernwick::BakeBand& band) {
        IgnoreBand(band);
        times.EndPart();
        times.StartPart();
    });
}

/// Shades the same samples with nothing around them: each row is a part, and is prepared while no time is taken.
void ShadeColumn(const GraphDocument& document, fernwick::BakeChannel channel, LeastTimes& times)
{
    std::vector<ShadingIn> samples(kTileSide);
    std::vector<TMCColorRGBA> answers(kTileSide);
    for (int top = 0; top < kShareSide; top += kTileSide) {
        const auto graph = fernwick::MakeGraph(MeasuredLibrary(), document);
        const fernwick::UVSquare square(*graph);
        I3DExShader& shader = *graph->OutputExtension();
        for (int y = top; y < top + kTileSide; ++y) {
            for (int x = 0; x < kTileSide; ++x)
                samples[static_cast<size_t>(x)] = square.SampleAt(fernwick::UVSquare::CenterOf(x, kShareSide),
                    fernwick::UVSquare::CenterOf(kShareSide - 1 - y, kShareSide));
            times.StartPart();
            for (size_t i = 0; i < kTileSide; ++i) {
                bool fullArea = false;
                if (channel == fernwick::BakeChannel::kColor) {
                    shader.ShadeColor(answers[i], fullArea, samples[i]);
                } else if (channel == fernwick::BakeChannel::kValue) {
                    shader.ShadeValue(answers[i].fRed, fullArea, samples[i]);
                } else {
                    TVector3 vector = samples[i].fNormalGlobal;
                    shader.ShadeVector(vector, samples[i]);
                    answers[i].fRed = vector[0];
                }
            }
            times.EndPart();
            benchmark::DoNotOptimize(answers.data());
        }
    }
}

void AddShareOf(const std::string& row, const GraphDocument& document, fernwick::BakeChannel channel)
{
    constexpr int kRuns = 50;
    const auto shared = std::make_shared<GraphDocument>(document);
    const auto add = [&](const std::string& column, auto shade) {
        const std::string name = Section::kShare + "/" + row + column;
        benchmark::RegisterBenchmark(name.c_str(),
            [=](benchmark::State& state) {
                for (auto _ : state) {
                    LeastTimes times;
                    for (int i = 0; i < kRuns; ++i) {
                        times.StartRun();
                        shade(*shared, channel, times);
                    }
                    state.SetIterationTime(times.Seconds());
                }
                state.counters["items"] = kShareSide * kTileSide;
                state.counters["counted"] = 0;
            })
            ->UseManualTime()
            ->Iterations(1);
    };
    add(kMeasured, BakeColumn);
    add(kReference, ShadeColumn);
}

GraphDocument Example(const std::string& name) { return GraphDocument::Read(FERNWICK_EXAMPLES "/" + name); }

} // namespace

void AddShare()
{
    using fernwick::BakeChannel;
    AddShareOf("colour of key.json", Example("key.json"), BakeChannel::kColor);
    AddShareOf("value of spoke-angle.json", Example("spoke-angle.json"), BakeChannel::kValue);
    AddShareOf("colour of weave-rounded.json", Example("weave-rounded.json"), BakeChannel::kColor);
    AddShareOf("normal of weave-rounded.json", Example("weave-rounded.json"), BakeChannel::kNormal);
}

void AddThroughput()
{
    using fernwick::BakeJob, fernwick::RenderJob;
    for (const char* const name : {"key.json", "spoke-angle.json", "weave-rounded.json", "mix-hundred.json"})
        AddPicture<BakeJob>(std::string("bake of ") + name, Example(name), 1024);
    for (const char* const name : {"cloth-sphere.json", "lit-room.json", "studio.json"})
        AddPicture<RenderJob>(std::string("render of ") + name, Example(name), 512);
}
