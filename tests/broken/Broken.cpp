// A module that does all rightly but for one class, which it takes from the name of its own file: SwappedKey.so makes
// SwappedKey for Key. So one module, under many names, is all that has to be built.
#include <atomic>
#include <cfenv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <span>
#include <string_view>
#include <unistd.h>
#ifdef __x86_64__
#include <xmmintrin.h>
#endif

#define final // so that there can be broken ones
#include "frame/HostServices.h"
#include "host/library/Component.h"
#include "module/ClassRoutes.h"
#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include "shaders/optics/Fresnel.h"
#include "shaders/optics/Iridescent.h"
#include "shaders/patterns/Drip.h"
#include "shaders/patterns/Spoke.h"
#include "shaders/patterns/Weave.h"
#include "shaders/scene/Lit.h"
#include "shaders/scene/Proximity.h"
#include "shaders/scene/Translucent.h"
#undef final

namespace {

/// Two operations have changed places.
class SwappedKey : public Key {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        return Key::ShadeColor(reinterpret_cast<TMCColorRGBA&>(value), fullArea, in);
    }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        return Key::ShadeValue(color.fRed, fullArea, in);
    }
};

/// A query counts twice.
class LeakyKey : public Key {
public:
    MCErr QueryInterface(const GUID& id, void** out) override
    {
        const MCErr status = Key::QueryInterface(id, out);
        if (status == MC_S_OK)
            AddRef();
        return status;
    }
};

/// A query doesn't look whether there is a place for its answer.
class HastyQueryKey : public Key {
public:
    MCErr QueryInterface(const GUID& id, void** out) override
    {
        *out = nullptr;
        return Key::QueryInterface(id, out);
    }
};

/// Memory is taken for each sample, and not given back.
class HoardingKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        static_cast<void>(AllocateBlock(8));
        return Key::ShadeColor(color, fullArea, in);
    }
};

/// One unusual number is the end of the process.
class CrashingKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        if (fParams.fBlueRange[1] == HUGE_VALF)
            std::abort();
        return Key::ShadeColor(color, fullArea, in);
    }
};

/// One unusual number makes a loop endless.
class EndlessKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        volatile float level = fParams.fKeyColor.fAlpha;
        while (level >= 1e30f)
            level = level / 1;
        return Key::ShadeColor(color, fullArea, in);
    }
};

/// The answer stands on what the memory held.
class UnsetKey : public Key {
public:
    UnsetKey() { }
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        Key::ShadeColor(color, fullArea, in);
        color.fAlpha = *const_cast<volatile float*>(&fUnset);
        return 1;
    }

private:
    float fUnset;
};

/// The answer before the first change stands on what the memory held.
class UnreadyDrip : public Drip {
public:
    UnreadyDrip() { }
    MCErr ExtensionDataChanged() override
    {
        fLevel = 0;
        return Drip::ExtensionDataChanged();
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        Drip::ShadeValue(value, fullArea, in);
        value += *const_cast<volatile float*>(&fLevel);
        return 1;
    }

private:
    float fLevel;
};

/// Every sample goes through one place.
class SharedSampleDrip : public Drip {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        static ShadingIn gSample;
        *const_cast<volatile float*>(&gSample.fUV[0]) = in.fUV[0];
        *const_cast<volatile float*>(&gSample.fUV[1]) = in.fUV[1];
        return Drip::ShadeValue(value, fullArea, gSample);
    }
};

/// The colour waits in one place while the plugged shader answers.
template <class Place> class WaitingColorKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        Place::gKeyColor = fParams.fKeyColor;
        const float coverage = Key::ShadeColor(color, fullArea, in);
        color.fRed += Place::gKeyColor.fRed - fParams.fKeyColor.fRed;
        return coverage;
    }
};

struct OnePlace {
    static inline TMCColorRGBA gKeyColor;
};
using SharedColorKey = WaitingColorKey<OnePlace>;

