#include "host/documents/ModelFile.h"
#include "host/files/OutputFile.h"
#include <fstream>
#include <iterator>

namespace fernwick {

namespace {

struct Map {
    std::string_view output;
    std::string GltfMaps::*bytes;
};

constexpr Map kMaps[] = {
    {"color", &GltfMaps::fColor},
    {"main", &GltfMaps::fColor},
    {"normal", &GltfMaps::fNormal},
    {"roughness", &GltfMaps::fRoughness},
    {"occlusion", &GltfMaps::fOcclusion},
};

std::string BytesOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream || bytes.empty())
        throw FileError(file + ": can't be read back");
    return bytes;
}

} // namespace

void WriteModel(const std::filesystem::path& file, const OntoModel& onto, size_t set,
    const std::vector<MaterialPicture>& pictures)
{
    GltfMaps maps;
    for (const MaterialPicture& picture : pictures)
        for (const Map& map : kMaps)
            if (map.output == picture.fOutput)
                maps.*map.bytes = BytesOf(picture.fFile);
    const std::string bytes = GltfFile(GltfMeshesOf(onto, set), maps);
    MakeFolderOf(file);
    WriteFile(file, bytes);
}

} // namespace fernwick
