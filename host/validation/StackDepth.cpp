#include "host/validation/StackDepth.h"
#include <cstdint>

namespace fernwick::validation {

namespace {

constexpr uint64_t kPaint = 0x5AC4DEE75AC4DEE7;
constexpr size_t kWords = kWatchedStack / sizeof(uint64_t);
constexpr size_t kOwnFrames = 64; // words that the functions here may use themselves

#if defined __clang__ || defined __GNUC__
#define FERNWICK_RAW __attribute__((noinline, no_sanitize("address", "undefined", "thread")))
#else
#define FERNWICK_RAW
#endif

/// The words below `top` are free: only functions that have ended used them.
FERNWICK_RAW void Paint(volatile uint64_t* top)
{
    for (size_t i = kOwnFrames; i < kWords; ++i)
        *(top - i) = kPaint;
}

FERNWICK_RAW size_t UsedWords(volatile const uint64_t* top)
{
    for (size_t i = kWords - 1; i > kOwnFrames; --i)
        if (*(top - i) != kPaint)
            return i;
    return 0;
}

} // namespace

FERNWICK_RAW size_t StackDepthOf(const std::function<void()>& action)
{
    auto* const top = static_cast<volatile uint64_t*>(__builtin_frame_address(0));
    Paint(top);
    action();
    return UsedWords(top) * sizeof(uint64_t);
}

} // namespace fernwick::validation
