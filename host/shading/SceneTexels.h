#pragma once
#include "host/shading/NormalGrids.h"
#include "host/shading/TexelSurface.h"

namespace fernwick {

/// Elements of a scene that are baked onto. Samples are those of rays that meet them there: each lies on its element at
/// its place in the scene. So what is baked is what is rendered, of which the scene's camera is part where shaders ask
/// for it: the one that the scene names, or else its first.
class SceneTexels : public TexelSurface {
public:
    /// A graph over the document's scene, of that document or of another one, whose own scene doesn't count.
    OwnGraph MakeGraphFor(const Library& library, const GraphDocument& document) const override;

protected:
    /// @param document  has a scene; outlives it
    /// @param targets   places among the scene's `Shapes`
    /// Throws `GraphError`.
    SceneTexels(const Library& library, const GraphDocument& document, std::vector<size_t> targets);

    /// The targets in the scene of a graph that `MakeGraphFor` made.
    std::vector<SceneElement*> TargetsOf(const Graph& graph) const;

private:
    const GraphDocument& fDocument;
    std::vector<size_t> fTargets;
    SceneDescription fDescription;
    MCCountedPtr<Scene> fScene; // samples lie on those of the graphs
    NormalGrids fGrids;

    NormalGrids MakeGrids(const Library& library) const;
};

} // namespace fernwick
