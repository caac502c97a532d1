#pragma once
#include "host/pictures/Picture.h"
#include "host/shading/SurfaceLayers.h"
#include <atomic>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace fernwick {

class GraphDocument;
class Library;

/// A scene that can't be rendered. The text tells what is missing.
class RenderError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct RenderJob {
    int width = 512; ///< in pixels, above 0
    int height = 512;
    std::optional<PictureRegion> region = {}; ///< that is rendered; empty for all of it
    std::string camera = {};                  ///< empty for the document's, or else the first of the scene
    int samples = 4;                          ///< a pixel, above 0, at the same places in each
    std::vector<SurfaceLayer> layers = {};    ///< beside the picture
    int threads = 0;                          ///< 0 for one a processor
    std::function<void(double)> onProgress
        = {}; ///< gets the done share, 0 to 1; from any thread, one at a time
    const std::atomic<bool>* cancel = nullptr; ///< looked at between rows of tiles
};

/// Renders the scene of a document: what the camera sees, each element by its shader, or by the output where it has
/// none. A surface shader gives its main colour, another one its colour or its value as grey, and one with neither
/// is white. The colour is shown as it is; on elements that are `lit` it is multiplied by a lamp beside the camera,
/// which lights the normal that a vector shader bends. Where the alpha is below 1 the next surface behind shows, up to
/// sixteen, and then the background. No light of the scene is looked at but by shaders, and there are no shadows.
///
/// The layers, in the order and with the names of the record, are those of the first surface that a sample
/// hits, averaged over all samples of the pixel; a miss counts as 0. Where no surface shader ran only the colour,
/// the coverage, `fullArea` and the normal are set. The two codes of the nested blocks are left out.
///
/// A region is what the whole picture has there, to the bit: the tiles that it meets are shaded from their beginnings.
///
/// The camera's name is what the scene's rendering module tells to shaders. Pictures are the same to the bit for
/// any number of threads.
///
/// @return nothing when cancelled. Throws `RenderError`, or the `GraphError` of a document that makes no graph.
std::optional<Picture> Render(const Library& library, const GraphDocument& document, const RenderJob& job);

/// The bytes of the picture that a job makes, all of which is held in memory.
uint64_t MemoryOf(const RenderJob& job);

} // namespace fernwick
