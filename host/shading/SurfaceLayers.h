#pragma once
#include "frame/ShadingOut.h"
#include <span>
#include <string>
#include <vector>

namespace fernwick {

/// One number of a surface result under the name that it has in a picture, such as "second.R".
struct SurfaceLayer {
    enum class Type { kFloat, kInt32, kByte };

    std::string fName;
    size_t fOffset;
    Type fType;

    float Read(const ShadingOut& result) const;
};

/// All numbers of `ShadingOut` but the main colour, which a picture has by itself, and the codes, which can't be
/// averaged.
std::span<const SurfaceLayer> SurfaceLayers();

/// The groups of the layers, which are the parts of their names before the first dot, in order.
std::vector<std::string> SurfaceLayerGroups();

/// The layers of some groups, in the order of `SurfaceLayers`.
std::vector<SurfaceLayer> SurfaceLayersOf(std::span<const std::string> groups);

} // namespace fernwick
