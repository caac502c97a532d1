#pragma once
#include "host/shading/Graph.h"
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace fernwick {

// Pictures are cut into square tiles, each shaded row by row from the top by a graph of its own. So an object
// serves one thread, and what shaders carry from sample to sample begins anew with each tile: a picture is the
// same to the bit for any number of threads.

struct GraphRelease {
    void operator()(Graph* graph) const;
};
using OwnGraph = std::unique_ptr<Graph, GraphRelease>;

/// Makes a graph, from any thread: graphs are made and released one at a time, since the library's counts are
/// plain numbers. The arguments are those of `Graph`. Throws `GraphError`.
OwnGraph MakeGraph(const Library& library, const GraphDocument& document);
OwnGraph MakeGraph(const Library& library, const GraphDocument& document, const MCCountedPtr<Scene>& scene,
    const std::vector<bool>& needed = {});

/// Held while objects of the library are made or released by other means than `MakeGraph`.
std::unique_lock<std::mutex> LockGraphs();

/// A part of a picture in pixels, such as a tile; the ends aren't in it.
struct Tile {
    int fLeft;
    int fTop;
    int fRight;
    int fBottom;
};

struct TileJob {
    int width;
    int height;
    int side;                                      ///< of a tile
    int threads;                                   ///< 0 for one a processor
    const std::function<void(double)>& onProgress; ///< gets the done share; from any thread, one at a time
    const std::atomic<bool>* cancel;               ///< ends the job when it turns true; may be null
    std::optional<Tile> region = {}; ///< the only tiles are those that meet it, whole; empty for all
};

inline bool IsCancelled(const std::atomic<bool>* cancel) { return cancel != nullptr && *cancel; }

/// Shades a tile. Returns false when it was cancelled before the end: a shader may take a second for a tile, so each
/// row asks.
using ShadeTileFunction = std::function<bool(const Tile&)>;

/// Shades all tiles, several at a time, in rows of tiles from the top.
/// @return false when cancelled before the end
bool ForEachTile(const TileJob& job, const ShadeTileFunction& shade);

/// Also hands each tile that was shaded to `finish`: in order, one at a time, from any thread, while further tiles are
/// shaded.
/// @param most  tiles between the begin of their shading and the end of their finish
bool ForEachTileInOrder(const TileJob& job, int most, const ShadeTileFunction& shade,
    const std::function<void(const Tile&)>& finish);

} // namespace fernwick
