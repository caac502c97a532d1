#pragma once
#include "frame/IMCUnknown.h"
#include <cstddef>

inline constexpr GUID IID_IMemoryUtilities
    = {0x031DD1DB, 0x024E, 0x11D2, {0x8F, 0x2E, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};
inline constexpr GUID IID_IDebugUtilities
    = {0x5FF1E1C0, 0x63C3, 0x11D2, {0xB8, 0x9E, 0x00, 0x10, 0x4B, 0x2C, 0x90, 0x11}};
inline constexpr GUID IID_IShellUtilities
    = {0x031DD1DA, 0x024E, 0x11D2, {0x8F, 0x2E, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};
inline constexpr GUID IID_IShSafeUtilities
    = {0xB0010A34, 0xA52D, 0x443C, {0x85, 0x53, 0x5A, 0x93, 0xCD, 0xC2, 0xFD, 0xAE}};

/// The host's memory service. It may answer null when it has no memory to give; memory is aligned for any
/// fundamental type.
class IMemoryUtilities : public IMCUnknown {
public:
    virtual void* AllocateObject(uint32_t size) = 0; ///< memory of a component, in bytes
    virtual void FreeObject(void* memory) = 0;
    virtual void* AllocateBlock(uint32_t size) = 0; ///< memory of an array, in bytes
    virtual void FreeBlock(void* memory) = 0;       ///< null is accepted and does nothing

protected:
    ~IMemoryUtilities() = default;
};

/// The host's debug service. Texts live for the call only; `file` may be null.
class IDebugUtilities : public IMCUnknown {
public:
    virtual void Report(const char* file, int32_t line, const char* message) = 0;
    virtual void ReportFloat(const char* file, int32_t line, const char* message, float number) = 0;
    virtual void ReportWide(const char* file, int32_t line, const char16_t* message) = 0;
    virtual void ReportWideFloat(const char* file, int32_t line, const char16_t* message, float number) = 0;
    virtual int32_t GetDebugSetting(int32_t index) = 0; ///< settings 0 to 5, read once by `MCDllInit`

protected:
    ~IDebugUtilities() = default;
};

/// The host's shell service. The shaders call none of its operations.
class IShellUtilities : public IMCUnknown {
protected:
    ~IShellUtilities() = default;
};

/// The host's safety service, asked at `MCDllInit` only.
class IShSafeUtilities : public IMCUnknown {
public:
    virtual void GetHostRecord(uint32_t& record) = 0; ///< the four bytes by which the host tells its release
    virtual int32_t QueryHost(uint32_t question) = 0; ///< not called by the pack

protected:
    ~IShSafeUtilities() = default;
};

extern IShellUtilities* gShellUtilities;
extern IMemoryUtilities* gMemoryUtilities;
inline IDebugUtilities* gDebugUtilities = nullptr; ///< inline, so that the headers alone can report
extern IShSafeUtilities* gShSafeUtilities;

/// How many services the host is asked for, the four above among them.
constexpr int32_t kServiceCount = 21;

/// The identifiers of the services in the order in which `MCDllInit` asks for them.
extern const GUID kServiceIDs[kServiceCount];

/// Asks `utilities` for each service in order and stores the answers, null for a service that it withholds.
void QueryServices(IMCUnknown* utilities);

/// Reads what the pack keeps of the host's services: the host record and the six debug settings.
void ReadHostSettings();

/// Releases every service in the settled order and sets its pointer to null.
void ReleaseServices();

/// Forwarders to `gMemoryUtilities`. Without it they raise the wide report "gMemoryUtilities" and give null.
/// A size above the 32-bit range raises a report and gives null.
void* AllocateObject(size_t size);
void FreeObject(void* memory);
void* AllocateBlock(size_t size);
void FreeBlock(void* memory);
