#pragma once
#include "frame/SceneServices.h"
#include "host/Component.h"
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace fernwick {

/// One named element of a scene and what hangs below it.
struct ElementDescription {
    std::string fName;
    TVector3 fPosition; ///< in the parent's coordinates, scene units
    TVector3 fRotation; ///< degrees about the parent's X, then Y, then Z axis
    TVector3 fHotPoint; ///< offset from the element's origin
    std::vector<ElementDescription> fChildren;
};

struct SceneDescription {
    std::vector<ElementDescription> fElements;
    ElementDescription fShaded = {"Shaded object", {}, {}, {}, {}}; ///< the instance that samples lie on
    std::string fCamera; ///< the element that the rendering runs from; empty for no rendering module
};

class Scene;

/// A live element. All parts of a scene share the scene's count, so one that a shader holds keeps the scene.
class SceneElement : public ITreeElement {
public:
    SceneElement(Scene& scene, const ElementDescription& description, SceneElement* parent);

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;
    uint32_t Release() override;

    void GetScene(IScene** out) override;
    void GetName(TMCString& name) override { name = fName; }
    void GetFirstChild(ITreeElement** out) override { Give(out, fFirstChild); }
    void GetNextSibling(ITreeElement** out) override { Give(out, fNextSibling); }
    void GetParent(ITreeElement** out) override { Give(out, fParent); }
    void GetHotPoint(TVector3& hotPoint) override { hotPoint = fHotPoint; }
    /// An element without a shape has the box of its origin, in world space.
    void GetBoundingBox(TBBox3D& box, int32_t mode, bool flag) override;
    void GetNameScratch(TMCString& text) override { GetName(text); }
    void GetGlobalTransform(TTransform3D& transform) override { transform = fTransform; }
    void GetTreeTransform(TTreeTransform& transform) override;

    const std::string& Name() const { return fName; }
    const TTransform3D& Transform() const { return fTransform; } ///< to world space

    SceneElement(const SceneElement&) = delete;
    SceneElement& operator=(const SceneElement&) = delete;
    virtual ~SceneElement() = default;

private:
    friend class Scene;

    Scene& fScene;
    std::string fName;
    TTransform3D fTransform;
    TVector3 fHotPoint;
    SceneElement* fParent;
    SceneElement* fFirstChild = nullptr;
    SceneElement* fLastChild = nullptr;
    SceneElement* fNextSibling = nullptr;

    static void Give(ITreeElement** out, SceneElement* element);
};

/// A live scene: a root named "Scene", below it the described elements and, last, the shaded object. It never
/// changes, so any number of threads may ask it. Nothing in it allocates once it is made.
class Scene final : public Component<IScene, IID_IMCUnknown> {
public:
    explicit Scene(const SceneDescription& description);

    void GetRootGroup(IGroup** out) override;
    /// Of several elements of one name, the first in tree order.
    void GetTreeByName(ITreeElement** out, const TMCString& name) override;
    void GetRenderingModule(IRenderingModule** out) override;

    SceneElement& Root() const { return *fElements.front(); }
    SceneElement& ShadedObject() const { return *fElements.back(); }

private:
    class RootGroup;
    class RenderingModule;

    std::vector<std::unique_ptr<SceneElement>> fElements; // in tree order
    std::map<std::string, SceneElement*, std::less<>> fByName;
    std::unique_ptr<RootGroup> fRootGroup;
    std::unique_ptr<RenderingModule> fRenderingModule; // null without a camera

    void Add(const ElementDescription& description, SceneElement* parent);
    ~Scene() override;
};

} // namespace fernwick
