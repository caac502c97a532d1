#pragma once
#include "host/shading/Bake.h"
#include "host/shading/ModelTexels.h"
#include <deque>

namespace fernwick {

/// How many texels a bake onto a model had, and how the model lay on them.
struct ModelCoverage {
    size_t fTexels = 0;
    size_t fCovered = 0;    ///< of these, at one sample at least
    size_t fOverlapped = 0; ///< of the covered ones, by several triangles at one sample at least
};

/// Stands between a bake onto a model and what takes its bands: fills the pictures outwards from where they are
/// covered, by the nearest covered texel (see `FindMargin`), so that no filter takes anything else in beside the
/// model's seams. A texel that is covered at some of its samples alone gets the alpha of these; what is filled gets
/// that of the texel it is filled with. Holds three bands at most. What comes out is the same for any bands.
class MarginStage {
public:
    /// @param model   and the other arguments outlive it
    /// @param job     what is wanted; its surface is `model`
    /// @param margin  in texels, 0 to `kWidestMargin`
    MarginStage(const ModelTexels& model, const BakeJob& job, int margin, const BakeSink& sink);

    /// What the bake has to shade for it: of a region, the margin around it too.
    BakeJob Job() const;

    /// Takes a band of that job.
    void Take(const BakeBand& band);

    const ModelCoverage& Coverage() const
    {
        return fCoverage;
    } ///< of the wanted region, once all bands are taken

private:
    /// A band with pixels of its own.
    struct Held {
        int top;
        int rows;
        std::vector<std::vector<TMCColorRGBA>> pictures; // those of the channels, then what lies under them
        std::vector<uint8_t> isCovered;

        int Bottom() const { return top + rows; }
    };

    const ModelTexels& fModel;
    const BakeJob& fJob;
    int fMargin;
    const BakeSink& fSink;
    PixelPattern fPattern;
    PictureRegion fWanted;
    PictureRegion fShaded;
    std::deque<Held> fHeld;
    size_t fNext = 0; // of these, the first that wasn't handed on
    ModelCoverage fCoverage;

    int Width() const { return fShaded.Width(); }
    void Cover(Held& band);
    void CountCovered(Held& band, const PictureRegion& part);
    void HandOnFirst();
    void Fill(Held& band) const;
    void Send(Held& band) const;
};

} // namespace fernwick
