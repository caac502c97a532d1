#include "host/pictures/Strip.h"

namespace fernwick {

Picture SideBySide(std::span<const Picture> pictures)
{
    int width = 0;
    for (const Picture& picture : pictures)
        width += picture.Width();
    Picture strip(width, pictures.front().Height(), pictures.front().Content());
    int left = 0;
    for (const Picture& picture : pictures) {
        for (int y = 0; y < picture.Height(); ++y)
            for (int x = 0; x < picture.Width(); ++x)
                strip.At(left + x, y) = picture.At(x, y);
        left += picture.Width();
    }
    return strip;
}

} // namespace fernwick
