#include "host/geometry/MeshTexels.h"
#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr int kFinestShift = 7; ///< squares of 128 pixels, as tiles are

/// One edge of a triangle that lies to its left.
class Edge {
public:
    Edge(double fromX, double fromY, double toX, double toY) : fX(fromX), fY(fromY), fToX(toX), fToY(toY) { }

    /// Of a place on the line, whether the place a little below it and less to its right would be inside: of two
    /// triangles at an edge, and of all around a corner, one takes it.
    bool Takes(double x, double y) const
    {
        const int side = SideOf(fX, fY, fToX, fToY, x, y);
        return side != 0 ? side > 0 : fToX < fX || (fToX == fX && fToY < fY);
    }

    /// Narrows the range of X in a row to where the inner side may be; by a pixel less than it could.
    void Narrow(double y, double& least, double& most) const
    {
        const double rise = fToY - fY;
        const double x = fX + (y - fY) * ((fToX - fX) / rise);
        if (rise > 0)
            most = std::min(most, x + 1);
        else if (rise < 0)
            least = std::max(least, x - 1);
    }

private:
    double fX;
    double fY;
    double fToX;
    double fToY;
};

} // namespace

/// Lays triangles on one area, one after the other.
struct MeshTexels::Rasterizer {
    const MeshTexels& whole;
    TexelArea area;
    double right;
    double down;
    std::vector<Texel>& texels;

    double XOf(int x) const { return whole.fOriginX + x + right; }
    double YOf(int y) const { return whole.fTopY - y - down; }

    void Lay(unsigned number)
    {
        const UVTriangle triangle = whole.Placed(number);
        const std::optional<TexelArea> own = whole.AreaOf(triangle);
        if (!own)
            return;
        const size_t second = triangle.IsMirrored() ? 2 : 1;
        const size_t third = 3 - second;
        const auto& [x, y] = triangle;
        const Edge edges[] = {{x[0], y[0], x[second], y[second]}, {x[second], y[second], x[third], y[third]},
            {x[third], y[third], x[0], y[0]}};
        const size_t mesh = whole.MeshOf(number);
        const Texel start = {static_cast<unsigned>(mesh), number - whole.fStarts[mesh]};
        for (int row = std::max(own->fTop, area.fTop); row < std::min(own->fBottom, area.fBottom); ++row)
            LayRow(triangle, edges, start, std::max(own->fLeft, area.fLeft),
                std::min(own->fRight, area.fRight), row);
    }

    void LayRow(
        const UVTriangle& triangle, const Edge (&edges)[3], const Texel& start, int left, int end, int row)
    {
        const double y = YOf(row);
        double least = XOf(left);
        double most = XOf(end - 1);
        for (const Edge& edge : edges)
            edge.Narrow(y, least, most);
        if (!(least <= most))
            return;
        const auto takes = [&](int x) {
            return edges[0].Takes(XOf(x), y) && edges[1].Takes(XOf(x), y) && edges[2].Takes(XOf(x), y);
        };
        int first = std::max(left, static_cast<int>(std::floor(least - XOf(0))));
        int last = std::min(end - 1, static_cast<int>(std::ceil(most - XOf(0))));
        while (first <= last && !takes(first))
            ++first;
        while (last > first && !takes(last))
            --last;
        for (int x = first; x <= last; ++x) // what a triangle has of a row is in one piece
            Cover(triangle, start, x, row);
    }

    void Cover(const UVTriangle& triangle, const Texel& start, int x, int row)
    {
        const size_t place
            = static_cast<size_t>(row - area.fTop) * static_cast<size_t>(area.fRight - area.fLeft)
            + static_cast<size_t>(x - area.fLeft);
        Texel& texel = texels[place];
        if (texel.IsCovered()) {
            texel.fIsOverlapped = true;
            return;
        }
        texel = start;
        const auto& [xs, ys] = triangle;
        const auto areaFromFirst = [&xs = xs, &ys = ys](double fromX, double fromY, double toX, double toY) {
            return (fromX - xs[0]) * (toY - ys[0]) - (toX - xs[0]) * (fromY - ys[0]);
        };
        const double whole = areaFromFirst(xs[1], ys[1], xs[2], ys[2]);
        texel.fU = static_cast<float>(areaFromFirst(XOf(x), YOf(row), xs[2], ys[2]) / whole);
        texel.fV = static_cast<float>(areaFromFirst(xs[1], ys[1], XOf(x), YOf(row)) / whole);
    }
};

MeshTexels::MeshTexels(std::vector<UVMesh> meshes, const UVTile& tile, int width, int height)
    : fMeshes(std::move(meshes)), fOriginX(static_cast<double>(tile.fColumn) * width),
      fTopY((tile.fRow + 1.0) * height), fWidth(width), fHeight(height)
{
    unsigned count = 0;
    for (const UVMesh& mesh : fMeshes) {
        fStarts.push_back(count);
        count += static_cast<unsigned>(mesh.fMesh->fTriangles.size());
    }
    FillLevels();
}

