#include "host/shading/Bake.h"
#include "host/pictures/LayOver.h"
#include "host/shading/PixelSum.h"
#include "host/shading/SquareTexels.h"
#include "host/threads/Parallel.h"
#include <algorithm>
#include <cmath>
#include <iterator>

namespace fernwick {

namespace {

/// In pixels; a band is a row of tiles. A graph whose making is the dearest, with a Fresnel, takes a quarter of the
/// time of such a tile.
constexpr int kBakeTileSide = 128;

Tile TileOf(const PictureRegion& region) { return {region.left, region.top, region.right, region.bottom}; }

/// The pixels of one of the pictures that a bake shades: all of them, or as many bands as are there at a time.
class BakedPixels {
public:
    /// @param whole  room for all; null for bands
    BakedPixels(const Tile& region, int bands, TMCColorRGBA* whole)
        : fRegion(region), fWidth(static_cast<size_t>(region.fRight - region.fLeft)), fWhole(whole)
    {
        if (whole == nullptr)
            fBands.assign(static_cast<size_t>(bands), std::vector<TMCColorRGBA>(fWidth * kBakeTileSide));
    }

    /// The pixels of a row, from the left side of the region on; the rows of its band lie behind one another.
    TMCColorRGBA* Row(int y)
    {
        if (fWhole != nullptr)
            return fWhole + static_cast<size_t>(y - fRegion.fTop) * fWidth;
        std::vector<TMCColorRGBA>& band = fBands[static_cast<size_t>(y / kBakeTileSide) % fBands.size()];
        return band.data()
            + static_cast<size_t>(y - std::max(fRegion.fTop, y / kBakeTileSide * kBakeTileSide)) * fWidth;
    }

    std::span<TMCColorRGBA> Rows(int top, int bottom)
    {
        return {Row(top), static_cast<size_t>(bottom - top) * fWidth};
    }

private:
    Tile fRegion;
    size_t fWidth; // of the region
    TMCColorRGBA* fWhole;
    std::vector<std::vector<TMCColorRGBA>> fBands; // each is used again when it was handed on
};

/// The mean of a pixel's samples.
TMCColorRGBA MeanOf(const PixelSum& sum, int samples, PictureContent content)
{
    TMCColorRGBA mean = sum.Color(samples);
    if (content != PictureContent::kNormal || !(sum.alpha > 0))
        return mean;
    const double length = std::sqrt(sum.red * sum.red + sum.green * sum.green + sum.blue * sum.blue);
    if (!(length > 0) || !std::isfinite(length))
        return {0, 0, 1, mean.fAlpha}; // normals that cancel out are flat
    return {static_cast<float>(sum.red / length), static_cast<float>(sum.green / length),
        static_cast<float>(sum.blue / length), mean.fAlpha};
}

class Baker {
public:
    Baker(const Library& library, const GraphDocument& document, const BakeJob& job)
        : fLibrary(library), fJob(job), fRegion(TileOf(RegionOf(job))), fPattern(job.samples),
          fSquare(job.width, job.height), fSurface(job.surface != nullptr ? *job.surface : fSquare)
    {
        std::vector<ReadChannel> channels;
        std::vector<ReadChannel> grounds;
        for (const BakeChannel channel : job.channels)
            channels.push_back({channel, channels.size()});
        fContents.resize(channels.size());
        for (const ReadChannel& channel : channels) {
            fContents[channel.fPicture] = ContentOf(channel.fChannel);
            if (job.ground == nullptr || !HasGround(channel.fChannel))
                continue;
            grounds.push_back({GroundOf(channel.fChannel), fContents.size()});
            fGroundOf.push_back({channel.fPicture, fContents.size()});
            fContents.push_back(PictureContent::kColor);
        }
        AddReadings(document, channels);
        if (!grounds.empty())
            AddReadings(*job.ground, grounds);
    }

