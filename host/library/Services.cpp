#include "host/library/Services.h"
#include "host/library/ShaderWrapper.h"
#include <cstdlib>
#include <cstring>

namespace fernwick {

namespace {

constexpr uint64_t kWall = 0x5AFE57A11D0C0DE5;

/// In front of each block: its size and a wall, in a room that keeps the block aligned for any fundamental type.
/// Another wall stands behind the block.
struct alignas(std::max_align_t) BlockHead {
    uint64_t size;
    uint64_t wall = kWall;
};

bool IsWhole(const BlockHead& head)
{
    uint64_t behind;
    std::memcpy(&behind, reinterpret_cast<const char*>(&head + 1) + head.size, sizeof behind);
    return head.wall == kWall && behind == kWall;
}

/// A count orders nothing between threads; else it would hide from the thread sanitizer what isn't ordered.
void Add(std::atomic<int64_t>& count, int64_t number) { count.fetch_add(number, std::memory_order_relaxed); }

/// The reports' wide texts are plain names.
std::string Narrow(const char16_t* text)
{
    std::string narrow;
    for (; *text != 0; ++text)
        narrow += *text < 0x80 ? static_cast<char>(*text) : '?';
    return narrow;
}

} // namespace

void* MemoryService::Allocate(uint32_t size)
{
    Add(fAllocations, 1);
    if (fUntilRefusal == 0)
        return nullptr;
    if (fUntilRefusal > 0)
        --fUntilRefusal;
    void* const memory = std::malloc(sizeof(BlockHead) + size + sizeof kWall);
    if (memory == nullptr)
        return nullptr;
    auto* const head = new (memory) BlockHead{size};
    char* const block = reinterpret_cast<char*>(head + 1);
    if (fFill != kUnset)
        std::memset(block, fFill, size);
    std::memcpy(block + size, &kWall, sizeof kWall);
    Add(fLiveBlocks, 1);
    Add(fLiveBytes, size);
    return block;
}

void MemoryService::Free(void* memory)
{
    if (memory == nullptr)
        return;
    BlockHead* const head = static_cast<BlockHead*>(memory) - 1;
    if (!IsWhole(*head))
        Add(fDamagedBlocks, 1);
    Add(fLiveBlocks, -1);
    Add(fLiveBytes, -static_cast<int64_t>(head->size));
    std::free(head);
}

void DebugService::Report(const char* file, int32_t line, const char* message) { Keep(file, line, message); }

void DebugService::ReportFloat(const char* file, int32_t line, const char* message, float number)
{
    Keep(file, line, std::string(message) + ": " + std::to_string(number));
}

void DebugService::ReportWide(const char* file, int32_t line, const char16_t* message)
{
    Keep(file, line, Narrow(message));
}

void DebugService::ReportWideFloat(const char* file, int32_t line, const char16_t* message, float number)
{
    Keep(file, line, Narrow(message) + ": " + std::to_string(number));
}

std::vector<fernwick::Report> DebugService::Reports() const
{
    const std::lock_guard lock(fMutex);
    return fReports;
}

void DebugService::Clear()
{
    const std::lock_guard lock(fMutex);
    fReports.clear();
}

void DebugService::Keep(const char* file, int32_t line, std::string message)
{
    fernwick::Report report{file != nullptr ? file : "", line, std::move(message)};
    if (const ShaderWrapper* const wrapper = ShaderWrapper::Shading(); wrapper != nullptr)
        report.shader = wrapper->Title();
    if (fListener)
        fListener(report);
    const std::lock_guard lock(fMutex);
    fReports.push_back(std::move(report));
}

MCErr Utilities::QueryInterface(const GUID& id, void** out)
{
    for (int32_t number = 1; number <= kServiceCount; ++number) {
        const auto index = static_cast<size_t>(number - 1);
        if (!SameGuid(id, kServiceIDs[index]))
            continue;
        fAsked.push_back(number);
        *out = nullptr;
        if (fWithheld[index])
            return kMCNoInterface;
        if (fMemory->QueryInterface(id, out) == MC_S_OK)
            return MC_S_OK;
        return fDebug->QueryInterface(id, out);
    }
    return Component::QueryInterface(id, out);
}

} // namespace fernwick
