#pragma once
#include "frame/Colors.h"
#include "frame/IMCUnknown.h"
#include "frame/ShadingFlags.h"
#include "frame/ShadingIn.h"
#include "frame/ShadingOut.h"

inline constexpr GUID IID_IShellShader
    = {0x88A44710, 0x1D12, 0x11D2, {0x8F, 0x38, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};

/// The host's wrapper of a plugged shader. It forwards to the extension, with the arguments and results of
/// `I3DExShader`. Reached by `QueryInterface` of what is plugged into a slot, or of an aggregated shader itself.
class IShellShader : public IMCUnknown {
public:
    virtual void GetShadingFlags(ShadingFlags& flags) = 0; ///< fills `flags` as `ReportNeeds` does
    virtual int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) = 0;
    virtual float ShadeValue(float& value, bool& fullArea, ShadingIn& in) = 0;
    virtual float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) = 0;
    virtual uint32_t GetOutputKinds() = 0;

protected:
    ~IShellShader() = default;
};
