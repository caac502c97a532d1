#pragma once
#include "frame/ShadingOut.h"
#include <string>
#include <string_view>

namespace fernwick {

struct ParameterTable;

namespace validation {

struct CallLog;

/// The names of fields of a surface result, with spaces between them.
namespace surface_fields {
constexpr std::string_view kNone = "";
constexpr std::string_view kGrey = "fColor";
constexpr std::string_view kAlpha = "fColor.fAlpha";
constexpr std::string_view kColor = "fColor fColor.fAlpha";
constexpr std::string_view kDefault = "fShadingNormal"; ///< of a class that offers no surface
constexpr std::string_view kWrapped
    = "fCoverage fShadingNormal"; ///< the same in a wrapper, beside its colour
/// What a `ProbeShader` writes.
constexpr std::string_view kPlugged = "fColor fColor.fAlpha fSecondColor fScalarA fThirdColor "
                                      "fSampledBlock.fSampleCount fSingleBlock.fSwitch fSingleBlock.fCount "
                                      "fVectorBlock.fLocal fFourthColor";
constexpr std::string_view kAll = "*";
} // namespace surface_fields

/// The fields that a class is to write on a sample.
/// @param record    the object's
/// @param calls     what its `ShadeSurface` asked
/// @param produced  what that answered
std::string_view WrittenFields(
    const ParameterTable& table, const void* record, const CallLog& calls, int32_t produced);

/// A result that holds something else in each field than a new one does: `number` and what is below it.
/// @param number  below 0
ShadingOut ResultHolding(float number);

/// The first field in which a result differs from another, with what it holds there; empty for none.
std::string DifferentField(const ShadingOut& result, const ShadingOut& other);

/// A result before and after it was shaded into.
struct ShadedResult {
    ShadingOut before;
    ShadingOut after;
};

/// The first field of two results that isn't as `written` tells: a field that is written comes out the same, whatever
/// was there, and all others stay. Both are of one sample, and differed in every field before. Empty for none.
std::string WrongField(std::string_view written, const ShadedResult& left, const ShadedResult& right);

} // namespace validation

} // namespace fernwick
