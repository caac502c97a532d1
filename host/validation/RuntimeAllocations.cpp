#include "host/validation/RuntimeAllocations.h"
#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <iterator>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace fernwick::validation {

namespace {

constexpr const char* kNames[] = {"malloc", "calloc", "realloc", "aligned_alloc", "_Znwm", "_Znam",
    "_ZnwmRKSt9nothrow_t", "_ZnamRKSt9nothrow_t", "_ZnwmSt11align_val_t", "_ZnamSt11align_val_t"};

/// All of them take up to three words and answer a pointer.
using Allocator = void* (*)(size_t, size_t, size_t);

Allocator gOriginals[std::size(kNames)];
std::atomic<int64_t> gAllocations{0};

template <size_t kIndex> void* Counted(size_t a, size_t b, size_t c)
{
    ++gAllocations;
    return gOriginals[kIndex](a, b, c);
}

template <size_t... kIndices> void* CounterOf(size_t index, std::index_sequence<kIndices...>)
{
    constexpr Allocator kCounters[] = {&Counted<kIndices>...};
    return reinterpret_cast<void*>(kCounters[index]);
}

/// What the loader knows of a module.
struct Imports {
    const ElfW(Sym) * symbols = nullptr;
    const char* texts = nullptr;
    const ElfW(Rela) * tables[2] = {};
    size_t sizes[2] = {};
};

Imports ImportsOf(const link_map& map)
{
    Imports imports;
    for (const ElfW(Dyn)* entry = map.l_ld; entry->d_tag != DT_NULL; ++entry) {
        const auto address = reinterpret_cast<const char*>(entry->d_un.d_ptr);
        switch (entry->d_tag) {
        case DT_SYMTAB:
            imports.symbols = reinterpret_cast<const ElfW(Sym)*>(address);
            break;
        case DT_STRTAB:
            imports.texts = address;
            break;
        case DT_RELA:
            imports.tables[0] = reinterpret_cast<const ElfW(Rela)*>(address);
            break;
        case DT_RELASZ:
            imports.sizes[0] = entry->d_un.d_val / sizeof(ElfW(Rela));
            break;
        case DT_JMPREL:
            imports.tables[1] = reinterpret_cast<const ElfW(Rela)*>(address);
            break;
        case DT_PLTRELSZ:
            imports.sizes[1] = entry->d_un.d_val / sizeof(ElfW(Rela));
            break;
        }
    }
    return imports;
}

void Redirect(void** place, const char* name)
{
    for (size_t index = 0; index < std::size(kNames); ++index) {
        if (std::strcmp(name, kNames[index]) != 0)
            continue;
        const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
        const uintptr_t start = reinterpret_cast<uintptr_t>(place) & ~(page - 1);
        if (mprotect(reinterpret_cast<void*>(start), page, PROT_READ | PROT_WRITE) != 0)
            return;
        gOriginals[index] = reinterpret_cast<Allocator>(*place);
        *place = CounterOf(index, std::make_index_sequence<std::size(kNames)>());
    }
}

} // namespace

void WatchRuntimeAllocations(const std::filesystem::path& module)
{
    void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_NOLOAD);
    link_map* map = nullptr;
    if (handle == nullptr || dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
        return;
    const Imports imports = ImportsOf(*map);
    for (const int table : {0, 1})
        for (size_t i = 0; i < imports.sizes[table]; ++i) {
            const ElfW(Rela)& import = imports.tables[table][i];
            const ElfW(Sym)& symbol = imports.symbols[ELF64_R_SYM(import.r_info)];
            if (symbol.st_name != 0)
                Redirect(
                    reinterpret_cast<void**>(map->l_addr + import.r_offset), imports.texts + symbol.st_name);
        }
    dlclose(handle);
}

int64_t RuntimeAllocations() { return gAllocations; }

} // namespace fernwick::validation
