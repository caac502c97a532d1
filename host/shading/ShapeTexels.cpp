#include "host/shading/ShapeTexels.h"
#include "host/json/Printable.h"
#include <fmt/format.h>

namespace fernwick {

namespace {

std::vector<size_t> FindShape(const GraphDocument& document, const std::string& name)
{
    if (document.Scene()) {
        const auto scene = MakeCounted<Scene>(*document.Scene(), Scene::Shaded::kNone);
        for (size_t i = 0; i < scene->Shapes().size(); ++i)
            if (const SceneElement& element = *scene->Shapes()[i];
                element.Name() == name && element.Shape()->Shape().Mesh() == nullptr)
                return {i};
    }
    throw GraphError(Printable(fmt::format("there is no element \"{}\" with a shape that is no mesh", name)));
}

} // namespace

class ShapeTexels::OpenTile final : public TexelTile {
public:
    explicit OpenTile(const ShapeTexels& texels) : fTexels(texels) { }

    void Use(const Graph& graph) override { fElement = fTexels.TargetsOf(graph).front(); }
    void MoveTo(const PixelPlace& place) override { fPlace = place; }

    bool SampleAt(int x, int y, ShadingIn& in) override
    {
        const auto u = static_cast<float>((x + fPlace.fRight) / fTexels.fWidth);
        const auto v = static_cast<float>((fTexels.fHeight - 1 - y + (1 - fPlace.fDown)) / fTexels.fHeight);
        fPoint = fElement->Shape()->Shape().PointAt({0, 0, u, v});
        FillSample(fPoint, fElement->Transform(), in);
        in.fChannelMask = 0;
        in.fInstance = fElement;
        return true;
    }

    PictureAxes LocalAxes() const override { return {fPoint.fDerivU, fPoint.fDerivV}; }

private:
    const ShapeTexels& fTexels;
    PixelPlace fPlace = {};
    SceneElement* fElement = nullptr;
    SurfacePoint fPoint;
};

ShapeTexels::ShapeTexels(
    const Library& library, const GraphDocument& document, const std::string& element, int width, int height)
    : SceneTexels(library, document, FindShape(document, element)), fWidth(width), fHeight(height)
{ }

std::unique_ptr<TexelTile> ShapeTexels::Open(const Tile&) const { return std::make_unique<OpenTile>(*this); }

} // namespace fernwick
