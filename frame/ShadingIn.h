#pragma once
#include "frame/IMCUnknown.h"
#include "frame/Layout.h"
#include "frame/Vectors.h"

/// What the host knows of one sample. The host owns and fills it; shaders may change it on its way to a
/// sub-shader. Exchanged byte for byte.
struct ShadingIn {
    TVector3 fPointGlobal;           ///< position in world coordinates, scene units
    TVector3 fNormalGlobal;          ///< surface normal in world coordinates
    TVector3 fPointLocal;            ///< position in the coordinates of the shaded object
    TVector3 fNormalLocal;           ///< surface normal in the coordinates of the shaded object
    TVector2 fUV;                    ///< texture coordinates, U then V
    uint8_t fHostDataA[112] = {};    ///< the host's own
    TVector3 fDerivU;                ///< derivative of the surface position along U
    TVector3 fDerivV;                ///< derivative of the surface position along V
    uint8_t fHostDataB[12] = {};     ///< the host's own
    uint32_t fChannelMask = 0;       ///< channels of `ShadingOut` that the last surface evaluation produced
    IMCUnknown* fInstance = nullptr; ///< the scene instance being shaded, not counted; may be null
};
static_assert(offsetof(ShadingIn, fPointGlobal) == 0 && offsetof(ShadingIn, fNormalGlobal) == 12);
static_assert(offsetof(ShadingIn, fPointLocal) == 24 && offsetof(ShadingIn, fNormalLocal) == 36);
static_assert(offsetof(ShadingIn, fUV) == 48 && offsetof(ShadingIn, fHostDataA) == 56);
static_assert(offsetof(ShadingIn, fDerivU) == 168 && offsetof(ShadingIn, fDerivV) == 180);
static_assert(offsetof(ShadingIn, fHostDataB) == 192 && offsetof(ShadingIn, fChannelMask) == 204);
static_assert(offsetof(ShadingIn, fInstance) == 208 && sizeof(ShadingIn) == BySize(216, 212));

/// `fChannelMask` after a surface evaluation of a sub-shader: all eleven channels.
constexpr uint32_t kAllChannels = 2047;
