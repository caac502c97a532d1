#pragma once
#include <cstddef>
#include <cstdint>

/// What a shader asks the host to compute into `ShadingIn`, as bits of `ShadingFlags::fNeeds`.
enum ShadingNeeds : uint16_t {
    kNeedsPointGlobal = 0x0002,
    kNeedsNormalGlobal = 0x0004,
    kNeedsExtraA = 0x0008, ///< a host item that only travels
    kNeedsDerivatives = 0x0010,
    kNeedsUV = 0x0020,
    kNeedsPointLocal = 0x0040,
    kNeedsNormalLocal = 0x0080,
    kNeedsExtraB = 0x0100, ///< a host item that only travels
    kNeedsExtraC = 0x0200, ///< a host item that only travels
};

/// All nine, for shaders that pass their input on and cannot know what will be read.
constexpr uint16_t kNeedsAll = 0x03FE;

/// A shader's answer to `ReportNeeds`. Exchanged byte for byte.
struct ShadingFlags {
    uint16_t fNeeds = 0;               ///< what the caller already set stays
    uint16_t fDependencyBits = 0xFFFF; ///< every shader of the pack writes 0
};
static_assert(sizeof(ShadingFlags) == 4 && offsetof(ShadingFlags, fDependencyBits) == 2);

/// What a shader offers, as the mask that `GetOutputKinds` returns.
enum OutputKinds : int32_t {
    kOutputValue = 2,    ///< `ShadeValue`
    kOutputColor = 4,    ///< `ShadeColor`
    kOutputVector = 8,   ///< `ShadeVector`
    kOutputSurface = 16, ///< `ShadeSurface`
};
