#include "host/shading/SurfaceLayers.h"
#include <algorithm>
#include <cstring>

namespace fernwick {

namespace {

class Collector {
public:
    void Numbers(const std::string& layer, std::initializer_list<const char*> names, size_t offset)
    {
        for (const char* const name : names) {
            fLayers.push_back({layer + '.' + name, offset, SurfaceLayer::Type::kFloat});
            offset += sizeof(float);
        }
    }
    void Color(const std::string& layer, size_t offset) { Numbers(layer, {"R", "G", "B"}, offset); }
    void Vector(const std::string& layer, size_t offset) { Numbers(layer, {"X", "Y", "Z"}, offset); }
    void One(const std::string& name, size_t offset, SurfaceLayer::Type type = SurfaceLayer::Type::kFloat)
    {
        fLayers.push_back({name, offset, type});
    }

    std::vector<SurfaceLayer> fLayers;
};

std::vector<SurfaceLayer> Collect()
{
    using enum SurfaceLayer::Type;
    Collector all;
    all.Color("second", offsetof(ShadingOut, fSecondColor));
    all.Numbers("scalar", {"A", "B", "C", "D"}, offsetof(ShadingOut, fScalarA));
    all.Color("third", offsetof(ShadingOut, fThirdColor));
    all.Vector("vector", offsetof(ShadingOut, fVectorChannel));
    all.One("coverage", offsetof(ShadingOut, fCoverage));
    constexpr size_t sampled = offsetof(ShadingOut, fSampledBlock);
    all.Color("sampled.first", sampled + offsetof(ShadingTripleBlock, fColors[0]));
    all.Color("sampled.second", sampled + offsetof(ShadingTripleBlock, fColors[1]));
    all.Color("sampled.third", sampled + offsetof(ShadingTripleBlock, fColors[2]));
    all.One("sampled.count", sampled + offsetof(ShadingTripleBlock, fSampleCount), kInt32);
    all.Numbers("sampled", {"levelA", "levelB"}, sampled + offsetof(ShadingTripleBlock, fFirstLevel));
    all.One("sampled.switch", sampled + offsetof(ShadingTripleBlock, fSwitch), kByte);
    all.Numbers("sampled", {"levelC", "levelD"}, sampled + offsetof(ShadingTripleBlock, fThirdLevel));
    constexpr size_t single = offsetof(ShadingOut, fSingleBlock);
    all.Color("single", single + offsetof(ShadingSingleBlock, fColor));
    all.One("single.samples", single + offsetof(ShadingSingleBlock, fSampleCount), kInt32);
    all.One("single.levelA", single + offsetof(ShadingSingleBlock, fLevel));
    all.One("single.switch", single + offsetof(ShadingSingleBlock, fSwitch), kByte);
    all.One("single.count", single + offsetof(ShadingSingleBlock, fCount), kInt32);
    all.Numbers("single", {"levelB", "levelC"}, single + offsetof(ShadingSingleBlock, fSecondLevel));
    constexpr size_t vectors = offsetof(ShadingOut, fVectorBlock);
    all.Vector("vectors.first", vectors + offsetof(ShadingVectorBlock, fFirst));
    all.Vector("vectors.second", vectors + offsetof(ShadingVectorBlock, fSecond));
    all.Numbers("vectors", {"levelA", "levelB"}, vectors + offsetof(ShadingVectorBlock, fLevels));
    all.One("vectors.levelC", vectors + offsetof(ShadingVectorBlock, fThirdLevel));
    all.One("vectors.local", vectors + offsetof(ShadingVectorBlock, fLocal), kByte);
    all.Color("fourth", offsetof(ShadingOut, fFourthColor));
    all.One("fullArea", offsetof(ShadingOut, fFullArea), kByte);
    all.Vector("normal", offsetof(ShadingOut, fShadingNormal));
    return std::move(all.fLayers);
}

std::string GroupOf(const SurfaceLayer& layer) { return layer.fName.substr(0, layer.fName.find('.')); }

template <class Number> float NumberAt(const ShadingOut& result, size_t offset)
{
    Number number;
    std::memcpy(&number, reinterpret_cast<const char*>(&result) + offset, sizeof number);
    return static_cast<float>(number);
}

} // namespace

float SurfaceLayer::Read(const ShadingOut& result) const
{
    switch (fType) {
    case Type::kInt32:
        return NumberAt<int32_t>(result, fOffset);
    case Type::kByte:
        return NumberAt<uint8_t>(result, fOffset);
    case Type::kFloat:
        break;
    }
    return NumberAt<float>(result, fOffset);
}

std::span<const SurfaceLayer> SurfaceLayers()
{
    static const std::vector<SurfaceLayer> layers = Collect();
    return layers;
}

std::vector<std::string> SurfaceLayerGroups()
{
    std::vector<std::string> groups;
    for (const SurfaceLayer& layer : SurfaceLayers())
        if (const std::string group = GroupOf(layer);
            std::find(groups.begin(), groups.end(), group) == groups.end())
            groups.push_back(group);
    return groups;
}

std::vector<SurfaceLayer> SurfaceLayersOf(std::span<const std::string> groups)
{
    std::vector<SurfaceLayer> layers;
    for (const SurfaceLayer& layer : SurfaceLayers())
        if (std::find(groups.begin(), groups.end(), GroupOf(layer)) != groups.end())
            layers.push_back(layer);
    return layers;
}

} // namespace fernwick
