#include "host/geometry/UVPlane.h"
#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr double kStepsPerPixel = 0x1p26;
constexpr float kFarthest = 1000; ///< U or V

/// The tiles from one place to another along an axis in which the centre of a texel lies between the two; the first
/// is behind the last when there is none.
struct TileSpan {
    TileSpan(double least, double most, int side)
        : fFirst(std::floor(std::ceil(least - 0.5) / side)), fLast(std::floor(std::floor(most - 0.5) / side)),
          fHasCentre(std::ceil(least - 0.5) <= std::floor(most - 0.5))
    { }
    double fFirst;
    double fLast;
    bool fHasCentre;
};

/// Counts rectangles of tiles by their corners.
class TileCounts {
public:
    void Add(const TileSpan& across, const TileSpan& up)
    {
        if (!across.fHasCentre || !up.fHasCentre)
            return;
        const int left = Clamped(across.fFirst, UVTile::kColumns);
        const int right = Clamped(across.fLast + 1, UVTile::kColumns);
        const int bottom = Clamped(up.fFirst, UVTile::kRows);
        const int top = Clamped(up.fLast + 1, UVTile::kRows);
        At(left, bottom) += 1;
        At(right, bottom) -= 1;
        At(left, top) -= 1;
        At(right, top) += 1;
    }

    std::vector<UVTile> Tiles()
    {
        std::vector<UVTile> tiles;
        for (int row = 0; row <= UVTile::kRows; ++row)
            for (int column = 0; column <= UVTile::kColumns; ++column) {
                int64_t& count = At(column, row);
                count += column > 0 ? At(column - 1, row) : 0;
                count += row > 0 ? At(column, row - 1) : 0;
                count -= column > 0 && row > 0 ? At(column - 1, row - 1) : 0;
                if (count > 0)
                    tiles.push_back({column, row});
            }
        return tiles;
    }

private:
    std::vector<int64_t> fCounts = std::vector<int64_t>((UVTile::kColumns + 1) * (UVTile::kRows + 1));

    static int Clamped(double tile, int count)
    {
        return static_cast<int>(std::clamp(tile, 0.0, static_cast<double>(count)));
    }
    int64_t& At(int column, int row)
    {
        return fCounts[static_cast<size_t>(row * (UVTile::kColumns + 1) + column)];
    }
};

} // namespace

double OnUVGrid(double pixels) { return std::nearbyint(pixels * kStepsPerPixel) / kStepsPerPixel; }

int SideOf(double fromX, double fromY, double toX, double toY, double x, double y)
{
    const double left[2] = {toX - fromX, y - fromY};
    const double right[2] = {toY - fromY, x - fromX};
    const double first = left[0] * left[1];
    const double second = right[0] * right[1];
    if (first != second) // rounding keeps the order
        return first > second ? 1 : -1;
    const double firstRest = std::fma(left[0], left[1], -first);
    const double secondRest = std::fma(right[0], right[1], -second);
    return firstRest > secondRest ? 1 : firstRest < secondRest ? -1 : 0;
}

std::optional<UVTriangle> UVTriangle::Find(const UVMesh& mesh, size_t triangle, int width, int height)
{
    const std::vector<TVector2>& uvs = mesh.fMesh->UVSet(mesh.fSet);
    const std::array<unsigned, 3>& corners = mesh.fMesh->fTriangles[triangle];
    UVTriangle found;
    for (size_t i = 0; i < 3; ++i) {
        const TVector2& uv = uvs[corners[i]];
        if (!(std::fabs(uv[0]) <= kFarthest && std::fabs(uv[1]) <= kFarthest))
            return std::nullopt;
        found.fX[i] = OnUVGrid(static_cast<double>(uv[0]) * width);
        found.fY[i] = OnUVGrid(static_cast<double>(uv[1]) * height);
    }
    if (SideOf(found.fX[0], found.fY[0], found.fX[1], found.fY[1], found.fX[2], found.fY[2]) == 0)
        return std::nullopt;
    return found;
}

bool UVTriangle::IsMirrored() const { return SideOf(fX[0], fY[0], fX[1], fY[1], fX[2], fY[2]) < 0; }

UVSurvey SurveyUVs(const std::vector<UVMesh>& meshes, int width, int height)
{
    UVSurvey survey;
    TileCounts counts;
    for (const UVMesh& mesh : meshes)
        for (size_t i = 0; i < mesh.fMesh->fTriangles.size(); ++i) {
            ++survey.fTriangles;
            const std::optional<UVTriangle> triangle = UVTriangle::Find(mesh, i, width, height);
            if (!triangle) {
                ++survey.fFlat;
                continue;
            }
            survey.fMirrored += triangle->IsMirrored() ? 1 : 0;
            const TileSpan across(triangle->Least(triangle->fX), triangle->Most(triangle->fX), width);
            const TileSpan up(triangle->Least(triangle->fY), triangle->Most(triangle->fY), height);
            if (across.fHasCentre && up.fHasCentre
                && (across.fFirst < 0 || across.fLast >= UVTile::kColumns || up.fFirst < 0
                    || up.fLast >= UVTile::kRows))
                ++survey.fOutside;
            counts.Add(across, up);
        }
    survey.fTiles = counts.Tiles();
    return survey;
}

} // namespace fernwick
