#pragma once
#include "frame/IMCUnknown.h"
#include "frame/MCCountedPtr.h"
#include <atomic>
#include <utility>

namespace fernwick {

/// Counting and `QueryInterface` of a host object with one face. Shading threads share host objects, so the
/// count is atomic; the pack's own objects count without.
template <class Face, const GUID& kFaceID> class Component : public Face {
public:
    MCErr QueryInterface(const GUID& id, void** out) override
    {
        if (SameGuid(id, IID_IMCUnknown) || SameGuid(id, kFaceID)) {
            *out = static_cast<Face*>(this);
            AddRef();
            return MC_S_OK;
        }
        *out = nullptr;
        return kMCNoInterface;
    }
    uint32_t AddRef() override { return ++fCount; }
    uint32_t Release() override
    {
        const uint32_t count = --fCount;
        if (count == 0)
            delete this;
        return count;
    }

    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

protected:
    Component() = default;
    virtual ~Component() = default;

private:
    std::atomic<uint32_t> fCount{1};
};

/// Makes a counted object and gives its first reference to the answer.
template <class Class, class... Arguments> MCCountedPtr<Class> MakeCounted(Arguments&&... arguments)
{
    MCCountedPtr<Class> made;
    *made.Address() = new Class(std::forward<Arguments>(arguments)...);
    return made;
}

} // namespace fernwick
