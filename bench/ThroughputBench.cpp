#include "bench/Bench.h"
#include "host/documents/GraphDocument.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"
#include "host/shading/Tiles.h"
#include "host/shading/UVSquare.h"
#include <chrono>

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

/// Shades the samples of a bake with nothing around them: they are prepared row by row while no time is taken.
/// @return the time of the calls
double SecondsOfCalls(const GraphDocument& document, fernwick::BakeChannel channel, int side)
{
    using Clock = std::chrono::steady_clock;
    constexpr int kTileSide = 128;
    Clock::duration time{};
    std::vector<ShadingIn> samples(kTileSide);
    std::vector<TMCColorRGBA> answers(kTileSide);
    for (int top = 0; top < side; top += kTileSide)
        for (int left = 0; left < side; left += kTileSide) {
            const auto graph = fernwick::MakeGraph(MeasuredLibrary(), document);
            const fernwick::UVSquare square(*graph);
            I3DExShader& shader = *graph->OutputExtension();
            for (int y = top; y < top + kTileSide; ++y) {
                for (int x = 0; x < kTileSide; ++x)
                    samples[static_cast<size_t>(x)]
                        = square.SampleAt(fernwick::UVSquare::CenterOf(left + x, side),
                            fernwick::UVSquare::CenterOf(side - 1 - y, side));
                const Clock::time_point start = Clock::now();
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
                time += Clock::now() - start;
                benchmark::DoNotOptimize(answers.data());
            }
        }
    return std::chrono::duration<double>(time).count();
}

void AddShareOf(const std::string& row, const GraphDocument& document, fernwick::BakeChannel channel)
{
    constexpr int kSide = 1024;
    const auto shared = std::make_shared<GraphDocument>(document);
    const auto add = [&](const std::string& column, auto seconds) {
        const std::string name = Section::kShare + "/" + row + column;
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
            for (auto _ : state)
                state.SetIterationTime(seconds());
            state.counters["items"] = kSide * kSide;
            state.counters["counted"] = 0;
        })->UseManualTime();
    };
    add(kMeasured, [=] {
        const fernwick::BakeJob job{.width = kSide, .height = kSide, .channels = {channel}, .threads = 1};
        const auto start = std::chrono::steady_clock::now();
        Bake(MeasuredLibrary(), *shared, job, IgnoreBand);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    });
    add(kReference, [=] { return SecondsOfCalls(*shared, channel, kSide); });
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