struct PlaceOfThread {
    static inline thread_local TMCColorRGBA gKeyColor;
};
using ThreadColorKey = WaitingColorKey<PlaceOfThread>;

/// What one object derives from its record serves all.
class SharedLevelDrip : public Drip {
public:
    MCErr ExtensionDataChanged() override
    {
        gBaseLevel = fParams.fBaseLevel;
        return Drip::ExtensionDataChanged();
    }
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        Drip::ShadeValue(value, fullArea, in);
        value += gBaseLevel - fParams.fBaseLevel;
        return 1;
    }

private:
    static inline float gBaseLevel = 0;
};

/// A default of the record is another one.
class OtherDefaultSpoke : public Spoke {
public:
    OtherDefaultSpoke() { fParams.fCount += 1; }
};

/// An emptied slot goes on being asked.
class KeepingKey : public Key {
public:
    MCErr ExtensionDataChanged() override
    {
        if (fParams.fSubShader)
            fKept = fParams.fSubShader;
        SubShaderSlot held = fParams.fSubShader;
        fParams.fSubShader = fKept;
        const MCErr status = Key::ExtensionDataChanged();
        fParams.fSubShader = held;
        return status;
    }

private:
    SubShaderSlot fKept;
};

/// An emptied layer is forgotten.
class ForgettingMixer : public Super_mixer {
public:
    MCErr ExtensionDataChanged() override
    {
        for (int slot = 0; slot < kMixerSlotCount; ++slot)
            if (!fParams.fSubShader[slot])
                fShader[slot] = nullptr;
        return Super_mixer::ExtensionDataChanged();
    }
};

/// The same where what is kept is the class's own: what is no shader takes its place.
class ForgettingControl : public MultiPassControl {
public:
    MCErr ExtensionDataChanged() override
    {
        if (fParams.fSubShader)
            return MultiPassControl::ExtensionDataChanged();
        fParams.fSubShader = fNothing.Get();
        MultiPassControl::ExtensionDataChanged();
        fParams.fSubShader = nullptr;
        return MC_S_OK;
    }

private:
    class Nothing : public fernwick::Component<IMCUnknown, IID_IMCUnknown> { };
    MCCountedPtr<Nothing> fNothing = fernwick::MakeCounted<Nothing>();
};

/// The record is tidied while shading.
class TidyingSpoke : public Spoke {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        if (!(fParams.fSoftness >= 0))
            fParams.fSoftness = 0;
        return Spoke::ShadeValue(value, fullArea, in);
    }
};

/// The record is tidied on a change, for the host to find another one than it wrote.
class ClampingGray : public Gray {
public:
    MCErr ExtensionDataChanged() override
    {
        if (fParams.fSaturationShift > 100)
            fParams.fSaturationShift = 100;
        return Gray::ExtensionDataChanged();
    }
};

/// The sample comes back with other coordinates.
class MovingSpoke : public Spoke {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        in.fUV[0] -= std::floor(in.fUV[0]);
        return Spoke::ShadeValue(value, fullArea, in);
    }
};

/// The sample comes back as if a surface had been asked for.
class MaskingKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in) override
    {
        in.fChannelMask = kAllChannels;
        return Key::ShadeColor(color, fullArea, in);
    }
};

/// A result is left as it was.
class FlaglessKey : public Key {
public:
    float ShadeColor(TMCColorRGBA& color, bool&, ShadingIn& in) override
    {
        bool fullArea = false;
        return Key::ShadeColor(color, fullArea, in);
    }
};

/// The same on one way through the operation.
class ValuelessDrip : public Drip {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        const float before = value;
        Drip::ShadeValue(value, fullArea, in);
        if (value == fParams.fBaseLevel)
            value = before;
        return 1;
    }
};

/// A vector is taken for the normal, which it happens to be in most hosts.
class VectorlessDrip : public Drip {
public:
    float ShadeVector(TVector3&, ShadingIn&) override { return 1; }
};

