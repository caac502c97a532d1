#pragma once
#include "frame/SceneServices.h"
#include "host/Component.h"
#include <functional>
#include <map>
#include <string>
#include <vector>

class FakeScene;

/// An element of a test's scene; a light or an instance too, when a test makes it one. Elements belong to their
/// scene, which outlives them and must outlive the samples.
class FakeElement final : public fernwick::Component<ITreeElement, IID_ITreeElement>,
                          public ILight,
                          public IInstance {
public:
    explicit FakeElement(std::string name = "") : fName(std::move(name)) { }

    std::string fName;
    FakeScene* fScene = nullptr; ///< null: an element outside any scene
    std::vector<FakeElement*> fChildren;
    FakeElement* fParent = nullptr;
    TVector3 fHotPoint;
    TTransform3D fTransform;
    TTreeTransform fTreeTransform;
    TBBox3D fBox;

    bool fIsElement = true; ///< false: the instance gives no `ITreeElement`
    bool fIsLight = false;
    LightState fLightState;
    TTransform3D fLightTransform;
    float fBrightness = 1;

    bool fIsInstance = false;
    std::function<bool(RayHitParams&)> fOnRay;

    int fNameCalls = 0;

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        *out = nullptr;
        if (SameGuid(id, IID_ILight) && fIsLight)
            *out = static_cast<ILight*>(this);
        else if (SameGuid(id, IID_IInstance) && fIsInstance)
            *out = static_cast<IInstance*>(this);
        else if (SameGuid(id, IID_IMCUnknown) || (SameGuid(id, IID_ITreeElement) && fIsElement))
            *out = static_cast<ITreeElement*>(this);
        else
            return kMCNoInterface;
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override { return Component::AddRef(); }
    uint32_t Release() override { return Component::Release(); }

    void GetScene(IScene** out) override;
    void GetName(TMCString& name) override
    {
        ++fNameCalls;
        name = fName;
    }
    void GetFirstChild(ITreeElement** out) override { Give(out, fChildren.empty() ? nullptr : fChildren[0]); }
    void GetNextSibling(ITreeElement** out) override
    {
        FakeElement* next = nullptr;
        if (fParent != nullptr)
            for (size_t i = 0; i + 1 < fParent->fChildren.size(); ++i)
                if (fParent->fChildren[i] == this)
                    next = fParent->fChildren[i + 1];
        Give(out, next);
    }
    void GetParent(ITreeElement** out) override { Give(out, fParent); }
    void GetHotPoint(TVector3& hotPoint) override { hotPoint = fHotPoint; }
    void GetBoundingBox(TBBox3D& box, int32_t, bool) override { box = fBox; }
    void GetNameScratch(TMCString& text) override { text = "scratch"; }
    void GetGlobalTransform(TTransform3D& transform) override { transform = fTransform; }
    void GetTreeTransform(TTreeTransform& transform) override { transform = fTreeTransform; }

    void GetLightTransform(TTransform3D& transform) override { transform = fLightTransform; }
    void GetLightParameter(int32_t, float& value) override { value = fBrightness; }
    void GetDirection(const TVector3& point, TVector3& direction, float& distance) override
    {
        direction = fLightTransform.fTranslation - point;
        distance = static_cast<float>(Length(direction));
    }
    void GetLightState(LightState& state) override { state = fLightState; }

    bool CastRay(RayHitParams& params) override { return fOnRay && fOnRay(params); }

    static void Give(ITreeElement** out, FakeElement* element)
    {
        if (element != nullptr)
            element->AddRef();
        *out = element;
    }
};

/// A test's scene: a root named "Root" and what the test adds below it.
class FakeScene final : public fernwick::Component<IScene, IID_IMCUnknown> {
public:
    FakeScene() { fRoot = &Add("Root", nullptr); }

    /// Adds an element as the last child of `parent`; the scene keeps it alive.
    FakeElement& Add(const std::string& name, FakeElement* parent)
    {
        fElements.push_back(fernwick::MakeCounted<FakeElement>(name));
        FakeElement& element = *fElements.back();
        element.fScene = this;
        element.fParent = parent;
        if (parent != nullptr)
            parent->fChildren.push_back(&element);
        return element;
    }
    FakeElement& Add(const std::string& name) { return Add(name, fRoot); }

    FakeElement* fRoot;
    std::string fCameraName = "Camera";
    bool fHasRenderingModule = true;
    bool fHasRoot = true;
    int fLookups = 0;

    void GetRootGroup(IGroup** out) override;
    void GetTreeByName(ITreeElement** out, const TMCString& name) override
    {
        ++fLookups;
        *out = nullptr;
        for (const auto& element : fElements)
            if (*out == nullptr && name == std::string_view(element->fName))
                FakeElement::Give(out, element.Get());
    }
    void GetRenderingModule(IRenderingModule** out) override;

private:
    std::vector<MCCountedPtr<FakeElement>> fElements;
};

/// The root as the scene hands it out, queried for `ITreeElement`.
class FakeGroup final : public fernwick::Component<IGroup, IID_IMCUnknown> {
public:
    explicit FakeGroup(FakeElement& root) : fRoot(root) { }

    MCErr QueryInterface(const GUID& id, void** out) override { return fRoot.QueryInterface(id, out); }

private:
    FakeElement& fRoot;
};

class FakeRenderingModule final : public fernwick::Component<IRenderingModule, IID_IMCUnknown> {
public:
    explicit FakeRenderingModule(std::string camera) : fCamera(std::move(camera)) { }

    void GetRenderingCameraName(TMCString& name) override { name = fCamera; }

private:
    std::string fCamera;
};

inline void FakeElement::GetScene(IScene** out)
{
    if (fScene != nullptr)
        fScene->AddRef();
    *out = fScene;
}

inline void FakeScene::GetRootGroup(IGroup** out) { *out = fHasRoot ? new FakeGroup(*fRoot) : nullptr; }

inline void FakeScene::GetRenderingModule(IRenderingModule** out)
{
    *out = fHasRenderingModule ? new FakeRenderingModule(fCameraName) : nullptr;
}
