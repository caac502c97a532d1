#include "bench/Bench.h"
#include "host/documents/GraphDocument.h"
#include "host/shading/Bake.h"
#include "host/shading/Render.h"

namespace {

using fernwick::GraphDocument;

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
                        benchmark::DoNotOptimize(Bake(MeasuredLibrary(), *shared, job));
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

GraphDocument Example(const std::string& name) { return GraphDocument::Read(FERNWICK_EXAMPLES "/" + name); }

} // namespace

void AddThroughput()
{
    using fernwick::BakeJob, fernwick::RenderJob;
    for (const char* const name : {"key.json", "spoke-angle.json", "weave-rounded.json", "mix-hundred.json"})
        AddPicture<BakeJob>(std::string("bake of ") + name, Example(name), 1024);
    for (const char* const name : {"cloth-sphere.json", "lit-room.json", "studio.json"})
        AddPicture<RenderJob>(std::string("render of ") + name, Example(name), 512);
}
