#pragma once
#include "frame/IMCUnknown.h"
#include "frame/SceneRecords.h"
#include "frame/TMCString.h"

// The host's scene, as far as shaders ask for it. Every lookup may answer null. The operations run during
// rendering, from the shading threads of the host.

class IScene;

inline constexpr GUID IID_ITreeElement
    = {0xD68FEB00, 0x3A02, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}};
inline constexpr GUID IID_ILight
    = {0xE9F9B4A0, 0x3A02, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}};
inline constexpr GUID IID_IInstance
    = {0xDAF2F700, 0x3A02, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}};

/// An element of the scene tree. Reached by `QueryInterface` of `ShadingIn::fInstance` or of any element.
class ITreeElement : public IMCUnknown {
public:
    virtual void GetScene(IScene** out) = 0; ///< the scene that holds the element
    virtual void GetName(TMCString& name) = 0;
    virtual void GetFirstChild(ITreeElement** out) = 0;
    virtual void GetNextSibling(ITreeElement** out) = 0;
    virtual void GetParent(ITreeElement** out) = 0;
    virtual void GetHotPoint(TVector3& hotPoint) = 0; ///< offset from the element's origin
    virtual void GetBoundingBox(TBBox3D& box, int32_t mode, bool flag) = 0;
    virtual void GetNameScratch(TMCString& text) = 0;
    virtual void GetGlobalTransform(TTransform3D& transform) = 0; ///< rotation and translation in world space
    virtual void GetTreeTransform(TTreeTransform& transform) = 0; ///< the full transform with scale

protected:
    ~ITreeElement() = default;
};

/// The root of a scene tree; a shader queries it for `ITreeElement`.
class IGroup : public IMCUnknown {
protected:
    ~IGroup() = default;
};

/// The rendering module in force. Reached only by `IScene::GetRenderingModule`.
class IRenderingModule : public IMCUnknown {
public:
    virtual void GetRenderingCameraName(TMCString& name) = 0; ///< the camera that the rendering runs from

protected:
    ~IRenderingModule() = default;
};

/// A scene. Reached only by `ITreeElement::GetScene`.
class IScene : public IMCUnknown {
public:
    virtual void GetRootGroup(IGroup** out) = 0;
    virtual void GetTreeByName(ITreeElement** out, const TMCString& name) = 0; ///< of exactly this name
    virtual void GetRenderingModule(IRenderingModule** out) = 0;

protected:
    ~IScene() = default;
};

/// A light. Reached by `QueryInterface` of an `ITreeElement`; an element that is no light gives none.
class ILight : public IMCUnknown {
public:
    /// In world space; the rotation turns (0, 0, -1) into the axis of the light's cone.
    virtual void GetLightTransform(TTransform3D& transform) = 0;
    /// @param parameter  four-character code; the pack asks for "brit", the brightness
    virtual void GetLightParameter(int32_t parameter, float& value) = 0;
    /// From `point` to the light.
    virtual void GetDirection(const TVector3& point, TVector3& direction, float& distance) = 0;
    virtual void GetLightState(LightState& state) = 0;

protected:
    ~ILight() = default;
};

/// A geometric instance. Reached by `QueryInterface` of an `ITreeElement`.
class IInstance : public IMCUnknown {
public:
    /// Intersects one ray with this instance; on a hit fills the record and returns true.
    virtual bool CastRay(RayHitParams& params) = 0;

protected:
    ~IInstance() = default;
};
