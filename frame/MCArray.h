#pragma once
#include "frame/MCCountedPtr.h"
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

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
    /// Moves `count` elements from one storage to another that doesn't overlap it.
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
            Destroy(0, fElemCount);
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
    bool SetElemCount(uint32_t count) { return Resize(count, "Array allocation failed!"); }

    /// An index past the end raises a report and gives a spare element that belongs to no array.
    T& operator[](uint32_t index) { return HasElem(index) ? Data()[index] : Spare(); }
    const T& operator[](uint32_t index) const { return HasElem(index) ? Data()[index] : Spare(); }

    /// Adds a copy of `elem` behind the last; false when memory is refused.
    bool Append(const T& elem)
    {
        const T copy = elem; // `elem` may lie in this very array
        if (!SetElemCount(fElemCount + 1))
            return false;
        Data()[fElemCount - 1] = copy;
        return true;
    }

    /// Removes `count` elements from `index` on, as many as there are.
    void Remove(uint32_t index, uint32_t count = 1)
    {
        const uint32_t removed = Removable(index, count);
        if (removed == 0 || !CanResize())
            return;
        for (uint32_t i = index; i + removed < fElemCount; ++i)
            Data()[i] = Data()[i + removed];
        SetElemCount(fElemCount - removed);
    }

private:
    T* Data() { return static_cast<T*>(fElements); }
    const T* Data() const { return static_cast<const T*>(fElements); }

    static T& Spare()
    {
        static T spare{};
        return spare;
    }

    static void Move(void* to, void* from, uint32_t count)
    {
        for (uint32_t i = 0; i < count; ++i) {
            T* const old = static_cast<T*>(from) + i;
            new (static_cast<T*>(to) + i) T(*old);
            old->~T();
        }
    }

    void Destroy(uint32_t first, uint32_t end)
    {
        for (uint32_t i = first; i < end; ++i)
            Data()[i].~T();
    }

    void Make(uint32_t index)
    {
        if constexpr (std::is_trivially_default_constructible_v<T>) {
            if ((fFlags & kClearNew) != 0)
                new (Data() + index) T{};
        } else {
            new (Data() + index) T{};
        }
    }

    bool Resize(uint32_t count, const char* failure)
    {
        if (count != fElemCount && !Reserve(count, &Move, failure))
            return false;
        if (count < fElemCount)
            Destroy(count, fElemCount);
        for (uint32_t i = fElemCount; i < count; ++i)
            Make(i);
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
