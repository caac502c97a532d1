#pragma once
#include <string>

namespace fernwick::validation {

/// How the processor is set to compute: rounding, traps, and what it does with denormal numbers. The flags that
/// operations raise don't count.
class ProcessorState {
public:
    static ProcessorState Now();

    bool operator==(const ProcessorState&) const = default;
    std::string Text() const;
    void Restore() const;

private:
    unsigned fVector = 0; ///< control bits of the vector unit
    unsigned fStack = 0;  ///< control word of the old unit
};

} // namespace fernwick::validation
