#include "frame/HostServices.h"
#include "frame/DebugReport.h"

IShellUtilities* gShellUtilities = nullptr;
IMemoryUtilities* gMemoryUtilities = nullptr;
IShSafeUtilities* gShSafeUtilities = nullptr;

const GUID kServiceIDs[kServiceCount] = {
    IID_IShellUtilities, // 1
    {0xF7010D64, 0xAB27, 0x11D2, {0x8B, 0x64, 0x00, 0x60, 0x97, 0x0B, 0xC5, 0x21}},
    {0x406FF750, 0x5179, 0x11D2, {0x97, 0xC1, 0x00, 0xA0, 0x24, 0x41, 0x8B, 0x95}},
    {0xD33D0B51, 0x3236, 0x11D2, {0x81, 0x7F, 0x00, 0x60, 0x08, 0x96, 0x53, 0x92}},
    {0x900B69F1, 0x701B, 0x11D0, {0xB2, 0xB5, 0x00, 0xAA, 0x00, 0x4B, 0x60, 0xE7}}, // 5, the clock
    {0x38278AE6, 0x2621, 0x4CB2, {0x8F, 0x0A, 0x79, 0x3C, 0x86, 0xCB, 0x54, 0x7C}},
    IID_IDebugUtilities,  // 7
    IID_IMemoryUtilities, // 8
    IID_IShSafeUtilities, // 9
    {0xF3CA8A60, 0x3F55, 0x11D1, {0xA0, 0x9F, 0x00, 0xAA, 0x00, 0xD3, 0x7E, 0x0B}},
    {0x9AB72E25, 0xD94F, 0x11D1, {0xA0, 0xD5, 0x00, 0xAA, 0x00, 0xD3, 0x07, 0xEB}},
    {0x5FF1E1C2, 0x63C3, 0x11D2, {0xB8, 0x9E, 0x00, 0x10, 0x4B, 0x2C, 0x90, 0x11}},
    {0x5FF1E1C1, 0x63C3, 0x11D2, {0xB8, 0x9E, 0x00, 0x10, 0x4B, 0x2C, 0x90, 0x11}},
    {0x04BC77A0, 0x2E52, 0x11D2, {0x81, 0x7B, 0x00, 0x60, 0x08, 0x96, 0x53, 0x92}},
    {0xEFE46A00, 0x0712, 0x11D2, {0xA0, 0xDE, 0x00, 0xAA, 0x00, 0xD3, 0x07, 0xEB}},
    {0x5C9601AB, 0x7CC3, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}},
    {0x2C3140EC, 0x3EE0, 0x11D2, {0x84, 0x8F, 0x00, 0x60, 0x97, 0x0B, 0xC5, 0x21}},
    {0x2E5D4545, 0xEF33, 0x4DD9, {0xB0, 0x4B, 0x22, 0xB4, 0x3A, 0xD7, 0xE1, 0xF9}},
    {0xAAB261E8, 0x3B4F, 0x442D, {0xB0, 0xD3, 0x90, 0xC9, 0x0B, 0x27, 0xB5, 0x92}},
    {0x4EC6D90B, 0x26B6, 0x4699, {0xAB, 0x9E, 0x33, 0x53, 0x92, 0xB2, 0x2B, 0x33}},
    {0xC4CA810B, 0x651E, 0x11D3, {0xB9, 0x8E, 0x00, 0xA0, 0xC9, 0xD6, 0x65, 0x53}},
};

namespace {

constexpr int32_t kShellService = 1;
constexpr int32_t kDebugService = 7;
constexpr int32_t kMemoryService = 8;
constexpr int32_t kShSafeService = 9;

constexpr int32_t kReleaseOrder[kServiceCount]
    = {10, 5, 8, 7, 9, 4, 3, 2, 1, 6, 17, 16, 15, 14, 13, 12, 11, 21, 18, 19, 20};

constexpr int32_t kDebugSettingCount = 6;

IMCUnknown* gServices[kServiceCount] = {};
uint32_t gHostRecord = 0;
int32_t gDebugSettings[kDebugSettingCount] = {};

void StoreService(int32_t number, IMCUnknown* service)
{
    gServices[number - 1] = service;
    switch (number) {
    case kShellService:
        gShellUtilities = static_cast<IShellUtilities*>(service);
        break;
    case kDebugService:
        gDebugUtilities = static_cast<IDebugUtilities*>(service);
        break;
    case kMemoryService:
        gMemoryUtilities = static_cast<IMemoryUtilities*>(service);
        break;
    case kShSafeService:
        gShSafeUtilities = static_cast<IShSafeUtilities*>(service);
        break;
    default:
        break;
    }
}

/// True, with a report when not, where memory of `size` bytes can be asked for and given back.
bool MemoryServiceTakes(size_t size)
{
    if (gMemoryUtilities == nullptr) {
        DebugReportWide(__FILE__, __LINE__, u"gMemoryUtilities");
        return false;
    }
    if (size > UINT32_MAX) {
        MC_REPORT("size <= UINT32_MAX");
        return false;
    }
    return true;
}

} // namespace

void QueryServices(IMCUnknown* utilities)
{
    for (int32_t number = 1; number <= kServiceCount; ++number) {
        void* service = nullptr;
        utilities->QueryInterface(kServiceIDs[number - 1], &service);
        StoreService(number, static_cast<IMCUnknown*>(service));
    }
}

void ReadHostSettings()
{
    if (gShSafeUtilities != nullptr)
        gShSafeUtilities->GetHostRecord(gHostRecord);
    else
        DebugReportWide(__FILE__, __LINE__, u"gShSafeUtilities");
    if (gDebugUtilities != nullptr)
        for (int32_t index = 0; index < kDebugSettingCount; ++index)
            gDebugSettings[index] = gDebugUtilities->GetDebugSetting(index);
}

void ReleaseServices()
{
    for (const int32_t number : kReleaseOrder) {
        IMCUnknown* const service = gServices[number - 1];
        StoreService(number, nullptr);
        if (service != nullptr)
            service->Release();
    }
}

void* AllocateObject(size_t size)
{
    return MemoryServiceTakes(size) ? gMemoryUtilities->AllocateObject(static_cast<uint32_t>(size)) : nullptr;
}

void FreeObject(void* memory)
{
    if (MemoryServiceTakes(0))
        gMemoryUtilities->FreeObject(memory);
}

void* AllocateBlock(size_t size)
{
    return MemoryServiceTakes(size) ? gMemoryUtilities->AllocateBlock(static_cast<uint32_t>(size)) : nullptr;
}

void FreeBlock(void* memory)
{
    if (MemoryServiceTakes(0))
        gMemoryUtilities->FreeBlock(memory);
}
