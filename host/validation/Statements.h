#pragma once
#include "frame/ShadingFlags.h"
#include <cstdint>
#include <string_view>

namespace fernwick {

struct ParameterTable;

namespace validation {

/// What a class may change of a sample on its way to a sub-shader, as bits.
enum SampleChanges : uint32_t {
    kChangesPoints = 1,
    kChangesUV = 2,
    kChangesChannelMask = 4,
};

/// Results that a class leaves to the host, though it covers the sample, as bits.
enum LeftResults : uint32_t {
    kLeavesAlpha = 1,         ///< of `ShadeColor`
    kLeavesColor = 2,         ///< all of it
    kLeavesValueFullArea = 4, ///< the flag of `ShadeValue`
    kLeavesVector = 8,
};

/// What hosts and documents count on in a class, beside its record.
struct Statement {
    std::string_view className;
    uint16_t needs = 0;
    bool trait = false;
    uint32_t sampleChanges = 0;
    uint32_t leftResults = 0;
    bool keepsShaders = false;        ///< goes on with a shader whose slot was emptied
    std::string_view rewritten = "";  ///< fields written on a change that the table doesn't call derived
    std::string_view shadedInto = ""; ///< fields written while shading
    std::string_view uncompared
        = ""; ///< fields that `SameParameters` leaves out; "*" for a class without twins
};

const Statement& StatementOf(const ParameterTable& table);

/// Whether a list such as "fRange fTemperature" names the field, an element of it or a field of its records.
bool Names(std::string_view list, std::string_view field);

} // namespace validation

} // namespace fernwick
