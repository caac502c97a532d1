#include "host/shading/NormalGrids.h"
#include "shaders/scene/Corners.h"

namespace fernwick {

namespace {

bool Uses(const GraphDocument& document, size_t shader, size_t wanted)
{
    if (shader == wanted)
        return true;
    for (const size_t below : PluggedIn(document.Shaders()[shader]))
        if (Uses(document, below, wanted))
            return true;
    return false;
}

Corners& CornersAt(const Graph& graph, size_t shader)
{
    return static_cast<Corners&>(*graph.Extension(shader));
}

} // namespace

NormalGrids::NormalGrids(
    const GraphDocument& document, const Graph& graph, const Scene& scene, const std::vector<size_t>& shaders)
{
    for (size_t shader = 0; shader < document.Shaders().size(); ++shader) {
        if (document.Shaders()[shader].fTable->fName != "Corners")
            continue;
        Grid& grid = fGrids.emplace_back(Grid{shader, {}});
        const int edge = CornersAt(graph, shader).GridSize();
        for (size_t i = 0; i < shaders.size(); ++i)
            if (Uses(document, shaders[i], shader))
                scene.Shapes()[i]->Shape()->Shape().LayOutNormals(
                    edge, [&grid](int u, int v, const TVector3& normal) {
                        grid.cells.push_back({u, v, normal});
                    });
    }
}

void NormalGrids::Fill(const Graph& graph) const
{
    for (const Grid& grid : fGrids) {
        Corners& corners = CornersAt(graph, grid.shader);
        for (const Cell& cell : grid.cells)
            corners.SetNormal(cell.u, cell.v, cell.normal);
    }
}

} // namespace fernwick
