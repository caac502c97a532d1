#pragma once
#include "frame/HostServices.h"
#include "host/library/Component.h"
#include <array>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace fernwick {

/// One debug report of the library.
struct Report {
    std::string file; ///< empty when the library gave none
    int32_t line = 0;
    std::string message;
    std::string shader = {}; ///< the title of the shader that was answering; empty when none is known
};

/// The memory service. It counts what is alive, so that a leak is a number, knows when somebody wrote beyond a
/// block, and can refuse.
class MemoryService final : public Component<IMemoryUtilities, IID_IMemoryUtilities> {
public:
    void* AllocateObject(uint32_t size) override { return Allocate(size); }
    void FreeObject(void* memory) override { Free(memory); }
    void* AllocateBlock(uint32_t size) override { return Allocate(size); }
    void FreeBlock(void* memory) override { Free(memory); }

    int64_t LiveBlocks() const { return fLiveBlocks; }
    int64_t LiveBytes() const { return fLiveBytes; }
    int64_t Allocations() const { return fAllocations; } ///< ever asked for, refused ones included

    int64_t DamagedBlocks() const { return fDamagedBlocks; } ///< that were written beyond, seen when freed

    /// The byte that new memory is full of. What an object leaves unset shows as a difference between two.
    void FillWith(uint8_t byte) { fFill = byte; }
    void LeaveUnset() { fFill = kUnset; } ///< new memory stays as the system gives it

    /// Refuses every allocation after the next `count`; a negative number ends the refusing.
    void RefuseAfter(int64_t count) { fUntilRefusal = count; }

private:
    static constexpr int kUnset = -1;

    std::atomic<int64_t> fLiveBlocks{0};
    std::atomic<int64_t> fLiveBytes{0};
    std::atomic<int64_t> fAllocations{0};
    std::atomic<int64_t> fDamagedBlocks{0};
    std::atomic<int64_t> fUntilRefusal{-1};
    std::atomic<int> fFill{0xCD};

    void* Allocate(uint32_t size);
    void Free(void* memory);
};

/// The debug service. It keeps every report and hands it on when asked to.
class DebugService final : public Component<IDebugUtilities, IID_IDebugUtilities> {
public:
    void Report(const char* file, int32_t line, const char* message) override;
    void ReportFloat(const char* file, int32_t line, const char* message, float number) override;
    void ReportWide(const char* file, int32_t line, const char16_t* message) override;
    void ReportWideFloat(const char* file, int32_t line, const char16_t* message, float number) override;
    int32_t GetDebugSetting(int32_t) override { return 0; }

    std::vector<fernwick::Report> Reports() const; ///< so far, in order
    void Clear();

    /// Called with every further report, from whatever thread raised it; empty for none.
    std::function<void(const fernwick::Report&)> fListener;

private:
    mutable std::mutex fMutex;
    std::vector<fernwick::Report> fReports;

    void Keep(const char* file, int32_t line, std::string message);
};

/// The object that `MCDllInit` asks for its twenty-one services. Memory and debug are the host's own; the
/// others are null, as they are to a shader. Any service can be withheld.
class Utilities final : public Component<IMCUnknown, IID_IMCUnknown> {
public:
    MCErr QueryInterface(const GUID& id, void** out) override;

    /// @param number  1 to 21, in the order of `kServiceIDs`
    void Withhold(int32_t number) { fWithheld[static_cast<size_t>(number - 1)] = true; }
    void WithholdAll() { fWithheld.fill(true); }

    /// The services asked for so far, by number; other identifiers aren't noted.
    const std::vector<int32_t>& Asked() const { return fAsked; }

    MemoryService& Memory() { return *fMemory; }
    DebugService& Debug() { return *fDebug; }

private:
    MCCountedPtr<MemoryService> fMemory = MakeCounted<MemoryService>();
    MCCountedPtr<DebugService> fDebug = MakeCounted<DebugService>();
    std::array<bool, kServiceCount> fWithheld{};
    std::vector<int32_t> fAsked;
};

} // namespace fernwick
