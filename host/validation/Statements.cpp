#include "host/validation/Statements.h"
#include "host/parameters/ParameterTable.h"
#include <algorithm>
#include <stdexcept>

namespace fernwick::validation {

namespace {

constexpr Statement kStatements[] = {
    {.className = "Coordinate_Shift",
        .needs = kNeedsAll,
        .sampleChanges = kChangesPoints,
        .surface = SurfaceWay::kStraight,
        .uncompared = "fObjectName"},
    {.className = "Corners", .needs = kNeedsUV | kNeedsNormalLocal, .trait = true},
    {.className = "Curvature",
        .needs = kNeedsAll & ~kNeedsExtraC,
        .leftResults = kLeavesAlpha | kLeavesColor,
        .uncompared = "fSurfaceName"},
    {.className = "Drip", .needs = kNeedsUV | kNeedsNormalGlobal | kNeedsDerivatives},
    {.className = "Fresnel",
        .needs = kNeedsUV | kNeedsNormalGlobal,
        .rewritten = "fIlluminantPreset fTemperature fPreset1 fPreset2 fIndex2Re fIndex2Im fPermeability2 "
                     "fIndex2ReOffset fIndex2ImOffset fPermeability2Offset",
        .shadedInto = "fCameraName",
        .uncompared = "fPreset2 fWavelengthColor fWavelengthLinear fIlluminantColor fWhiteX fWhiteY"},
    {.className = "Gray",
        .needs = kNeedsAll,
        .sampleChanges = kChangesChannelMask,
        .leftResults = kLeavesAlpha,
        .surface = SurfaceWay::kStraight,
        .uncompared = "fColorSwitches"},
    {.className = "Iridescent",
        .needs = kNeedsUV | kNeedsNormalGlobal,
        .leftResults = kLeavesAlpha,
        .uncompared = "fReferenceMode"},
    {.className = "Key", .needs = kNeedsUV},
    {.className = "Lit", .needs = kNeedsUV | kNeedsNormalGlobal, .leftResults = kLeavesValueFullArea},
    {.className = "Location",
        .needs = kNeedsPointGlobal | kNeedsPointLocal,
        .trait = true,
        .uncompared = "*"},
    {.className = "MultiPassControl", .needs = kNeedsUV, .keepsShaders = true, .uncompared = "fPassName"},
    {.className = "MultiPassManager",
        .needs = kNeedsAll,
        .sampleChanges = kChangesChannelMask,
        .surface = SurfaceWay::kPass,
        .keepsShaders = true,
        .uncompared = "fPassName"},
    {.className = "Proximity",
        .needs = kNeedsUV | kNeedsPointGlobal | kNeedsPointLocal,
        .trait = true,
        .uncompared = "fFalloff fSingleObject"},
    {.className = "Shadow_pass",
        .needs = kNeedsAll,
        .sampleChanges = kChangesChannelMask,
        .surface = SurfaceWay::kSwitched,
        .keepsShaders = true},
    {.className = "Spoke", .needs = kNeedsUV, .uncompared = "fTaper"},
    {.className = "Super_mixer",
        .needs = kNeedsUV,
        .leftResults = kLeavesAlpha,
        .keepsShaders = true,
        .rewritten = "fRange",
        .uncompared = "fLinearEdge"},
    {.className = "Super_mixer_top",
        .needs = kNeedsAll,
        .sampleChanges = kChangesChannelMask,
        .surface = SurfaceWay::kSum,
        .keepsShaders = true,
        .rewritten = "fRange",
        .uncompared = "fLinearEdge"},
    {.className = "Translucent", .needs = kNeedsUV | kNeedsNormalGlobal, .leftResults = kLeavesAlpha},
    {.className = "Weave",
        .needs = kNeedsUV | kNeedsNormalGlobal | kNeedsDerivatives,
        .sampleChanges = kChangesUV,
        .leftResults = kLeavesAlpha | kLeavesVector,
        .rewritten = "fPattern fWarpWidth fWeftWidth",
        .uncompared = "*"},
};

} // namespace

const Statement& StatementOf(const ParameterTable& table)
{
    const auto* const found = std::ranges::find(kStatements, table.fName, &Statement::className);
    if (found == std::end(kStatements))
        throw std::out_of_range("no statement of " + table.fName);
    return *found;
}

bool HasWord(std::string_view list, std::string_view word)
{
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find(' ', start), list.size());
        if (list.substr(start, end - start) == word)
            return true;
        start = end + 1;
    }
    return false;
}

bool Names(std::string_view list, std::string_view field)
{
    return HasWord(list, field.substr(0, field.find_first_of("[.")));
}

} // namespace fernwick::validation
