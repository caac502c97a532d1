// A whole host: opens the library that the command line names, makes a wheel of spokes and draws it in letters.
#include "frame/HostServices.h"
#include "frame/IExClassFactory.h"
#include "module/ClassIDs.h"
#include "module/Exports.h"
#include "shaders/patterns/Spoke.h"
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

struct Memory final
    : IMemoryUtilities { // the one service that the library needs; asked for it, it offers itself
    MCErr QueryInterface(const GUID& id, void** out) override
    {
        *out = SameGuid(id, IID_IMemoryUtilities) ? this : nullptr;
        return *out != nullptr ? MC_S_OK : kMCNoInterface;
    }
    uint32_t AddRef() override { return 1; }
    uint32_t Release() override { return 1; }
    void* AllocateObject(uint32_t size) override { return std::malloc(size); }
    void FreeObject(void* memory) override { std::free(memory); }
    void* AllocateBlock(uint32_t size) override { return std::malloc(size); }
    void FreeBlock(void* memory) override { std::free(memory); }
};

static int Fail(const char* what)
{
    std::fprintf(stderr, "minimal_host: %s\n", what);
    return EXIT_FAILURE;
}

int main(int argc, char** argv)
{
    if (argc != 2)
        return Fail("name the library to load, and nothing else");
    void* const library = dlopen(argv[1], RTLD_NOW);
    if (library == nullptr)
        return Fail(dlerror());
    const auto init = reinterpret_cast<MCDllInitFunction>(dlsym(library, "MCDllInit"));
    const auto classOf = reinterpret_cast<MCDllGetClassObjectFunction>(dlsym(library, "MCDllGetClassObject"));
    const auto cleanUp = reinterpret_cast<MCDllCleanUpFunction>(dlsym(library, "MCDllCleanUp"));
    if (init == nullptr || classOf == nullptr || cleanUp == nullptr)
        return Fail("that is another library: it lacks MCDllInit, MCDllGetClassObject or MCDllCleanUp");
    Memory memory;
    init(&memory);

    void* face;
    if (classOf(kSpokeClassID, IID_IExClassFactory, &face) != MC_S_OK)
        return Fail("the library gives no class factory");
    const auto factory = static_cast<IExClassFactory*>(face);
    if (factory->CreateInstance(nullptr, IID_I3DExShader, &face) != MC_S_OK)
        return Fail("the library makes no Spoke");
    const auto shader = static_cast<I3DExShader*>(face);
    shader->QueryInterface(IID_IExDataExchanger, &face);
    const auto exchanger = static_cast<IExDataExchanger*>(face);
    static_cast<SpokeParams*>(exchanger->GetExtensionDataBuffer())->fCount = 6;
    exchanger->ExtensionDataChanged();

    for (int row = 0; row < 24; ++row) {
        for (int column = 0; column < 48; ++column) {
            ShadingIn in;
            in.fUV = {(column + 0.5f) / 48, 1 - (row + 0.5f) / 24};
            float value = 0;
            bool fullArea = false;
            shader->ShadeValue(value, fullArea, in);
            std::putchar(" .:-=+*#%@"[static_cast<int>(value * 9)]);
        }
        std::putchar('\n');
    }
    exchanger->Release();
    shader->Release();
    factory->Release();
    cleanUp();
    dlclose(library);
}
