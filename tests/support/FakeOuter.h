#pragma once
#include "frame/I3DExShader.h"
#include "frame/IShellDataComponent.h"
#include "frame/IShellShader.h"
#include <vector>

/// An outer object of the host that a test can look into: it aggregates a shader, which it keeps uncounted, and
/// gives as much of the host's faces as the test wants. It lives on the stack.
class FakeOuter final : public IShellShader, public IShellDataComponent {
public:
    I3DExShader* fInner = nullptr; ///< ends with the last reference to this object
    uint32_t fCount = 1;
    std::vector<GUID> fAsked;
    std::vector<uint32_t> fAnswers; ///< of every `Release`, in order

    ShadingFlags fFlags;
    bool fFills = false; ///< fills flags that it is asked for
    TMCColorRGBA fColor = {0, 0, 0, 1};
    bool fEqual = true;
    IShellDataComponent* fComparedWith = nullptr;
    void* fForwarded = nullptr;

    FakeOuter() = default;
    FakeOuter(const FakeOuter&) = delete;
    FakeOuter& operator=(const FakeOuter&) = delete;
    ~FakeOuter()
    {
        if (fInner != nullptr && fCount == 1)
            Release();
    }

    IMCUnknown* Unknown() { return static_cast<IShellShader*>(this); }

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        fAsked.push_back(id);
        *out = nullptr;
        if (SameGuid(id, IID_IMCUnknown) || SameGuid(id, IID_IShellShader))
            *out = static_cast<IShellShader*>(this);
        else if (SameGuid(id, IID_IShellDataComponent))
            *out = static_cast<IShellDataComponent*>(this);
        else
            return kMCNoInterface;
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override { return ++fCount; }
    uint32_t Release() override
    {
        const uint32_t count = --fCount;
        fAnswers.push_back(count);
        if (count == 0 && fInner != nullptr)
            fInner->Release(); // comes back here, and takes the answer 0xFFFFFFFF as its end
        return count;
    }

    void GetShadingFlags(ShadingFlags& flags) override
    {
        if (fFills)
            flags = fFlags;
    }
    int32_t ShadeSurface(ShadingOut&, ShadingIn&) override { return 0; }
    float ShadeValue(float&, bool&, ShadingIn&) override { return 0; }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn&) override
    {
        color = fColor;
        fullArea = true;
        return 0;
    }
    uint32_t GetOutputKinds() override { return 0; }

    bool IsEqualToComponent(IShellDataComponent* other) override
    {
        fComparedWith = other;
        return fEqual;
    }
    void ForwardToComponent(void* a) override { fForwarded = a; }
};
