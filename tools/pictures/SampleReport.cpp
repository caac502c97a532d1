#include "tools/pictures/SampleReport.h"
#include "host/shading/Answers.h"
#include "host/shading/Graph.h"
#include "host/shading/UVSquare.h"
#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace {

using Clock = std::chrono::steady_clock;

/// What a column of numbers comes to.
struct Statistics {
    float minimum = std::numeric_limits<float>::infinity(); ///< of the finite numbers
    float maximum = -std::numeric_limits<float>::infinity();
    size_t nanCount = 0;
    size_t infinityCount = 0;

    void Add(float number)
    {
        nanCount += std::isnan(number);
        infinityCount += std::isinf(number);
        if (!std::isfinite(number))
            return;
        minimum = std::min(minimum, number);
        maximum = std::max(maximum, number);
    }
};

/// With all digits that it takes to read the same float back.
std::string Exact(float number) { return fmt::format("{:.9g}", number); }

void PrintOperation(const fernwick::ShadingOperation& operation, const fernwick::Graph& graph, int width,
    int height, const std::function<void()>& onRow)
{
    const fernwick::UVSquare square(graph);
    const size_t count = operation.fNumbers.size();
    std::vector<Statistics> statistics(count);
    std::vector<float> row(static_cast<size_t>(width) * count);
    std::vector<ShadingIn> samples(static_cast<size_t>(width));
    const fernwick::ShaderWrapper::Turn turn(graph.OutputWrapper());
    Clock::duration time{};
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x)
            samples[static_cast<size_t>(x)] = square.SampleAt(
                fernwick::UVSquare::CenterOf(x, width), fernwick::UVSquare::CenterOf(y, height));
        float* numbers = row.data();
        const Clock::time_point start = Clock::now();
        for (ShadingIn& sample : samples) {
            operation.fAnswer(graph, sample, numbers);
            numbers += count;
        }
        time += Clock::now() - start;
        for (size_t i = 0; i < row.size(); ++i)
            statistics[i % count].Add(row[i]);
        onRow();
    }

    const double nanoseconds = std::chrono::duration<double, std::nano>(time).count();
    const auto sampleCount = static_cast<int64_t>(width) * height;
    fmt::print("{}: {} samples, {:.1f} ns each\n", operation.fName, sampleCount,
        nanoseconds / static_cast<double>(sampleCount));
    fmt::print("  {:<14}{:>16}{:>16}{:>10}{:>10}\n", "", "minimum", "maximum", "NaN", "infinite");
    for (size_t i = 0; i < count; ++i) {
        const Statistics& column = statistics[i];
        const bool isFinite = column.minimum <= column.maximum;
        fmt::print("  {:<14}{:>16}{:>16}{:>10}{:>10}\n", operation.fNumbers[i],
            isFinite ? Exact(column.minimum) : "-", isFinite ? Exact(column.maximum) : "-", column.nanCount,
            column.infinityCount);
    }
}

/// The operations that the output offers.
std::vector<fernwick::ShadingOperation> OperationsOf(
    const fernwick::Library& library, const fernwick::GraphDocument& document)
{
    return fernwick::ShadingOperationsOf(fernwick::Graph(library, document).OutputKinds());
}

} // namespace

void PrintSample(const fernwick::Library& library, const fernwick::GraphDocument& document, float u, float v)
{
    for (const fernwick::ShadingOperation& operation : OperationsOf(library, document)) {
        const fernwick::Graph graph(library, document);
        const fernwick::ShaderWrapper::Turn turn(graph.OutputWrapper());
        ShadingIn sample = fernwick::UVSquare(graph).SampleAt(u, v);
        float numbers[fernwick::kMostNumbers];
        operation.fAnswer(graph, sample, numbers);
        fmt::print("{}\n", operation.fName);
        for (size_t i = 0; i < operation.fNumbers.size(); ++i)
            fmt::print("  {:<14}{:<18}{:a}\n", operation.fNumbers[i], Exact(numbers[i]), numbers[i]);
    }
}

void PrintStatistics(const fernwick::Library& library, const fernwick::GraphDocument& document, int width,
    int height, const std::function<void()>& onRow)
{
    for (const fernwick::ShadingOperation& operation : OperationsOf(library, document))
        PrintOperation(operation, fernwick::Graph(library, document), width, height, onRow);
}
