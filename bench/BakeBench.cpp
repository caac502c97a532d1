#include "bench/Bench.h"
#include "host/Bake.h"
#include "host/GraphDocument.h"

namespace {

constexpr int kSide = 1024;

void AddBake(const std::string& row, const fernwick::GraphDocument& document)
{
    const auto shared = std::make_shared<fernwick::GraphDocument>(document);
    const auto add = [&](const std::string& column, int threads) {
        const std::string name = Section::kThroughput + "/" + row + column;
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
            fernwick::BakeJob job;
            job.width = job.height = kSide;
            job.threads = threads;
            for (auto _ : state)
                benchmark::DoNotOptimize(Bake(MeasuredLibrary(), *shared, job));
            state.counters["items"] = kSide * kSide;
            state.counters["counted"] = 0;
        })->UseRealTime();
    };
    add(kMeasured, 2);
    add(kReference, 1);
}

} // namespace

void AddBake()
{
    using fernwick::GraphDocument;
    AddBake("bake of examples/key.json", GraphDocument::Read(FERNWICK_EXAMPLES "/key.json"));
    AddBake("bake of a Weave of two colours",
        GraphDocument::Parse(R"({"output": "cloth", "shaders": {
        "warp": {"source": "color", "color": [0.7, 0.2, 0.1]}, "weft": {"source": "color", "color": [0.1, 0.2, 0.6]},
        "cloth": {"class": "Weave", "fRoundAcross": true, "fRoundAlong": true, "fRepeatU": 16, "fRepeatV": 16,
                  "fWarpSubShader[0]": "warp", "fWeftSubShader[0]": "weft"}}})",
            "."));
    AddBake("bake of a Spoke",
        GraphDocument::Parse(
            R"({"output": "wheel", "shaders": {"wheel": {"class": "Spoke", "fCount": 9}}})", "."));
}
