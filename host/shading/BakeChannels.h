#pragma once
#include "host/pictures/PictureFormat.h"
#include <optional>
#include <span>
#include <string_view>

namespace fernwick {

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

/// A channel with the name that users give it.
struct NamedBakeChannel {
    std::string_view name;
    BakeChannel channel;
};

/// All channels, in order.
std::span<const NamedBakeChannel> BakeChannels();

/// The channel of exactly this name; none when there is no such one.
std::optional<BakeChannel> FindBakeChannel(std::string_view name);

std::string_view NameOf(BakeChannel channel);
PictureContent ContentOf(BakeChannel channel);

/// Whether the channel is a colour that has an alpha, so that a ground shows beneath it.
bool HasGround(BakeChannel channel);

/// What of the ground lies under a channel that `HasGround`: a lamp is for what lies over it.
BakeChannel GroundOf(BakeChannel channel);

} // namespace fernwick