    /// @param whole  by channel room for its picture; empty for bands
    bool Run(const BakeSink& sink, std::span<TMCColorRGBA* const> whole = {})
    {
        const TileJob tiles
            = {fJob.width, fJob.height, kBakeTileSide, fJob.threads, fJob.onProgress, fJob.cancel, fRegion};
        const int columns = (fRegion.fRight - 1) / kBakeTileSide + 1 - fRegion.fLeft / kBakeTileSide;
        // Enough to shade a band while another one is written, and in a narrow picture to keep all threads busy.
        const int most = std::max(columns + 1, 2 * ThreadCount(std::max(fJob.threads, 0)));
        const int bands = std::min((most - 2) / columns + 2,
            (fRegion.fBottom - 1) / kBakeTileSide + 1 - fRegion.fTop / kBakeTileSide);
        for (size_t i = 0; i < fContents.size(); ++i)
            fPixels.emplace_back(fRegion, bands, i < whole.size() ? whole[i] : nullptr);
        return ForEachTileInOrder(
            tiles, most, [this](const Tile& tile) { return ShadeTile(tile); },
            [&](const Tile& tile) {
                if (tile.fRight >= fRegion.fRight) // the last one of the band
                    sink(BandOf(tile));
            });
    }

private:
    struct DocumentReading {
        const GraphDocument* fDocument;
        BakeReading fReading;
    };
    struct Ground {
        size_t fPicture;
        size_t fGround; // its place among all pictures
    };

    const Library& fLibrary;
    const BakeJob& fJob;
    Tile fRegion;
    PixelPattern fPattern;
    SquareTexels fSquare;
    const TexelSurface& fSurface;
    std::vector<PictureContent> fContents; // of all pictures: those of the channels, then their grounds
    std::vector<Ground> fGroundOf;
    std::vector<DocumentReading> fReadings;
    std::vector<BakedPixels> fPixels; // of all pictures

    void AddReadings(const GraphDocument& document, std::span<const ReadChannel> channels)
    {
        const uint32_t kinds = MakeGraph(fLibrary, document)->OutputKinds();
        for (BakeReading& reading : BakeReading::Part(channels, kinds))
            fReadings.push_back({&document, std::move(reading)});
    }

    BakeBand BandOf(const Tile& tile)
    {
        const int top = std::max(tile.fTop, fRegion.fTop);
        const int bottom = std::min(tile.fBottom, fRegion.fBottom);
        BakeBand band{top, bottom - top, fRegion.fRight - fRegion.fLeft, {}, {}};
        for (size_t i = 0; i < fJob.channels.size(); ++i)
            band.fPictures.push_back(fPixels[i].Rows(top, bottom));
        band.fGrounds.resize(band.fPictures.size());
        for (const auto& [picture, ground] : fGroundOf)
            band.fGrounds[picture] = fPixels[ground].Rows(top, bottom);
        return band;
    }

    /// @return false when cancelled
    bool ShadeTile(const Tile& tile);
};

/// One tile while it is shaded: takes the rows of a reading's samples and puts pixels where they belong.
class TilePixels {
public:
    TilePixels(const Tile& tile, const Tile& region, std::span<const PictureContent> contents, int samples,
        std::vector<BakedPixels>& pixels)
        : fTile(tile), fRegion(region), fContents(contents), fSamples(samples), fPixels(pixels),
          fIsDirect(samples == 1 && tile.fLeft >= region.fLeft && tile.fRight <= region.fRight
              && tile.fTop >= region.fTop && tile.fBottom <= region.fBottom),
          fWidth(static_cast<size_t>(tile.fRight - tile.fLeft))
    {
        if (!fIsDirect)
            fRow.resize(fWidth * pixels.size());
        if (samples > 1)
            fSums.resize(fWidth * static_cast<size_t>(tile.fBottom - tile.fTop) * pixels.size());
    }

    /// Makes `row` the place for a row of samples.
    void MoveTo(int y, TexelRow& row)
    {
        row.fY = y;
        row.fLeft = fTile.fLeft;
        row.fRight = fTile.fRight;
        row.fPixels.resize(fPixels.size());
        for (size_t i = 0; i < fPixels.size(); ++i)
            row.fPixels[i]
                = fIsDirect ? fPixels[i].Row(y) + (fTile.fLeft - fRegion.fLeft) : fRow.data() + i * fWidth;
    }

    /// Takes the row, of which the samples of some pictures are there.
    void Take(const TexelRow& row, std::span<const ReadChannel> channels)
    {
        if (fIsDirect)
            return;
        for (const ReadChannel& channel : channels)
            if (fSamples == 1)
                Store(channel.fPicture, row.fY, [&](size_t i) { return row.fPixels[channel.fPicture][i]; });
            else
                Add(channel.fPicture, row);
    }

    /// When all samples were taken.
    void Finish()
    {
        if (fSamples == 1)
            return;
        for (size_t picture = 0; picture < fPixels.size(); ++picture)
            for (int y = fTile.fTop; y < fTile.fBottom; ++y)
                Store(picture, y, [&, sums = SumsOf(picture, y)](size_t i) {
                    return MeanOf(sums[i], fSamples, fContents[picture]);
                });
    }

