#pragma once
#include "frame/I3DExShader.h"
#include "frame/IExDataExchanger.h"
#include "frame/IShellDataComponent.h"
#include "frame/IShellShader.h"
#include "host/library/Component.h"
#include <string>
#include <utility>

namespace fernwick {

class Library;

/// The host's object around a shader of the library: it aggregates the extension and gives `IShellShader` and
/// `IShellDataComponent`. Plugged into slots, and queried for `I3DExShader` and `IExDataExchanger`, which it has
/// from the extension.
///
/// The extension counts through this object, which keeps its faces uncounted. With the last reference gone the
/// wrapper releases the extension once more; that call comes back to `Release`, whose answer 0xFFFFFFFF lets
/// the extension destroy itself.
class ShaderWrapper final : public IShellShader, public IShellDataComponent {
public:
    /// Makes an object of the class inside a wrapper; null when the library doesn't make it.
    static MCCountedPtr<ShaderWrapper> Make(const Library& library, const GUID& classID);

    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override { return ++fCount; }
    uint32_t Release() override;

    void GetShadingFlags(ShadingFlags& flags) override { fShader->ReportNeeds(flags); }
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        const Turn turn(this);
        return fShader->ShadeSurface(result, in);
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        const Turn turn(this);
        return fShader->ShadeValue(value, fullArea, in);
    }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        const Turn turn(this);
        return fShader->ShadeColor(color, fullArea, in);
    }
    uint32_t GetOutputKinds() override { return static_cast<uint32_t>(fShader->GetOutputKinds()); }

    /// True for a wrapper of the same class whose record holds the same bytes.
    bool IsEqualToComponent(IShellDataComponent* other) override;
    void ForwardToComponent(void* a) override { fForwarded = a; }

    I3DExShader& Shader() { return *fShader; }
    IExDataExchanger& Exchanger() { return *fExchanger; }
    void* Forwarded() const { return fForwarded; } ///< what `ForwardToComponent` last took

    /// The parameter record, as the class lays it out.
    template <class Params> Params& Record()
    {
        return *static_cast<Params*>(fExchanger->GetExtensionDataBuffer());
    }

    /// What users know the shader by, for reports; nothing until it is told.
    const std::string& Title() const { return fTitle; }
    void SetTitle(std::string title) { fTitle = std::move(title); }

    /// Of a shader to answer on this thread, while it lives. Calls through wrappers take their turn by themselves;
    /// whoever calls the extension takes it for as many calls as he likes.
    class Turn {
    public:
        explicit Turn(const ShaderWrapper* wrapper) : fBefore(std::exchange(gShading, wrapper)) { }
        ~Turn() { gShading = fBefore; }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        const ShaderWrapper* fBefore;
    };

    /// The wrapper whose shader has its turn on this thread; null outside of any.
    static const ShaderWrapper* Shading() { return gShading; }

    ShaderWrapper(const ShaderWrapper&) = delete;
    ShaderWrapper& operator=(const ShaderWrapper&) = delete;

private:
    static inline constinit thread_local const ShaderWrapper* gShading = nullptr;

    std::atomic<uint32_t> fCount{1};
    GUID fClassID;
    I3DExShader* fShader = nullptr;         // not counted
    IExDataExchanger* fExchanger = nullptr; // not counted
    void* fForwarded = nullptr;
    std::string fTitle;

    explicit ShaderWrapper(const GUID& classID) : fClassID(classID) { }
    ~ShaderWrapper() = default;
};

} // namespace fernwick
