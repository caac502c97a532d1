#pragma once
#include "frame/IMCUnknown.h"

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
        fType = 0x626F6F6C;
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
        fType = 0x72653332;
    }
    void* GetValuePointer() override { return &fValue; }
    const void* GetConstValuePointer() const override { return &fValue; }

private:
    float fValue;
};

/// A part of a host panel, met by event handling only. Identifiers and types are four-character codes.
class IMFPart : public IMCUnknown {
public:
    virtual void SetPartValue(uint32_t id, const void* value) = 0;
    virtual uint32_t GetPartID() = 0;
    /// The part `id` of the same panel, counted; null when there is none.
    virtual void FindChildPart(uint32_t id, IMFPart** out) = 0;
    virtual void GetValue(void* value, uint32_t type) = 0;
    virtual void SetValue(const void* value, uint32_t type) = 0;
    virtual void SetAttribute(IMFAttribute& attribute) = 0;

protected:
    ~IMFPart() = default;
};
