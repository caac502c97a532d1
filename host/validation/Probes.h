#pragma once
#include "frame/IShellShader.h"
#include "frame/SceneServices.h"
#include "host/library/Component.h"
#include "host/validation/CallLog.h"
#include "host/validation/Random.h"
#include <string>
#include <vector>

namespace fernwick::validation {

/// Of no interface and no class.
constexpr GUID kUnknownID = {0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

/// References to an object, without changing them.
template <class Object> uint32_t ReferencesOf(Object& object)
{
    object.AddRef();
    return object.Release();
}

/// "references to NAME: expected 1, came 3" when others than its owner hold an object; empty when nobody does.
std::string Held(IMCUnknown& object, const std::string& name);

/// An object that is nothing.
class ProbeUnknown final : public Component<IMCUnknown, IID_IMCUnknown> { };

/// A plugged shader that offers any kinds. Its answers depend on the sample alone, and some are no numbers.
class ProbeShader final : public Component<IShellShader, IID_IShellShader> {
public:
    explicit ProbeShader(uint32_t kinds, uint32_t salt = 0) : fKinds(kinds), fSalt(salt) { }

    /// @param log   takes down all further calls; null for none
    /// @param slot  the number under which they are taken down
    void Listen(CallLog* log, uint32_t slot)
    {
        fLog = log;
        fSlot = slot;
    }

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;
    uint32_t Release() override;
    void GetShadingFlags(ShadingFlags& flags) override;
    uint32_t GetOutputKinds() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override;

private:
    uint32_t fKinds;
    uint32_t fSalt;
    CallLog* fLog = nullptr;
    uint32_t fSlot = 0;

    Random Answers(const ShadingIn& in) const;
    void AnswerColor(TMCColorRGBA& color, bool& fullArea, const ShadingIn& in) const;
    void Connecting(const char* operation, uint64_t with = 0) const;
    template <class Result>
    void Shading(const char* operation, const ShadingIn& in, const Result& result, bool fullArea) const;
};

/// How a host answers the lookups of a scene.
enum class Hospitality {
    kGives,
    kGivesNull,      ///< success and null, wherever an object is asked for
    kLeavesUntouched ///< no out argument is ever written
};

/// A scene: a root, the shaded element and a light, which is also the camera and whatever is asked for by name. All
/// three can be hit by rays.
class ProbeScene final : public IScene, public IGroup, public IRenderingModule {
public:
    /// @param random  makes the numbers of the scene
    ProbeScene(Hospitality hospitality, Random& random);
    virtual ~ProbeScene();

    IMCUnknown* Instance();
    /// Which part of it others than its owner hold; empty for none.
    std::string Held();
    /// @param log  takes down all further calls; null for none
    void Listen(CallLog* log) { fLog = log; }

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;
    uint32_t Release() override;

    void GetRootGroup(IGroup** out) override;
    void GetTreeByName(ITreeElement** out, const TMCString& name) override;
    void GetRenderingModule(IRenderingModule** out) override;
    void GetRenderingCameraName(TMCString& name) override;

    ProbeScene(const ProbeScene&) = delete;
    ProbeScene& operator=(const ProbeScene&) = delete;

private:
    class Element;
    enum Part { kRoot, kShaded, kLight, kScene };

    Hospitality fHospitality;
    CallLog* fLog = nullptr;
    std::atomic<uint32_t> fCount{1};
    std::vector<MCCountedPtr<Element>> fElements;

    void Connecting(const char* operation, uint32_t part, uint64_t with = 0) const;
    void Asked(const char* operation, uint32_t part, uint64_t with = 0) const;
    template <class Face> void Give(Face** out, Face* object) const;
};

} // namespace fernwick::validation
