#include "host/shading/SquareTexels.h"
#include "host/shading/UVSquare.h"
#include <optional>

namespace fernwick {

namespace {

class SquareTile final : public TexelTile {
public:
    SquareTile(const Tile& tile, int width, int height) : fTile(tile), fWidth(width), fHeight(height) { }

    void Use(const Graph& graph) override { fSquare.emplace(graph); }

    void MoveTo(const PixelPlace& place) override
    {
        fColumns.clear();
        for (int x = fTile.fLeft; x < fTile.fRight; ++x)
            fColumns.push_back(static_cast<float>((x + place.fRight) / fWidth));
        fRows.clear();
        for (int y = fTile.fTop; y < fTile.fBottom; ++y)
            fRows.push_back(static_cast<float>((fHeight - 1 - y + (1 - place.fDown)) / fHeight));
    }

    bool SampleAt(int x, int y, ShadingIn& in) override
    {
        fSquare->Fill(
            fColumns[static_cast<size_t>(x - fTile.fLeft)], fRows[static_cast<size_t>(y - fTile.fTop)], in);
        return true;
    }

    bool IsFlat() const override { return true; }

private:
    Tile fTile;
    int fWidth;
    int fHeight;
    std::optional<UVSquare> fSquare;
    std::vector<float> fColumns; // U of each
    std::vector<float> fRows;    // V of each
};

} // namespace

std::unique_ptr<TexelTile> SquareTexels::Open(const Tile& tile) const
{
    return std::make_unique<SquareTile>(tile, fWidth, fHeight);
}

} // namespace fernwick
