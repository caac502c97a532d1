#pragma once
#include "frame/IExClassFactory.h"
#include "host/library/Services.h"
#include "module/Exports.h"
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace fernwick {

/// A library that can't be opened, or isn't one of this kind. The text names the file and the remedy.
class LibraryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws `LibraryError` when there is no file to load at a path. It isn't opened.
void RequireLibraryFile(const std::filesystem::path& path);

/// The six functions of a module.
struct ModuleFunctions {
    MCDllInitFunction fInit = nullptr;
    MCDllCleanUpFunction fCleanUp = nullptr;
    MCDllInitExceptionTranslatorFunction fInitExceptionTranslator = nullptr;
    MCDllCleanUpExceptionTranslatorFunction fCleanUpExceptionTranslator = nullptr;
    MCDllGetClassObjectFunction fGetClassObject = nullptr;
    MCDllCanUnloadNowFunction fCanUnloadNow = nullptr;
};

/// The built module, opened by path and initialised, with its functions for those who drive them by themselves. It
/// cleans up and closes the module when it goes; what was made of it must be gone by then, and a module with live
/// components is left open rather than pulled away.
class Library : public ModuleFunctions {
public:
    /// Opens and initialises the module at `path`. Throws `LibraryError`.
    explicit Library(
        const std::filesystem::path& path, MCCountedPtr<Utilities> utilities = MakeCounted<Utilities>());
    /// Initialises a module that is linked into the program, where none can be opened.
    /// @param unrouted  what stands for `Fernwick_unrouted`, linked too
    Library(const ModuleFunctions& linked, const ModuleFunctions& unrouted);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    const std::filesystem::path& Path() const { return fPath; }
    Utilities& HostUtilities() { return *fUtilities; }
    bool HasLiveComponents() const { return fCanUnloadNow() != 0; }

    /// The module `Fernwick_unrouted` beside this one, which makes the classes that the library has no route to, for
    /// trying them out. Opened with the first call; for one thread at a time. Throws `LibraryError`.
    const Library& Unrouted() const;

    /// The factory of a class; null when the library refuses.
    MCCountedPtr<IExClassFactory> Factory(const GUID& classID) const;

    /// Makes an object with the class's factory and stores its face `id`.
    MCErr CreateInstance(const GUID& classID, IMCUnknown* outer, const GUID& id, void** out) const;

private:
    struct Closer {
        void operator()(void* handle) const;
    };

    std::filesystem::path fPath;
    MCCountedPtr<Utilities> fUtilities;
    std::unique_ptr<void, Closer> fHandle;
    mutable std::unique_ptr<Library> fUnrouted;

    Library(const ModuleFunctions& linked, MCCountedPtr<Utilities> utilities);
    template <class Function> void Bind(Function& function, const char* name);
};

} // namespace fernwick
