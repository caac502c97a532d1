#pragma once
#include "frame/IMCUnknown.h"

inline constexpr GUID IID_IExDataExchanger
    = {0xB295B680, 0x3A02, 0x101C, {0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02}};

/// The exchange of a shader's parameters. The order of the operations is the binary interface.
///
/// The change protocol, as the host runs it: the constructor sets the defaults; the host writes the record at
/// `GetExtensionDataBuffer`, `GetParamsBufferSize` bytes long, and calls `ExtensionDataChanged`; and again at
/// every change. The counted pointers in the record belong to it: the host counts what it writes there and
/// releases what it overwrites. A shader is copied by making a new one, copying the record and calling
/// `ExtensionDataChanged`.
class IExDataExchanger : public IMCUnknown {
public:
    /// Stores null into `*out`: copying goes by the record.
    virtual void CloneExtension(void** out, void* b) = 0;
    virtual bool ReservedExchangeTrue(void* a) = 0;
    virtual MCErr ReservedExchangeA(uint32_t a, void* b) = 0;
    virtual MCErr ReservedExchangeB(uint32_t a, void* b) = 0;
    /// The parameter record, valid as long as the object.
    virtual void* GetExtensionDataBuffer() = 0;
    /// Connects the plugged shaders and derives what shading reads. Not to be called while the object shades.
    /// @return 0, or a failure when a plugged object is no shader; that slot then counts as empty
    virtual MCErr ExtensionDataChanged() = 0;
    /// An event of the host's parameter panel.
    virtual int32_t HandleEvent(uint32_t id, void* a, void* b) = 0;
    virtual MCErr ReservedExchangeC(uint32_t a, void* b, void* c) = 0;
    /// Stores null into `*out` and returns `out`.
    virtual void** ReservedExchangeOut(void** out) = 0;
    virtual int16_t ReservedExchangeZeroA() = 0;
    virtual int16_t ReservedExchangeZeroB() = 0;
    virtual MCErr ReservedExchangeD() = 0;
    virtual MCErr ReservedExchangeE() = 0;
    virtual MCErr ReservedExchangeF(void* a) = 0;
    /// Size of the parameter record in bytes. Throws `kMCPureCall` in the two classes that supply none.
    virtual uint32_t GetParamsBufferSize() = 0;

protected:
    ~IExDataExchanger() = default;
};
