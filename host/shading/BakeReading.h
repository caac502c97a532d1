#pragma once
#include "host/shading/BakeChannels.h"
#include "host/shading/TexelSurface.h"
#include <stdexcept>
#include <vector>

namespace fernwick {

/// A bake that can't be done. The text tells what the output shader offers instead.
class BakeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The channels that an output of these kinds offers, in order.
std::vector<BakeChannel> ChannelsOf(uint32_t kinds);

/// The side that a positive green of a normal map points to.
enum class GreenDirection {
    kUp,   ///< along V, as OpenGL has it
    kDown, ///< against V, as DirectX has it
};

/// A part of a row of a picture.
struct TexelRow {
    int fY = 0;
    int fLeft = 0;
    int fRight = 0;                       ///< isn't in it
    std::vector<TMCColorRGBA*> fPixels{}; ///< of each picture that is baked, from `fLeft` on
};

/// A channel and the picture that it goes into, of those that are baked at a time.
struct ReadChannel {
    BakeChannel fChannel;
    size_t fPicture;
};

/// The channels that are read from one operation of a graph's output, which is called once a sample for all of them.
class BakeReading {
public:
    enum class Operation { kNone, kValue, kColor, kVector, kSurface, kLit };

    /// The readings that channels need, in the order in which they first do. Throws `BakeError` when an output of
    /// these kinds doesn't offer what a channel is read from.
    static std::vector<BakeReading> Part(std::span<const ReadChannel> channels, uint32_t kinds);

    const std::vector<ReadChannel>& Channels() const { return fChannels; }

    /// Shades texels into the pictures of the channels; those without a surface become transparent black.
    /// @param texels  use `graph`
    void Shade(const Graph& graph, TexelTile& texels, GreenDirection green, const TexelRow& row) const;

private:
    Operation fOperation;
    std::vector<ReadChannel> fChannels;

    explicit BakeReading(Operation operation) : fOperation(operation) { }
};

} // namespace fernwick
