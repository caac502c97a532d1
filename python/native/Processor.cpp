#include "python/native/Rooms.h"
#include <bit>
#include <cstdint>
#include <fmt/format.h>
#include <string>
#ifdef __SSE__
#include <immintrin.h>
#endif

namespace {

/// A hash of the processor's approximate reciprocals and roots, from which Embree goes on to where a ray meets a
/// triangle. Only their error is settled (2^-11), so those of two makers differ in the last bits.
std::string ReciprocalsHash()
{
#ifdef __SSE__
    constexpr uint32_t kOne = 0x3F800000; // as the bits of a float
    constexpr uint32_t kFour = 0x40800000;
    constexpr uint32_t kStep = 1 << 10; // finer than tables that processors take them from
    uint64_t hash = 0;
    for (uint32_t bits = kOne; bits < kFour; bits += kStep) {
        const __m128 number = _mm_set_ss(std::bit_cast<float>(bits));
        for (const __m128 answer : {_mm_rcp_ss(number), _mm_rsqrt_ss(number)})
            hash = (std::rotl(hash, 5) ^ std::bit_cast<uint32_t>(_mm_cvtss_f32(answer)))
                * 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
    }
    return fmt::format("{:08x}", hash >> 32);
#else
    return {};
#endif
}

} // namespace

void AddProcessor(pybind11::module_& module) { module.def("reciprocals", &ReciprocalsHash); }
