#include "host/library/Module.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <link.h>
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
namespace {

thread_local std::string gFailure; // of the file that was opened last

/// What the system says of the load that has just failed, without the name of the file.
std::string ReasonOf(const std::filesystem::path& path)
{
    const char* const told = dlerror();
    const std::string text = told != nullptr ? told : "no reason given";
    const std::string name = path.string() + ": ";
    return text.starts_with(name) ? text.substr(name.size()) : text;
}

} // namespace

std::string DamageOf(const std::filesystem::path& path)
{
    std::error_code failure;
    const uintmax_t size = std::filesystem::file_size(path, failure);
    std::ifstream stream(path, std::ios::binary);
    ElfW(Ehdr) head{};
    constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (failure || !stream.read(reinterpret_cast<char*>(&head), sizeof head)
        || std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 || head.e_ident[EI_CLASS] != kClass)
        return "";
    for (size_t i = 0; i < head.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        stream.seekg(static_cast<std::streamoff>(head.e_phoff + i * head.e_phentsize));
        const bool isRead = static_cast<bool>(stream.read(reinterpret_cast<char*>(&segment), sizeof segment));
        const bool isMapped = segment.p_type == PT_LOAD;
        if (!isRead || (isMapped && (segment.p_offset > size || segment.p_filesz > size - segment.p_offset)))
            return "the file is cut off after " + std::to_string(size) + " bytes";
    }
    return "";
}

void* OpenModule(const std::filesystem::path& path)
{
    gFailure = DamageOf(path);
    void* const handle = gFailure.empty() ? dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (handle == nullptr && gFailure.empty())
        gFailure = ReasonOf(path);
    return handle;
}

void CloseModule(void* handle) { dlclose(handle); }

void* FindFunction(void* handle, const char* name) { return dlsym(handle, name); }

bool IsModuleLoaded(const std::filesystem::path& path)
{
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

std::string LastModuleFailure() { return gFailure; }
#endif

} // namespace fernwick
