#include "host/scene/Scene.h"
#include "host/scene/Placement.h"
#include <algorithm>

namespace fernwick {

namespace {

void AddCameraNames(const ElementDescription& element, std::vector<std::string>& names)
{
    if (element.fCamera)
        names.push_back(element.fName);
    for (const ElementDescription& child : element.fChildren)
        AddCameraNames(child, names);
}

} // namespace

std::vector<std::string> CameraNames(const SceneDescription& scene)
{
    std::vector<std::string> names;
    for (const ElementDescription& element : scene.fElements)
        AddCameraNames(element, names);
    return names;
}

/// The root as the scene hands it out; queried for `ITreeElement` it gives the root element.
class Scene::RootGroup final : public IGroup {
public:
    explicit RootGroup(Scene& scene) : fScene(scene) { }
    virtual ~RootGroup() = default;

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        return fScene.Root().QueryInterface(id, out);
    }
    uint32_t AddRef() override { return fScene.AddRef(); }
    uint32_t Release() override { return fScene.Release(); }

private:
    Scene& fScene;
};

class Scene::RenderingModule final : public IRenderingModule {
public:
    explicit RenderingModule(Scene& scene) : fScene(scene) { }
    virtual ~RenderingModule() = default;

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        *out = nullptr;
        if (!SameGuid(id, IID_IMCUnknown))
            return kMCNoInterface;
        *out = static_cast<IRenderingModule*>(this);
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override { return fScene.AddRef(); }
    uint32_t Release() override { return fScene.Release(); }
    void GetRenderingCameraName(TMCString& name) override { name = fScene.fCameraName; }

private:
    Scene& fScene;
};

SceneElement::SceneElement(Scene& scene, const ElementDescription& description, SceneElement* parent)
    : fScene(scene), fName(description.fName),
      fTransform(Composed(parent != nullptr ? parent->fTransform : TTransform3D(), description.fPlace)),
      fScale(description.fScale), fHotPoint(description.fHotPoint), fCamera(description.fCamera),
      fLook(description.fLook), fParent(parent)
{
    if (description.fLight)
        fLight.emplace(*this, *description.fLight);
    if (description.fGeometry)
        fInstance.emplace(*this, description.fGeometry);
    if (parent == nullptr)
        return;
    if (!fLook.fShader)
        fLook.fShader = parent->fLook.fShader;
    if (!fLook.fLit)
        fLook.fLit = parent->fLook.fLit;
    (parent->fLastChild != nullptr ? parent->fLastChild->fNextSibling : parent->fFirstChild) = this;
    parent->fLastChild = this;
}

MCErr SceneElement::QueryInterface(const GUID& id, void** out)
{
    *out = nullptr;
    if (SameGuid(id, IID_IMCUnknown) || SameGuid(id, IID_ITreeElement))
        *out = static_cast<ITreeElement*>(this);
    else if (fLight && SameGuid(id, IID_ILight))
        *out = static_cast<ILight*>(&*fLight);
    else if (fInstance && SameGuid(id, IID_IInstance))
        *out = static_cast<IInstance*>(&*fInstance);
    else
        return kMCNoInterface;
    AddRef();
    return MC_S_OK;
}

uint32_t SceneElement::AddRef() { return fScene.AddRef(); }

uint32_t SceneElement::Release() { return fScene.Release(); }

void SceneElement::GetScene(IScene** out)
{
    fScene.AddRef();
    *out = &fScene;
}

void SceneElement::GetBoundingBox(TBBox3D& box, int32_t, bool)
{
    box = {};
    AddShapesTo(box);
    if (box.fMin[0] > box.fMax[0])
        box.fMin = box.fMax = fTransform.fTranslation;
}

void SceneElement::AddShapesTo(TBBox3D& box) const
{
    if (fInstance) {
        const TBBox3D own = fInstance->Shape().Bounds();
        for (int corner = 0; corner < 8; ++corner) {
            TVector3 point;
            for (uint32_t axis = 0; axis < 3; ++axis)
                point[axis] = (corner >> axis & 1) != 0 ? own.fMax[axis] : own.fMin[axis];
            point = Placed(fTransform, point);
            for (uint32_t axis = 0; axis < 3; ++axis) {
                box.fMin[axis] = std::min(box.fMin[axis], point[axis]);
                box.fMax[axis] = std::max(box.fMax[axis], point[axis]);
            }
        }
    }
    for (const SceneElement* child = fFirstChild; child != nullptr; child = child->fNextSibling)
        child->AddShapesTo(box);
}

void SceneElement::MoveBy(const TVector3& offset)
{
    fTransform.fTranslation += offset;
    for (SceneElement* child = fFirstChild; child != nullptr; child = child->fNextSibling)
        child->MoveBy(offset);
}

void SceneElement::GetTreeTransform(TTreeTransform& transform)
{
    transform = {};
    for (int i = 0; i < 3; ++i)
        std::copy_n(fTransform.fMatrix[i], 3, transform.fRotation.fMatrix[i]);
    transform.fSecondVector = fTransform.fTranslation;
    transform.fScale = fScale;
}

void SceneElement::Give(ITreeElement** out, SceneElement* element)
{
    if (element != nullptr)
        element->AddRef();
    *out = element;
}

Scene::Scene(const SceneDescription& description, Shaded shaded) : fCameraName(description.fCamera)
{
    Add({.fName = "Scene"}, nullptr);
    for (const ElementDescription& element : description.fElements)
        Add(element, &Root());
    if (shaded == Shaded::kLast)
        Add(description.fShaded, &Root());
    fRootGroup = std::make_unique<RootGroup>(*this);
    if (!fCameraName.empty())
        fRenderingModule = std::make_unique<RenderingModule>(*this);
}

Scene::~Scene() = default;

void Scene::Add(const ElementDescription& description, SceneElement* parent)
{
    fElements.push_back(std::make_unique<SceneElement>(*this, description, parent));
    SceneElement& element = *fElements.back();
    fByName.emplace(element.Name(), &element); // the first of a name stays
    if (element.Shape() != nullptr)
        fShapes.push_back(&element);
    for (const ElementDescription& child : description.fChildren)
        Add(child, &element);
}

void Scene::GetRootGroup(IGroup** out)
{
    AddRef();
    *out = fRootGroup.get();
}

void Scene::GetTreeByName(ITreeElement** out, const TMCString& name)
{
    const auto found = fByName.find(std::string_view(name.GetText(), name.GetLength()));
    SceneElement::Give(out, found != fByName.end() ? found->second : nullptr);
}

void Scene::GetRenderingModule(IRenderingModule** out)
{
    if (fRenderingModule)
        AddRef();
    *out = fRenderingModule.get();
}

} // namespace fernwick