/// Of a plugged surface only the colours are handed on.
class ColorsOnlyGray : public Gray {
public:
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        ShadingOut whole = result;
        const int32_t produced = Gray::ShadeSurface(whole, in);
        result.fColor = whole.fColor;
        result.fSecondColor = whole.fSecondColor;
        result.fThirdColor = whole.fThirdColor;
        result.fFourthColor = whole.fFourthColor;
        return produced;
    }
};

/// What stays the caller's is told to be covered.
class CoveringShift : public Coordinate_Shift {
public:
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        result.fCoverage = 1;
        return Coordinate_Shift::ShadeSurface(result, in);
    }
};

/// The same in a class that has no surface.
class CoveringKey : public Key {
public:
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        result.fCoverage = 1;
        return Key::ShadeSurface(result, in);
    }
};

/// One field is left out of what a pass without a surface gives.
class VectorlessManager : public MultiPassManager {
public:
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        const TVector3 before = result.fVectorChannel;
        const int32_t produced = MultiPassManager::ShadeSurface(result, in);
        result.fVectorChannel = before;
        return produced;
    }
};

/// The one colour of a bypass comes with a new surface.
class ClearingMixer : public Super_mixer_top {
public:
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override
    {
        ShadingOut whole = result;
        const int32_t produced = Super_mixer_top::ShadeSurface(whole, in);
        if (produced != 0 && fParams.fBypass) {
            const TMCColorRGBA color = whole.fColor;
            whole.SetDefaults();
            whole.fColor = color;
        }
        result = whole;
        return produced;
    }
};

/// Waits for what never comes.
class WaitingKey : public Key {
public:
    int32_t SameParameters(I3DExShader*) override
    {
        for (;;)
            pause();
    }
};

/// All are the same.
class SameKey : public Key {
public:
    int32_t SameParameters(I3DExShader* other) override { return other != nullptr; }
};

/// One parameter is left out of the comparison.
class ForgetfulDrip : public Drip {
public:
    int32_t SameParameters(I3DExShader* other) override
    {
        if (other == nullptr)
            return 0;
        auto& theirs = static_cast<ForgetfulDrip*>(other)->fParams;
        const int32_t waves = theirs.fWaves;
        theirs.fWaves = fParams.fWaves;
        const bool same = SameParams(theirs);
        theirs.fWaves = waves;
        return same;
    }
};

#ifdef __x86_64__
/// Denormal numbers are 0 from the first change on.
class FlushingKey : public Key {
public:
    MCErr ExtensionDataChanged() override
    {
        _mm_setcsr(_mm_getcsr() | 0x8040);
        return Key::ExtensionDataChanged();
    }
};
#endif

/// Rounding is another one for whoever computes next.
class RoundingSpoke : public Spoke {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        Spoke::ShadeValue(value, fullArea, in);
        std::fesetround(FE_TOWARDZERO);
        return 1;
    }
};

/// Tells the world of each change.
class PrintingKey : public Key {
public:
    MCErr ExtensionDataChanged() override
    {
        std::puts("Key has changed");
        return Key::ExtensionDataChanged();
    }
};

/// Complains of numbers that aren't.
class ComplainingSpoke : public Spoke {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        if (std::isnan(in.fUV[0]))
            std::fputs("U is no number\n", stderr);
        return Spoke::ShadeValue(value, fullArea, in);
    }
};

/// A table is made anew on the stack for each sample.
class DeepSpoke : public Spoke {
public:
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override
    {
        volatile float table[12000];
        for (volatile float& entry : table)
            entry = in.fUV[0];
        return Spoke::ShadeValue(value, fullArea, in);
    }
};

/// A class with one fault, and the class whose route it takes.
struct Fault {
    std::string_view name;
    TBasicUnknown* (*genuine)();
    TBasicUnknown* (*broken)();
};

