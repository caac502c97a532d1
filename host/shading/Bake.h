#pragma once
#include "host/pictures/Picture.h"
#include "host/shading/BakeReading.h"
#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace fernwick {

class GraphDocument;
class Library;

struct BakeJob {
    int width = 512; ///< in pixels, above 0
    int height = 512;
    std::vector<BakeChannel> channels = {BakeChannel::kColor}; ///< a picture for each, at least one
    GreenDirection green = GreenDirection::kUp;                ///< of `BakeChannel::kNormal`
    int samples = 1;                                           ///< a pixel, above 0, see `PixelPattern`
    std::optional<PictureRegion> region
        = {}; ///< the only part that is wanted, at least a pixel; empty for all
    /// A graph that lies under channels that `HasGround`, in a scene of its own; null for none.
    const GraphDocument* ground = nullptr;
    int threads = 0; ///< 0 for one a processor
    /// Gets the share that is done, 0 to 1; from any thread, one at a time.
    std::function<void(double)> onProgress = {};
    const std::atomic<bool>* cancel = nullptr; ///< looked at between rows of tiles
    const TexelSurface* surface = nullptr;     ///< what is shaded; null for the UV square
};

/// The part of the picture that a job bakes.
PictureRegion RegionOf(const BakeJob& job);

/// Whole rows of all pictures of a bake; of a region what lies in it. They are the receiver's to change.
struct BakeBand {
    int fTop;   ///< in pixels, of the whole picture
    int fRows;  ///< at most 128
    int fWidth; ///< of the region
    /// By channel of the job the rows of its picture, one behind the other. Colours have a straight alpha.
    std::vector<std::span<TMCColorRGBA>> fPictures;
    /// By channel what lies under it, see `LayOverGrounds`; empty where nothing does.
    std::vector<std::span<TMCColorRGBA>> fGrounds;
};

/// Puts the pictures of a band together with what lies under them.
void LayOverGrounds(const BakeBand& band);

/// Receives the bands of a bake: from the top to the bottom, one at a time, from any thread, while further ones are
/// shaded. A class that turns bands into others, such as one that needs those above and below, stands between the bake
/// and whoever writes them.
using BakeSink = std::function<void(const BakeBand&)>;

/// Shades the UV square into pictures with the graph that `document` describes. U runs to the right, V up, and a
/// pixel is shaded at its centre. On the shaded object the square lies from (0, 0, 0) to (1, 1, 0): the sample at
/// U and V is the point (U, V, 0), with the normal (0, 0, 1) and the X and Y axes as derivatives. The object's
/// place in the scene of the document makes world coordinates of that; without a scene they are the same.
///
/// The picture is cut into tiles of 128 by 128 pixels, each shaded row by row from the top by graphs of its own.
/// So an object serves one thread, and what shaders carry from sample to sample begins anew with each tile: the
/// picture is the same to the bit for any number of threads, and a region is what the whole picture has there. Channels
/// that are read from the same operation share a graph and its calls; each further operation has a graph of its own,
/// so that a picture is also the same for any channels beside it: a mixer that keeps its last control value for colours
/// would else go on with one that a surface has left.
///
/// Of several samples a pixel a tile is shaded with the first of all its pixels, then with the second, and so on.
/// Colours are averaged with their alphas as weights, which makes them transparent where the alpha is 0 or NaN, numbers
/// plainly, and a normal has unit length again. Pixels of which a part has no surface get the mean of what has one, and
/// its share as alpha.
///
/// A normal map holds unit vectors of tangent space: red along U, green along V, blue away from the surface. The
/// frame is made of the sample's normal and two derivatives, so that turning the object doesn't show. A vector
/// that is zero or NaN becomes the flat normal. A shader's vector is taken to be in world coordinates: the gaps of
/// a Weave, which answer with the local normal, are flat on an object that isn't turned. Lit pictures take the same
/// normals; see `LampLight`.
///
/// A sample for which a surface shader produces nothing is transparent black with coverage 0.
///
/// The pictures are never there as a whole: two or three bands at a time are, so that memory grows with the width
/// alone.
///
/// @return false when cancelled. Throws `BakeError`, the `GraphError` of a document that makes no graph, and what the
/// sink throws.
bool Bake(const Library& library, const GraphDocument& document, const BakeJob& job, const BakeSink& sink);

/// The same, laid over the ground, into memory.
/// @param pictures  by channel the room for the region, row by row from the top; nothing is to be expected of them when
///                  the bake is cancelled or throws
bool BakeInto(const Library& library, const GraphDocument& document, const BakeJob& job,
    std::span<TMCColorRGBA* const> pictures);

/// The same, into a picture of the region of the first channel, the only one that is baked; nothing when cancelled.
std::optional<Picture> Bake(const Library& library, const GraphDocument& document, const BakeJob& job);

/// Throws, as a bake would, when a document makes no graph or its output doesn't offer the channels.
void RequireChannels(
    const Library& library, const GraphDocument& document, std::span<const BakeChannel> channels);

} // namespace fernwick
