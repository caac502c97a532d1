#include "shaders/mapping/Coordinate_Shift.h"
#include <algorithm>

bool Coordinate_Shift::SameParams(const Coordinate_ShiftParams& other) const
{
    return fParams.fOffset == other.fOffset
        && std::equal(fParams.fShiftGlobal, fParams.fShiftGlobal + 3, other.fShiftGlobal)
        && std::equal(fParams.fShiftLocal, fParams.fShiftLocal + 3, other.fShiftLocal)
        && fParams.fMode == other.fMode && fParams.fSubShader == other.fSubShader;
}

MCErr Coordinate_Shift::ExtensionDataChanged()
{
    const MCErr status = ConnectSubShader(fParams.fSubShader, fShader, fShaderKinds);
    fCachedName = fParams.fObjectName;
    return status;
}

int32_t Coordinate_Shift::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    fScratchFullArea = false;
    if (fParams.fMode == Code("OBJM"))
        FollowObject(in);
    else
        fAppliedOffset = fParams.fOffset;
    MovePoints(in);

    if (!fShader)
        return 0;
    if ((fShaderKinds & kOutputSurface) != 0) {
        fShader->ShadeSurface(result, in); // the channel mask stays as the sub-shader leaves it
    } else if ((fShaderKinds & kOutputColor) != 0) {
        fShader->ShadeColor(fScratchColor, fScratchFullArea, in);
        result.fColor = fScratchColor;
    } else if ((fShaderKinds & kOutputValue) != 0) {
        fShader->ShadeValue(fScratchValue, fScratchFullArea, in);
        result.fColor.SetRGB(fScratchValue);
    }
    return 1;
}

/// Takes the named object's position for the offset; a failed lookup leaves the offset.
void Coordinate_Shift::FollowObject(const ShadingIn& in)
{
    fTargetTree = nullptr;
    FindShadedTree(in, fOwnTree, fScene);
    if (fOwnTree)
        fOwnTree->GetParent(fTargetTree.Address()); // asked for, and replaced by the lookup
    if (!HasScene(fScene) || !FindTreeByName(fScene, fCachedName, "objecttree", fTargetTree))
        return;
    fTargetTree->GetGlobalTransform(fTargetTransform);
    fTargetPosition = fTargetTransform.fTranslation;
    fAppliedOffset = fTargetPosition;
}

void Coordinate_Shift::MovePoints(ShadingIn& in) const
{
    for (uint32_t i = 0; i < 3; ++i)
        if (fParams.fShiftGlobal[i])
            in.fPointGlobal[i] -= fAppliedOffset[i];
    for (uint32_t i = 0; i < 3; ++i)
        if (fParams.fShiftLocal[i])
            in.fPointLocal[i] -= fAppliedOffset[i];
}
