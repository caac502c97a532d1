#pragma once
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

namespace fernwick::validation {

/// Up to four bytes as a word. All NaNs are one: which of its operands' bits a NaN bears is left to the compiler.
inline uint32_t WordAt(const void* bytes, size_t size)
{
    uint32_t word = 0;
    std::memcpy(&word, bytes, std::min(size, sizeof word));
    constexpr uint32_t kInfinity = 0x7F800000;
    constexpr uint32_t kNaN = 0x7FC00000;
    return (word & 0x7FFFFFFF) > kInfinity ? kNaN : word;
}

/// A number that tells different bytes apart.
inline uint64_t DigestOf(const void* bytes, size_t size)
{
    const auto* const start = static_cast<const char*>(bytes);
    uint64_t digest = size;
    for (size_t done = 0; done < size; done += sizeof(uint32_t)) {
        digest = (digest ^ WordAt(start + done, size - done)) * 0x9E3779B97F4A7C15;
        digest ^= digest >> 32;
    }
    return digest;
}

template <class Record> uint64_t DigestOf(const Record& record) { return DigestOf(&record, sizeof record); }

/// One call of a probe.
struct ProbeCall {
    const char* operation;
    uint32_t whom;         ///< a shader's slot, or the part of a scene
    uint64_t with = 0;     ///< digest of what was asked: the sample, a name, an identifier
    uint64_t received = 0; ///< digest of what the results held before
};

/// What probes were asked, in order.
struct CallLog {
    std::vector<ProbeCall> fShading;    ///< calls whose answers a shader takes
    std::vector<ProbeCall> fConnecting; ///< queries, counts and kinds

    /// Done within each call whose answer a shader takes, before it is answered; empty for nothing.
    std::function<void()> fInterlude;

    void Shading(const ProbeCall& call)
    {
        fShading.push_back(call);
        if (fInterlude)
            fInterlude();
    }

    /// The calls of plugged shaders, not of the scene, among those whose answers a shader takes.
    std::vector<ProbeCall> OfShaders() const
    {
        std::vector<ProbeCall> calls;
        for (const ProbeCall& call : fShading)
            if (std::string_view(call.operation).starts_with("Shade"))
                calls.push_back(call);
        return calls;
    }

    void Clear()
    {
        fShading.clear();
        fConnecting.clear();
    }
};

} // namespace fernwick::validation
