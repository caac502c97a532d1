#include "host/shading/SceneTexels.h"

namespace fernwick {

namespace {

SceneDescription WithCamera(SceneDescription scene)
{
    if (scene.fCamera.empty())
        if (const std::vector<std::string> names = CameraNames(scene); !names.empty())
            scene.fCamera = names.front();
    return scene;
}

} // namespace

SceneTexels::SceneTexels(const Library& library, const GraphDocument& document, std::vector<size_t> targets)
    : fDocument(document), fTargets(std::move(targets)), fDescription(WithCamera(*document.Scene())),
      fScene(MakeCounted<Scene>(fDescription, Scene::Shaded::kNone)), fGrids(MakeGrids(library))
{ }

NormalGrids SceneTexels::MakeGrids(const Library& library) const
{
    std::vector<size_t> shaders = ShadersOfShapes(fDocument, *fScene);
    for (const size_t target : fTargets)
        shaders[target] = fDocument.OutputIndex();
    return {fDocument, *MakeGraph(library, fDocument, fScene), *fScene, shaders};
}

OwnGraph SceneTexels::MakeGraphFor(const Library& library, const GraphDocument& document) const
{
    // Shaders that ask the scene count its parts several times a sample: threads that share one are slower.
    OwnGraph graph = MakeGraph(library, document, MakeCounted<Scene>(fDescription, Scene::Shaded::kNone));
    if (&document == &fDocument)
        fGrids.Fill(*graph);
    return graph;
}

std::vector<SceneElement*> SceneTexels::TargetsOf(const Graph& graph) const
{
    std::vector<SceneElement*> elements;
    for (const size_t target : fTargets)
        elements.push_back(graph.SceneOrNull()->Shapes()[target]);
    return elements;
}

} // namespace fernwick
