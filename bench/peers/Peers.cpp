#include "host/documents/GraphDocument.h"
#include "host/library/Library.h"
#include "host/pictures/Picture.h"
#include "host/shading/Bake.h"
#include "host/threads/Parallel.h"
#include <KSeExpr/Expression.h>
#include <KSeExpr/VarBlock.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

// A pattern, baked to memory by this host and evaluated by an expression language, on as many threads: tells the best
// times of both, and how far both and the floats of a third picture agree.

namespace {

using fernwick::Picture;

struct Job {
    int side;
    int threads;
    int repeats;
};

struct Seconds {
    double real = std::numeric_limits<double>::infinity();
    double processor = std::numeric_limits<double>::infinity();
};

/// @return the least of each over the repeats
template <class Work> Seconds Best(int repeats, const Work& work)
{
    Seconds best;
    for (int i = 0; i < repeats; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t used = std::clock();
        work();
        best.processor = std::min(best.processor, static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC);
        best.real = std::min(
            best.real, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

/// An expression of `u` and `v`, for one thread.
class Pattern {
public:
    explicit Pattern(const std::string& text)
        : fU(fVariables.registerVariable("u", Varying(1))), fV(fVariables.registerVariable("v", Varying(1))),
          fResult(fVariables.registerVariable("result", Varying(3))),
          fExpression(text, Varying(3), KSeExpr::Expression::UseInterpreter)
    {
        fExpression.setVarBlockCreator(&fVariables);
        if (!fExpression.isValid())
            throw std::runtime_error("the expression isn't valid");
        fCount = fExpression.returnType().dim();
    }

    /// Every `step`th row of the picture, from `first` on.
    void Fill(Picture& picture, int first, int step)
    {
        const auto width = static_cast<size_t>(picture.Width());
        std::vector<double> u(width);
        std::vector<double> v(width);
        std::vector<double> result(3 * width);
        for (size_t x = 0; x < width; ++x)
            u[x] = (static_cast<double>(x) + 0.5) / picture.Width();
        KSeExpr::VarBlock block = fVariables.create();
        block.Pointer(static_cast<uint32_t>(fU)) = u.data();
        block.Pointer(static_cast<uint32_t>(fV)) = v.data();
        block.Pointer(static_cast<uint32_t>(fResult)) = result.data();
        for (int y = first; y < picture.Height(); y += step) {
            std::fill(v.begin(), v.end(), (picture.Height() - 1 - y + 0.5) / picture.Height());
            fExpression.evalMultiple(&block, fResult, 0, width);
            for (size_t x = 0; x < width; ++x) {
                const double* const color = &result[3 * x];
                const auto channel = [&](int i) { return static_cast<float>(color[fCount == 1 ? 0 : i]); };
                picture.At(static_cast<int>(x), y) = {channel(0), channel(1), channel(2), 1};
            }
        }
    }

private:
    KSeExpr::VarBlockCreator fVariables;
    int fU;
    int fV;
    int fResult;
    KSeExpr::Expression fExpression;
    int fCount; // of the numbers of its answer; there is room for three

    static KSeExpr::ExprType Varying(int count) { return KSeExpr::ExprType().FP(count).Varying(); }
};

/// Blender's floats, row 0 at the bottom.
Picture ReadFloats(const std::filesystem::path& file, int side)
{
    Picture picture(side, side, fernwick::PictureContent::kColor);
    std::ifstream stream(file, std::ios::binary);
    for (int y = side - 1; y >= 0; --y)
        stream.read(reinterpret_cast<char*>(&picture.At(0, y)),
            static_cast<std::streamsize>(sizeof(TMCColorRGBA)) * side);
    if (!stream)
        throw std::runtime_error(file.string() + " is too short");
    return picture;
}

/// The share of the pixels that differ by more than rounding of U and V does: those whose centre lies on an edge.
double ShareApart(const Picture& left, const Picture& right)
{
    constexpr float kRounding = 1e-3f;
    int64_t count = 0;
    for (int y = 0; y < left.Height(); ++y)
        for (int x = 0; x < left.Width(); ++x) {
            const TMCColorRGBA& a = left.At(x, y);
            const TMCColorRGBA& b = right.At(x, y);
            const float most = std::max(
                {std::fabs(a.fRed - b.fRed), std::fabs(a.fGreen - b.fGreen), std::fabs(a.fBlue - b.fBlue)});
            count += most <= kRounding ? 0 : 1;
        }
    return static_cast<double>(count) / left.Width() / left.Height();
}

void Compare(
    const std::string& graph, const std::string& expression, const std::string& floats, const Job& job)
{
    const fernwick::Library library(FERNWICK_MODULE);
    const auto document = fernwick::GraphDocument::Read(graph);
    const fernwick::BakeJob bake{.width = job.side, .height = job.side, .threads = job.threads};
    Picture baked(job.side, job.side, fernwick::PictureContent::kColor);
    TMCColorRGBA* const room[] = {&baked.At(0, 0)};
    const Seconds bakeTime = Best(job.repeats, [&] { fernwick::BakeInto(library, document, bake, room); });

    std::ifstream stream(expression);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    Picture evaluated(job.side, job.side, fernwick::PictureContent::kColor);
    const Seconds evaluation = Best(job.repeats, [&] {
        fernwick::RunParallel(
            job.threads, job.threads, [&](int part) { Pattern(text).Fill(evaluated, part, job.threads); });
    });
    fmt::print(R"({{"bake": {{"real": {}, "processor": {}}}, "expression": {{"real": {}, "processor": {}}}, )"
               R"("apart": [{}, {}]}})"
               "\n",
        bakeTime.real, bakeTime.processor, evaluation.real, evaluation.processor,
        ShareApart(baked, evaluated), ShareApart(baked, ReadFloats(floats, job.side)));
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 7) {
        fmt::print(
            stderr, "usage: fernwick_peers <graph> <expression> <floats> <side> <threads> <repeats>\n");
        return 2;
    }
    try {
        Compare(arguments[1], arguments[2], arguments[3],
            {std::stoi(arguments[4]), std::stoi(arguments[5]), std::stoi(arguments[6])});
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}
