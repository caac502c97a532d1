#pragma once
#include "frame/Numbers.h"
#include "frame/SceneServices.h"
#include "host/library/Component.h"
#include <functional>
#include <string>
#include <utility>
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
    FakeElement* fNext = nullptr; ///< the next sibling, when it is another than among the parent's children
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
    MCErr fInstanceStatus = MC_S_OK; ///< told beside the instance
    std::function<bool(RayHitParams&)> fOnRay;

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        *out = nullptr;
        if (SameGuid(id, IID_IInstance) && fIsInstance) {
            *out = Noted("IInstance", static_cast<IInstance*>(this));
            AddRef();
            return fInstanceStatus;
        }
        if (SameGuid(id, IID_ILight) && fIsLight)
            *out = Noted("ILight", static_cast<ILight*>(this));
        else if (SameGuid(id, IID_ITreeElement) && fIsElement)
            *out = Noted("ITreeElement", static_cast<ITreeElement*>(this));
        else if (SameGuid(id, IID_IMCUnknown))
            *out = static_cast<ITreeElement*>(this);
        else
            return kMCNoInterface;
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override { return Component::AddRef(); }
    uint32_t Release() override { return Component::Release(); }

    void GetScene(IScene** out) override;
    void GetName(TMCString& name) override { name = *Noted("GetName", &fName); }
    void GetFirstChild(ITreeElement** out) override
    {
        Give(out, Noted("GetFirstChild", fChildren.empty() ? nullptr : fChildren[0]));
    }
    FakeElement* NextSibling() const
    {
        if (fNext == nullptr && fParent != nullptr)
            for (size_t i = 0; i + 1 < fParent->fChildren.size(); ++i)
                if (fParent->fChildren[i] == this)
                    return fParent->fChildren[i + 1];
        return fNext;
    }
    void GetNextSibling(ITreeElement** out) override { Give(out, Noted("GetNextSibling", NextSibling())); }
    void GetParent(ITreeElement** out) override { Give(out, Noted("GetParent", fParent)); }
    void GetHotPoint(TVector3& hotPoint) override { hotPoint = *Noted("GetHotPoint", &fHotPoint); }
    void GetBoundingBox(TBBox3D& box, int32_t mode, bool flag) override
    {
        box = *Noted(mode == 2 && flag ? "GetBoundingBox(2, true)" : "GetBoundingBox", &fBox);
    }
    void GetNameScratch(TMCString& text) override { text = Noted("GetNameScratch", "scratch"); }
    void GetGlobalTransform(TTransform3D& transform) override
    {
        transform = *Noted("GetGlobalTransform", &fTransform);
    }
    void GetTreeTransform(TTreeTransform& transform) override
    {
        transform = *Noted("GetTreeTransform", &fTreeTransform);
    }

    void GetLightTransform(TTransform3D& transform) override
    {
        transform = *Noted("GetLightTransform", &fLightTransform);
    }
    void GetLightParameter(int32_t parameter, float& value) override
    {
        value = *Noted(parameter == Code("brit") ? "brit" : "GetLightParameter", &fBrightness);
    }
    void GetDirection(const TVector3& point, TVector3& direction, float& distance) override
    {
        direction = Noted("GetDirection", &fLightTransform)->fTranslation - point;
        distance = static_cast<float>(Length(direction));
    }
    void GetLightState(LightState& state) override { state = *Noted("GetLightState", &fLightState); }

    bool CastRay(RayHitParams& params) override { return *Noted("CastRay", &fOnRay) && fOnRay(params); }

    static void Give(ITreeElement** out, FakeElement* element)
    {
        if (element != nullptr)
            element->AddRef();
        *out = element;
    }

private:
    /// Notes a call in the scene and gives its answer.
    template <class Answer> Answer Noted(const char* call, Answer answer) const;
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
    std::string fCalls; ///< of the scene and its elements, in order

    std::string TakeCalls() { return std::exchange(fCalls, ""); }

    void GetRootGroup(IGroup** out) override;
    void GetTreeByName(ITreeElement** out, const TMCString& name) override
    {
        fCalls += std::string("GetTreeByName(") + name.GetText() + ") ";
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

template <class Answer> Answer FakeElement::Noted(const char* call, Answer answer) const
{
    if (fScene != nullptr)
        fScene->fCalls += fName + '.' + call + ' ';
    return answer;
}

inline void FakeElement::GetScene(IScene** out)
{
    if (fScene != nullptr)
        fScene->AddRef();
    *out = Noted("GetScene", fScene);
}

inline void FakeScene::GetRootGroup(IGroup** out)
{
    fCalls += "GetRootGroup ";
    *out = fHasRoot ? new FakeGroup(*fRoot) : nullptr;
}

inline void FakeScene::GetRenderingModule(IRenderingModule** out)
{
    *out = fHasRenderingModule ? new FakeRenderingModule(fCameraName) : nullptr;
}
