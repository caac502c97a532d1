#include "host/pictures/LayOver.h"
#include "host/pictures/Clamped.h"

namespace fernwick {

void LayOver(std::span<TMCColorRGBA> pixels, std::span<const TMCColorRGBA> ground)
{
    for (size_t i = 0; i < pixels.size(); ++i) {
        TMCColorRGBA& color = pixels[i];
        const TMCColorRGBA& below = ground[i];
        const float alpha = Clamped(color.fAlpha);
        const float alphaBelow = Clamped(below.fAlpha) * (1 - alpha);
        const float sum = alpha + alphaBelow;
        const float share = sum > 0 ? alpha / sum : 0;
        const auto mixed = [share](float above, float under) {
            if (share <= 0 || share >= 1) // what is hidden may be anything
                return share <= 0 ? under : above;
            return share * above + (1 - share) * under;
        };
        color = {mixed(color.fRed, below.fRed), mixed(color.fGreen, below.fGreen),
            mixed(color.fBlue, below.fBlue), sum};
    }
}

} // namespace fernwick
