#include "host/shading/Render.h"
#include "frame/Numbers.h"
#include "host/scene/Placement.h"
#include "host/scene/World.h"
#include "host/shading/NormalGrids.h"
#include "host/shading/PixelPattern.h"
#include "host/shading/PixelSum.h"
#include "host/shading/SurfaceLayers.h"
#include "host/shading/Tiles.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace fernwick {

namespace {

constexpr int kRenderTileSide = 64; // pixels
constexpr int kMostSurfaces = 16;   ///< that a ray goes through

PictureRegion RegionOf(const RenderJob& job)
{
    return job.region.value_or(PictureRegion{0, 0, job.width, job.height});
}

size_t PixelsOf(const PictureRegion& region)
{
    return static_cast<size_t>(region.Width()) * static_cast<size_t>(region.Height());
}

/// The rays of a camera, and the lamp beside it.
class Eye {
public:
    Eye(const SceneElement& camera, const RenderJob& job)
        : fPlace(camera.Transform()), fHigh(std::tan(camera.Camera()->fFieldOfView / 2 * kRadiansPerDegree)),
          fWide(fHigh * job.width / job.height), fWidth(job.width), fHeight(job.height),
          fToLamp(Turned(fPlace, {-0.5f, 0.7f, 1}))
    {
        Normalize(fToLamp);
    }
    const TVector3& Origin() const { return fPlace.fTranslation; }
    const TVector3& ToLamp() const { return fToLamp; }
    /// @param x, y  in pixels from the upper left
    TVector3 Direction(double x, double y) const
    {
        TVector3 direction = Turned(fPlace,
            {static_cast<float>((2 * x / fWidth - 1) * fWide),
                static_cast<float>((1 - 2 * y / fHeight) * fHigh), -1});
        Normalize(direction);
        return direction;
    }

private:
    TTransform3D fPlace;
    double fHigh;
    double fWide;
    double fWidth;
    double fHeight;
    TVector3 fToLamp;
};

/// What one surface shows.
struct Shown {
    TMCColorRGBA color = TMCColorRGBA::kOpaqueBlack;
    ShadingOut result;
};

/// An element with a shape and the shader that it shows.
class Surface {
public:
    Surface(SceneElement& element, const Graph& graph, size_t shader)
        : fElement(element), fShader(graph.Shader(shader)), fExtension(graph.Extension(shader)),
          fKinds(fShader.GetOutputKinds()), fIsLit(element.Look().fLit.value_or(false))
    { }

    Shown ShadeAt(const SurfaceHit& hit, const Eye& eye) const
    {
        ShadingIn sample;
        FillSample(fElement.Shape()->Shape().PointAt(hit), fElement.Transform(), sample);
        sample.fInstance = &fElement;
        Shown shown = Ask(sample);
        if (fIsLit) {
            const float lamp = LampAt(sample, eye);
            shown.color.fRed *= lamp;
            shown.color.fGreen *= lamp;
            shown.color.fBlue *= lamp;
        }
        return shown;
    }

private:
    SceneElement& fElement;
    IShellShader& fShader;
    I3DExShader* fExtension; // null for a source
    uint32_t fKinds;
    bool fIsLit;

    bool Offers(OutputKinds kind) const { return (fKinds & static_cast<uint32_t>(kind)) != 0; }

    /// @param sample  copied, since shaders may change it
    Shown Ask(ShadingIn sample) const
    {
        Shown shown;
        if (Offers(kOutputSurface)) {
            if (fShader.ShadeSurface(shown.result, sample) == 0)
                shown.result.Clear();
            shown.color = shown.result.fColor;
            return shown;
        }
        const TVector3 normal = sample.fNormalLocal;
        bool fullArea = false;
        float coverage = kFullCoverage;
        if (Offers(kOutputColor)) {
            coverage = fShader.ShadeColor(shown.color, fullArea, sample);
        } else if (Offers(kOutputValue)) {
            float value = 0;
            coverage = fShader.ShadeValue(value, fullArea, sample);
            shown.color.SetRGB(value);
        } else {
            shown.color.SetRGB(1);
        }
        shown.result.Clear();
        shown.result.fColor = shown.color;
        shown.result.fCoverage = coverage;
        shown.result.fFullArea = fullArea;
        shown.result.fShadingNormal = normal;
        return shown;
    }

    /// How much light of the lamp falls on the side towards the eye.
    float LampAt(ShadingIn sample, const Eye& eye) const
    {
        constexpr float kAmbient = 0.12f;
        const bool isBehind = Dot(sample.fNormalGlobal, eye.Origin() - sample.fPointGlobal) < 0;
        TVector3 normal = sample.fNormalGlobal;
        if (Offers(kOutputVector) && fExtension != nullptr)
            fExtension->ShadeVector(normal, sample);
        Normalize(normal);
        const auto straight = static_cast<float>(Dot(isBehind ? -normal : normal, eye.ToLamp()));
        return kAmbient + (1 - kAmbient) * Share(straight);
    }
};

class Renderer {
public:
    Renderer(const Library& library, const GraphDocument& document, const RenderJob& job)
        : fLibrary(library), fDocument(document), fJob(job), fRegion(RegionOf(job)),
          fDescription(DescribeScene(document, job)), fScene(MakeScene()), fWorld(*fScene),
          fEye(FindCamera(*fScene, fScene->CameraName()), job), fPattern(job.samples),
          fShaders(FindShaders()), fNeeded(NeededFor(document, fShaders)),
          fGrids(document, *MakeGraph(library, document, fScene, fNeeded), *fScene, fShaders)
    { }

