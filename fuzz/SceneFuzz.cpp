// Bytes are a scene file, glTF when they start with a brace, else OBJ. It is refused with a SceneFileError, or it makes
// a scene that rays can be cast into.
#include "host/documents/GltfText.h"
#include "host/documents/SceneFile.h"
#include "host/scene/Instance.h"
#include "host/scene/Scene.h"
#include "host/scene/World.h"
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/MemoryIOWrapper.h>

using namespace fernwick;

namespace {

/// There is one file, whatever others it refers to.
class OneFile final : public Assimp::IOSystem {
public:
    OneFile(std::string name, std::span<const uint8_t> bytes)
        : fName(std::move(name)), fBytes(bytes.begin(), bytes.end())
    {
        if (IsGltf(fName))
            OpenLineLoops(fBytes);
    }

    bool Exists(const char* file) const override { return file == fName; }
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* file, const char*) override
    {
        return Exists(file)
            ? new Assimp::MemoryIOStream(reinterpret_cast<uint8_t*>(fBytes.data()), fBytes.size())
            : nullptr;
    }
    void Close(Assimp::IOStream* stream) override { delete stream; }

private:
    std::string fName;
    std::vector<char> fBytes;
};

void CastRays(const SceneDescription& description)
{
    const auto scene = MakeCounted<Scene>(description);
    const World world(*scene);
    for (const SceneElement* const element : scene->Shapes()) {
        element->Shape()->Shape().Bounds();
        element->Shape()->Shape().LayOutNormals(8, [](int, int, const TVector3&) {});
    }
    for (const TVector3 target :
        {TVector3(0, 0, 0), TVector3(0.25f, 0.5f, -0.125f), TVector3(-0.5f, 0.25f, 0.5f)}) {
        const TVector3 origin(1, 2, 3);
        if (const auto hit = world.Cast(origin, target - origin, 0)) {
            const Geometry& shape = scene->Shapes()[hit->fIndex]->Shape()->Shape();
            shape.PointAt(hit->fSurface);
            shape.ShapeAt(hit->fSurface);
        }
    }
}

} // namespace

/// Assimp loses what it had made of a file that it refuses.
extern "C" const char* __lsan_default_suppressions() { return "leak:libassimp.so"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::string name = data[0] == '{' ? "scene.gltf" : "scene.obj";
    static Assimp::Importer importer; // a new one costs more than reading
    importer.SetIOHandler(new OneFile(name, {data, size}));
    try {
        SceneFile file = ReadSceneFile(name, importer);
        CastRays({.fElements = std::move(file.fElements)});
    } catch (const SceneFileError&) {
        return 0;
    }
    return 0;
}
