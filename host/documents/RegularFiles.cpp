#include "host/documents/RegularFiles.h"
#include "host/documents/GltfText.h"
#include "host/files/RegularFile.h"
#include <algorithm>
#include <assimp/IOStream.hpp>
#include <memory>

namespace fernwick {

namespace {

/// A scene that tells how much of it is read. Readers of glTF take its text at once.
class CountedFile final : public Assimp::IOStream {
public:
    CountedFile(std::unique_ptr<IOStream> file, bool isGltf, const std::function<void(double)>& show)
        : fFile(std::move(file)), fIsGltf(isGltf), fShow(show)
    { }

    size_t Read(void* buffer, size_t size, size_t count) override
    {
        const size_t read = fFile->Read(buffer, size, count);
        if (fIsGltf)
            OpenLineLoops({static_cast<char*>(buffer), read * size});
        fRead += static_cast<double>(read * size);
        fShow(std::min(fRead / std::max(static_cast<double>(FileSize()), 1.0), 1.0));
        return read;
    }
    size_t Write(const void* buffer, size_t size, size_t count) override
    {
        return fFile->Write(buffer, size, count);
    }
    aiReturn Seek(size_t offset, aiOrigin origin) override { return fFile->Seek(offset, origin); }
    size_t Tell() const override { return fFile->Tell(); }
    size_t FileSize() const override { return fFile->FileSize(); }
    void Flush() override { fFile->Flush(); }

private:
    std::unique_ptr<IOStream> fFile;
    bool fIsGltf;
    const std::function<void(double)>& fShow;
    double fRead = 0; // bytes, some of them more than once
};

} // namespace

RegularFiles::RegularFiles(std::string scene, std::function<void(double share)> show)
    : fScene(std::move(scene)), fShow(std::move(show))
{ }

bool RegularFiles::Exists(const char* file) const { return WhyNoFile(file).empty(); }

Assimp::IOStream* RegularFiles::Open(const char* file, const char* mode)
{
    if (!Exists(file))
        return nullptr;
    std::unique_ptr<Assimp::IOStream> opened(DefaultIOSystem::Open(file, mode));
    if (opened != nullptr && std::find(fOpened.begin(), fOpened.end(), file) == fOpened.end())
        fOpened.emplace_back(file);
    if (opened == nullptr || file != fScene)
        return opened.release();
    return new CountedFile(std::move(opened), IsGltf(file), fShow);
}

} // namespace fernwick
