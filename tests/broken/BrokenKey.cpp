// Key with one fault: FERNWICK_FAULT names the class that takes its route, and its module does all else rightly.
#include "frame/HostServices.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include <cmath>
#include <cstdlib>
#define final // so that there can be broken ones
#include "shaders/mapping/Key.h"
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

/// Right in itself; its module exports a name of its own.
class TalkativeKey : public Key { };

} // namespace

extern "C" __attribute__((visibility("default"))) int KeyTalks() { return 1; }

#define Key FERNWICK_FAULT
#include "module/ClassRoutes.cpp"
