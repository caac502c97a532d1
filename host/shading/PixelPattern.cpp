#include "host/shading/PixelPattern.h"
#include <bit>

namespace fernwick {

PixelPattern::PixelPattern(int count)
{
    const auto number = static_cast<unsigned>(count);
    const double finest = static_cast<double>(std::bit_ceil(number));
    for (unsigned i = 0; i < number; ++i) {
        double reversed = 0;
        double weight = 0.5;
        for (unsigned bits = i; bits != 0; bits >>= 1, weight /= 2)
            reversed += (bits & 1) * weight;
        fPlaces.push_back({(i + 0.5) / count, reversed + 0.5 / finest});
    }
}

} // namespace fernwick
