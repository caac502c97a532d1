#include "host/shading/NormalGrids.h"
#include "frame/Query.h"
#include "shaders/scene/INormalGrid.h"
#include <string_view>
#include <unordered_map>

namespace fernwick {

namespace {

/// The grid of a shader; null for one that has none.
MCCountedPtr<INormalGrid> GridOf(const Graph& graph, size_t shader)
{
    MCCountedPtr<INormalGrid> grid;
    if (I3DExShader* const extension = graph.Extension(shader))
        Query(*extension, IID_INormalGrid, grid);
    return grid;
}

} // namespace

std::vector<size_t> ShadersOfShapes(const GraphDocument& document, const Scene& scene)
{
    std::unordered_map<std::string_view, size_t> byName;
    for (const DocumentShader& shader : document.Shaders())
        byName.emplace(shader.fName, byName.size());
    std::vector<size_t> places;
    for (const SceneElement* const element : scene.Shapes()) {
        const LookDescription& look = element->Look();
        const std::optional<std::string>& name = look.fOwnShader ? look.fOwnShader : look.fShader;
        const auto found = name ? byName.find(*name) : byName.end();
        places.push_back(found != byName.end() ? found->second : document.OutputIndex());
    }
    return places;
}

NormalGrids::NormalGrids(
    const GraphDocument& document, const Graph& graph, const Scene& scene, const std::vector<size_t>& shaders)
{
    for (size_t shader = 0; shader < document.Shaders().size(); ++shader) {
        const MCCountedPtr<INormalGrid> found = GridOf(graph, shader);
        if (!found)
            continue;
        Grid& grid = fGrids.emplace_back(Grid{shader, {}});
        const int edge = found->GetEdge();
        for (size_t i = 0; i < shaders.size(); ++i)
            if (NeededFor(document, {&shaders[i], 1})[shader])
                scene.Shapes()[i]->Shape()->Shape().LayOutNormals(
                    edge, [&grid](int u, int v, const TVector3& normal) {
                        grid.cells.push_back({u, v, normal});
                    });
    }
}

void NormalGrids::Fill(const Graph& graph) const
{
    for (const Grid& grid : fGrids) {
        const MCCountedPtr<INormalGrid> target = GridOf(graph, grid.shader);
        for (const Cell& cell : grid.cells)
            target->SetNormal(cell.u, cell.v, cell.normal);
    }
}

} // namespace fernwick
