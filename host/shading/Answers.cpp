#include "host/shading/Answers.h"
#include "host/shading/Graph.h"
#include <algorithm>

namespace fernwick {

namespace {

constexpr std::string_view kValueNumbers[] = {"value", "coverage", "full area"};

void AnswerValue(const Graph& graph, ShadingIn& in, float* numbers)
{
    float value = 0;
    bool fullArea = false;
    float coverage = 0;
    graph.ForOutput([&](auto& shader) { coverage = shader.ShadeValue(value, fullArea, in); });
    const float answer[] = {value, coverage, static_cast<float>(fullArea)};
    static_assert(std::size(answer) == std::size(kValueNumbers));
    std::copy(std::begin(answer), std::end(answer), numbers);
}

constexpr std::string_view kColorNumbers[] = {"red", "green", "blue", "alpha", "coverage", "full area"};

void AnswerColor(const Graph& graph, ShadingIn& in, float* numbers)
{
    TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
    bool fullArea = false;
    float coverage = 0;
    graph.ForOutput([&](auto& shader) { coverage = shader.ShadeColor(color, fullArea, in); });
    const float answer[]
        = {color.fRed, color.fGreen, color.fBlue, color.fAlpha, coverage, static_cast<float>(fullArea)};
    static_assert(std::size(answer) == std::size(kColorNumbers));
    std::copy(std::begin(answer), std::end(answer), numbers);
}

constexpr std::string_view kVectorNumbers[] = {"x", "y", "z", "coverage"};

void AnswerVector(const Graph& graph, ShadingIn& in, float* numbers)
{
    TVector3 vector = in.fNormalGlobal;
    const float coverage = graph.OutputExtension()->ShadeVector(vector, in);
    const float answer[] = {vector[0], vector[1], vector[2], coverage};
    static_assert(std::size(answer) == std::size(kVectorNumbers));
    std::copy(std::begin(answer), std::end(answer), numbers);
}

/// All but the three blocks, which no shader of the pack interprets.
constexpr std::string_view kSurfaceNumbers[] = {"produced", "main red", "main green", "main blue",
    "main alpha", "second red", "second green", "second blue", "third red", "third green", "third blue",
    "fourth red", "fourth green", "fourth blue", "scalar A", "scalar B", "scalar C", "scalar D", "vector x",
    "vector y", "vector z", "normal x", "normal y", "normal z", "coverage", "full area"};
static_assert(std::size(kSurfaceNumbers) <= kMostNumbers);

void AnswerSurface(const Graph& graph, ShadingIn& in, float* numbers)
{
    ShadingOut result;
    bool produced = false;
    graph.ForOutput([&](auto& shader) { produced = shader.ShadeSurface(result, in) != 0; });
    if (!produced)
        result.Clear();
    const TMCColorRGBA& main = result.fColor;
    const TMCColorRGB& second = result.fSecondColor;
    const TMCColorRGB& third = result.fThirdColor;
    const TMCColorRGB& fourth = result.fFourthColor;
    const TVector3& vector = result.fVectorChannel;
    const TVector3& normal = result.fShadingNormal;
    const float answer[] = {static_cast<float>(produced), main.fRed, main.fGreen, main.fBlue, main.fAlpha,
        second.fRed, second.fGreen, second.fBlue, third.fRed, third.fGreen, third.fBlue, fourth.fRed,
        fourth.fGreen, fourth.fBlue, result.fScalarA, result.fScalarB, result.fScalarC, result.fScalarD,
        vector[0], vector[1], vector[2], normal[0], normal[1], normal[2], result.fCoverage,
        static_cast<float>(result.fFullArea)};
    static_assert(std::size(answer) == std::size(kSurfaceNumbers));
    std::copy(std::begin(answer), std::end(answer), numbers);
}

constexpr ShadingOperation kOperations[] = {
    {kOutputValue, "value", kValueNumbers, &AnswerValue},
    {kOutputColor, "color", kColorNumbers, &AnswerColor},
    {kOutputVector, "vector", kVectorNumbers, &AnswerVector},
    {kOutputSurface, "surface", kSurfaceNumbers, &AnswerSurface},
};

} // namespace

std::span<const ShadingOperation> ShadingOperations() { return kOperations; }

std::vector<ShadingOperation> ShadingOperationsOf(uint32_t kinds)
{
    std::vector<ShadingOperation> offered;
    for (const ShadingOperation& operation : kOperations)
        if ((kinds & static_cast<uint32_t>(operation.fKind)) != 0)
            offered.push_back(operation);
    return offered;
}

} // namespace fernwick
