#pragma once
#include "frame/IShellShader.h"
#include "frame/SceneServices.h"
#include "host/library/Component.h"
#include "host/validation/Random.h"
#include <vector>

namespace fernwick::validation {

/// References to an object, without changing them.
template <class Object> uint32_t ReferencesOf(Object& object)
{
    object.AddRef();
    return object.Release();
}

/// An object that is nothing.
class ProbeUnknown final : public Component<IMCUnknown, IID_IMCUnknown> { };

/// A plugged shader that offers any kinds. Its answers depend on the sample alone, and some are no numbers.
class ProbeShader final : public Component<IShellShader, IID_IShellShader> {
public:
    explicit ProbeShader(uint32_t kinds, uint32_t salt = 0) : fKinds(kinds), fSalt(salt) { }

    void GetShadingFlags(ShadingFlags& flags) override;
    uint32_t GetOutputKinds() override { return fKinds; }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    uint32_t fKinds;
    uint32_t fSalt;

    Random Answers(const ShadingIn& in) const;
};

/// How a host answers the lookups of a scene.
enum class Hospitality {
    kGives,
    kGivesNull,      ///< success and null, wherever an object is asked for
    kLeavesUntouched ///< no out argument is ever written
};

/// A scene: a root, the shaded element and a light, which is also the camera and whatever is asked for by name.
class ProbeScene final : public IScene, public IGroup, public IRenderingModule {
public:
    /// @param random  makes the numbers of the scene
    ProbeScene(Hospitality hospitality, Random& random);
    virtual ~ProbeScene();

    IMCUnknown* Instance();
    /// True when nobody but its owner holds any part of it.
    bool IsLetGo();

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override { return ++fCount; }
    uint32_t Release() override { return --fCount; }

    void GetRootGroup(IGroup** out) override;
    void GetTreeByName(ITreeElement** out, const TMCString& name) override;
    void GetRenderingModule(IRenderingModule** out) override;
    void GetRenderingCameraName(TMCString& name) override;

    ProbeScene(const ProbeScene&) = delete;
    ProbeScene& operator=(const ProbeScene&) = delete;

private:
    class Element;
    enum Part { kRoot, kShaded, kLight };

    Hospitality fHospitality;
    std::atomic<uint32_t> fCount{1};
    std::vector<MCCountedPtr<Element>> fElements;

    template <class Face> void Give(Face** out, Face* object) const;
};

} // namespace fernwick::validation
