#include "host/library/Library.h"
#include "host/files/RegularFile.h"
#include "host/library/Module.h"

namespace fernwick {

namespace {

/// Keeps reports from whoever listens, for as long as it lives.
class Silence {
public:
    explicit Silence(DebugService& debug) : fDebug(debug), fListener(std::exchange(debug.fListener, nullptr))
    { }
    ~Silence() { fDebug.fListener = std::move(fListener); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    DebugService& fDebug;
    std::function<void(const Report&)> fListener;
};

[[noreturn]] void Refuse(const std::filesystem::path& path, const std::string& why)
{
    throw LibraryError(std::filesystem::absolute(path).string() + ": " + why
        + "; build or install it, or name another with --library or FERNWICK_LIBRARY");
}

} // namespace

void RequireLibraryFile(const std::filesystem::path& path)
{
    if (const std::string reason = WhyNoFile(path); !reason.empty())
        Refuse(path, "can't be loaded: " + reason);
}

void Library::Closer::operator()(void* handle) const { CloseModule(handle); }

Library::Library(const std::filesystem::path& path, MCCountedPtr<Utilities> utilities)
    : fPath(std::filesystem::absolute(path)), fUtilities(utilities)
{
    RequireLibraryFile(fPath);
    fHandle.reset(OpenModule(fPath));
    if (!fHandle)
        Refuse(fPath, "can't be loaded: " + LastModuleFailure());
    Bind(fInit, "MCDllInit");
    Bind(fCleanUp, "MCDllCleanUp");
    Bind(fInitExceptionTranslator, "MCDllInitExceptionTranslator");
    Bind(fCleanUpExceptionTranslator, "MCDllCleanUpExceptionTranslator");
    Bind(fGetClassObject, "MCDllGetClassObject");
    Bind(fCanUnloadNow, "MCDllCanUnloadNow");
    fInit(fUtilities.Get());
}

Library::Library(const ModuleFunctions& linked, const ModuleFunctions& unrouted)
    : Library(linked, MakeCounted<Utilities>())
{
    fUnrouted.reset(new Library(unrouted, fUtilities));
}

Library::Library(const ModuleFunctions& linked, MCCountedPtr<Utilities> utilities)
    : ModuleFunctions(linked), fUtilities(utilities)
{
    fInit(fUtilities.Get());
}

Library::~Library()
{
    if (HasLiveComponents())
        static_cast<void>(fHandle.release()); // closing would pull the code away from under them
    else
        fCleanUp();
}

template <class Function> void Library::Bind(Function& function, const char* name)
{
    void* const address = FindFunction(fHandle.get(), name);
    if (address == nullptr)
        Refuse(fPath, std::string("is no Fernwick_shaders library: it doesn't export ") + name);
    function = reinterpret_cast<Function>(address);
}

const Library& Library::Unrouted() const
{
    if (!fUnrouted) {
        // It misses the same services as the library did, which is no news to whoever listens by now.
        const Silence silence(fUtilities->Debug());
        fUnrouted = std::make_unique<Library>(
            (fPath.parent_path() / "Fernwick_unrouted").replace_extension(fPath.extension()), fUtilities);
    }
    return *fUnrouted;
}

MCCountedPtr<IExClassFactory> Library::Factory(const GUID& classID) const
{
    MCCountedPtr<IExClassFactory> factory;
    void* face = nullptr;
    if (fGetClassObject(classID, IID_IExClassFactory, &face) == MC_S_OK)
        *factory.Address() = static_cast<IExClassFactory*>(face);
    return factory;
}

MCErr Library::CreateInstance(const GUID& classID, IMCUnknown* outer, const GUID& id, void** out) const
{
    const MCCountedPtr<IExClassFactory> factory = Factory(classID);
    if (factory)
        return factory->CreateInstance(outer, id, out);
    *out = nullptr;
    return kMCNoSuchClass;
}

} // namespace fernwick
