#include "bench/Bench.h"
#include "frame/SceneLookup.h"
#include "host/geometry/Primitives.h"
#include "host/scene/Scene.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/optics/Iridescent.h"
#include "shaders/scene/Corners.h"
#include "shaders/scene/Curvature.h"
#include "shaders/scene/Lit.h"
#include "shaders/scene/Proximity.h"
#include "shaders/scene/SurfaceCurvature.h"
#include "shaders/scene/Translucent.h"
#include <algorithm>

namespace {

using Scene = MCCountedPtr<fernwick::Scene>;

/// A scene of branches of ten elements, every second one a lamp; root and shaded object count too.
Scene MakeScene(int count)
{
    fernwick::SceneDescription description;
    for (int i = 2; i < count; ++i) {
        const std::string name = (i % 2 == 0 ? "Lamp " : "Plate ") + std::to_string(i);
        const TVector3 place(static_cast<float>(i % 7), static_cast<float>(i % 5), static_cast<float>(i % 3));
        auto& siblings = i % 10 == 2 ? description.fElements : description.fElements.back().fChildren;
        siblings.push_back({.fName = name, .fPlace = {.fTranslation = place}});
        if (i % 2 == 0)
            siblings.back().fLight = {.fNearRange = 5, .fFarRange = 12};
        else
            siblings.back().fGeometry = fernwick::MakeSphere(1);
    }
    return fernwick::MakeCounted<fernwick::Scene>(description);
}

IMCUnknown* InstanceOf(const Scene& scene) { return static_cast<ITreeElement*>(&scene->ShadedObject()); }

MeasuredShader<ProximityParams> MakeProximity(const char* target, bool single)
{
    const MeasuredShader<ProximityParams> proximity("Proximity");
    proximity.Record().fTargetName = target;
    proximity.Record().fSingleObject = single;
    proximity.Record().fReference = kReferenceHotPoint;
    proximity.Changed();
    return proximity;
}

const TMCString255 kLamp("Lamp 8");
const TMCString255 kPlate("Plate 3");

MCCountedPtr<ITreeElement> Named(const SamplePlace& place, const TMCString255& name)
{
    MCCountedPtr<ITreeElement> tree;
    FindTreeByName(place.fScene, name, "", tree);
    return tree;
}

/// The hot point of the shaded element, with the calls beside it that hosts see.
TVector3 HotPointOf(const SamplePlace& place)
{
    const TVector3 origin = GlobalPosition(*place.fShaded);
    TMCString255 scratch;
    place.fShaded->GetNameScratch(scratch);
    const TVector3 hotPoint = HotPointAt(*place.fShaded, origin);
    MCCountedPtr<ITreeElement> parent;
    place.fShaded->GetParent(parent.Address());
    return hotPoint;
}

float ProximityOf(float distance) { return distance > 10 ? 0 : 1 - distance / 10; }

float PlainProximity(const ShadingIn& in)
{
    const SamplePlace place(in);
    const TVector3 hotPoint = HotPointOf(place);
    const MCCountedPtr<ITreeElement> tree = Named(place, kLamp);
    return ProximityOf(static_cast<float>(Length(GlobalPosition(*tree) - hotPoint)));
}

/// What group mode can't avoid: the shader's calls, in the order of a walk by hand that holds the current element
/// alone.
float PlainGroup(const ShadingIn& in)
{
    const SamplePlace place(in);
    const TVector3 hotPoint = HotPointOf(place);
    MCCountedPtr<IGroup> group;
    place.fScene->GetRootGroup(group.Address());
    MCCountedPtr<ITreeElement> root;
    Query(*group, IID_ITreeElement, root);

    float best = 1e7f;
    TMCStringOf<1023> name;
    MCCountedPtr<ITreeElement> tree = root;
    while (tree) {
        tree->GetName(name);
        if (std::strncmp(name.GetText(), "Lamp", 4) == 0) {
            const float distance = static_cast<float>(Length(GlobalPosition(*tree) - hotPoint));
            if (best > distance)
                best = distance;
        }
        MCCountedPtr<ITreeElement> next;
        tree->GetFirstChild(next.Address());
        while (!next && !(tree == root)) {
            tree->GetNextSibling(next.Address());
            if (next)
                break;
            MCCountedPtr<ITreeElement> parent;
            tree->GetParent(parent.Address());
            tree = std::move(parent);
        }
        tree = std::move(next);
    }
    return ProximityOf(best);
}

void AddGroup(int count)
{
    const Scene scene = MakeScene(count);
    const Samples samples = MakeSamples(InstanceOf(scene));
    const auto proximity = MakeProximity("Lamp", false);
    AddComparison(
        Section::kProximity, std::to_string(count) + " elements",
        [=, keep = scene](size_t i) { return proximity.Value((*samples)[i]); },
        [=](size_t i) { return PlainGroup((*samples)[i]); });
}

TMCColorRGBA PlainTranslucent(const ShadingIn& in)
{
    const SamplePlace place(in);
    const SeenTree light = FindTreeFromReference(place, kLamp, kReferenceSample);
    const auto direction = [&](ITreeElement& tree) {
        TVector3 way = GlobalPosition(tree) - light.fLocation;
        Normalize(way);
        return way;
    };
    const TVector3 toLight = direction(*light.fTree);
    const MCCountedPtr<ITreeElement> plate = Named(place, kPlate);
    const float angle = AngleBetween(direction(*plate), toLight);
    const float level = 20 >= angle ? 0 : (angle - 20) / 140;
    return {level, level, level, 1};
}

float PlainLit(const ShadingIn& in, TMCColorRGBA& color)
{
    const SamplePlace place(in);
    const SeenTree lamp = FindTreeFromReference(place, kLamp, kReferenceSample);
    MCCountedPtr<ILight> light;
    Query(*lamp.fTree, IID_ILight, light);
    TTransform3D transform;
    light->GetLightTransform(transform);
    TVector3 direction;
    float distance, brightness;
    light->GetDirection(lamp.fLocation, direction, distance);
    LightState state;
    light->GetLightState(state);
    light->GetLightParameter(Code("brit"), brightness);
    const float angle = AngleBetween(direction, in.fNormalGlobal);
    const float ramp = 1 - (angle - 20.0f) / (160.0f - 20.0f);
    float range = 0;
    if (state.fFarRange >= distance)
        range = state.fNearRange >= distance
            ? 1
            : static_cast<float>(1.0 - (distance - state.fNearRange) / (state.fFarRange - state.fNearRange));
    const float amount = range * ramp;
    const TMCColorRGB& own = state.fLightColor;
    color = {
        own.fRed / brightness * amount, own.fGreen / brightness * amount, own.fBlue / brightness * amount, 1};
    return amount;
}

/// The shader's calls, those among them of which nothing comes, and what it makes of the hit.
TMCColorRGBA PlainCurvature(const ShadingIn& in)
{
    constexpr int32_t kHitKind = -3;
    const SamplePlace place(in);
    MCCountedPtr<ITreeElement> tree = Named(place, kLamp);
    GlobalPosition(*tree);
    tree = Named(place, kPlate);
    MCCountedPtr<IInstance> instance;
    Query(*tree, IID_IInstance, instance);
    TTreeTransform treeTransform;
    tree->GetTreeTransform(treeTransform);
    TBBox3D box;
    tree->GetBoundingBox(box, 2, true);
    GlobalPosition(*tree);

    RayHitRecord hit(kHitKind);
    TRay3D ray;
    ray.fOrigin = in.fPointGlobal + in.fNormalGlobal;
    ray.fDirection = -in.fNormalGlobal;
    hit.fBlock.fShading.fInstance = instance.Get();
    RayHitParams params(ray, hit);
    params.fFarLimit = 1.01f;
    const bool isHit = instance->CastRay(params);
    if (isHit && hit.fFinishHit != nullptr) {
        hit.fNeedFinish = 1;
        hit.fFinishHit(&hit);
    }
    const ShadingIn& surface = hit.fBlock.fShading;
    const float gaussian = MeasureCurvature(surface.fDerivU, surface.fDerivV, hit.fShapeMatrix).fGaussian;
    if (!isHit)
        return {0, 1, 0, 1};
    return {std::clamp(gaussian, 0.0f, 1.0f), 0, std::clamp(-gaussian, 0.0f, 1.0f), 1};
}

void AddCalls()
{
    const Scene scene = MakeScene(10);
    const Samples samples = MakeSamples(InstanceOf(scene));
    const auto add = [&](const char* row, auto shade, auto plain) {
        AddComparison(
            Section::kHost, row, [=, keep = scene](size_t i) { return shade((*samples)[i]); },
            [=](size_t i) { return plain((*samples)[i]); });
    };

    const auto proximity = MakeProximity(kLamp.GetText(), true);
    add(
        "Proximity ShadeValue, one object", [=](ShadingIn& in) { return proximity.Value(in); },
        PlainProximity);

    const MeasuredShader<TranslucentParams> translucent("Translucent");
    translucent.Record().fCameraName = kPlate;
    translucent.Record().fLightName = kLamp;
    translucent.Changed();
    add(
        "Translucent ShadeColor", [=](ShadingIn& in) { return translucent.Color(in); }, PlainTranslucent);

    const MeasuredShader<LitParams> lit("Lit");
    lit.Record().fLightName = kLamp;
    lit.Record().fUseLightColor = true;
    add(
        "Lit ShadeColor, in the light's colour", [=](ShadingIn& in) { return lit.Color(in); },
        [](ShadingIn& in) {
            TMCColorRGBA color;
            PlainLit(in, color);
            return color;
        });
    const MeasuredShader<LitParams> grey("Lit");
    grey.Record().fLightName = kLamp;
    add(
        "Lit ShadeValue", [=](ShadingIn& in) { return grey.Value(in); },
        [](ShadingIn& in) {
            TMCColorRGBA color;
            return PlainLit(in, color);
        });

    const MeasuredShader<CurvatureParams> curvature("Curvature");
    curvature.Record().fObjectName = kLamp;
    curvature.Record().fSurfaceName = kPlate;
    curvature.Changed();
    add(
        "Curvature ShadeColor", [=](ShadingIn& in) { return curvature.Color(in); }, PlainCurvature);

    const MeasuredShader<IridescentParams> iridescent("Iridescent");
    iridescent.Record().fReferenceMode = Code("OBJT");
    iridescent.Record().fObjectName = kLamp;
    iridescent.Record().fGrey = true;
    iridescent.Changed();
    add(
        "Iridescent ShadeColor, towards an object", [=](ShadingIn& in) { return iridescent.Color(in); },
        [](ShadingIn& in) {
            TVector3 way = GlobalPosition(*Named(SamplePlace(in), kLamp)) - in.fPointGlobal;
            Normalize(way);
            const float angle = static_cast<float>(AngleBetween(way, in.fNormalGlobal) / kPi);
            return TMCColorRGBA{angle, angle, angle, 1};
        });

    const MeasuredShader<Coordinate_ShiftParams> shift("Coordinate_Shift");
    const Source source(kOutputSurface | kOutputColor);
    shift.Record().fMode = Code("OBJM");
    shift.Record().fObjectName = kLamp;
    shift.Record().fSubShader = source.Face();
    shift.Changed();
    add(
        "Coordinate_Shift ShadeSurface, object", [=](ShadingIn& in) { return shift.Surface(in); },
        [=](ShadingIn& in) {
            const SamplePlace place(in);
            MCCountedPtr<ITreeElement> target;
            place.fShaded->GetParent(target.Address());
            target = Named(place, kLamp);
            in.fPointGlobal -= GlobalPosition(*target);
            ShadingOut result;
            source->ShadeSurface(result, in);
            return ChannelsOf(result);
        });
}

/// Probes along four lines of a grid. Where the neighbourhood leaves the grid the first probes are pinned.
struct PlainCorners {
    static constexpr int kEdge = 256, kRadius = 12, kStep = 2, kProbes = kRadius / kStep;

