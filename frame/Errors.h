#pragma once
#include <cstdint>

/// The result of an operation that can fail: 0 on success, 0x8001xxxx on failure.
using MCErr = uint32_t;

constexpr MCErr MC_S_OK = 0;
constexpr MCErr kMCNotImplemented = 0x80014001; ///< default of an operation with no implementation
constexpr MCErr kMCNoInterface = 0x80014002;    ///< `QueryInterface` with an unknown identifier
constexpr MCErr kMCPureCall = 0x80010003;       ///< thrown by a call of an operation that no class supplied
constexpr MCErr kMCSystemFault = 0x80010004;    ///< thrown by the exception translators
constexpr MCErr kMCNoComponent = 0x80010005;    ///< thrown when a shader finds no host component
constexpr MCErr kMCNotSupported = 0x80010006;   ///< two operations of `IExDataExchanger`
constexpr MCErr kMCNoSuchClass = 0x8001FFFF;    ///< `CreateInstance` of a class that the pack does not make
constexpr MCErr kMCCountUnderflow = 0xFFFFFFFE; ///< thrown when a reference count falls below 0
