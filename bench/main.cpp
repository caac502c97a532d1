#include "bench/Bench.h"
#include "bench/Report.h"
#include <cstdio>

/// Takes the options of Google Benchmark, and before them the file for the tables.
int main(int count, char** arguments)
{
    if (count < 2) {
        std::fputs("usage: fernwick_bench <file for the tables> [--benchmark_...]\n", stderr);
        return 2;
    }
    Report report(arguments[1]);
    arguments[1] = arguments[0];
    --count;
    benchmark::Initialize(&count, ++arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 2;
    try {
        MeasuredLibrary(); // outlives all that is made of it
        AddPatterns();
        AddWeave();
        AddMapping();
        AddLayers();
        AddOptics();
        AddScene();
        AddShare();
        AddThroughput();
        benchmark::RunSpecifiedBenchmarks(&report);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    benchmark::ClearRegisteredBenchmarks(); // they hold shaders of the library
    benchmark::Shutdown();
    return 0;
}
