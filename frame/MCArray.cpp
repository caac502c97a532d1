#include "frame/MCArray.h"
#include "frame/DebugReport.h"
#include "frame/HostServices.h"
#include <algorithm>
#include <memory>

namespace {

struct BlockDeleter {
    void operator()(void* memory) const { FreeBlock(memory); }
};
using Block = std::unique_ptr<void, BlockDeleter>;

} // namespace

MCArrayBase::MCArrayBase(uint32_t elemSize, uint32_t flags) : fElemSize(elemSize), fFlags(flags)
{
    if (fElemSize == 0)
        MC_REPORT("GetElemSize()>0");
}

MCArrayBase::MCArrayBase(uint32_t elemSize, void* memory, uint32_t count)
    : MCArrayBase(elemSize, kExternalMemory)
{
    fElements = memory;
    fCapacity = count;
    fElemCount = count;
    CheckValid();
    if (memory == nullptr)
        fCapacity = fElemCount = 0;
}

MCArrayBase::~MCArrayBase()
{
    if (fElements != nullptr && (fFlags & kExternalMemory) == 0)
        FreeBlock(fElements);
}

bool MCArrayBase::IsValid() const
{
    return fElemSize > 0 && fElemCount <= fCapacity && (fElements != nullptr || fCapacity == 0);
}

void MCArrayBase::CheckValid() const
{
    if (!IsValid())
        MC_REPORT("IsValid()");
}

bool MCArrayBase::CanResize() const
{
    if ((fFlags & kExternalMemory) == 0)
        return true;
    MC_REPORT("Can't resize array with external memory");
    return false;
}

uint32_t MCArrayBase::RoomForOneMore() const
{
    const uint32_t twice = std::min(fCapacity, UINT32_MAX / fElemSize / 2) * 2;
    return fElemCount < fCapacity ? fCapacity : std::max(fElemCount + 1, twice);
}

bool MCArrayBase::Reserve(uint32_t count, Mover move, const char* failure)
{
    if (!CanResize())
        return false;
    if (count <= fCapacity)
        return true;
    Block elements(AllocateBlock(static_cast<size_t>(count) * fElemSize));
    if (elements == nullptr) {
        MC_REPORT(failure);
        return false;
    }
    move(elements.get(), fElements, fElemCount);
    if (fElements != nullptr)
        FreeBlock(fElements);
    fElements = elements.release();
    fCapacity = count;
    return true;
}

bool MCArrayBase::HasElem(uint32_t index) const
{
    if (index < fElemCount)
        return true;
    MC_REPORT("index < GetElemCount()");
    return false;
}

uint32_t MCArrayBase::Removable(uint32_t index, uint32_t count) const
{
    const uint32_t present = index < fElemCount ? fElemCount - index : 0;
    if (count <= present)
        return count;
    MC_REPORT("Removing more items than are in the array!!");
    return present;
}
