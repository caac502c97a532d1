#pragma once
#include "frame/SceneServices.h"
#include "host/library/Component.h"
#include "host/scene/Instance.h"
#include "host/scene/Light.h"
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

/// A camera looks along its element's -Z axis, with Y up.
struct CameraDescription {
    float fFieldOfView = 40; ///< from the lower to the upper edge of the picture, degrees
};

/// How an element with a shape is rendered. What isn't set comes from the parent.
struct LookDescription {
    std::optional<std::string> fShader = {};    ///< of the document; without any, the output
    std::optional<std::string> fOwnShader = {}; ///< of its own shape alone, before the other
    std::optional<bool> fLit = {};              ///< by a lamp at the camera; without any, the colour as it is
};

/// One named element of a scene and what hangs below it.
struct ElementDescription {
    std::string fName = {};
    TTransform3D fPlace = {};                       ///< in the parent's coordinates, scene units
    TVector3 fScale = {1, 1, 1};                    ///< told by `GetTreeTransform`; shapes have it in them
    TVector3 fHotPoint = {};                        ///< offset from the element's origin
    std::shared_ptr<const Geometry> fGeometry = {}; ///< null without a shape
    std::vector<std::string> fMaterials = {};       ///< names, of a shape out of a file
    size_t fUVSets = 0;                             ///< that the file has for all of the shape
    std::optional<LightDescription> fLight = {};
    std::optional<CameraDescription> fCamera = {};
    LookDescription fLook = {};
    std::vector<ElementDescription> fChildren = {};
};

struct SceneDescription {
    std::vector<ElementDescription> fElements = {};
    std::filesystem::path fFile = {}; ///< that the first elements are from; empty for none
    size_t fFileElements = 0;         ///< how many these are, without what lies below them
    ElementDescription fShaded = {.fName = "Shaded object"}; ///< the instance that baked samples lie on
    std::string fCamera = {}; ///< the element that the rendering runs from; empty for no rendering module
    TMCColorRGBA fBackground = {0, 0, 0, 0}; ///< of rendered pictures
    std::vector<std::string> fNotices = {};  ///< what a file lacked and what was done about it
};

/// The elements with a camera, in tree order. Scenes are rendered from the first unless told otherwise.
std::vector<std::string> CameraNames(const SceneDescription& scene);

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
    /// Of its shape and of all shapes below it, in world space; without any, of its origin.
    void GetBoundingBox(TBBox3D& box, int32_t mode, bool flag) override;
    void GetNameScratch(TMCString& text) override { GetName(text); }
    void GetGlobalTransform(TTransform3D& transform) override { transform = fTransform; }
    void GetTreeTransform(TTreeTransform& transform) override;

    const std::string& Name() const { return fName; }
    const TTransform3D& Transform() const { return fTransform; }                ///< to world space
    const Instance* Shape() const { return fInstance ? &*fInstance : nullptr; } ///< null without a shape
    const std::optional<CameraDescription>& Camera() const { return fCamera; }
    const LookDescription& Look() const { return fLook; }
    SceneElement* Parent() const { return fParent; }

    /// Moves the element and everything below it, in world space. Not while any thread shades; what is asked
    /// afterwards sees the new place. Pictures are rendered from the places at their start.
    void MoveBy(const TVector3& offset);

    SceneElement(const SceneElement&) = delete;
    SceneElement& operator=(const SceneElement&) = delete;
    virtual ~SceneElement() = default;

private:
    friend class Scene;

    Scene& fScene;
    std::string fName;
    TTransform3D fTransform;
    TVector3 fScale;
    TVector3 fHotPoint;
    std::optional<CameraDescription> fCamera;
    LookDescription fLook; // with what the parent has
    std::optional<Light> fLight;
    std::optional<Instance> fInstance;
    SceneElement* fParent;
    SceneElement* fFirstChild = nullptr;
    SceneElement* fLastChild = nullptr;
    SceneElement* fNextSibling = nullptr;

    void AddShapesTo(TBBox3D& box) const;
    static void Give(ITreeElement** out, SceneElement* element);
};

/// A live scene: a root named "Scene", below it the described elements and, if wanted, as the last one the shaded
/// object. Any number of threads may ask it. Nothing in it allocates once it is made, but for the curvature of a
/// mesh with the first ray.
class Scene final : public Component<IScene, IID_IMCUnknown> {
public:
    enum class Shaded { kLast, kNone };

    explicit Scene(const SceneDescription& description, Shaded shaded = Shaded::kLast);

    void GetRootGroup(IGroup** out) override;
    /// Of several elements of one name, the first in tree order.
    void GetTreeByName(ITreeElement** out, const TMCString& name) override;
    void GetRenderingModule(IRenderingModule** out) override;

    /// The camera that the rendering module tells; empty without one.
    const std::string& CameraName() const { return fCameraName; }
    SceneElement& Root() const { return *fElements.front(); }
    SceneElement& ShadedObject() const { return *fElements.back(); } ///< where there is one
    /// In tree order.
    const std::vector<std::unique_ptr<SceneElement>>& Elements() const { return fElements; }
    /// Those with a shape, in tree order.
    const std::vector<SceneElement*>& Shapes() const { return fShapes; }

private:
    class RootGroup;
    class RenderingModule;

    std::vector<std::unique_ptr<SceneElement>> fElements; // in tree order
    std::vector<SceneElement*> fShapes;
    std::map<std::string, SceneElement*, std::less<>> fByName;
    std::string fCameraName;
    std::unique_ptr<RootGroup> fRootGroup;
    std::unique_ptr<RenderingModule> fRenderingModule; // null without a camera

    void Add(const ElementDescription& description, SceneElement* parent);
    ~Scene() override;
};

} // namespace fernwick
