#pragma once
#include "frame/ShadingFlags.h"
#include "frame/ShadingIn.h"
#include <span>
#include <string_view>
#include <vector>

namespace fernwick {

class Graph;

/// One operation of a graph's output, with all that it answers for a sample as named numbers. A flag is 0 or 1.
struct ShadingOperation {
    OutputKinds fKind;
    std::string_view fName;                     ///< "value", "color", "vector" or "surface"
    std::span<const std::string_view> fNumbers; ///< the name of each number, such as "red"

    /// Shades a sample into as many numbers as have names. Only for an output that offers `fKind`. A vector
    /// begins as the sample's normal, and of a surface that isn't produced all numbers are 0. The caller holds the
    /// `ShaderWrapper::Turn` of the output.
    void (*fAnswer)(const Graph& graph, ShadingIn& in, float* numbers);
};

/// All operations, in order.
std::span<const ShadingOperation> ShadingOperations();

/// Those that an output of these kinds offers, in order.
std::vector<ShadingOperation> ShadingOperationsOf(uint32_t kinds);

/// The most numbers that an operation answers.
constexpr size_t kMostNumbers = 26;

} // namespace fernwick