    void FillTransparent()
    {
        for (size_t picture = 0; picture < fPixels.size(); ++picture)
            for (int y = fTile.fTop; y < fTile.fBottom; ++y)
                Store(picture, y, [](size_t) { return TMCColorRGBA{0, 0, 0, 0}; });
    }

private:
    Tile fTile;
    Tile fRegion;
    std::span<const PictureContent> fContents;
    int fSamples;
    std::vector<BakedPixels>& fPixels;
    bool fIsDirect; // rows are shaded where they belong
    size_t fWidth;
    std::vector<TMCColorRGBA> fRow; // by picture
    std::vector<PixelSum> fSums;    // by picture and row

    PixelSum* SumsOf(size_t picture, int y)
    {
        const auto height = static_cast<size_t>(fTile.fBottom - fTile.fTop);
        return fSums.data() + (picture * height + static_cast<size_t>(y - fTile.fTop)) * fWidth;
    }

    void Add(size_t picture, const TexelRow& row)
    {
        PixelSum* const sums = SumsOf(picture, row.fY);
        for (size_t i = 0; i < fWidth; ++i) {
            double left = 1;
            sums[i].Add(row.fPixels[picture][i], left);
        }
    }

    /// Stores what lies in the region of a row.
    /// @param colorAt  gives the pixel by its place in the row of the tile
    template <class Color> void Store(size_t picture, int y, const Color& colorAt)
    {
        if (y < fRegion.fTop || y >= fRegion.fBottom)
            return;
        TMCColorRGBA* const pixels = fPixels[picture].Row(y);
        for (int x = std::max(fTile.fLeft, fRegion.fLeft); x < std::min(fTile.fRight, fRegion.fRight); ++x)
            pixels[x - fRegion.fLeft] = colorAt(static_cast<size_t>(x - fTile.fLeft));
    }
};

bool Baker::ShadeTile(const Tile& tile)
{
    TilePixels pixels(tile, fRegion, fContents, fJob.samples, fPixels);
    const std::unique_ptr<TexelTile> texels = fSurface.Open(tile);
    if (!texels) {
        pixels.FillTransparent();
        return true;
    }
    std::vector<OwnGraph> graphs;
    for (const DocumentReading& reading : fReadings)
        graphs.push_back(fSurface.MakeGraphFor(fLibrary, *reading.fDocument));
    TexelRow row;
    for (const PixelPlace& place : fPattern.Places()) {
        texels->MoveTo(place);
        for (size_t i = 0; i < graphs.size(); ++i) {
            const BakeReading& reading = fReadings[i].fReading;
            texels->Use(*graphs[i]);
            const ShaderWrapper::Turn turn(graphs[i]->OutputWrapper());
            for (int y = tile.fTop; y < tile.fBottom; ++y) {
                if (IsCancelled(fJob.cancel))
                    return false;
                pixels.MoveTo(y, row);
                reading.Shade(*graphs[i], *texels, fJob.green, row);
                pixels.Take(row, reading.Channels());
            }
        }
    }
    pixels.Finish();
    return true;
}

} // namespace

PictureRegion RegionOf(const BakeJob& job)
{
    return job.region.value_or(PictureRegion{0, 0, job.width, job.height});
}

void LayOverGrounds(const BakeBand& band)
{
    for (size_t i = 0; i < band.fPictures.size(); ++i)
        if (!band.fGrounds[i].empty())
            LayOver(band.fPictures[i], band.fGrounds[i]);
}

bool Bake(const Library& library, const GraphDocument& document, const BakeJob& job, const BakeSink& sink)
{
    return Baker(library, document, job).Run(sink);
}

bool BakeInto(const Library& library, const GraphDocument& document, const BakeJob& job,
    std::span<TMCColorRGBA* const> pictures)
{
    return Baker(library, document, job).Run(LayOverGrounds, pictures);
}

std::optional<Picture> Bake(const Library& library, const GraphDocument& document, const BakeJob& job)
{
    BakeJob one = job;
    one.channels.resize(1);
    const PictureRegion region = RegionOf(job);
    Picture picture(region.Width(), region.Height(), ContentOf(one.channels[0]));
    TMCColorRGBA* const pixels[] = {&picture.At(0, 0)};
    if (!BakeInto(library, document, one, pixels))
        return std::nullopt;
    return picture;
}

void RequireChannels(
    const Library& library, const GraphDocument& document, std::span<const BakeChannel> channels)
{
    std::vector<ReadChannel> reads;
    for (const BakeChannel channel : channels)
        reads.push_back({channel, 0});
    BakeReading::Part(reads, MakeGraph(library, document)->OutputKinds());
}

} // namespace fernwick
