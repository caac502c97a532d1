#pragma once
#include "frame/MCCountedPtr.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// What the arrays of the pack share: a head of counts over storage from `gMemoryUtilities`. Every failed check
/// raises a report, and the operation goes on with what it has.
class MCArrayBase {
public:
    enum Flags : uint32_t {
        kClearNew = 1,       ///< new elements are zeroed
        kExternalMemory = 2, ///< the storage is the caller's; the array never resizes or frees it
    };

    uint32_t GetElemCount() const { return fElemCount; }
    uint32_t GetElemSize() const { return fElemSize; }

    /// Storage where there are elements, no more elements than room, and an element size above 0.
    bool IsValid() const;

    MCArrayBase(const MCArrayBase&) = delete;
    MCArrayBase& operator=(const MCArrayBase&) = delete;

protected:
    /// Moves `count` elements from one storage to another that doesn't overlap it. When it throws, nothing has changed.
    using Mover = void (*)(void* to, void* from, uint32_t count);

    MCArrayBase(uint32_t elemSize, uint32_t flags);
    /// An array over outside memory of `count` elements; over null it has none, after a report.
    MCArrayBase(uint32_t elemSize, void* memory, uint32_t count);
    ~MCArrayBase();

    uint32_t fElemCount = 0;
    uint32_t fCapacity = 0;
    uint32_t fElemSize;
    void* fElements = nullptr;
    uint32_t fFlags;

    void CheckValid() const;
    /// False, with a report, for an array over outside memory.
    bool CanResize() const;
    /// Makes room for `count` elements and moves the present ones there. On failure nothing changes.
    bool Reserve(uint32_t count, Mover move, const char* failure);
    /// The room to ask for when one element more doesn't fit: twice as much, as far as a block reaches.
    uint32_t RoomForOneMore() const;
    /// True, with a report when not, for an element that exists.
    bool HasElem(uint32_t index) const;
    /// How many of `count` elements from `index` on can be removed; a report when that is not all.
    uint32_t Removable(uint32_t index, uint32_t count) const;
};

/// An array whose elements are made, copied and destroyed by their own constructors and destructors.
template <class T> class MCClassArray : public MCArrayBase {
public:
    explicit MCClassArray(uint32_t count = 0, uint32_t flags = 0) : MCArrayBase(sizeof(T), flags)
    {
        Resize(count, "Array allocation failed in constructor!");
    }
    MCClassArray(T* memory, uint32_t count) : MCArrayBase(sizeof(T), memory, count) { }
    MCClassArray(const MCClassArray& other) : MCClassArray(0u, other.fFlags & kClearNew) { *this = other; }
    ~MCClassArray()
    {
        if ((fFlags & kExternalMemory) == 0)
            std::destroy_n(Data(), fElemCount);
    }

    /// Copies all elements. When memory is refused the array stays as it was.
    MCClassArray& operator=(const MCClassArray& other)
    {
        if (this == &other)
            return *this;
        if (Resize(other.fElemCount, "Unable to complete operator=() memory allocation failed."))
            for (uint32_t i = 0; i < fElemCount; ++i)
                Data()[i] = other.Data()[i];
        return *this;
    }

    /// Keeps the elements that stay. On failure the array stays as it was and the answer is false.
    bool SetElemCount(uint32_t count) { return Resize(count, kAllocationFailed); }

    /// An index past the end raises a report and gives a spare element, which is the array's own.
    T& operator[](uint32_t index) { return HasElem(index) ? Data()[index] : fSpare; }
    const T& operator[](uint32_t index) const { return HasElem(index) ? Data()[index] : fSpare; }

    /// Adds `elem` behind the last; false when memory is refused.
    bool Append(T elem)
    {
        if (!Reserve(RoomForOneMore(), &Move, kAllocationFailed))
            return false;
        new (Data() + fElemCount) T(std::move(elem));
        ++fElemCount;
        CheckValid();
        return true;
    }

    /// Removes `count` elements from `index` on, as many as there are.
    void Remove(uint32_t index, uint32_t count = 1)
    {
        const uint32_t removed = Removable(index, count);
        if (removed == 0 || !CanResize())
            return;
        for (uint32_t i = index; i + removed < fElemCount; ++i)
            Data()[i] = std::move(Data()[i + removed]);
        SetElemCount(fElemCount - removed);
    }

private:
    static constexpr const char* kAllocationFailed = "Array allocation failed!";

    T fSpare{};

    T* Data() { return static_cast<T*>(fElements); }
    const T* Data() const { return static_cast<const T*>(fElements); }

    static void Move(void* to, void* from, uint32_t count)
    {
        T* const elements = static_cast<T*>(from);
        if constexpr (std::is_nothrow_move_constructible_v<T> || !std::is_copy_constructible_v<T>)
            std::uninitialized_move_n(elements, count, static_cast<T*>(to));
        else
            std::uninitialized_copy_n(elements, count, static_cast<T*>(to));
        std::destroy_n(elements, count);
    }

    bool Resize(uint32_t count, const char* failure)
    {
        if (count != fElemCount && !Reserve(count, &Move, failure))
            return false;
        if (count < fElemCount)
            std::destroy(Data() + count, Data() + fElemCount);
        else if (!std::is_trivially_default_constructible_v<T> || (fFlags & kClearNew) != 0)
            std::uninitialized_value_construct(Data() + fElemCount, Data() + count);
        fElemCount = count;
        CheckValid();
        return true;
    }
};

/// An array of plain values; new ones are unset unless the array is made with `kClearNew`.
template <class T> class MCArray : public MCClassArray<T> {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    using MCClassArray<T>::MCClassArray;
};

/// An array that owns one reference to each of its components.
template <class T> using MCCountedPtrArray = MCClassArray<MCCountedPtr<T>>;
