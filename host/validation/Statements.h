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

/// How a class fills a surface result. All its other fields stay as the caller has them.
enum class SurfaceWay {
    kAbsent,   ///< it offers none
    kStraight, ///< with what the shader gives that it asks last: a surface, a colour or a grey
    kSwitched, ///< the same, but a grey brings an alpha; without a surface the alpha alone
    kPass,     ///< with the surface of a pass, or else all of it
    kSum,      ///< all of it, or the colour alone with `fBypass`
};

/// What hosts and documents count on in a class, beside its record.
struct Statement {
    std::string_view className;
    uint16_t needs = 0;
    bool trait = false;
    uint32_t sampleChanges = 0;
    uint32_t leftResults = 0;
    SurfaceWay surface = SurfaceWay::kAbsent;
    bool keepsShaders = false;        ///< goes on with a shader whose slot was emptied
    std::string_view rewritten = "";  ///< fields written on a change that the table doesn't call derived
    std::string_view shadedInto = ""; ///< fields written while shading
    std::string_view uncompared
        = ""; ///< fields that `SameParameters` leaves out; "*" for a class without twins
};

const Statement& StatementOf(const ParameterTable& table);

/// Whether a list of words with spaces between them holds the word.
bool HasWord(std::string_view list, std::string_view word);

/// Whether a list such as "fRange fTemperature" names the field, an element of it or a field of its records.
bool Names(std::string_view list, std::string_view field);

} // namespace validation

} // namespace fernwick
