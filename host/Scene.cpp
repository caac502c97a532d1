#include "host/Scene.h"
#include "frame/Numbers.h"
#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

struct Matrix {
    double rows[3][3];
};

Matrix operator*(const Matrix& left, const Matrix& right)
{
    Matrix product{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                product.rows[i][j] += left.rows[i][k] * right.rows[k][j];
    return product;
}

/// Turns column vectors about X, then Y, then Z, by degrees.
Matrix Rotation(const TVector3& degrees)
{
    double cosine[3];
    double sine[3];
    for (uint32_t axis = 0; axis < 3; ++axis) {
        cosine[axis] = std::cos(degrees[axis] * kRadiansPerDegree);
        sine[axis] = std::sin(degrees[axis] * kRadiansPerDegree);
    }
    const Matrix aboutX = {{{1, 0, 0}, {0, cosine[0], -sine[0]}, {0, sine[0], cosine[0]}}};
    const Matrix aboutY = {{{cosine[1], 0, sine[1]}, {0, 1, 0}, {-sine[1], 0, cosine[1]}}};
    const Matrix aboutZ = {{{cosine[2], -sine[2], 0}, {sine[2], cosine[2], 0}, {0, 0, 1}}};
    return aboutZ * aboutY * aboutX;
}

/// The transform of an element at a place below `parent`.
TTransform3D Below(const TTransform3D& parent, const ElementDescription& element)
{
    Matrix outer;
    for (int i = 0; i < 3; ++i)
        std::copy_n(parent.fMatrix[i], 3, outer.rows[i]);
    const Matrix product = outer * Rotation(element.fRotation);
    TTransform3D transform;
    for (uint32_t i = 0; i < 3; ++i) {
        double moved = parent.fTranslation[i];
        for (uint32_t j = 0; j < 3; ++j) {
            transform.fMatrix[i][j] = static_cast<float>(product.rows[i][j]);
            moved += outer.rows[i][j] * element.fPosition[j];
        }
        transform.fTranslation[i] = static_cast<float>(moved);
    }
    return transform;
}

} // namespace

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
    RenderingModule(Scene& scene, std::string camera) : fScene(scene), fCamera(std::move(camera)) { }
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
    void GetRenderingCameraName(TMCString& name) override { name = fCamera; }

private:
    Scene& fScene;
    std::string fCamera;
};

SceneElement::SceneElement(Scene& scene, const ElementDescription& description, SceneElement* parent)
    : fScene(scene), fName(description.fName),
      fTransform(Below(parent != nullptr ? parent->fTransform : TTransform3D(), description)),
      fHotPoint(description.fHotPoint), fParent(parent)
{
    if (parent == nullptr)
        return;
    (parent->fLastChild != nullptr ? parent->fLastChild->fNextSibling : parent->fFirstChild) = this;
    parent->fLastChild = this;
}

MCErr SceneElement::QueryInterface(const GUID& id, void** out)
{
    *out = nullptr;
    if (!SameGuid(id, IID_IMCUnknown) && !SameGuid(id, IID_ITreeElement))
        return kMCNoInterface;
    *out = static_cast<ITreeElement*>(this);
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
    box.fMin = box.fMax = fTransform.fTranslation;
}

void SceneElement::GetTreeTransform(TTreeTransform& transform)
{
    transform = {};
    for (int i = 0; i < 3; ++i)
        std::copy_n(fTransform.fMatrix[i], 3, transform.fRotation.fMatrix[i]);
    transform.fSecondVector = fTransform.fTranslation;
}

void SceneElement::Give(ITreeElement** out, SceneElement* element)
{
    if (element != nullptr)
        element->AddRef();
    *out = element;
}

Scene::Scene(const SceneDescription& description)
{
    Add({"Scene", {}, {}, {}, {}}, nullptr);
    for (const ElementDescription& element : description.fElements)
        Add(element, &Root());
    Add(description.fShaded, &Root());
    fRootGroup = std::make_unique<RootGroup>(*this);
    if (!description.fCamera.empty())
        fRenderingModule = std::make_unique<RenderingModule>(*this, description.fCamera);
}

Scene::~Scene() = default;

void Scene::Add(const ElementDescription& description, SceneElement* parent)
{
    fElements.push_back(std::make_unique<SceneElement>(*this, description, parent));
    SceneElement& element = *fElements.back();
    fByName.emplace(element.Name(), &element); // the first of a name stays
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
    const auto found = fByName.find(std::string_view(name.GetText()));
    SceneElement::Give(out, found != fByName.end() ? found->second : nullptr);
}

void Scene::GetRenderingModule(IRenderingModule** out)
{
    if (fRenderingModule)
        AddRef();
    *out = fRenderingModule.get();
}

} // namespace fernwick
