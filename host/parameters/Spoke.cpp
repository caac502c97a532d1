#include "shaders/patterns/Spoke.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable SpokeTable()
{
    return {"Spoke", {kSpokeClassID}, kOutputValue, sizeof(SpokeParams),
        "A wheel of soft-edged spokes around a point in UV.",
        {
            FIELD(SpokeParams, fCenterU, "Centre U", "Centre of the wheel.").Unit("UV"),
            FIELD(SpokeParams, fCenterV, "Centre V", "Centre of the wheel.").Unit("UV"),
            FIELD(SpokeParams, fIntensity, "Intensity", "Value inside a spoke."),
            FIELD(SpokeParams, fWidth, "Width",
                "Angle of a spoke. With parallel sides a length: 20 is one degree of arc at radius 1.")
                .Unit("degrees"),
            FIELD(
                SpokeParams, fCount, "Spokes", "Number of spokes; 0 draws none, and at most a filled centre.")
                .AtLeast(0)
                .Loose(),
            FIELD(SpokeParams, fRotation, "Rotation", "Of the wheel.").Unit("degrees"),
            FIELD(SpokeParams, fTaper, "Taper", "Width lost per unit of radius.").Unit("degrees"),
            FIELD(SpokeParams, fSoftness, "Softness",
                "Share of the half width over which the edge of a spoke falls to 0."),
            FIELD(SpokeParams, fInnerRadius, "Inner radius", "Nothing shows below it.").Unit("UV"),
            FIELD(SpokeParams, fOuterRadius, "Outer radius",
                "End of the wheel. Beyond it the outer fade goes below 0, up to 1.414 times the radius.")
                .Unit("UV"),
            FIELD(SpokeParams, fInnerFade, "Inner fade", "Radius at which the inner fade ends.").Unit("UV"),
            FIELD(SpokeParams, fOuterFade, "Outer fade", "Radius at which the outer fade begins.").Unit("UV"),
            FIELD(SpokeParams, fConstantWidth, "Parallel sides",
                "Spokes keep their width instead of their angle."),
            FIELD(SpokeParams, fFillCenter, "Fill centre",
                "With parallel sides: fills the area where the spokes merge."),
        }};
}
