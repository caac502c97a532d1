#pragma once
#include <assimp/DefaultIOSystem.h>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace fernwick {

/// The files of the system for Assimp, but for pipes and devices, which a scene may name for its parts.
class RegularFiles final : public Assimp::DefaultIOSystem {
public:
    /// @param scene  a file; as it is read, `show` is told the share, 0 to 1
    RegularFiles(std::string scene, std::function<void(double share)> show);

    bool Exists(const char* file) const override;
    Assimp::IOStream* Open(const char* file, const char* mode) override;

    /// The files that were opened, each once, in order.
    const std::vector<std::filesystem::path>& Opened() const { return fOpened; }

private:
    std::string fScene;
    std::function<void(double)> fShow;
    std::vector<std::filesystem::path> fOpened;
};

} // namespace fernwick
