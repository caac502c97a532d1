#pragma once
#include "host/scene/Scene.h"
#include "host/shading/Graph.h"

namespace fernwick {

/// By shape of a scene, the place of the shader in the document that it is rendered with: its own, else the output.
std::vector<size_t> ShadersOfShapes(const GraphDocument& document, const Scene& scene);

/// The normals that the `Corners` shaders of a document look at: those of the elements that are shaded with them,
/// directly or plugged in, laid out by UV in tree order, so that a later element covers an earlier one.
class NormalGrids {
public:
    /// @param graph    any one of the document, with all that these shaders need
    /// @param shaders  by shape of the scene, the place of its shader in the document
    NormalGrids(const GraphDocument& document, const Graph& graph, const Scene& scene,
        const std::vector<size_t>& shaders);

    /// Fills the grids of another graph of the same document.
    void Fill(const Graph& graph) const;

private:
    struct Cell {
        int u;
        int v;
        TVector3 normal;
    };
    struct Grid {
        size_t shader;
        std::vector<Cell> cells;
    };

    std::vector<Grid> fGrids;
};

} // namespace fernwick