    std::optional<Picture> Run()
    {
        Picture picture({fJob.width, fJob.height, fRegion, PictureContent::kColor});
        std::vector<std::vector<float>> layers(fJob.layers.size(), std::vector<float>(PixelsOf(fRegion)));
        const TileJob tiles = {fJob.width, fJob.height, kRenderTileSide, fJob.threads, fJob.onProgress,
            fJob.cancel, Tile{fRegion.left, fRegion.top, fRegion.right, fRegion.bottom}};
        if (!ForEachTile(tiles, [&](const Tile& tile) { return ShadeTile(tile, picture, layers); }))
            return std::nullopt;
        for (size_t i = 0; i < layers.size(); ++i)
            picture.AddChannel(fJob.layers[i].fName, std::move(layers[i]));
        return picture;
    }

private:
    const Library& fLibrary;
    const GraphDocument& fDocument;
    const RenderJob& fJob;
    PictureRegion fRegion;
    SceneDescription fDescription;
    MCCountedPtr<Scene> fScene; // of the rays; samples lie on those of the tiles
    World fWorld;
    Eye fEye;
    PixelPattern fPattern;
    std::vector<size_t> fShaders; // by shape of the scene, its place in the document
    std::vector<bool> fNeeded;    // by place in the document
    NormalGrids fGrids;

    MCCountedPtr<Scene> MakeScene() const { return MakeCounted<Scene>(fDescription, Scene::Shaded::kNone); }

    /// The scene of the document with the camera of the job.
    static SceneDescription DescribeScene(const GraphDocument& document, const RenderJob& job)
    {
        if (!document.Scene())
            throw RenderError("the document has no \"scene\" to render");
        SceneDescription description = *document.Scene();
        if (!job.camera.empty())
            description.fCamera = job.camera;
        if (description.fCamera.empty()) {
            const auto names = CameraNames(description);
            if (names.empty())
                throw RenderError("the scene has no camera; give an element a \"camera\"");
            description.fCamera = names.front();
        }
        return description;
    }

    const SceneElement& FindCamera(const Scene& scene, const std::string& name) const
    {
        for (const auto& element : scene.Elements())
            if (element->Name() == name && element->Camera())
                return *element;
        const auto names = CameraNames(fDescription);
        throw RenderError(fmt::format("there is no camera \"{}\"; {}", name,
            names.empty() ? "the scene has none" : fmt::format("the scene has {}", fmt::join(names, ", "))));
    }

    std::vector<size_t> FindShaders() const
    {
        if (fScene->Shapes().empty())
            throw RenderError("the scene has no shape to see; give an element a \"shape\", or the scene a "
                              "\"file\" that holds some");
        return ShadersOfShapes(fDocument, *fScene);
    }

    /// @return false when cancelled
    bool ShadeTile(const Tile& tile, Picture& picture, std::vector<std::vector<float>>& layers) const
    {
        // Shaders that ask the scene count its parts several times a sample: threads that share one are slower.
        const MCCountedPtr<Scene> scene = MakeScene();
        const OwnGraph graph = MakeGraph(fLibrary, fDocument, scene, fNeeded);
        fGrids.Fill(*graph);
        std::vector<Surface> surfaces;
        for (size_t i = 0; i < fShaders.size(); ++i)
            surfaces.emplace_back(*scene->Shapes()[i], *graph, fShaders[i]);
        std::vector<double> layerSums(layers.size());
        for (int y = tile.fTop; y < std::min(tile.fBottom, fRegion.bottom); ++y) {
            if (IsCancelled(fJob.cancel))
                return false;
            for (int x = tile.fLeft; x < tile.fRight; ++x) {
                PixelSum sum;
                std::fill(layerSums.begin(), layerSums.end(), 0);
                for (const auto& [right, down] : fPattern.Places())
                    Trace(fEye.Direction(x + right, y + down), surfaces, sum, layerSums);
                if (x < fRegion.left || x >= fRegion.right || y < fRegion.top)
                    continue;
                const int column = x - fRegion.left;
                const int row = y - fRegion.top;
                picture.At(column, row) = sum.Color(fJob.samples);
                const size_t pixel = static_cast<size_t>(row) * static_cast<size_t>(fRegion.Width())
                    + static_cast<size_t>(column);
                for (size_t i = 0; i < layers.size(); ++i)
                    layers[i][pixel] = static_cast<float>(layerSums[i] / fJob.samples);
            }
        }
        return true;
    }

    void Trace(const TVector3& direction, const std::vector<Surface>& surfaces, PixelSum& sum,
        std::vector<double>& layerSums) const
    {
        constexpr float kStep = 1e-4f;   // of the distance, to get off a surface
        constexpr double kOpaque = 1e-3; // less isn't worth a ray
        double left = 1;
        float nearLimit = 0;
        for (int depth = 0; depth < kMostSurfaces && left > kOpaque; ++depth) {
            const auto hit = fWorld.Cast(fEye.Origin(), direction, nearLimit);
            if (!hit)
                break;
            const Shown shown = surfaces[hit->fIndex].ShadeAt(hit->fSurface, fEye);
            sum.Add(shown.color, left);
            if (depth == 0)
                for (size_t i = 0; i < layerSums.size(); ++i)
                    layerSums[i] += fJob.layers[i].Read(shown.result);
            const auto distance = static_cast<float>(hit->fSurface.fDistance);
            nearLimit = distance + std::max(distance * kStep, kStep * kStep);
        }
        sum.Add(fDocument.Scene()->fBackground, left);
    }
};

} // namespace

std::optional<Picture> Render(const Library& library, const GraphDocument& document, const RenderJob& job)
{
    return Renderer(library, document, job).Run();
}

uint64_t MemoryOf(const RenderJob& job)
{
    return uint64_t{PixelsOf(RegionOf(job))} * (sizeof(TMCColorRGBA) + job.layers.size() * sizeof(float));
}

} // namespace fernwick
