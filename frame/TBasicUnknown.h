#pragma once
#include "frame/IMCUnknown.h"
#include "frame/TMCObject.h"

/// Live component objects of the whole pack, factories included. A plain integer: the host creates and
/// releases components on one thread at a time.
extern int32_t gLiveComponentCount;

/// Base of every component: its reference count and, when the host aggregates it, its outer object.
///
/// `Release` is left to each concrete class, so that `delete` reaches the right destructor; it is one call of
/// `ReleaseComponent`.
///
/// Aggregation: with an outer object set, counting and unknown identifiers go to the outer object, which keeps
/// the inner one alive with an uncounted pointer. When its own last reference is gone, the outer object calls
/// `Release` of the inner one while its count stands at 0; that call comes back to the outer object's `Release`,
/// which answers 0xFFFFFFFF, and on this answer the inner object destroys itself.
class TBasicUnknown : public TMCObject, public IMCUnknown {
public:
    MCErr QueryInterface(const GUID& id, void** out) override;
    uint32_t AddRef() override;

    /// @param outer  not counted; null ends the aggregation
    void SetOuterUnknown(IMCUnknown* outer) { fOuterUnknown = outer; }

    TBasicUnknown(const TBasicUnknown&) = delete;
    TBasicUnknown& operator=(const TBasicUnknown&) = delete;

protected:
    TBasicUnknown() { ++gLiveComponentCount; }
    ~TBasicUnknown() { --gLiveComponentCount; }

    /// Drops a reference of `component` and destroys it with the last one. Returns the new count, or the outer
    /// object's answer. Throws `kMCCountUnderflow` when the count falls below 0.
    template <class Component> static uint32_t ReleaseComponent(Component* component);

private:
    int32_t fRefCount = 1;
    IMCUnknown* fOuterUnknown = nullptr;

    /// The counting part of `Release`; `last` tells whether the object is to be destroyed.
    uint32_t DropReference(bool& last);
};

template <class Component> uint32_t TBasicUnknown::ReleaseComponent(Component* component)
{
    bool last = false;
    const uint32_t count = component->DropReference(last);
    if (last)
        delete component;
    return count;
}
