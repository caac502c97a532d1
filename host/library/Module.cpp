#include "host/library/Module.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace fernwick {

#ifdef _WIN32
void* OpenModule(const std::filesystem::path& path) { return LoadLibraryW(path.c_str()); }

void CloseModule(void* handle) { FreeLibrary(static_cast<HMODULE>(handle)); }

void* FindFunction(void* handle, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

bool IsModuleLoaded(const std::filesystem::path& path)
{
    return GetModuleHandleW(std::filesystem::absolute(path).c_str()) != nullptr;
}

std::string LastModuleFailure() { return "system error " + std::to_string(GetLastError()); }
#else
void* OpenModule(const std::filesystem::path& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void CloseModule(void* handle) { dlclose(handle); }

void* FindFunction(void* handle, const char* name) { return dlsym(handle, name); }

bool IsModuleLoaded(const std::filesystem::path& path)
{
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

std::string LastModuleFailure()
{
    const char* const text = dlerror();
    return text != nullptr ? text : "no reason given";
}
#endif

} // namespace fernwick
