#include "host/validation/StaticData.h"
#include <csignal>
#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace fernwick::validation {

namespace {

struct Range {
    uintptr_t start;
    uintptr_t end;
};

// What the handler of the signal sees.
uintptr_t gBase = 0;
std::vector<Range> gRanges;
volatile uintptr_t gWritten = 0;

void Protect(int protection)
{
    for (const Range& range : gRanges)
        mprotect(reinterpret_cast<void*>(range.start), range.end - range.start, protection);
}

/// A write to the data is noted, let pass and not noted again. Any other fault comes again without this handler.
void Note(int, siginfo_t* info, void*)
{
    const auto address = reinterpret_cast<uintptr_t>(info->si_addr);
    for (const Range& range : gRanges)
        if (gWritten == 0 && address >= range.start && address < range.end) {
            gWritten = address;
            Protect(PROT_READ | PROT_WRITE);
            return;
        }
    std::signal(SIGSEGV, SIG_DFL);
}

int FindRanges(dl_phdr_info* info, size_t, void* base)
{
    if (info->dlpi_addr != *static_cast<uintptr_t*>(base))
        return 0;
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    uintptr_t readOnlyEnd = 0; // the part that the loader has made read-only comes first
    for (int i = 0; i < info->dlpi_phnum; ++i)
        if (const auto& header = info->dlpi_phdr[i]; header.p_type == PT_GNU_RELRO)
            readOnlyEnd = info->dlpi_addr + header.p_vaddr + header.p_memsz;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& header = info->dlpi_phdr[i];
        if (header.p_type != PT_LOAD || (header.p_flags & PF_W) == 0)
            continue;
        Range range{info->dlpi_addr + header.p_vaddr, info->dlpi_addr + header.p_vaddr + header.p_memsz};
        if (readOnlyEnd > range.start)
            range.start = readOnlyEnd;
        range.start &= ~(page - 1);
        range.end = (range.end + page - 1) & ~(page - 1);
        if (range.start < range.end)
            gRanges.push_back(range);
    }
    return 1;
}

} // namespace

StaticData::StaticData(const std::filesystem::path& module)
{
    void* const handle = dlopen(module.c_str(), RTLD_NOW | RTLD_NOLOAD);
    link_map* map = nullptr;
    if (handle == nullptr || dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
        return;
    gBase = map->l_addr;
    gRanges.clear();
    dl_iterate_phdr(FindRanges, &gBase);
    dlclose(handle);
}

std::optional<uintptr_t> StaticData::WrittenBy(const std::function<void()>& action) const
{
    struct sigaction handler = {};
    handler.sa_sigaction = &Note;
    handler.sa_flags = SA_SIGINFO;
    struct sigaction before = {};
    sigaction(SIGSEGV, &handler, &before);
    gWritten = 0;
    Protect(PROT_READ);
    action();
    Protect(PROT_READ | PROT_WRITE);
    sigaction(SIGSEGV, &before, nullptr);
    return gWritten != 0 ? std::optional(gWritten - gBase) : std::nullopt;
}

} // namespace fernwick::validation
