#pragma once
#include <assimp/DefaultIOSystem.h>
#include <functional>
#include <string>

namespace fernwick {

/// The files of the system for Assimp, but for pipes and devices, which a scene may name for its parts.
class RegularFiles final : public Assimp::DefaultIOSystem {
public:
    /// @param scene  a file; as it is read, `show` is told the share, 0 to 1
    RegularFiles(std::string scene, std::function<void(double share)> show);

    bool Exists(const char* file) const override;
    Assimp::IOStream* Open(const char* file, const char* mode) override;

private:
    std::string fScene;
    std::function<void(double)> fShow;
};

} // namespace fernwick
