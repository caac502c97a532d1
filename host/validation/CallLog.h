#pragma once
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace fernwick::validation {

/// A number that tells different bytes apart.
inline uint64_t DigestOf(const void* bytes, size_t size)
{
    const auto* const start = static_cast<const char*>(bytes);
    uint64_t digest = size;
    for (size_t done = 0; done < size; done += sizeof digest) {
        uint64_t word = 0;
        std::memcpy(&word, start + done, size - done < sizeof word ? size - done : sizeof word);
        digest = (digest ^ word) * 0x9E3779B97F4A7C15;
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

    void Clear()
    {
        fShading.clear();
        fConnecting.clear();
    }
};

} // namespace fernwick::validation
