#include "shaders/scene/Corners.h"
#include <algorithm>

namespace {

constexpr int32_t kLineCount = 4;

struct GridOption {
    int32_t fCode;
    int32_t fEdge;
};
constexpr GridOption kGridOptions[]
    = {{Code("Opt1"), 256}, {Code("Opt2"), 512}, {Code("Opt3"), 1024}, {Code("Opt4"), 2048}};

int32_t GridEdge(int32_t code)
{
    for (const GridOption& option : kGridOptions)
        if (option.fCode == code)
            return option.fEdge;
    return 1;
}

/// The cell of a texture coordinate. One outside 0 to 1 counts as the nearer end, NaN as 0.
int32_t CellOf(float coordinate, int32_t edge)
{
    const float position = coordinate * static_cast<float>(edge);
    return position >= static_cast<float>(edge) ? edge - 1 : std::max(CutToInt32(position), 0);
}

/// Strides that bring back a bound that lies `overrun` cells outside; 0 for one inside.
int64_t StridesBack(int64_t overrun, int64_t stride)
{
    return overrun > 0 ? (overrun + stride - 1) / stride : 0;
}

} // namespace

/// The neighbourhood of a cell, pulled into the grid, and how many strides each bound was pulled.
struct Corners::Boundary {
    int32_t fLowU;
    int32_t fLowV;
    int32_t fHighU;
    int32_t fHighV;
    int32_t fLowUOverrun;
    int32_t fLowVOverrun;
    int32_t fHighUOverrun; ///< counts down, unlike the other three
    int32_t fHighVOverrun;
};

/// Where a line of probes starts and how it goes on, in cells.
struct Corners::Line {
    int64_t fU;
    int64_t fV;
    int64_t fStepU;
    int64_t fStepV;
};

MCErr Corners::QueryInterface(const GUID& id, void** out)
{
    if (out != nullptr && SameGuid(id, IID_INormalGrid)) {
        *out = static_cast<INormalGrid*>(&fGridFace);
        AddRef();
        return MC_S_OK;
    }
    return UnsizedShaderOf::QueryInterface(id, out);
}

bool Corners::GridFace::SetNormal(int32_t u, int32_t v, const TVector3& normal)
{
    const int32_t edge = fCorners.fGridSize;
    if (u < 0 || u >= edge || v < 0 || v >= edge)
        return false;
    fCorners.fNormalGrid[u * edge + v] = normal;
    return true;
}

bool Corners::SameParams(const CornersParams& other) const
{
    return fParams.fStepDivisor == other.fStepDivisor && fParams.fWidthPercent == other.fWidthPercent
        && fParams.fGridOption == other.fGridOption && fParams.fLevel == other.fLevel
        && fParams.fCornerMode == other.fCornerMode && fParams.fSubShader == other.fSubShader;
}

MCErr Corners::ExtensionDataChanged()
{
    // Bounds around any cell stay in range; a radius that is no int32 counts as negative, and probes nothing.
    constexpr int32_t kLargestRadius = INT32_MAX - kLargestGrid;
    constexpr int32_t kLineRoom = kBufferRoom / kLineCount; // more probes than that are left out

    const MCErr status = ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
    fGridSize = GridEdge(fParams.fGridOption);
    const float radius = fParams.fWidthPercent / 100 * static_cast<float>(fGridSize);
    fRadius = std::clamp(CutToInt32(radius), -kLargestRadius, kLargestRadius);
    fStep = CutToInt32(static_cast<float>(fRadius) / fParams.fStepDivisor);
    if (fStep <= 0)
        fStep = 1;
    fSampleCount = std::clamp(fRadius / fStep, -kLineRoom, kLineRoom);
    fTotalSamples = fSampleCount * kLineCount;
    return status;
}

float Corners::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    fullArea = false;
    value = 0;
    const int32_t u = CellOf(in.fUV[0], fGridSize);
    const int32_t v = CellOf(in.fUV[1], fGridSize);
    fCenterNormal = Cell(u, v); // not the sample's own normal, though it is asked for

    const Boundary bounds = BoundaryAround(u, v);
    const int64_t step = fStep;
    ProbeLine(0, {bounds.fLowU, v, step, 0}, bounds);
    ProbeLine(1, {u, bounds.fHighV, 0, -step}, bounds);
    ProbeLine(2, {bounds.fLowU, bounds.fHighV, step, -step}, bounds);
    ProbeLine(3, {bounds.fLowU, bounds.fLowV, step, step}, bounds);

    value = static_cast<float>(LargestAngle() / 3.14); // a half turn is a little over 1
    return kFullCoverage;
}

/// A line that leaves the grid goes on in the neighbouring columns, as the places lie; one that leaves the
/// array finds zero vectors.
TVector3 Corners::Cell(int64_t u, int64_t v) const
{
    const int64_t place = u * fGridSize + v;
    return place >= 0 && place < kGridRoom ? fNormalGrid[place] : TVector3::kZero;
}

Corners::Boundary Corners::BoundaryAround(int32_t u, int32_t v) const
{
    const int64_t last = fGridSize - 1;
    const int64_t lowU = int64_t{u} - fRadius;
    const int64_t lowV = int64_t{v} - fRadius;
    const int64_t highU = int64_t{u} + fRadius;
    const int64_t highV = int64_t{v} + fRadius;
    const int64_t lowUStrides = StridesBack(-lowU, fStep);
    const int64_t lowVStrides = StridesBack(-lowV, fStep);
    const int64_t highUStrides = StridesBack(highU - last, fStep);
    const int64_t highVStrides = StridesBack(highV - last, fStep);
    const auto cells = [](int64_t number) { return static_cast<int32_t>(number); };
    // The count of high u is negative and that of high v is not (kept: it is part of the measure).
    return {cells(lowU + lowUStrides * fStep), cells(lowV + lowVStrides * fStep),
        cells(highU - highUStrides * fStep), cells(highV - highVStrides * fStep), cells(lowUStrides),
        cells(lowVStrides), cells(-highUStrides), cells(highVStrides)};
}

/// The counts pin the first probes of a line, at least the very first one, to the low corner of the grid. So
/// the place of the sample tells in the centre and the counts alone (kept: it is part of the measure).
void Corners::ProbeLine(int32_t index, Line line, const Boundary& in_bounds)
{
    for (int32_t i = 0; i < fSampleCount; ++i) {
        if (in_bounds.fLowUOverrun >= i)
            line.fU = 0;
        if (in_bounds.fLowVOverrun >= i)
            line.fV = 0;
        if (in_bounds.fHighUOverrun >= i)
            line.fU = 1;
        if (in_bounds.fHighVOverrun >= i)
            line.fV = 1;
        fAngleBuffer[index * fSampleCount + i] = AngleBetween(fCenterNormal, Cell(line.fU, line.fV));
        line.fU += line.fStepU;
        line.fV += line.fStepV;
    }
}

/// Over the first half of each line. Without probes the first place of the buffer counts all the same, with
/// what an earlier sample left there.
float Corners::LargestAngle() const
{
    float best = 0;
    for (int32_t line = 0; line < kLineCount; ++line)
        for (int32_t i = 0; i <= fSampleCount / 2; ++i) {
            const int32_t place = line * fSampleCount + i; // below 0 with a negative width
            if (place >= 0 && fAngleBuffer[place] > best)
                best = fAngleBuffer[place];
        }
    return best;
}
