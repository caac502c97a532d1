#pragma once
#include "frame/DebugReport.h"
#include "frame/IMCUnknown.h"
#include <cstdint>
#include <cstring>
#include <utility>

/// The word that marks a deceased object, in a pointer or in an object's first word.
constexpr uint64_t kMCDeceased = 0xDECEA5EDDECEA5ED;

/// A shared-ownership pointer to a component: it owns one reference, and is one pointer wide.
template <class T> class MCCountedPtr {
public:
    MCCountedPtr() = default;
    explicit MCCountedPtr(T* object) { *this = object; }
    MCCountedPtr(const MCCountedPtr& other) { *this = other.fObject; }
    /// Takes the reference over and leaves `other` empty: nothing is counted.
    MCCountedPtr(MCCountedPtr&& other) noexcept : fObject(std::exchange(other.fObject, nullptr)) { }
    ~MCCountedPtr() { *this = nullptr; }

    MCCountedPtr& operator=(const MCCountedPtr& other) { return *this = other.fObject; }

    /// Takes the reference over, leaves `other` empty and drops the old object. Does nothing when both hold the same
    /// object, as every assignment.
    MCCountedPtr& operator=(MCCountedPtr&& other)
    {
        if (other.fObject != fObject)
            Hold(std::exchange(other.fObject, nullptr));
        return *this;
    }

    /// Counts the new object, then drops the old one. Does nothing when both are the same object.
    MCCountedPtr& operator=(T* object)
    {
        if (object == fObject)
            return *this;
        if (object != nullptr && !IsDeceased(object))
            object->AddRef();
        Hold(object);
        return *this;
    }

    /// The object, null for an empty pointer. Raises a report for a deceased one and gives it all the same.
    T* Get() const
    {
        T* const object = fObject;
        if (object != nullptr && IsDeceased(object)) [[unlikely]]
            ReportDeceased(object);
        return object;
    }

    /// Raises "Bad Pointer" on null and goes on.
    T* operator->() const
    {
        if (fObject == nullptr) [[unlikely]]
            ReportNull();
        return Get();
    }
    T& operator*() const { return *operator->(); }

    explicit operator bool() const { return fObject != nullptr; }
    friend bool operator==(const MCCountedPtr& left, const MCCountedPtr& right)
    {
        return left.fObject == right.fObject;
    }

    /// The raw slot as an out argument, emptied first; what is stored there must have been counted.
    T** Address()
    {
        *this = nullptr;
        return &fObject;
    }

private:
    T* fObject = nullptr;

    /// Takes over a counted object, then drops the old one.
    void Hold(T* object)
    {
        T* const old = std::exchange(fObject, object);
        if (old != nullptr && !IsDeceased(old))
            old->Release();
    }

    static bool IsMarked(uint64_t word) { return word == kMCDeceased; }
    static uint64_t FirstWord(const T* object)
    {
        uint64_t word;
        std::memcpy(&word, static_cast<const void*>(object), sizeof word);
        return word;
    }
    /// True for the marker and for an object that bears it: such an object is not called any more.
    static bool IsDeceased(const T* object)
    {
        return IsMarked(reinterpret_cast<uintptr_t>(object)) || IsMarked(FirstWord(object));
    }

    // Out of line and cold: what is left of the checks where a pointer is used are three comparisons.
    [[gnu::cold, gnu::noinline]] static void ReportNull() { MC_REPORT("Bad Pointer"); }
    [[gnu::cold, gnu::noinline]] static void ReportDeceased(const T* object)
    {
        if (IsMarked(reinterpret_cast<uintptr_t>(object)))
            MC_REPORT("!MCCheckDeceased(fObject)");
        else
            MC_REPORT("!MCCheckDeceased(*(void**)fObject)");
    }
};
