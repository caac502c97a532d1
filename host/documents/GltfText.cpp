#include "host/documents/GltfText.h"
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace fernwick {

bool IsGltf(const std::filesystem::path& file)
{
    std::string ending = file.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
        [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return ending == ".gltf" || ending == ".glb";
}

void OpenLineLoops(std::span<char> text)
{
    constexpr std::string_view kMode = "\"mode\"";
    constexpr std::string_view kBlanks = " \t\r\n";
    constexpr std::string_view kMoreOfANumber = "0123456789.eE";
    constexpr char kLoop = '2';
    constexpr char kStrip = '3';
    const std::string_view all(text.data(), text.size());
    for (size_t at = all.find(kMode); at != all.npos; at = all.find(kMode, at + 1)) {
        const size_t colon = all.find_first_not_of(kBlanks, at + kMode.size());
        if (colon == all.npos || all[colon] != ':')
            continue;
        const size_t value = all.find_first_not_of(kBlanks, colon + 1);
        if (value == all.npos || all[value] != kLoop)
            continue;
        if (value + 1 == all.size() || kMoreOfANumber.find(all[value + 1]) == kMoreOfANumber.npos)
            text[value] = kStrip;
    }
}

} // namespace fernwick
