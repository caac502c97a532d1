#include "host/shading/MarginStage.h"
#include "host/pictures/Margin.h"
#include <algorithm>

namespace fernwick {

namespace {

constexpr int kPartWidth = 128; // pixels

PictureRegion Grown(const PictureRegion& region, int margin, const BakeJob& job)
{
    return {std::max(region.left - margin, 0), std::max(region.top - margin, 0),
        std::min(region.right + margin, job.width), std::min(region.bottom + margin, job.height)};
}

} // namespace

MarginStage::MarginStage(const ModelTexels& model, const BakeJob& job, int margin, const BakeSink& sink)
    : fModel(model), fJob(job), fMargin(margin), fSink(sink), fPattern(job.samples), fWanted(RegionOf(job)),
      fShaded(Grown(fWanted, margin, job))
{ }

BakeJob MarginStage::Job() const
{
    BakeJob job = fJob;
    if (job.region)
        job.region = fShaded;
    return job;
}

void MarginStage::Take(const BakeBand& band)
{
    Held& held = fHeld.emplace_back(Held{band.fTop, band.fRows, {}, {}});
    for (const auto& pictures : {band.fPictures, band.fGrounds})
        for (const std::span<TMCColorRGBA>& picture : pictures)
            held.pictures.emplace_back(picture.begin(), picture.end());
    Cover(held);
    while (fNext < fHeld.size()
        && fHeld.back().Bottom() >= std::min(fHeld[fNext].Bottom() + fMargin, fShaded.bottom))
        HandOnFirst();
}

void MarginStage::Cover(Held& band)
{
    band.isCovered.resize(static_cast<size_t>(band.rows) * static_cast<size_t>(Width()));
    for (int left = fShaded.left; left < fShaded.right; left += kPartWidth)
        CountCovered(band, {left, band.top, std::min(left + kPartWidth, fShaded.right), band.Bottom()});
}

void MarginStage::CountCovered(Held& band, const PictureRegion& part)
{
    const TexelArea area = {part.left, part.top, part.right, part.bottom};
    std::vector<Texel> texels;
    std::vector<int> covered;
    std::vector<uint8_t> isOverlapped;
    for (const PixelPlace& place : fPattern.Places()) {
        fModel.Texels().Find(area, place.fRight, place.fDown, texels);
        covered.resize(texels.size());
        isOverlapped.resize(texels.size());
        for (size_t i = 0; i < texels.size(); ++i) {
            covered[i] += texels[i].IsCovered() ? 1 : 0;
            isOverlapped[i] |= texels[i].fIsOverlapped ? 1 : 0;
        }
    }
    size_t i = 0;
    for (int y = part.top; y < part.bottom; ++y)
        for (int x = part.left; x < part.right; ++x, ++i) {
            const size_t place = static_cast<size_t>(y - band.top) * static_cast<size_t>(Width())
                + static_cast<size_t>(x - fShaded.left);
            band.isCovered[place] = covered[i] > 0 ? 1 : 0;
            if (covered[i] > 0 && covered[i] < fJob.samples)
                for (std::vector<TMCColorRGBA>& picture : band.pictures)
                    if (!picture.empty())
                        picture[place].fAlpha = static_cast<float>(
                            static_cast<double>(picture[place].fAlpha) * fJob.samples / covered[i]);
            if (x < fWanted.left || x >= fWanted.right || y < fWanted.top || y >= fWanted.bottom)
                continue;
            ++fCoverage.fTexels;
            fCoverage.fCovered += covered[i] > 0 ? 1 : 0;
            fCoverage.fOverlapped += isOverlapped[i];
        }
}

void MarginStage::HandOnFirst()
{
    Fill(fHeld[fNext]);
    Send(fHeld[fNext]);
    ++fNext;
    // Further ones are filled from what is covered here, up to the margin.
    const int needed = fNext < fHeld.size() ? fHeld[fNext].top : fHeld.back().Bottom();
    while (fNext > 0 && fHeld.front().Bottom() <= needed - fMargin) {
        fHeld.pop_front();
        --fNext;
    }
}

void MarginStage::Fill(Held& band) const
{
    CoveredRows rows{Width(), fHeld.front().top, {}};
    for (const Held& held : fHeld)
        rows.fIsCovered.insert(rows.fIsCovered.end(), held.isCovered.begin(), held.isCovered.end());
    const auto width = static_cast<size_t>(Width());
    for (const MarginPixel& pixel : FindMargin(rows, band.top, band.Bottom(), fMargin)) {
        const Held& from = *std::find_if(
            fHeld.begin(), fHeld.end(), [&pixel](const Held& held) { return pixel.fFromY < held.Bottom(); });
        const size_t to = static_cast<size_t>(pixel.fY - band.top) * width + static_cast<size_t>(pixel.fX);
        const size_t source
            = static_cast<size_t>(pixel.fFromY - from.top) * width + static_cast<size_t>(pixel.fFromX);
        for (size_t i = 0; i < band.pictures.size(); ++i)
            if (!band.pictures[i].empty())
                band.pictures[i][to] = from.pictures[i][source];
    }
}

void MarginStage::Send(Held& band) const
{
    const int top = std::max(band.top, fWanted.top);
    const int bottom = std::min(band.Bottom(), fWanted.bottom);
    if (top >= bottom)
        return;
    const auto width = static_cast<size_t>(fWanted.Width());
    std::vector<std::vector<TMCColorRGBA>> wanted(band.pictures.size());
    for (size_t i = 0; i < wanted.size(); ++i)
        for (int y = top; y < bottom && !band.pictures[i].empty(); ++y) {
            const auto row = band.pictures[i].begin() + static_cast<ptrdiff_t>(y - band.top) * Width()
                + (fWanted.left - fShaded.left);
            wanted[i].insert(wanted[i].end(), row, row + static_cast<ptrdiff_t>(width));
        }
    BakeBand sent{top, bottom - top, static_cast<int>(width), {}, {}};
    const size_t channels = fJob.channels.size();
    for (size_t i = 0; i < wanted.size(); ++i)
        (i < channels ? sent.fPictures : sent.fGrounds).emplace_back(wanted[i]);
    fSink(sent);
}

} // namespace fernwick
