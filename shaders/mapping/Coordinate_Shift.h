#pragma once
#include "frame/Layout.h"
#include "frame/SceneLookup.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "frame/TMCBool.h"

/// Parameters of Coordinate_Shift, as the host writes and saves them.
struct Coordinate_ShiftParams {
    int32_t fMode = Code("OFFM"); ///< "OBJM": the position of `fObjectName`; any other: `fOffset`
    TMCString255 fObjectName;
    TVector3 fOffset;                             ///< scene units
    TMCBool fShiftGlobal[3] = {true, true, true}; ///< X, Y, Z of the world coordinates move
    TMCBool fShiftLocal[3] = {};                  ///< X, Y, Z of the object's coordinates move
    SubShaderSlot fSubShader;
};
PIN_LAYOUT(offsetof(Coordinate_ShiftParams, fMode) == 0
    && offsetof(Coordinate_ShiftParams, fObjectName) == BySize(8, 4));
PIN_LAYOUT(offsetof(Coordinate_ShiftParams, fOffset) == BySize(288, 276)
    && offsetof(Coordinate_ShiftParams, fShiftGlobal) == BySize(300, 288));
PIN_LAYOUT(offsetof(Coordinate_ShiftParams, fShiftLocal) == BySize(303, 291)
    && offsetof(Coordinate_ShiftParams, fSubShader) == BySize(312, 296));
static_assert(sizeof(Coordinate_ShiftParams) == BySize(320, 300));

/// Moves the origin of the sample's coordinates, by a fixed offset or to a named object, and hands the sample
/// to its sub-shader. The points move in the caller's record and stay moved.
class Coordinate_Shift final : public ShaderOf<Coordinate_Shift, Coordinate_ShiftParams> {
public:
    /// The object's name takes no part.
    bool SameParams(const Coordinate_ShiftParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsAll); }
    bool QueryBooleanTrait() override { return false; }
    int32_t GetOutputKinds() override { return kOutputSurface; }
    MCErr ExtensionDataChanged() override;
    int32_t ShadeSurface(ShadingOut& result, ShadingIn& in) override;

private:
    ConnectedShader fShader;
    MCCountedPtr<ITreeElement> fOwnTree; ///< kept with the next two until a sample looks them up again
    MCCountedPtr<IScene> fScene;
    MCCountedPtr<ITreeElement> fTargetTree;
    uint32_t fShaderKinds = 0;
    TTransform3D fTargetTransform;
    TMCString255 fCachedName;
    TVector3 fTargetPosition;
    TVector3 fAppliedOffset; ///< the last one stays in force when a lookup fails
    bool fScratchFullArea = false;
    float fScratchValue = 0;
    TMCColorRGBA fScratchColor = {0, 0, 0, 0};

    void FollowObject(const ShadingIn& in);
    void MovePoints(ShadingIn& in) const;
};