    std::vector<TVector3> cells = std::vector<TVector3>(kEdge * kEdge);
    std::vector<float> angles = std::vector<float>(4 * kProbes);
    TVector3 center;

    TVector3 At(int place) const { return place >= 0 ? cells[static_cast<size_t>(place)] : TVector3::kZero; }
    static int Back(int overrun) { return overrun > 0 ? (overrun + kStep - 1) / kStep : 0; }
    float operator()(const ShadingIn& in)
    {
        const int u = static_cast<int>(in.fUV[0] * kEdge), v = static_cast<int>(in.fUV[1] * kEdge);
        center = At(u * kEdge + v);
        const int back[4] = {Back(kRadius - u), Back(kRadius - v), Back(u + kRadius - kEdge + 1),
            Back(v + kRadius - kEdge + 1)};
        const int lowU = u - kRadius + back[0] * kStep, lowV = v - kRadius + back[1] * kStep;
        const int highV = v + kRadius - back[3] * kStep;
        const int lines[4][4] = {{lowU, v, kStep, 0}, {u, highV, 0, -kStep}, {lowU, highV, kStep, -kStep},
            {lowU, lowV, kStep, kStep}};
        float best = 0;
        for (int line = 0; line < 4; ++line) {
            int x = lines[line][0], y = lines[line][1];
            for (int i = 0; i < kProbes; ++i) {
                x = -back[2] >= i ? 1 : back[0] >= i ? 0 : x;
                y = back[3] >= i ? 1 : back[1] >= i ? 0 : y;
                angles[static_cast<size_t>(line * kProbes + i)] = AngleBetween(center, At(x * kEdge + y));
                x += lines[line][2];
                y += lines[line][3];
            }
        }
        for (int line = 0; line < 4; ++line)
            for (int i = 0; i <= kProbes / 2; ++i)
                best = std::max(best, angles[static_cast<size_t>(line * kProbes + i)]);
        return static_cast<float>(best / 3.14);
    }
};

void AddCorners()
{
    const MeasuredShader<CornersParams> corners("Corners");
    corners.Changed();
    const Samples samples = MakeSamples();
    PlainCorners plain;
    MCCountedPtr<INormalGrid> grid;
    Query(*corners.operator->(), IID_INormalGrid, grid);
    for (int u = 0; u < PlainCorners::kEdge; ++u)
        for (int v = 0; v < PlainCorners::kEdge; ++v) {
            const TVector3 normal = (*samples)[static_cast<size_t>(u * 31 + v) % kSampleCount].fNormalLocal;
            plain.cells[static_cast<size_t>(u * PlainCorners::kEdge + v)] = normal;
            grid->SetNormal(u, v, normal);
        }
    AddComparison(
        Section::kShading, "Corners ShadeValue, 24 probes",
        [=](size_t i) { return corners.Value((*samples)[i]); },
        [=](size_t i) mutable { return plain((*samples)[i]); });
}

} // namespace

void AddScene()
{
    for (const int count : {10, 100, 1000})
        AddGroup(count);
    AddCalls();
    AddCorners();
}
