#pragma once
#include "frame/IMCUnknown.h"
#include "frame/Numbers.h"

inline constexpr GUID IID_IMFPart
    = {0xDE9FD1D0, 0xD892, 0x11D1, {0xA0, 0xD5, 0x00, 0xAA, 0x00, 0xD3, 0x07, 0xEB}};

/// The small value holder that event handling hands to a panel part. Held on the stack, not counted.
class IMFAttribute {
public:
    virtual uint32_t GetAttributeID() = 0;
    virtual uint32_t GetAttributeType() = 0;
    virtual void* GetValuePointer() = 0;
    virtual const void* GetConstValuePointer() const = 0;

protected:
    ~IMFAttribute() = default;
};

/// An attribute's identifier and type, four-character codes.
class TMFBaseAttribute : public IMFAttribute {
public:
    uint32_t GetAttributeID() override { return fID; }
    uint32_t GetAttributeType() override { return fType; }

protected:
    TMFBaseAttribute() = default;
    ~TMFBaseAttribute() = default;

    uint32_t fID = 0x2A2A2A2A;
    uint32_t fType = 0x2A2A2A2A;
};

/// An attribute of type "bool".
class TMFBooleanAttribute final : public TMFBaseAttribute {
public:
    TMFBooleanAttribute(uint32_t id, bool value) : fValue(value)
    {
        fID = id;
        fType = Code("bool");
    }
    void* GetValuePointer() override { return &fValue; }
    const void* GetConstValuePointer() const override { return &fValue; }

private:
    bool fValue;
};

/// An attribute of type "re32".
class TMFReal32Attribute final : public TMFBaseAttribute {
public:
    TMFReal32Attribute(uint32_t id, float value) : fValue(value)
    {
        fID = id;
        fType = Code("re32");
    }
    void* GetValuePointer() override { return &fValue; }
    const void* GetConstValuePointer() const override { return &fValue; }

private:
    float fValue;
};

/// Value of a part for `SetPartValue`: with 1 the part shows what it holds anew.
inline constexpr uint32_t kPartRefresh = Code("Rfsh");

/// A part of a host panel: a text, a slider, a list. Met by event handling only, which queries the source of an
/// event for it. Identifiers and types are four-character codes. The order of the operations is the binary
/// interface.
class IMFPart : public IMCUnknown {
public:
    /// Sets one of the part's own values by its id: `kPartRefresh`.
    virtual void SetPartValue(uint32_t id, uint32_t value) = 0;
    /// The identifier of the part.
    virtual uint32_t GetPartID() = 0;
    /// Finds the part `id` below this one, or around it in the same panel. Counted; null when there is none.
    virtual void FindChildPart(uint32_t id, IMFPart** out) = 0;
    /// Reads what the user set into `value`, which has the type "in32" (int32) or "re32" (float). A part that
    /// has no value of this type leaves it.
    virtual void GetValue(void* value, uint32_t type) = 0;
    /// Writes what the part is to hold, of the same types.
    virtual void SetValue(const void* value, uint32_t type) = 0;
    /// Takes over an attribute, which lives for the call only.
    virtual void SetAttribute(IMFAttribute& attribute) = 0;

protected:
    ~IMFPart() = default;
};
