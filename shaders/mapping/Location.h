#pragma once
#include "frame/Layout.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"

/// One axis of Location: a ramp between two coordinates in scene units, given in any order.
struct LocationAxis {
    float fEdgeA = 0;
    float fEdgeB = 0;
    TMCBool fEnabled = false;          ///< the axis takes part
    int32_t fDirection = Code("GRTR"); ///< "GRTR": from 1 down to 0 as the coordinate grows; any other: up
};
static_assert(offsetof(LocationAxis, fEdgeA) == 0 && offsetof(LocationAxis, fEdgeB) == 4);
static_assert(offsetof(LocationAxis, fEnabled) == 8 && offsetof(LocationAxis, fDirection) == 12);
static_assert(sizeof(LocationAxis) == 16);

/// Parameters of Location, as the host writes and saves them.
struct LocationParams {
    LocationAxis fAxes[3]; ///< X, Y and Z
    /// "ORMD": the smallest ramp. Any other: the last axis, or 1 once one reaches it.
    int32_t fCombine = Code("ORMD");
    int32_t fSpace = Code("GLBL"); ///< "GLBL": world coordinates; any other: the object's
    TMCBool fUseSubShader = false; ///< the sub-shader disturbs the ramps
    int32_t fDisturbPercent = 0;   ///< how far, in percent of a ramp's width
    SubShaderSlot fSubShader;
};
static_assert(offsetof(LocationParams, fAxes) == 0 && offsetof(LocationParams, fCombine) == 48);
static_assert(offsetof(LocationParams, fSpace) == 52 && offsetof(LocationParams, fUseSubShader) == 56);
static_assert(offsetof(LocationParams, fDisturbPercent) == 60 && offsetof(LocationParams, fSubShader) == 64);
static_assert(sizeof(LocationParams) == BySize(72, 68));

/// Turns the sample's position into a mask, 0 to 1, by a ramp along each axis that is switched on.
class Location final : public ShaderOf<Location, LocationParams> {
public:
    /// True only for the shader's own record.
    bool SameParams(const LocationParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override
    {
        return Ask(flags, kNeedsPointGlobal | kNeedsPointLocal);
    }
    int32_t GetOutputKinds() override { return kOutputValue; }
    MCErr ExtensionDataChanged() override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;

private:
    struct LocationRamp {
        float fFirst = 0; ///< where the ramp has 1: the lower end of a falling one, the upper of a rising one
        float fSecond = 0; ///< where it has 0
        bool fEnabled = false;
        int32_t fFalling = 0;
    };

    ConnectedShader fShader;
    LocationRamp fRamps[3];
    uint32_t fShaderKinds = 0;
    float fDisturbance = 0; ///< percent of a ramp's width
    float fLastDisturbance = 0;

    /// @return percent of a ramp's width
    float Disturb(bool& fullArea, ShadingIn& in);
};
