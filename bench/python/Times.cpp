#include "host/documents/GraphDocument.h"
#include "host/library/Library.h"
#include "host/shading/Bake.h"
#include "host/shading/Tiles.h"
#include "host/shading/UVSquare.h"
#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <random>

// What a bake into memory and the bare shading of samples take without Python: the best of some runs.

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

template <class Work> double Best(int repeats, const Work& work)
{
    double best = 1e9;
    for (int i = 0; i < repeats; ++i)
        best = std::min(best, work());
    return best;
}

/// The seconds of a bake into new memory.
double BakeTime(const fernwick::Library& library, const fernwick::GraphDocument& document, int side)
{
    // As NumPy has it: memory that the system gives as it is written to.
    const std::unique_ptr<TMCColorRGBA, decltype(&std::free)> pixels(
        static_cast<TMCColorRGBA*>(
            std::malloc(sizeof(TMCColorRGBA) * static_cast<size_t>(side) * static_cast<size_t>(side))),
        &std::free);
    TMCColorRGBA* const room[] = {pixels.get()};
    const auto start = Clock::now();
    BakeInto(library, document, {.width = side, .height = side}, room);
    return Seconds(Clock::now() - start).count();
}

/// The seconds that the shader of a graph itself takes for the colours, or else the values, of samples anywhere on the
/// unit square, which are prepared while no time is taken.
double ShaderTime(const fernwick::Library& library, const fernwick::GraphDocument& document, int count)
{
    constexpr int kAtATime = 1024;
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate;
    const auto graph = fernwick::MakeGraph(library, document);
    const fernwick::UVSquare square(*graph);
    I3DExShader& shader = *graph->OutputExtension();
    const bool hasColor = (graph->OutputKinds() & kOutputColor) != 0;
    std::vector<ShadingIn> samples(kAtATime);
    std::vector<TMCColorRGBA> answers(kAtATime);
    double time = 0;
    for (int done = 0; done < count; done += kAtATime) {
        for (ShadingIn& sample : samples) {
            const float u = coordinate(random);
            sample = square.SampleAt(u, coordinate(random));
        }
        bool fullArea = false;
        const auto start = Clock::now();
        for (size_t i = 0; i < kAtATime; ++i)
            if (hasColor)
                shader.ShadeColor(answers[i], fullArea, samples[i]);
            else
                shader.ShadeValue(answers[i].fRed, fullArea, samples[i]);
        time += Seconds(Clock::now() - start).count();
    }
    return time;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 5) {
        fmt::print(stderr, "usage: fernwick_python_times <graph> <side> <samples> <repeats>\n");
        return 2;
    }
    try {
        const fernwick::Library library(FERNWICK_MODULE);
        const auto document = fernwick::GraphDocument::Read(arguments[1]);
        const int repeats = std::stoi(arguments[4]);
        const double bake
            = Best(repeats, [&] { return BakeTime(library, document, std::stoi(arguments[2])); });
        const double shader
            = Best(repeats, [&] { return ShaderTime(library, document, std::stoi(arguments[3])); });
        fmt::print(R"({{"bake": {}, "shader": {}}})"
                   "\n",
            bake, shader);
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}