void MeshTexels::Find(const TexelArea& area, double right, double down, std::vector<Texel>& texels) const
{
    const auto width = static_cast<size_t>(area.fRight - area.fLeft);
    texels.assign(width * static_cast<size_t>(area.fBottom - area.fTop), {});
    Rasterizer rasterizer{*this, area, OnUVGrid(right), OnUVGrid(down), texels};
    for (const unsigned triangle : TrianglesIn(area))
        rasterizer.Lay(triangle);
}

size_t MeshTexels::MeshOf(unsigned triangle) const
{
    return static_cast<size_t>(std::upper_bound(fStarts.begin(), fStarts.end(), triangle) - fStarts.begin())
        - 1;
}

/// One out of the levels, where only those are that have a place.
UVTriangle MeshTexels::Placed(unsigned triangle) const
{
    const size_t mesh = MeshOf(triangle);
    return *UVTriangle::Find(fMeshes[mesh], triangle - fStarts[mesh], fWidth, fHeight);
}

/// The pixels of the picture of which a triangle may cover a place.
std::optional<TexelArea> MeshTexels::AreaOf(const UVTriangle& triangle) const
{
    const auto pixel = [](double place, int count) {
        return static_cast<int>(std::clamp(std::floor(place), -1.0, static_cast<double>(count)));
    };
    const TexelArea area = {std::max(pixel(triangle.Least(triangle.fX) - fOriginX - 1, fWidth), 0),
        std::max(pixel(fTopY - triangle.Most(triangle.fY) - 1, fHeight), 0),
        std::min(pixel(triangle.Most(triangle.fX) - fOriginX, fWidth) + 1, fWidth),
        std::min(pixel(fTopY - triangle.Least(triangle.fY), fHeight) + 1, fHeight)};
    if (area.fLeft >= area.fRight || area.fTop >= area.fBottom)
        return std::nullopt;
    return area;
}

std::optional<MeshTexels::Squares> MeshTexels::SquaresOf(const UVMesh& mesh, size_t number) const
{
    const std::optional<UVTriangle> triangle = UVTriangle::Find(mesh, number, fWidth, fHeight);
    const std::optional<TexelArea> area = triangle ? AreaOf(*triangle) : std::nullopt;
    if (!area)
        return std::nullopt;
    for (size_t level = 0;; ++level) {
        const int shift = fLevels[level].shift;
        const Squares squares = {level, area->fLeft >> shift, area->fTop >> shift,
            (area->fRight - 1) >> shift, (area->fBottom - 1) >> shift};
        if (squares.right - squares.left <= 1 && squares.bottom - squares.top <= 1)
            return squares;
    }
}

template <class Visit> void MeshTexels::ForEachSquare(const Visit& visit) const
{
    for (size_t mesh = 0; mesh < fMeshes.size(); ++mesh)
        for (size_t i = 0; i < fMeshes[mesh].fMesh->fTriangles.size(); ++i) {
            const std::optional<Squares> squares = SquaresOf(fMeshes[mesh], i);
            if (!squares)
                continue;
            const auto columns = static_cast<size_t>(fLevels[squares->level].columns);
            for (int row = squares->top; row <= squares->bottom; ++row)
                for (int column = squares->left; column <= squares->right; ++column)
                    visit(squares->level, static_cast<size_t>(row) * columns + static_cast<size_t>(column),
                        fStarts[mesh] + static_cast<unsigned>(i));
        }
}

void MeshTexels::FillLevels()
{
    for (int shift = kFinestShift;; ++shift) {
        const int columns = ((fWidth - 1) >> shift) + 1;
        const int rows = ((fHeight - 1) >> shift) + 1;
        fLevels.push_back({shift, columns, {}, {}});
        fLevels.back().starts.resize(static_cast<size_t>(columns) * static_cast<size_t>(rows) + 1);
        if (columns <= 2 && rows <= 2)
            break;
    }
    ForEachSquare([this](size_t level, size_t square, unsigned) { ++fLevels[level].starts[square + 1]; });
    std::vector<std::vector<size_t>> next;
    for (Level& level : fLevels) {
        for (size_t i = 1; i < level.starts.size(); ++i)
            level.starts[i] += level.starts[i - 1];
        level.triangles.resize(level.starts.back());
        next.push_back(level.starts);
    }
    ForEachSquare([this, &next](size_t level, size_t square, unsigned triangle) {
        fLevels[level].triangles[next[level][square]++] = triangle;
    });
}

std::vector<unsigned> MeshTexels::TrianglesIn(const TexelArea& area) const
{
    std::vector<unsigned> found;
    for (const Level& level : fLevels)
        for (int row = area.fTop >> level.shift; row <= (area.fBottom - 1) >> level.shift; ++row)
            for (int column = area.fLeft >> level.shift; column <= (area.fRight - 1) >> level.shift;
                 ++column) {
                const size_t square = static_cast<size_t>(row) * static_cast<size_t>(level.columns)
                    + static_cast<size_t>(column);
                found.insert(found.end(),
                    level.triangles.begin() + static_cast<ptrdiff_t>(level.starts[square]),
                    level.triangles.begin() + static_cast<ptrdiff_t>(level.starts[square + 1]));
            }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace fernwick
