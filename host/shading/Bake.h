#pragma once
#include "host/pictures/Picture.h"
#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

namespace fernwick {

class GraphDocument;
class Library;
class TexelSurface;

/// A bake that can't be done. The text tells what the output shader offers instead.
class BakeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What of a shader's answer goes into the picture. Numbers become grey.
enum class BakeChannel {
    kColor,    ///< the colour; of a surface shader its main colour, of a value shader its value
    kMain,     ///< the main colour of a surface, also where the shader offers a colour beside it
    kAlpha,    ///< the alpha of `kColor`
    kSecond,   ///< the second colour of a surface
    kThird,    ///< the third colour of a surface
    kFourth,   ///< the fourth colour of a surface
    kNormal,   ///< a normal map of a vector shader, or of a surface's shading normal
    kCoverage, ///< what the colour or value operation returns, or the coverage of a surface
    kValue,    ///< the value
    kLit,      ///< the colour, or a grey where there is none, with the bent normal under a lamp
};

/// The side that a positive green of a normal map points to.
enum class GreenDirection {
    kUp,   ///< along V, as OpenGL has it
    kDown, ///< against V, as DirectX has it
};

/// A channel with the name that users give it.
struct NamedBakeChannel {
    std::string_view name;
    BakeChannel channel;
};

/// All channels, in order.
std::span<const NamedBakeChannel> BakeChannels();

struct BakeJob {
    int width = 512; ///< in pixels, above 0
    int height = 512;
    BakeChannel channel = BakeChannel::kColor;
    GreenDirection green = GreenDirection::kUp; ///< of `BakeChannel::kNormal`
    int threads = 0;                            ///< 0 for one a processor
    /// Gets the share that is done, 0 to 1; from any thread, one at a time.
    std::function<void(double)> onProgress = {};
    const std::atomic<bool>* cancel = nullptr; ///< looked at between tiles
    const TexelSurface* surface = nullptr;     ///< what is shaded; null for the UV square
};

/// Shades the UV square into a picture with the graph that `document` describes. U runs to the right, V up, and a
/// pixel is shaded at its centre. On the shaded object the square lies from (0, 0, 0) to (1, 1, 0): the sample at
/// U and V is the point (U, V, 0), with the normal (0, 0, 1) and the X and Y axes as derivatives. The object's
/// place in the scene of the document makes world coordinates of that; without a scene they are the same.
///
/// The picture is cut into tiles of 128 by 128 pixels, each shaded row by row from the top by a graph of its own.
/// So an object serves one thread, and what shaders carry from sample to sample begins anew with each tile: the
/// picture is the same to the bit for any number of threads.
///
/// A normal map holds unit vectors of tangent space: red along U, green along V, blue away from the surface. The
/// frame is made of the sample's normal and two derivatives, so that turning the object doesn't show. A vector
/// that is zero or NaN becomes the flat normal. A shader's vector is taken to be in world coordinates: the gaps of
/// a Weave, which answer with the local normal, are flat on an object that isn't turned. Lit pictures take the same
/// normals; see `LampLight`.
///
/// A sample for which a surface shader produces nothing is transparent black with coverage 0.
///
/// @return nothing when cancelled. Throws `BakeError`, or the `GraphError` of a document that makes no graph.
std::optional<Picture> Bake(const Library& library, const GraphDocument& document, const BakeJob& job);

} // namespace fernwick
