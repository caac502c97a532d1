#pragma once
#include "frame/IExDataExchanger.h"
#include "frame/TBasicUnknown.h"

/// The defaults of `IExDataExchanger`. Every class overrides `GetExtensionDataBuffer`.
class TBasicDataExchanger : public TBasicUnknown, public IExDataExchanger {
public:
    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override { return TBasicUnknown::AddRef(); }

    void CloneExtension(void** out, void* b) override;
    bool ReservedExchangeTrue(void* a) override;
    MCErr ReservedExchangeA(uint32_t a, void* b) override;
    MCErr ReservedExchangeB(uint32_t a, void* b) override;
    void* GetExtensionDataBuffer() override;
    MCErr ExtensionDataChanged() override;
    int32_t HandleEvent(uint32_t id, void* a, void* b) override;
    MCErr ReservedExchangeC(uint32_t a, void* b, void* c) override;
    void** ReservedExchangeOut(void** out) override;
    int16_t ReservedExchangeZeroA() override;
    int16_t ReservedExchangeZeroB() override;
    MCErr ReservedExchangeD() override;
    MCErr ReservedExchangeE() override;
    MCErr ReservedExchangeF(void* a) override;
    uint32_t GetParamsBufferSize() override;

protected:
    ~TBasicDataExchanger() = default;
};
