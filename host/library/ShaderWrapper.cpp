#include "host/library/ShaderWrapper.h"
#include "host/library/Library.h"
#include <cstring>

namespace fernwick {

MCCountedPtr<ShaderWrapper> ShaderWrapper::Make(const Library& library, const GUID& classID)
{
    MCCountedPtr<ShaderWrapper> wrapper;
    ShaderWrapper* const outer = new ShaderWrapper(classID);
    *wrapper.Address() = outer;
    void* face = nullptr;
    if (library.CreateInstance(classID, static_cast<IShellShader*>(outer), IID_I3DExShader, &face)
        != MC_S_OK) {
        wrapper = nullptr;
        return wrapper;
    }
    outer->fShader
        = static_cast<I3DExShader*>(face); // its count was taken back by the extension's first release
    outer->fShader->QueryInterface(IID_IExDataExchanger, &face);
    outer->fExchanger = static_cast<IExDataExchanger*>(face);
    outer->Release(); // the query counted the wrapper, which doesn't keep itself alive
    return wrapper;
}

MCErr ShaderWrapper::QueryInterface(const GUID& id, void** out)
{
    if (SameGuid(id, IID_IMCUnknown) || SameGuid(id, IID_IShellShader))
        *out = static_cast<IShellShader*>(this);
    else if (SameGuid(id, IID_IShellDataComponent))
        *out = static_cast<IShellDataComponent*>(this);
    else if (SameGuid(id, IID_I3DExShader) && fShader != nullptr)
        *out = fShader;
    else if (SameGuid(id, IID_IExDataExchanger) && fExchanger != nullptr)
        *out = fExchanger;
    else {
        *out = nullptr; // what the extension doesn't know comes here, so it isn't asked again
        return kMCNoInterface;
    }
    AddRef();
    return MC_S_OK;
}

uint32_t ShaderWrapper::Release()
{
    const uint32_t count = --fCount;
    if (count == 0) {
        if (fShader != nullptr)
            fShader->Release(); // comes back here with the count at 0
        delete this;
    }
    return count;
}

bool ShaderWrapper::IsEqualToComponent(IShellDataComponent* other)
{
    const auto* const wrapper = dynamic_cast<ShaderWrapper*>(other);
    if (wrapper == nullptr || !SameGuid(fClassID, wrapper->fClassID))
        return false;
    return std::memcmp(fExchanger->GetExtensionDataBuffer(), wrapper->fExchanger->GetExtensionDataBuffer(),
               fExchanger->GetParamsBufferSize())
        == 0;
}

} // namespace fernwick
