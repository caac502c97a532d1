#include "host/shading/ModelTexels.h"
#include "host/scene/Placement.h"
#include "host/shading/BakeReading.h"
#include <fmt/format.h>

namespace fernwick {

class ModelTexels::OpenTile final : public TexelTile {
public:
    OpenTile(const ModelTexels& model, const Tile& tile) : fModel(model), fTile(tile) { }

    void Use(const Graph& graph) override { fElements = fModel.TargetsOf(graph); }

    void MoveTo(const PixelPlace& place) override
    {
        fModel.fTexels.Find(
            {fTile.fLeft, fTile.fTop, fTile.fRight, fTile.fBottom}, place.fRight, place.fDown, fTexels);
        fPlace = place;
    }

    bool SampleAt(int x, int y, ShadingIn& in) override
    {
        const auto row = static_cast<size_t>(y - fTile.fTop);
        const Texel& texel = fTexels[row * static_cast<size_t>(fTile.fRight - fTile.fLeft)
            + static_cast<size_t>(x - fTile.fLeft)];
        if (!texel.IsCovered())
            return false;
        fTexel = &texel;
        fElement = fElements[texel.fMesh];
        fPoint = fElement->Shape()->Shape().PointAt(texel.Hit());
        if (fModel.fSet == 0)
            fPoint.fUV = UVAt(x, y); // the same, less rounded
        FillSample(fPoint, fElement->Transform(), in);
        in.fChannelMask = 0;
        in.fInstance = fElement;
        return true;
    }

    PictureAxes LocalAxes() const override
    {
        SurfacePoint point = fPoint;
        if (fModel.fSet != 0) {
            const MeshDescription& mesh = *fElement->Shape()->Shape().Mesh();
            FindDerivatives(mesh, mesh.UVSet(fModel.fSet), mesh.fTriangles[fTexel->fTriangle], point);
        }
        return {point.fDerivU, point.fDerivV};
    }

    PictureAxes WorldAxes(const ShadingIn&) const override
    {
        const auto [derivU, derivV] = LocalAxes();
        return {Turned(fElement->Transform(), derivU), Turned(fElement->Transform(), derivV)};
    }

private:
    const ModelTexels& fModel;
    Tile fTile;
    PixelPlace fPlace = {};
    std::vector<SceneElement*> fElements; // by target
    std::vector<Texel> fTexels;           // row by row
    const Texel* fTexel = nullptr;        // of the sample given last, and where that lies
    SceneElement* fElement = nullptr;
    SurfacePoint fPoint;

    TVector2 UVAt(int x, int y) const
    {
        const double height = fModel.fHeight;
        return {static_cast<float>(fModel.fTile.fColumn + (x + fPlace.fRight) / fModel.fWidth),
            static_cast<float>(fModel.fTile.fRow + (height - 1 - y + (1 - fPlace.fDown)) / height)};
    }
};

ModelTexels::ModelTexels(
    const Library& library, const OntoModel& onto, size_t set, const UVTile& tile, int width, int height)
    : SceneTexels(library, onto.fDocument, onto.fTargets), fSet(set), fTile(tile), fWidth(width),
      fHeight(height), fTexels(UVMeshesOf(onto, set), tile, width, height)
{ }

std::unique_ptr<TexelTile> ModelTexels::Open(const Tile& tile) const
{
    if (fTexels.IsEmpty({tile.fLeft, tile.fTop, tile.fRight, tile.fBottom}))
        return nullptr;
    return std::make_unique<OpenTile>(*this, tile);
}

std::vector<UVMesh> UVMeshesOf(const OntoModel& onto, size_t set)
{
    std::vector<UVMesh> meshes;
    for (const GltfMesh& mesh : GltfMeshesOf(onto, set)) {
        const size_t count = mesh.fMesh.fMesh->UVSetCount();
        if (set >= count)
            throw BakeError(fmt::format("\"{}\" has no set {} of UV; it has {}", mesh.fName, set,
                count == 1 ? "set 0 alone" : fmt::format("{}, 0 to {}", count, count - 1)));
        meshes.push_back(mesh.fMesh);
    }
    return meshes;
}

} // namespace fernwick
