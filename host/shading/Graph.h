#pragma once
#include "host/documents/GraphDocument.h"
#include "host/library/ShaderWrapper.h"
#include <span>

namespace fernwick {

class Library;

/// Which shaders of a document are needed for those at the given places: these and everything below them.
std::vector<bool> NeededFor(const GraphDocument& document, std::span<const size_t> shaders);

/// The live objects of a document's output and of everything below it, or of those that are needed. A shader serves one
/// thread at a time, so every thread makes its own graph; making and releasing is for one thread at a time.
class Graph {
public:
    /// Makes the objects by the change protocol, children before parents. Throws `GraphError`, and then leaves
    /// nothing behind.
    Graph(const Library& library, const GraphDocument& document);
    /// Makes the objects of all shaders of the document, over a scene that graphs share. Throws `GraphError`.
    /// @param needed  those that are made, see `NeededFor`; the others mustn't be asked for but by `Extension`. Empty
    ///                for all
    Graph(const Library& library, const GraphDocument& document, const MCCountedPtr<Scene>& scene,
        const std::vector<bool>& needed = {});
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;

    IShellShader& Output() const { return *fShaders[fOutputIndex].fFace; }
    uint32_t OutputKinds() const { return Output().GetOutputKinds(); }
    /// The output as the library made it; null when it is one of the host's sources.
    I3DExShader* OutputExtension() const { return Extension(fOutputIndex); }

    /// Calls `shade` with the output: with the shader of the library itself, where it is one, which saves a call. Then the
    /// caller holds its `ShaderWrapper::Turn`.
    template <class Shade> void ForOutput(const Shade& shade) const
    {
        if (I3DExShader* const extension = OutputExtension())
            shade(*extension);
        else
            shade(Output());
    }

    /// Its wrapper; null when it is one of the host's sources.
    const ShaderWrapper* OutputWrapper() const { return fShaders[fOutputIndex].fWrapper.Get(); }

    /// A shader by its place in the document.
    IShellShader& Shader(size_t index) const { return *fShaders[index].fFace; }
    /// The same as the library made it; null when it is one of the host's sources, or isn't needed.
    I3DExShader* Extension(size_t index) const;

    /// The shaded object, for `ShadingIn::fInstance`; null when the document has no scene.
    IMCUnknown* Instance() const;
    Scene* SceneOrNull() const { return fScene ? &*fScene : nullptr; }

private:
    struct LiveShader {
        MCCountedPtr<IShellShader> fFace;
        MCCountedPtr<ShaderWrapper> fWrapper; // null for a source; both are for one that isn't needed
    };

    MCCountedPtr<Scene> fScene;
    size_t fOutputIndex;
    std::vector<LiveShader> fShaders; // in the document's order

    LiveShader Make(const Library& library, const DocumentShader& shader) const;
};

} // namespace fernwick