constexpr Fault kFaults[] = {
    {"SwappedKey", &Make<Key>, &Make<SwappedKey>},
    {"LeakyKey", &Make<Key>, &Make<LeakyKey>},
    {"HastyQueryKey", &Make<Key>, &Make<HastyQueryKey>},
    {"HoardingKey", &Make<Key>, &Make<HoardingKey>},
    {"CrashingKey", &Make<Key>, &Make<CrashingKey>},
    {"EndlessKey", &Make<Key>, &Make<EndlessKey>},
    {"UnsetKey", &Make<Key>, &Make<UnsetKey>},
    {"UnreadyDrip", &Make<Drip>, &Make<UnreadyDrip>},
    {"SharedSampleDrip", &Make<Drip>, &Make<SharedSampleDrip>},
    {"SharedColorKey", &Make<Key>, &Make<SharedColorKey>},
    {"ThreadColorKey", &Make<Key>, &Make<ThreadColorKey>},
    {"SharedLevelDrip", &Make<Drip>, &Make<SharedLevelDrip>},
    {"OtherDefaultSpoke", &Make<Spoke>, &Make<OtherDefaultSpoke>},
    {"KeepingKey", &Make<Key>, &Make<KeepingKey>},
    {"ForgettingMixer", &Make<Super_mixer>, &Make<ForgettingMixer>},
    {"ForgettingControl", &Make<MultiPassControl>, &Make<ForgettingControl>},
    {"TidyingSpoke", &Make<Spoke>, &Make<TidyingSpoke>},
    {"ClampingGray", &Make<Gray>, &Make<ClampingGray>},
    {"MovingSpoke", &Make<Spoke>, &Make<MovingSpoke>},
    {"MaskingKey", &Make<Key>, &Make<MaskingKey>},
    {"FlaglessKey", &Make<Key>, &Make<FlaglessKey>},
    {"ValuelessDrip", &Make<Drip>, &Make<ValuelessDrip>},
    {"VectorlessDrip", &Make<Drip>, &Make<VectorlessDrip>},
    {"ColorsOnlyGray", &Make<Gray>, &Make<ColorsOnlyGray>},
    {"CoveringShift", &Make<Coordinate_Shift>, &Make<CoveringShift>},
    {"CoveringKey", &Make<Key>, &Make<CoveringKey>},
    {"VectorlessManager", &Make<MultiPassManager>, &Make<VectorlessManager>},
    {"ClearingMixer", &Make<Super_mixer_top>, &Make<ClearingMixer>},
    {"WaitingKey", &Make<Key>, &Make<WaitingKey>},
    {"SameKey", &Make<Key>, &Make<SameKey>},
    {"ForgetfulDrip", &Make<Drip>, &Make<ForgetfulDrip>},
#ifdef __x86_64__
    {"FlushingKey", &Make<Key>, &Make<FlushingKey>},
#endif
    {"RoundingSpoke", &Make<Spoke>, &Make<RoundingSpoke>},
    {"PrintingKey", &Make<Key>, &Make<PrintingKey>},
    {"ComplainingSpoke", &Make<Spoke>, &Make<ComplainingSpoke>},
    {"DeepSpoke", &Make<Spoke>, &Make<DeepSpoke>},
};

/// The name of the file that this module was loaded from, without folders and ending.
std::string_view OwnName()
{
    Dl_info info{};
    if (dladdr(kFaults, &info) == 0)
        return "";
    const std::string_view path = info.dli_fname;
    const std::string_view file = path.substr(path.rfind('/') + 1);
    return file.substr(0, file.find('.'));
}

template <class Class> TBasicUnknown* MakeOrBreak()
{
    const std::string_view name = OwnName();
    for (const Fault& fault : kFaults)
        if (fault.name == name && fault.genuine == &Make<Class>)
            return fault.broken();
    return new Class;
}

} // namespace

/// Found where the link doesn't hide it: a name of the module's own.
extern "C" __attribute__((visibility("default"))) int KeyTalks() { return 1; }

#define Make MakeOrBreak
#include "module/ClassRoutes.cpp"
