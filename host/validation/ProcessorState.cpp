#include "host/validation/ProcessorState.h"
#include <cfenv>
#include <fmt/format.h>
#if defined __x86_64__
#include <xmmintrin.h>
#endif

namespace fernwick::validation {

#if defined __x86_64__
constexpr unsigned kRaisedFlags = 0x3F;

ProcessorState ProcessorState::Now()
{
    ProcessorState state;
    unsigned short word = 0;
    __asm__ volatile("fnstcw %0" : "=m"(word));
    state.fVector = _mm_getcsr() & ~kRaisedFlags;
    state.fStack = word;
    return state;
}

void ProcessorState::Restore() const
{
    const auto word = static_cast<unsigned short>(fStack);
    _mm_setcsr(fVector);
    __asm__ volatile("fldcw %0" : : "m"(word));
}
#else
ProcessorState ProcessorState::Now()
{
    ProcessorState state;
    state.fVector = static_cast<unsigned>(std::fegetround());
    return state;
}

void ProcessorState::Restore() const { std::fesetround(static_cast<int>(fVector)); }
#endif

std::string ProcessorState::Text() const { return fmt::format("{:#06x}/{:#06x}", fVector, fStack); }

} // namespace fernwick::validation
