#include "host/shading/BakeChannels.h"
#include <algorithm>

namespace fernwick {

namespace {

constexpr NamedBakeChannel kChannels[] = {
    {"color", BakeChannel::kColor},
    {"main", BakeChannel::kMain},
    {"alpha", BakeChannel::kAlpha},
    {"second", BakeChannel::kSecond},
    {"third", BakeChannel::kThird},
    {"fourth", BakeChannel::kFourth},
    {"normal", BakeChannel::kNormal},
    {"coverage", BakeChannel::kCoverage},
    {"value", BakeChannel::kValue},
    {"lit", BakeChannel::kLit},
};

} // namespace

std::span<const NamedBakeChannel> BakeChannels() { return kChannels; }

std::optional<BakeChannel> FindBakeChannel(std::string_view name)
{
    for (const NamedBakeChannel& named : kChannels)
        if (named.name == name)
            return named.channel;
    return std::nullopt;
}

std::string_view NameOf(BakeChannel channel)
{
    return std::find_if(std::begin(kChannels), std::end(kChannels), [channel](const NamedBakeChannel& named) {
        return named.channel == channel;
    })->name;
}

PictureContent ContentOf(BakeChannel channel)
{
    switch (channel) {
    case BakeChannel::kColor:
    case BakeChannel::kMain:
    case BakeChannel::kSecond:
    case BakeChannel::kThird:
    case BakeChannel::kFourth:
    case BakeChannel::kLit:
        return PictureContent::kColor;
    case BakeChannel::kNormal:
        return PictureContent::kNormal;
    case BakeChannel::kAlpha:
    case BakeChannel::kCoverage:
    case BakeChannel::kValue:
        break;
    }
    return PictureContent::kValue;
}

bool HasGround(BakeChannel channel)
{
    return channel == BakeChannel::kColor || channel == BakeChannel::kMain || channel == BakeChannel::kLit;
}

BakeChannel GroundOf(BakeChannel channel)
{
    return channel == BakeChannel::kLit ? BakeChannel::kColor : channel;
}

} // namespace fernwick
